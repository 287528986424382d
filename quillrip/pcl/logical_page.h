#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/pcl/page_sizes.h"
#include "quillrip/raster/page_device.h"

#include <algorithm>

namespace quillrip::pcl {

struct Position {
    InternalUnits x = 0;
    InternalUnits y = 0;
};
inline bool operator==(Position a, Position b) { return a.x == b.x && a.y == b.y; }
inline bool operator!=(Position a, Position b) { return !(a == b); }

/// Where the logical page lies. Directions are quarter turns counter-clockwise: 0 the orientation's own axes, 1 to 3
/// those of the print directions 90, 180 and 270.
class LogicalPage {
public:
    LogicalPage() = default;
    LogicalPage(const PageSize& size, int orientation, PrinterFamily family = PrinterFamily::Laser);

    /// A plotter's page: nothing is kept free at its edges. Decipoints.
    static LogicalPage ofPlot(double width, double length);

    const PageSize& size() const { return m_size; }
    int orientation() const { return m_orientation; }
    /// The logical page in the orientation's own axes.
    InternalUnits width() const { return m_width; }
    InternalUnits length() const { return m_length; }
    InternalUnits leftOffset() const { return m_leftOffset; }
    /// Another margin left and right of the logical page than the printer's family has.
    void setLeftOffset(InternalUnits offset);
    /// The page is printed beyond the sheet's edges, so far at the left and at the top: nothing stays free.
    void setBleed(InternalUnits left, InternalUnits top);
    InternalUnits bleedLeft() const { return std::max<InternalUnits>(0, -m_leftOffset); }
    InternalUnits bleedTop() const { return std::max<InternalUnits>(0, -m_topOffset); }
    PrinterFamily family() const { return m_family; }
    /// The job has shown whose sheets it counts on. A form length of its own stays.
    void changeFamily(PrinterFamily family);

    /// A form length that no sheet has: the sheet stays, the logical page ends elsewhere.
    void setLength(InternalUnits length) { m_length = length; }
    /// The job has not named the sheet: in portrait it may turn out to be a longer one.
    void setGuessed() { m_isGuessed = true; }
    /// How much longer in a direction's axes; 0 for a sheet that is known.
    InternalUnits spareLength(int direction) const;
    /// Offsets along the sheet's short and long edge, whatever the orientation.
    void setRegistration(InternalUnits alongWidth, InternalUnits alongLength);

    InternalUnits width(int direction) const { return direction & 1 ? m_length : m_width; }
    InternalUnits length(int direction) const { return direction & 1 ? m_width : m_length; }

    /// Where the sheet ends in a direction's axes. Raster goes on beyond the logical page, as on printers that print
    /// to the edge; drivers send whole sheets' widths.
    InternalUnits reachRight(int direction) const;
    InternalUnits reachDown(int direction) const;

    /// From a direction's axes to those of direction 0, and back.
    Position toOrientation(Position place, int direction) const;
    Position fromOrientation(Position place, int direction) const;

    SheetRequest sheet() const;
    /// From a direction's axes to page space (decipoints of the sheet in reading order).
    Matrix directionToPage(int direction) const;

private:
    PrinterFamily m_family = PrinterFamily::Laser;
    PageSize m_size { 2, 6120, 7920, 2550, 3300, false };
    int m_orientation = 0;
    InternalUnits m_width = 2400 * kUnitsPerDot;
    InternalUnits m_length = 3300 * kUnitsPerDot;
    InternalUnits m_leftOffset = 75 * kUnitsPerDot;
    InternalUnits m_topOffset = 0;
    bool m_isGuessed = false;
    InternalUnits m_registrationX = 0; ///< in reading order, as the offset below
    InternalUnits m_registrationY = 0;
};

} // namespace quillrip::pcl
