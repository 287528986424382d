#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/raster/page_device.h"

#include <cstdint>

namespace quillrip::pcl {

/// All places and distances of the interpreter: 1/7200 inch, so that decipoints, dots of 300 to the inch and every unit
/// of measure are whole numbers.
using InternalUnits = std::int64_t;

constexpr InternalUnits kUnitsPerInch = 7200;
constexpr InternalUnits kUnitsPerDot = 24; ///< 1/300 inch
constexpr InternalUnits kUnitsPerDecipoint = 10; ///< 1/720 inch

/// A command's number in `unit` internal units each, rounded once.
InternalUnits inUnits(double number, double unit);

struct Position {
    InternalUnits x = 0;
    InternalUnits y = 0;
};
inline bool operator==(Position a, Position b) { return a.x == b.x && a.y == b.y; }
inline bool operator!=(Position a, Position b) { return !(a == b); }

/// A page size that ESC&l#A selects.
struct PageSize {
    int code;
    double width; ///< decipoints, short edge
    double length; ///< decipoints, long edge
    int dotsWide; ///< the sheet as printers count it, at 300 dots to the inch
    int dotsLong;
    bool isMetric; ///< metric sizes have logical pages inset by 6 mm and 5 mm, the others by 1/4 and 1/5 inch
};

/// Null for an unknown code.
const PageSize* findPageSize(int code);
/// The size whose length comes within a sixth of an inch of `length`; null when there is none.
const PageSize* findPageSizeByLength(InternalUnits length);
/// The sheet of a large-format printer that holds so many inches of lines and hardly more; null when there is none.
const PageSize* findLargeSheetByLength(InternalUnits length);
/// Page size 101, as job control, panel or driver gave it.
PageSize customPageSize(double width, double length);

/// Where the logical page lies. Directions are quarter turns counter-clockwise: 0 the orientation's own axes, 1 to 3
/// those of the print directions 90, 180 and 270.
class LogicalPage {
public:
    LogicalPage() = default;
    LogicalPage(const PageSize& size, int orientation);

    /// A plotter's page: nothing is kept free at its edges. Decipoints.
    static LogicalPage ofPlot(double width, double length);

    const PageSize& size() const { return m_size; }
    int orientation() const { return m_orientation; }
    /// The logical page in the orientation's own axes.
    InternalUnits width() const { return m_width; }
    InternalUnits length() const { return m_length; }
    InternalUnits leftOffset() const { return m_leftOffset; }

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
    PageSize m_size { 2, 6120, 7920, 2550, 3300, false };
    int m_orientation = 0;
    InternalUnits m_width = 2400 * kUnitsPerDot;
    InternalUnits m_length = 3300 * kUnitsPerDot;
    InternalUnits m_leftOffset = 75 * kUnitsPerDot;
    bool m_isGuessed = false;
    InternalUnits m_registrationX = 0; ///< in reading order, as the offset below
    InternalUnits m_registrationY = 0;
};

} // namespace quillrip::pcl
