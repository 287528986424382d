#include "quillrip/raster/images/aligned_image.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace quillrip {

namespace {

/// Positions beyond this are not those of an image.
constexpr double kFarthestPixel = 1e14;
constexpr int kMostRows = INT32_MAX;
/// Work of a source row that nothing is seen of.
constexpr std::uint64_t kUnitsPerImageRow = 20;

/// A slant that moves no pixel by as much as this, in device pixels, is none.
constexpr double kSlant = 1.0 / 64;

bool isUsable(const ImageAxis& axis, std::int64_t count)
{
    const double end = axis.position(static_cast<double>(count));
    return std::abs(axis.origin) < kFarthestPixel && std::abs(end) < kFarthestPixel && axis.scale > 1 / kFarthestPixel;
}

/// Sets what can be seen of an axis. An image too small for a pixel gets one.
void setVisible(ImageAxis& axis, std::int64_t count, bool isCountKnown, int clipBegin, int clipEnd)
{
    if (isCountKnown && axis.start(count) <= axis.start(0)) {
        axis.origin = std::floor(axis.position(static_cast<double>(count) / 2));
        axis.scale = 1 / static_cast<double>(count);
    }
    const auto limited
        = [&](std::int64_t at) { return static_cast<int>(std::clamp<std::int64_t>(at, clipBegin, clipEnd)); };
    axis.visibleBegin = limited(axis.start(0));
    axis.visibleEnd = limited(axis.start(count));
}

std::size_t rowBytes(ImageFormat format, int width)
{
    const auto pixels = static_cast<std::size_t>(width);
    switch (format) {
    case ImageFormat::Mono:
        return (pixels + 7) / 8;
    case ImageFormat::Gray8:
        return pixels;
    case ImageFormat::Rgb24:
        return 3 * pixels;
    case ImageFormat::Rgba32:
        break;
    }
    return 4 * pixels;
}

} // namespace

bool AlignedGeometry::find(
    const ImageGeometry& image, const PixelRect& bounds, AlignedGeometry& aligned, bool& isVisible)
{
    const Matrix& m = image.imageToDevice;
    const double width = image.width;
    const double height = image.height < 0 ? 65536 : image.height;
    const bool isUpright = std::abs(m.b) * width < kSlant && std::abs(m.c) * height < kSlant && m.a != 0 && m.d != 0;
    const bool isTurned = std::abs(m.a) * width < kSlant && std::abs(m.d) * height < kSlant && m.b != 0 && m.c != 0;
    if (!isUpright && !isTurned)
        return false;

    aligned.format = image.format;
    aligned.width = image.width;
    aligned.height = image.height;
    aligned.smooth = image.smooth;
    aligned.smoothsBlocks = image.smoothsBlocks;
    aligned.dropsPixels = image.dropsPixels;
    aligned.isTurned = !isUpright;
    ImageAxis& columns = aligned.columns;
    ImageAxis& lines = aligned.lines;
    columns.origin = aligned.isTurned ? m.f : m.e;
    columns.scale = aligned.isTurned ? m.b : m.a;
    lines.origin = aligned.isTurned ? m.e : m.f;
    lines.scale = aligned.isTurned ? m.c : m.d;
    aligned.mirrorsColumns = columns.scale < 0;
    if (aligned.mirrorsColumns) {
        columns.origin += columns.scale * width;
        columns.scale = -columns.scale;
    }
    int clipBegin = aligned.isTurned ? bounds.left : bounds.top;
    int clipEnd = aligned.isTurned ? bounds.right : bounds.bottom;
    aligned.mirrorsLines = lines.scale < 0;
    if (aligned.mirrorsLines) {
        lines.origin = -lines.origin;
        lines.scale = -lines.scale;
        lines.bias = -lines.bias;
        std::swap(clipBegin, clipEnd);
        clipBegin = -clipBegin;
        clipEnd = -clipEnd;
    }
    const std::int64_t rows = image.height < 0 ? kMostRows : image.height;
    isVisible = isUsable(columns, image.width) && isUsable(lines, image.height < 0 ? 1 : rows);
    if (!isVisible)
        return true;
    setVisible(columns, image.width, true, aligned.isTurned ? bounds.top : bounds.left,
        aligned.isTurned ? bounds.bottom : bounds.right);
    setVisible(lines, rows, image.height >= 0, clipBegin, clipEnd);
    isVisible = columns.visible() > 0 && lines.visible() > 0;
    return true;
}

AlignedImage::AlignedImage(const AlignedGeometry& geometry, std::unique_ptr<Compositor> compositor)
    : m_geometry(geometry)
    , m_compositor(std::move(compositor))
    , m_lines(geometry.isTurned ? turnedLines(*m_compositor) : uprightLines(*m_compositor))
{
}

void AlignedImage::rows(const std::uint8_t* pixels, int count)
{
    feed(m_geometry.mirrorsColumns ? reversed(pixels) : pixels, count, false);
}

void AlignedImage::blankRows(int count)
{
    const bool isMono = m_geometry.format == ImageFormat::Mono;
    const bool hasAlpha = m_geometry.format == ImageFormat::Rgba32;
    if (m_blank.empty()) {
        m_blank.assign(rowBytes(m_geometry.format, m_geometry.width), isMono || hasAlpha ? 0 : 255);
    }
    feed(m_blank.data(), count, !hasAlpha);
}

void AlignedImage::finish()
{
    end(m_nextRow);
    m_lines->finish();
    m_compositor->chargePixels();
}

void AlignedImage::feed(const std::uint8_t* pixels, std::int64_t count, bool isBlank)
{
    const std::int64_t most = m_geometry.height < 0 ? kMostRows : m_geometry.height;
    count = std::min(count, most - m_nextRow);
    if (count <= 0 || !m_compositor->work().allows(Work::Images, kUnitsPerImageRow))
        return;
    addRows(pixels, m_nextRow, count, isBlank);
    m_compositor->chargePixels();
    m_nextRow += count;
}

const std::uint8_t* AlignedImage::reversed(const std::uint8_t* pixels)
{
    const auto width = static_cast<std::size_t>(m_geometry.width);
    const std::size_t bytes = rowBytes(m_geometry.format, m_geometry.width);
    m_reversed.assign(bytes, 0);
    if (m_geometry.format == ImageFormat::Mono) {
        for (std::size_t x = 0; x < width; ++x) {
            const std::size_t to = width - 1 - x;
            if (pixels[x / 8] & 0x80 >> (x % 8))
                m_reversed[to / 8] = static_cast<std::uint8_t>(m_reversed[to / 8] | 0x80 >> (to % 8));
        }
    } else {
        const std::size_t channels = bytes / width;
        for (std::size_t x = 0; x < width; ++x)
            std::memcpy(m_reversed.data() + (width - 1 - x) * channels, pixels + x * channels, channels);
    }
    return m_reversed.data();
}

void AlignedImage::whiteLines(std::int64_t first, std::int64_t end)
{
    const ImageAxis& axis = m_geometry.lines;
    first = std::max<std::int64_t>(first, axis.visibleBegin);
    end = std::min<std::int64_t>(end, axis.visibleEnd);
    if (first >= end || m_compositor->isSourceTransparent())
        return;
    const ImageAxis& columns = m_geometry.columns;
    const int from = m_geometry.mirrorsLines ? static_cast<int>(-end) : static_cast<int>(first);
    const int to = m_geometry.mirrorsLines ? static_cast<int>(-first) : static_cast<int>(end);
    m_lines->white(from, to, columns.visibleBegin, columns.visibleEnd);
}

} // namespace quillrip
