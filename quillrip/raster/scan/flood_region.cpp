#include "quillrip/raster/scan/flood_region.h"

#include <cmath>
#include <cstdint>
#include <vector>

namespace quillrip {

namespace {

Rgb asShown(Rgb color, PixelFormat format)
{
    if (format == PixelFormat::Rgb24)
        return color;
    std::uint8_t light = luminance(color);
    if (format == PixelFormat::Bilevel)
        light = light >= 128 ? 255 : 0;
    return { light, light, light };
}

/// Spreads run by run, not pixel by pixel: a page of one colour is a run for each row.
class Flood {
public:
    Flood(const PageBitmap& page, Rgb color, FloodRule rule, const PixelRect& area)
        : m_page(page)
        , m_color(asShown(color, page.format()))
        , m_rule(rule)
        , m_area(area)
        , m_stride((static_cast<std::size_t>(area.width()) + 7) / 8)
        , m_taken(m_stride * static_cast<std::size_t>(area.height()))
    {
    }

    std::shared_ptr<const ClipRegion> from(int x, int y)
    {
        m_start = m_page.pixel(x, y);
        push(y, x, x + 1);
        while (!m_open.empty()) {
            const Stretch stretch = m_open.back();
            m_open.pop_back();
            for (int at = stretch.left; at < stretch.right; ++at) {
                if (isFree(at, stretch.y))
                    at = takeRun(at, stretch.y);
            }
        }
        return ClipRegion::ofBits(m_taken.data(), m_stride, m_area);
    }

private:
    /// Columns of a row from which the flood may go on.
    struct Stretch {
        int y;
        int left;
        int right;
    };

    void push(int y, int left, int right)
    {
        if (y >= m_area.top && y < m_area.bottom)
            m_open.push_back({ y, left, right });
    }

    std::uint8_t& byteAt(int x, int y)
    {
        return m_taken[static_cast<std::size_t>(y - m_area.top) * m_stride
            + static_cast<std::size_t>(x - m_area.left) / 8];
    }
    unsigned bitAt(int x) const { return 0x80u >> ((x - m_area.left) % 8); }

    bool isFree(int x, int y)
    {
        if ((byteAt(x, y) & bitAt(x)) != 0)
            return false;
        const Rgb pixel = m_page.pixel(x, y);
        return m_rule == FloodRule::WhileEqual ? pixel == m_color : !isBorder(pixel);
    }

    /// Lines have soft edges, and fine ones little else: what lies between the start's colour and the border's, near
    /// enough to the latter, belongs to the border.
    bool isBorder(Rgb pixel) const
    {
        constexpr int kOffLine = 12;
        constexpr double kLeastShare = 3.0 / 8;
        if (pixel == m_color)
            return true;
        const int way[] { m_color.red - m_start.red, m_color.green - m_start.green, m_color.blue - m_start.blue };
        const int part[] { pixel.red - m_start.red, pixel.green - m_start.green, pixel.blue - m_start.blue };
        const int length = way[0] * way[0] + way[1] * way[1] + way[2] * way[2];
        if (length == 0)
            return false;
        const double share = double(part[0] * way[0] + part[1] * way[1] + part[2] * way[2]) / length;
        if (share < kLeastShare || share > 1)
            return false;
        for (int i = 0; i < 3; ++i) {
            if (std::abs(part[i] - share * way[i]) > kOffLine)
                return false;
        }
        return true;
    }

    /// Takes the run of free pixels around (x, y); returns its last column.
    int takeRun(int x, int y)
    {
        int left = x;
        int right = x + 1;
        while (left > m_area.left && isFree(left - 1, y))
            --left;
        while (right < m_area.right && isFree(right, y))
            ++right;
        for (int at = left; at < right; ++at)
            byteAt(at, y) = static_cast<std::uint8_t>(byteAt(at, y) | bitAt(at));
        push(y - 1, left, right);
        push(y + 1, left, right);
        return right - 1;
    }

    const PageBitmap& m_page;
    Rgb m_color;
    FloodRule m_rule;
    Rgb m_start;
    PixelRect m_area;
    std::size_t m_stride;
    std::vector<std::uint8_t> m_taken;
    std::vector<Stretch> m_open;
};

} // namespace

std::shared_ptr<const ClipRegion> floodRegion(
    const PageBitmap& page, int x, int y, Rgb color, FloodRule rule, const PixelRect& bounds)
{
    const PixelRect area = bounds.intersected(page.bounds());
    if (x < area.left || x >= area.right || y < area.top || y >= area.bottom)
        return ClipRegion::ofRect({});
    return Flood(page, color, rule, area).from(x, y);
}

} // namespace quillrip
