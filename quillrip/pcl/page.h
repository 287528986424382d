#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/base/limits.h"
#include "quillrip/pcl/logical_page.h"
#include "quillrip/raster/page_device.h"
#include "quillrip/raster/painter.h"

#include <cstdint>
#include <memory>

namespace quillrip::pcl {

class ErrorState;
struct State;

/// The page in progress: begun with its first mark, delivered when it is closed; and how places of the logical page
/// become device pixels. The layout itself (size, orientation, print direction) is part of the state.
class Page {
public:
    /// All references must outlive the page.
    Page(PageDevice& device, const Limits& limits, State& state, ErrorState& errors);

    bool isOpen() const { return m_isOpen; }
    bool isMarked() const { return m_isMarked; }
    /// The open page's pixels; null when none is open.

    /// Begins a page when none is open. False when the run has failed, or fails by this.
    bool ensureOpen();
    /// For whoever is about to make a mark: begins the page when needed. Null when that fails.
    Painter* painterForMark();
    /// Delivers the open page and turns to the next side of the sheet.
    void close();
    /// Forgets a page that belongs to someone else.
    void giveBack();

    /// The open page's canvas, or what it would be.
    PageCanvas canvas() const;
    /// From internal units in the axes of the present print direction, or of `direction`, to device pixels.
    const Matrix& unitsToDevice();
    Matrix unitsToDevice(int direction) const;
    PixelRect deviceRect(Position from, Position to, int direction) const;
    std::shared_ptr<const ClipRegion> logicalPageClip() const;
    /// To be called after every change of layout or print direction.
    void geometryChanged() { m_matrixIsStale = true; }

    bool isBack() const { return m_isBack; }
    /// The next page is a front.
    void beginSheet() { m_isBack = false; }
    /// The state's registration, as the present side of the sheet sees it.
    void applyRegistration();

private:
    PageDevice& m_device;
    const Limits& m_limits;
    State& m_state;
    ErrorState& m_errors;
    PageCanvas m_canvas; ///< while a page is open
    bool m_isOpen = false;
    bool m_isMarked = false;
    bool m_isBack = false; ///< duplex: of the page in progress
    std::uint32_t m_begun = 0;
    Matrix m_unitsToDevice;
    bool m_matrixIsStale = true;
};

} // namespace quillrip::pcl
