#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/base/page_bitmap.h"
#include "quillrip/raster/paths/path.h"
#include "quillrip/raster/scan/clip_fringe.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace quillrip {

class WorkMeter;

/// How marks end at a clip that is no rectangle, on pages in grey and RGB.
enum class ClipEdges {
    Hard, ///< with whole pixels
    Soft, ///< fading out
};

constexpr ClipEdges clipEdgesOf(PixelFormat format)
{
    return format == PixelFormat::Bilevel ? ClipEdges::Hard : ClipEdges::Soft;
}

/// A set of device pixels: a rectangle, or sorted runs for each row. Immutable and shared between states.
///
/// A pixel is in or out: a region and its complement never share or lose one. Soft edges lie outside of that: pixels
/// whose smaller part is inside take a share of what is painted, from nothing up to all where it nears the half. The
/// pixels that are in take all of it. So of what is drawn piece by piece through neighbouring clips, one piece fills
/// each pixel, and no seam shows what was there before.
class ClipRegion {
public:
    struct Run {
        int left;
        int right; ///< half open
    };

    static std::shared_ptr<const ClipRegion> ofRect(const PixelRect& rect);
    /// The pixels whose centres lie inside the path, within `bounds`. Without a meter nobody counts the work.
    static std::shared_ptr<const ClipRegion> ofPath(const Path& devicePath, FillRule rule, const PixelRect& bounds,
        WorkMeter* work = nullptr, ClipEdges edges = ClipEdges::Hard);

    /// The pixels whose bits are 1: rows of `stride` bytes, the first pixel in the highest bit, for the pixels of
    /// `bounds` from its upper left corner on.
    static std::shared_ptr<const ClipRegion> ofBits(
        const std::uint8_t* bits, std::size_t stride, const PixelRect& bounds);

    std::shared_ptr<const ClipRegion> intersected(const ClipRegion& other) const;
    /// The pixels of `bounds` that are not in this region.
    std::shared_ptr<const ClipRegion> complement(const PixelRect& bounds) const;

    // What follows leaves hard edges, but for moves.
    /// The pixels of either.
    std::shared_ptr<const ClipRegion> united(const ClipRegion& other) const;
    /// The pixels of one of them alone.
    std::shared_ptr<const ClipRegion> exclusive(const ClipRegion& other) const;
    /// The pixels of this region that are not in the other.
    std::shared_ptr<const ClipRegion> subtracted(const ClipRegion& other) const;
    /// Moved by whole pixels. What comes to lie beyond any page is lost.
    std::shared_ptr<const ClipRegion> moved(int right, int down) const;
    bool contains(int x, int y) const;

    const PixelRect& bounds() const { return m_bounds; }
    bool isRect() const { return m_rowStarts.empty(); }
    /// Runs of row y, left to right, not touching each other. Only when !isRect() and y lies inside the bounds.
    const Run* begin(int y) const;
    const Run* end(int y) const;
    /// Null: all edges are hard.
    const ClipFringe* fringe() const { return m_fringe.get(); }

private:
    class Builder;
    /// Calls isIn(in this, in the other) for what lies between the ends of both regions' runs.
    template <typename IsIn>
    std::shared_ptr<const ClipRegion> combined(const ClipRegion& other, const PixelRect& bounds, IsIn isIn) const;
    /// The runs of any row, also of rectangles and outside the bounds. `whole` is room for a rectangle's.
    std::pair<const Run*, const Run*> runsAt(int y, Run& whole) const;
    /// How much of a pixel is inside, in 255ths. `cell` is the first in the row that may stand for it, and moves on.
    unsigned coverageAt(int x, int y, const ClipFringe::Cell*& cell) const;
    std::shared_ptr<const ClipFringe> commonFringe(const ClipRegion& other, const PixelRect& common) const;

    PixelRect m_bounds;
    std::vector<std::size_t> m_rowStarts; ///< height + 1 indices into m_runs
    std::vector<Run> m_runs;
    std::shared_ptr<const ClipFringe> m_fringe;
};

} // namespace quillrip
