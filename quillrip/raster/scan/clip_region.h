#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/raster/paths/path.h"

#include <memory>
#include <vector>

namespace quillrip {

/// A set of device pixels: a rectangle, or sorted runs for each row. Immutable and shared between states.
///
/// A pixel is in or out, on grey and RGB pages too: so a region and its complement never share or lose a pixel, and
/// what is drawn piece by piece through neighbouring clips has no seams.
class ClipRegion {
public:
    struct Run {
        int left;
        int right; ///< half open
    };

    static std::shared_ptr<const ClipRegion> ofRect(const PixelRect& rect);
    /// The pixels whose centres lie inside the path, within `bounds`.
    static std::shared_ptr<const ClipRegion> ofPath(const Path& devicePath, FillRule rule, const PixelRect& bounds);

    std::shared_ptr<const ClipRegion> intersected(const ClipRegion& other) const;
    /// The pixels of `bounds` that are not in this region.
    std::shared_ptr<const ClipRegion> complement(const PixelRect& bounds) const;

    const PixelRect& bounds() const { return m_bounds; }
    bool isRect() const { return m_rowStarts.empty(); }
    /// Runs of row y, left to right, not touching each other. Only when !isRect() and y lies inside the bounds.
    const Run* begin(int y) const;
    const Run* end(int y) const;

private:
    class Builder;

    PixelRect m_bounds;
    std::vector<std::size_t> m_rowStarts; ///< height + 1 indices into m_runs
    std::vector<Run> m_runs;
};

} // namespace quillrip
