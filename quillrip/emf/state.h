#pragma once

#include "quillrip/emf/coordinates.h"
#include "quillrip/emf/objects.h"
#include "quillrip/raster/paths/path.h"
#include "quillrip/raster/scan/clip_region.h"

#include <cstdint>
#include <memory>

namespace quillrip::emf {

enum class StretchMode : std::uint32_t { And = 1, Or, Delete, Halftone };

/// Which pixels may be painted. Regions are in device pixels; null: the whole sheet.
struct ClipState {
    std::shared_ptr<const ClipRegion> clip;
    std::shared_ptr<const ClipRegion> meta; ///< what SETMETARGN has set aside: both hold
};

/// A path between BEGINPATH and what uses it up, in reference pixels.
struct PathState {
    Path path;
    bool isRecording = false;
    bool isDefined = false; ///< ended and not used up
    bool isWidened = false; ///< it is the outline of a stroke: filled non-zero whatever the mode
    bool needsMove = true; ///< the next segment begins a subpath at the current position
};

/// The device context: what SAVEDC saves. Defaults are those of a new page.
struct DeviceContext {
    explicit DeviceContext(const MetafileHeader& header)
        : coordinates(header)
    {
    }

    Coordinates coordinates;
    std::shared_ptr<const Object> pen; ///< always a LogicalPen; likewise below
    std::shared_ptr<const Object> brush;
    std::shared_ptr<const Object> font;
    std::shared_ptr<const Object> palette;
    /// Of the embedded file that the selected font was told to be (FORCEUFIMAPPING); 0: by its name.
    std::uint32_t fontChecksum = 0;
    Point position; ///< logical
    std::uint32_t backgroundColor = 0xFFFFFF; ///< COLORREF
    std::uint32_t textColor = 0; ///< COLORREF
    bool isOpaque = true; ///< background mode
    std::uint32_t textAlign = 0;
    std::int32_t justificationExtra = 0; ///< logical units, over all breaks
    std::int32_t justificationCount = 0;
    std::uint32_t rop2 = 13;
    bool fillsAlternate = true;
    StretchMode stretchMode = StretchMode::And;
    bool isClockwise = false; ///< arc direction
    double miterLimit = 10;
    Point brushOrigin; ///< reference pixels
    ClipState clip;
    PathState path;
};

} // namespace quillrip::emf
