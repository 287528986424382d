#include "quillrip/fonts/pixels/bitmap_glyph.h"

#include "quillrip/fonts/pixels/outline_raster.h"

#include <algorithm>
#include <cmath>

namespace quillrip {

namespace {

/// A scale this close to a whole number is one.
constexpr double kScaleTolerance = 1e-4;
/// Outlines of larger bitmaps cost more than they show.
constexpr std::size_t kMostTracedDots = std::size_t { 4 } << 20;
/// A mask of this many bytes is beyond every page.
constexpr double kMostMaskPixels = 6.4e7;
/// Scales beyond this come from broken matrices.
constexpr double kMostScale = 1e4;

/// Device pixels of the glyph's box, rounded.
struct Box {
    long left, top, right, bottom;
};

Box deviceBox(const Matrix& m, double x0, double y0, double x1, double y1)
{
    const Point a = m.apply({ x0, y0 });
    const Point b = m.apply({ x1, y1 });
    return { std::lround(std::min(a.x, b.x)), std::lround(std::min(a.y, b.y)), std::lround(std::max(a.x, b.x)),
        std::lround(std::max(a.y, b.y)) };
}

bool isWholeScale(const Matrix& m)
{
    const auto isWhole = [](double value) {
        const double nearest = std::round(value);
        return nearest != 0 && std::abs(value - nearest) < kScaleTolerance;
    };
    return (m.b == 0 && m.c == 0 && isWhole(m.a) && isWhole(m.d))
        || (m.a == 0 && m.d == 0 && isWhole(m.b) && isWhole(m.c));
}

/// An empty mask of that box; false when it would be absurdly large.
bool prepare(const Box& box, GlyphMask::Depth depth, GlyphMask& mask)
{
    const double width = static_cast<double>(box.right - box.left);
    const double height = static_cast<double>(box.bottom - box.top);
    if (width < 1 || height < 1 || width * height > kMostMaskPixels)
        return false;
    mask.depth = depth;
    mask.left = static_cast<int>(box.left);
    mask.top = static_cast<int>(box.top);
    mask.width = static_cast<int>(box.right - box.left);
    mask.height = static_cast<int>(box.bottom - box.top);
    const auto columns = static_cast<std::size_t>(mask.width);
    mask.stride = depth == GlyphMask::Depth::Bits ? (columns + 7) / 8 : columns;
    mask.bytes.assign(mask.stride * static_cast<std::size_t>(mask.height), 0);
    return true;
}

void setPixel(GlyphMask& mask, std::size_t x, std::size_t y)
{
    if (mask.depth == GlyphMask::Depth::Bits)
        mask.bytes[y * mask.stride + x / 8] |= static_cast<std::uint8_t>(0x80 >> (x % 8));
    else
        mask.bytes[y * mask.stride + x] = 255;
}

/// Walks the borders of ink, ink on the left hand, along the edges of dots.
class Tracer {
public:
    explicit Tracer(const BitmapGlyph& glyph)
        : m_glyph(glyph)
        , m_columns(glyph.width + 1)
        , m_right(static_cast<std::size_t>(m_columns) * static_cast<std::size_t>(glyph.height + 1))
    {
    }

    Path path()
    {
        // Only the borders below ink are walked from: every closed border has one. They run to the right.
        for (int row = 0; row < m_glyph.height; ++row) {
            for (int column = 0; column < m_glyph.width; ++column) {
                if (ink(column, row) && !ink(column, row + 1) && !m_right[index(column, row + 1)])
                    walk(column, row + 1);
            }
        }
        return std::move(m_path);
    }

private:
    bool ink(int column, int row) const
    {
        return column >= 0 && row >= 0 && column < m_glyph.width && row < m_glyph.height && m_glyph.ink(column, row);
    }

    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_columns) + static_cast<std::size_t>(x);
    }

    Point point(int x, int y) const
    {
        return { static_cast<double>(m_glyph.left + x), static_cast<double>(m_glyph.top - y) };
    }

    void walk(int startX, int startY)
    {
        // Directions in rows-down coordinates: 0 right, 1 up, 2 left, 3 down. Ink lies to the left of each.
        static constexpr int kStepX[4] = { 1, 0, -1, 0 };
        static constexpr int kStepY[4] = { 0, -1, 0, 1 };
        int x = startX;
        int y = startY;
        int direction = 0;
        m_path.moveTo(point(x, y));
        do {
            if (direction == 0)
                m_right[index(x, y)] = true;
            x += kStepX[direction];
            y += kStepY[direction];
            const int next = turn(x, y, direction);
            if (next != direction && !(x == startX && y == startY && next == 0))
                m_path.lineTo(point(x, y));
            direction = next;
        } while (!(x == startX && y == startY && direction == 0));
        m_path.close();
    }

    /// The direction after arriving at a corner. Dots that touch at a corner only stay joined.
    int turn(int x, int y, int direction) const
    {
        // The dots ahead, on the left and on the right hand, by direction.
        static constexpr int kAhead[4][2][2] = { { { 0, -1 }, { 0, 0 } }, { { -1, -1 }, { 0, -1 } },
            { { -1, 0 }, { -1, -1 } }, { { 0, 0 }, { -1, 0 } } };
        const auto& ahead = kAhead[direction];
        const bool left = ink(x + ahead[0][0], y + ahead[0][1]);
        const bool right = ink(x + ahead[1][0], y + ahead[1][1]);
        if (right)
            return (direction + 3) & 3;
        return left ? direction : (direction + 1) & 3;
    }

    const BitmapGlyph& m_glyph;
    int m_columns;
    std::vector<bool> m_right; ///< corners whose edge to the right has been walked
    Path m_path;
};

} // namespace

BitmapGlyph BitmapGlyph::turnedUpright(int orientation) const
{
    if ((orientation & 3) == 0)
        return *this;
    BitmapGlyph result;
    result.advance = advance;
    const bool isSideways = orientation & 1;
    result.width = isSideways ? height : width;
    result.height = isSideways ? width : height;
    switch (orientation & 3) {
    case 1:
        result.left = top - height + 1;
        result.top = -left;
        break;
    case 2:
        result.left = -(left + width - 1);
        result.top = height - 1 - top;
        break;
    default:
        result.left = -top;
        result.top = left + width - 1;
        break;
    }
    result.bits.assign(result.stride() * static_cast<std::size_t>(result.height), 0);
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            if (!ink(column, row))
                continue;
            const int x = orientation == 1 ? height - 1 - row : orientation == 2 ? width - 1 - column : row;
            const int y = orientation == 1 ? column : orientation == 2 ? height - 1 - row : width - 1 - column;
            result.bits[static_cast<std::size_t>(y) * result.stride() + static_cast<std::size_t>(x) / 8]
                |= static_cast<std::uint8_t>(0x80 >> (x % 8));
        }
    }
    return result;
}

Path BitmapGlyph::outline() const { return Tracer(*this).path(); }

bool BitmapGlyph::rasterise(const Matrix& m, GlyphMask::Depth depth, GlyphMask& mask) const
{
    if (width <= 0 || height <= 0 || bits.size() < stride() * static_cast<std::size_t>(height))
        return false;
    if (!(std::max({ std::abs(m.a), std::abs(m.b), std::abs(m.c), std::abs(m.d) }) < kMostScale))
        return false;
    const bool isExact = isWholeScale(m);
    const auto dots = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    if (!isExact && dots <= kMostTracedDots && rasteriseOutline(outline(), m, depth, mask))
        return true;

    const bool isUpright = m.b == 0 && m.c == 0;
    if (!isUpright && !(m.a == 0 && m.d == 0))
        return false; // blank, or a picture too large to be turned by any angle
    const Box box = deviceBox(m, left, top, left + width, top - height);
    if (!prepare(box, depth, mask))
        return false;
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            if (!ink(column, row))
                continue;
            Box block = deviceBox(m, left + column, top - row, left + column + 1, top - row - 1);
            // Dots smaller than a pixel still mark one.
            block.left = std::min(block.left, box.right - 1);
            block.top = std::min(block.top, box.bottom - 1);
            block.right = std::max(block.right, block.left + 1);
            block.bottom = std::max(block.bottom, block.top + 1);
            for (long y = block.top; y < block.bottom; ++y) {
                for (long x = block.left; x < block.right; ++x)
                    setPixel(mask, static_cast<std::size_t>(x - box.left), static_cast<std::size_t>(y - box.top));
            }
        }
    }
    return trimMask(mask);
}

} // namespace quillrip
