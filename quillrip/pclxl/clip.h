#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/base/work_meter.h"
#include "quillrip/raster/paths/path.h"
#include "quillrip/raster/scan/clip_region.h"

#include <cstddef>
#include <memory>

namespace quillrip::pclxl {

/// What regions of a page are made with.
struct ClipGround {
    PixelRect page;
    ClipEdges edges;
    WorkMeter& work;
};

/// Where marks go: a region of device pixels, and its outline as long as that is known exactly. `page` is the page's
/// rectangle in all of this.
class Clip {
public:
    /// Null: the whole page.
    const std::shared_ptr<const ClipRegion>& region() const { return m_region; }
    /// What later outlines are filled by.
    void setRule(FillRule rule) { m_rule = rule; }

    void toPage();
    /// The inside of the path, or the outside of it on the page.
    void replace(Path devicePath, const ClipGround& ground, bool isExterior);
    void intersect(const Path& devicePath, const ClipGround& ground, bool isExterior);

    /// In device pixels: as it was given, or along the pixels' sides. Stops at `maxPoints`.
    Path outline(const PixelRect& page, std::size_t maxPoints) const;
    /// How much memory a copy that shared nothing would take, in runs of pixels.
    std::size_t runCount() const;

private:
    std::shared_ptr<const ClipRegion> regionOf(const Path& devicePath, const ClipGround& ground) const;
    void set(std::shared_ptr<const ClipRegion> region, std::shared_ptr<const Path> outline, const PixelRect& page);

    std::shared_ptr<const ClipRegion> m_region;
    std::shared_ptr<const Path> m_outline; ///< null: the page's edge, or not kept
    FillRule m_rule = FillRule::NonZero;
};

} // namespace quillrip::pclxl
