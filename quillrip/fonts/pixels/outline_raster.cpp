#include "quillrip/fonts/pixels/outline_raster.h"

#include "quillrip/fonts/freetype_library.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include <ft2build.h>
#include FT_OUTLINE_H

namespace quillrip {

namespace {

/// FreeType counts points in 16 bits.
constexpr std::size_t kMostPoints = 32000;

/// Rasterising needs a library object, and no font file.
FreeTypeLibrary& rasterLibrary()
{
    thread_local FreeTypeLibrary s_library;
    return s_library;
}

/// A path as FreeType sees it: 26.6 fixed point, y up.
class FixedOutline {
public:
    bool build(const Path& path, const Matrix& matrix)
    {
        if (path.pointCount() > kMostPoints)
            return false;
        bool fits = true;
        const auto addTo = [&](Point to, int tag) { fits = fits && add(matrix.apply(to), tag); };
        path.forEach(
            [&](Point to) {
                endContour();
                addTo(to, FT_CURVE_TAG_ON);
            },
            [&](Point to) { addTo(to, FT_CURVE_TAG_ON); },
            [&](Point control1, Point control2, Point to) {
                addTo(control1, FT_CURVE_TAG_CUBIC);
                addTo(control2, FT_CURVE_TAG_CUBIC);
                addTo(to, FT_CURVE_TAG_ON);
            },
            [] {});
        if (!fits)
            return false;
        endContour();
        if (m_points.empty())
            return false;
        m_outline.n_points = static_cast<short>(m_points.size());
        m_outline.n_contours = static_cast<short>(m_contours.size());
        m_outline.points = m_points.data();
        m_outline.tags = m_tags.data();
        m_outline.contours = m_contours.data();
        return true;
    }

    FT_Outline& outline() { return m_outline; }

    Path path(double unit) const
    {
        Path result;
        std::size_t at = 0;
        const auto point = [&](std::size_t i) {
            return Point { static_cast<double>(m_points[i].x) * unit, static_cast<double>(m_points[i].y) * unit };
        };
        for (const short last : m_contours) {
            const auto end = static_cast<std::size_t>(last) + 1;
            result.moveTo(point(at++));
            while (at < end) {
                if (m_tags[at] == FT_CURVE_TAG_ON) {
                    result.lineTo(point(at++));
                } else {
                    result.cubicTo(point(at), point(at + 1), point(at + 2));
                    at += 3;
                }
            }
            result.close();
        }
        return result;
    }

private:
    bool add(Point p, int tag)
    {
        constexpr double kFurthest = 30000.0 * 64;
        const Point fixed { p.x * 64, p.y * 64 };
        if (!(std::abs(fixed.x) < kFurthest && std::abs(fixed.y) < kFurthest))
            return false;
        m_points.push_back({ std::lround(fixed.x), std::lround(fixed.y) });
        m_tags.push_back(static_cast<char>(tag));
        return true;
    }

    void endContour()
    {
        const std::size_t begin = m_contours.empty() ? 0 : static_cast<std::size_t>(m_contours.back()) + 1;
        if (m_points.size() == begin)
            return;
        m_contours.push_back(static_cast<short>(m_points.size() - 1));
    }

    std::vector<FT_Vector> m_points;
    std::vector<char> m_tags;
    std::vector<short> m_contours;
    FT_Outline m_outline {};
};

} // namespace

bool rasteriseOutline(const Path& outline, const Matrix& toDevice, GlyphMask::Depth depth, GlyphMask& mask)
{
    FixedOutline fixed;
    // FreeType's y points up, the device's down.
    if (!fixed.build(outline, toDevice * Matrix::scaling(1, -1)))
        return false;
    FT_Outline& shape = fixed.outline();
    // The smart rule with stubs keeps thin strokes whole without lengthening their ends.
    shape.flags = FT_OUTLINE_HIGH_PRECISION | FT_OUTLINE_SMART_DROPOUTS | FT_OUTLINE_INCLUDE_STUBS;

    FT_BBox box;
    FT_Outline_Get_CBox(&shape, &box);
    // A bilevel drop-out may be set just outside of a thin outline: a pixel of room on each side.
    const long left = (box.xMin >> 6) - 1;
    const long bottom = (box.yMin >> 6) - 1;
    const long right = ((box.xMax + 63) >> 6) + 1;
    const long top = ((box.yMax + 63) >> 6) + 1;
    if (right - left > kLargestMaskSide || top - bottom > kLargestMaskSide)
        return false;

    mask.depth = depth;
    mask.left = static_cast<int>(left);
    mask.top = static_cast<int>(-top);
    mask.width = static_cast<int>(right - left);
    mask.height = static_cast<int>(top - bottom);
    const auto width = static_cast<std::size_t>(mask.width);
    mask.stride = depth == GlyphMask::Depth::Bits ? (width + 7) / 8 : width;
    mask.bytes.assign(mask.stride * static_cast<std::size_t>(mask.height), 0);

    FT_Bitmap bitmap {};
    bitmap.rows = static_cast<unsigned>(mask.height);
    bitmap.width = static_cast<unsigned>(mask.width);
    bitmap.pitch = static_cast<int>(mask.stride);
    bitmap.buffer = mask.bytes.data();
    bitmap.num_grays = 256;
    bitmap.pixel_mode = depth == GlyphMask::Depth::Bits ? FT_PIXEL_MODE_MONO : FT_PIXEL_MODE_GRAY;
    FT_Outline_Translate(&shape, -left * 64, -bottom * 64);
    FreeTypeLibrary& library = rasterLibrary();
    if (!library.hasDone(FT_Outline_Get_Bitmap(library.get(), &shape, &bitmap)))
        return false;
    return trimMask(mask);
}

AxisScale axisScale(const Matrix& m)
{
    AxisScale result;
    const auto sign = [](double value) { return value < 0 ? -1.0 : value > 0 ? 1.0 : 0.0; };
    const bool runsAcross = m.b == 0 && m.c == 0;
    const bool runsDown = m.a == 0 && m.d == 0;
    result.x = std::abs(runsAcross ? m.a : m.b);
    result.y = std::abs(runsAcross ? m.d : m.c);
    result.isAligned = (runsAcross || runsDown) && result.x > 0 && result.y > 0;
    result.turn = { sign(m.a), sign(m.b), sign(m.c), sign(m.d), m.e, m.f };
    return result;
}

Path emboldened(const Path& outline, double x, double y)
{
    // Emboldening works on whole units: a fine grid keeps them invisible.
    constexpr double kGrid = 256;
    FixedOutline fixed;
    if (!fixed.build(outline, Matrix::scaling(kGrid, kGrid)))
        return outline;
    const auto strengthX = std::lround(x * kGrid * 64);
    const auto strengthY = std::lround(y * kGrid * 64);
    if (FT_Outline_EmboldenXY(&fixed.outline(), strengthX, strengthY) != 0)
        return outline;
    // The outline grew to the right and upwards only.
    FT_Outline_Translate(&fixed.outline(), -strengthX / 2, -strengthY / 2);
    return fixed.path(1 / (kGrid * 64));
}

bool trimMask(GlyphMask& mask)
{
    const auto rowHasInk = [&](int y) {
        const std::uint8_t* row = mask.bytes.data() + static_cast<std::size_t>(y) * mask.stride;
        return std::any_of(row, row + mask.stride, [](std::uint8_t byte) { return byte != 0; });
    };
    int first = 0;
    int end = mask.height;
    while (first < end && !rowHasInk(first))
        ++first;
    while (end > first && !rowHasInk(end - 1))
        --end;
    if (first == end) {
        mask = GlyphMask {};
        return false;
    }
    const auto stride = static_cast<std::ptrdiff_t>(mask.stride);
    mask.bytes.erase(mask.bytes.begin() + end * stride, mask.bytes.end());
    mask.bytes.erase(mask.bytes.begin(), mask.bytes.begin() + first * stride);
    mask.top += first;
    mask.height = end - first;
    return true;
}

} // namespace quillrip
