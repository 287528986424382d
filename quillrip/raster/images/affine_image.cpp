#include "quillrip/raster/images/aligned_image.h"
#include "quillrip/raster/images/image_source.h"
#include "quillrip/raster/paths/flatten.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

namespace quillrip {

namespace {

/// A turned image is kept whole; rows beyond this are dropped.
constexpr std::size_t kMostBytes = std::size_t { 256 } << 20;
constexpr std::uint64_t kUnitsPerSample = 8;
/// Samples across a device pixel.
constexpr int kMostSamples = 8;

class AffineImage final : public ImagePainter {
public:
    AffineImage(const ImageGeometry& image, std::unique_ptr<Compositor> compositor)
        : m_image(image)
        , m_compositor(std::move(compositor))
        , m_isMono(image.format == ImageFormat::Mono)
        , m_isBilevelPage(m_compositor->format() == PixelFormat::Bilevel)
        , m_hasAlpha(image.format == ImageFormat::Rgba32)
        , m_inkChannels(!m_isMono && m_compositor->format() == PixelFormat::Rgb24 ? 3 : 1)
        , m_channels(m_inkChannels + (m_hasAlpha ? 1 : 0))
        , m_rowBytes(static_cast<std::size_t>(image.width) * m_channels)
        , m_mostRows(std::min(kMostBytes / m_rowBytes, static_cast<std::size_t>(INT32_MAX)))
    {
        if (image.height >= 0)
            m_mostRows = std::min(m_mostRows, static_cast<std::size_t>(image.height));
    }

    void row(const std::uint8_t* pixels) override
    {
        if (m_rows >= m_mostRows || !m_compositor->work().allows(Work::Images, m_rowBytes))
            return;
        m_ink.resize((m_rows + 1) * m_rowBytes);
        std::uint8_t* ink = m_ink.data() + m_rows * m_rowBytes;
        const int inkChannels = static_cast<int>(m_inkChannels);
        convertRow(pixels, m_image.format, m_image.width, inkChannels, ink);
        if (m_hasAlpha)
            interleaveAlpha(ink, m_image.width, inkChannels, pixels + 3, 4);
        ++m_rows;
    }

    void blankRows(int count) override
    {
        m_rows += std::min(m_mostRows - m_rows, static_cast<std::size_t>(std::max(0, count)));
        m_ink.resize(m_rows * m_rowBytes);
    }

    void finish() override
    {
        const Matrix toSource = m_image.imageToDevice.inverted();
        const PixelRect box = deviceBox();
        if (m_rows == 0 || box.empty())
            return;
        const double reach = std::max(std::hypot(toSource.a, toSource.b), std::hypot(toSource.c, toSource.d));
        const int fewest = m_isBilevelPage || m_image.dropsPixels ? 1 : 2;
        const int most = m_image.dropsPixels ? 1 : kMostSamples;
        m_samples = std::clamp(static_cast<int>(std::ceil(std::min(reach, 1.0 * most))), fewest, most);
        m_line.resize(static_cast<std::size_t>(box.width()) * m_inkChannels);
        m_coverage.resize(static_cast<std::size_t>(box.width()));
        const auto samples
            = static_cast<std::uint64_t>(box.width()) * static_cast<std::uint64_t>(m_samples * m_samples);
        for (int y = box.top; y < box.bottom; ++y) {
            if (!m_compositor->work().allows(Work::Images, samples * kUnitsPerSample))
                break;
            paintRow(y, box, toSource);
        }
        m_compositor->chargePixels();
    }

private:
    PixelRect deviceBox() const
    {
        const double width = m_image.width;
        const auto height = static_cast<double>(m_rows);
        double left = HUGE_VAL, top = HUGE_VAL, right = -HUGE_VAL, bottom = -HUGE_VAL;
        for (const Point corner :
            { Point { 0, 0 }, Point { width, 0 }, Point { 0, height }, Point { width, height } }) {
            const Point at = m_image.imageToDevice.apply(corner);
            if (!isFinite(at))
                return {};
            left = std::min(left, at.x);
            top = std::min(top, at.y);
            right = std::max(right, at.x);
            bottom = std::max(bottom, at.y);
        }
        const PixelRect& bounds = m_compositor->bounds();
        const auto limited = [](double value, int low, int high) {
            return static_cast<int>(
                std::clamp(value, static_cast<double>(low), static_cast<double>(std::max(low, high))));
        };
        return { limited(std::floor(left), bounds.left, bounds.right),
            limited(std::floor(top), bounds.top, bounds.bottom), limited(std::ceil(right), bounds.left, bounds.right),
            limited(std::ceil(bottom), bounds.top, bounds.bottom) };
    }

    void paintRow(int y, const PixelRect& box, const Matrix& toSource)
    {
        int first = box.right;
        int last = box.left - 1;
        for (int x = box.left; x < box.right; ++x) {
            const auto at = static_cast<std::size_t>(x - box.left);
            samplePixel(x, y, toSource, m_line.data() + at * m_inkChannels, m_coverage[at]);
            if (m_coverage[at] != 0) {
                first = std::min(first, x);
                last = x;
            }
        }
        if (first > last)
            return;
        const auto offset = static_cast<std::size_t>(first - box.left);
        const int count = last - first + 1;
        const std::uint8_t* ink = m_line.data() + offset * m_inkChannels;
        if (m_hasAlpha)
            return m_compositor->blended(y, first, ink, m_coverage.data() + offset, count);
        if (!m_isMono)
            return m_compositor->colors(y, first, ink, m_coverage.data() + offset, count);
        // Bilevel ink is a mask; an opaque one whitens the rest of its box, which only whole pixels can say.
        if (!m_compositor->isSourceTransparent()) {
            for (int x = first; x <= last; ++x) {
                if (m_coverage[static_cast<std::size_t>(x - box.left)] >= 128)
                    m_compositor->coverage(y, x, m_line.data() + (x - box.left), 1, true);
            }
            return;
        }
        m_compositor->coverage(y, first, m_line.data() + offset, count, false);
    }

    /// The ink in a device pixel and how much of the pixel the image takes.
    void samplePixel(int x, int y, const Matrix& toSource, std::uint8_t* ink, std::uint8_t& coverage) const
    {
        float sums[4] = {};
        int inside = 0;
        int counted = 0;
        for (int j = 0; j < m_samples; ++j) {
            for (int i = 0; i < m_samples; ++i) {
                const Point at = toSource.apply({ x + (i + 0.5) / m_samples, y + (j + 0.5) / m_samples });
                if (!(at.x >= 0 && at.y >= 0 && at.x < m_image.width && at.y < static_cast<double>(m_rows)))
                    continue;
                ++inside;
                counted += addSample(at, sums) ? 1 : 0;
            }
        }
        const int samples = m_samples * m_samples;
        if (m_isMono) {
            // Ink over the whole pixel; on a bilevel page any ink counts, so that thin lines stay.
            const float share = sums[0] / static_cast<float>(samples);
            ink[0] = m_isBilevelPage ? (sums[0] > 0 ? 255 : 0) : static_cast<std::uint8_t>(share + 0.5F);
            coverage = inside * 2 >= samples || sums[0] > 0 ? 255 : 0;
            return;
        }
        if (m_hasAlpha) {
            const float alpha = sums[m_inkChannels];
            const float whole = alpha > 0 ? 255 / alpha : 0;
            coverage = static_cast<std::uint8_t>(alpha / static_cast<float>(samples) + 0.5F);
            for (std::size_t channel = 0; channel < m_inkChannels; ++channel)
                ink[channel] = static_cast<std::uint8_t>(std::min(sums[channel] * whole + 0.5F, 255.0F));
            return;
        }
        const int share = m_compositor->isSourceTransparent() ? counted : inside;
        coverage = static_cast<std::uint8_t>((share * 255 + samples / 2) / samples);
        for (std::size_t channel = 0; channel < m_channels; ++channel)
            ink[channel] = share == 0 ? 0 : static_cast<std::uint8_t>(sums[channel] / static_cast<float>(share) + 0.5F);
    }

    /// False if the sample is white.
    bool addSample(Point at, float* sums) const
    {
        if ((m_image.smooth || m_image.smoothsBlocks) && !m_isBilevelPage)
            return addLinearSample(at, sums);
        return addWeighted(static_cast<std::int64_t>(at.x), static_cast<std::int64_t>(at.y), 1, sums);
    }

    bool addLinearSample(Point at, float* sums) const
    {
        const double left = std::floor(at.x - 0.5);
        const double top = std::floor(at.y - 0.5);
        const auto partX = static_cast<float>(at.x - 0.5 - left);
        const auto partY = static_cast<float>(at.y - 0.5 - top);
        const auto x = static_cast<std::int64_t>(left);
        const auto y = static_cast<std::int64_t>(top);
        bool isInk = addWeighted(x, y, (1 - partX) * (1 - partY), sums);
        isInk = addWeighted(x + 1, y, partX * (1 - partY), sums) || isInk;
        isInk = addWeighted(x, y + 1, (1 - partX) * partY, sums) || isInk;
        return addWeighted(x + 1, y + 1, partX * partY, sums) || isInk;
    }

    bool addWeighted(std::int64_t x, std::int64_t y, float weight, float* sums) const
    {
        const auto column = static_cast<std::size_t>(std::clamp<std::int64_t>(x, 0, m_image.width - 1));
        const auto row
            = static_cast<std::size_t>(std::clamp<std::int64_t>(y, 0, static_cast<std::int64_t>(m_rows) - 1));
        const std::uint8_t* pixel = m_ink.data() + row * m_rowBytes + column * m_channels;
        bool isInk = false;
        for (std::size_t channel = 0; channel < m_channels; ++channel) {
            sums[channel] += weight * static_cast<float>(pixel[channel]);
            isInk = isInk || pixel[channel] != 0;
        }
        return isInk && weight > 0;
    }

    ImageGeometry m_image;
    std::unique_ptr<Compositor> m_compositor;
    bool m_isMono;
    bool m_isBilevelPage;
    bool m_hasAlpha; ///< behind the ink of every pixel, which is multiplied by it
    std::size_t m_inkChannels;
    std::size_t m_channels;
    std::size_t m_rowBytes;
    std::size_t m_mostRows;
    std::size_t m_rows = 0;
    int m_samples = 1;
    std::vector<std::uint8_t> m_ink; ///< the whole image
    std::vector<std::uint8_t> m_line;
    std::vector<std::uint8_t> m_coverage;
};

} // namespace

std::unique_ptr<ImagePainter> makeAffineImage(const ImageGeometry& geometry, std::unique_ptr<Compositor> compositor)
{
    return std::make_unique<AffineImage>(geometry, std::move(compositor));
}

} // namespace quillrip
