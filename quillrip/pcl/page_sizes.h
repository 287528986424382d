#pragma once

#include "quillrip/base/paper.h"
#include "quillrip/pcl/environment.h"

#include <cstdint>
#include <optional>

namespace quillrip::pcl {

/// All places and distances of the interpreter: 1/7200 inch, so that decipoints, dots of 300 to the inch and every unit
/// of measure are whole numbers.
using InternalUnits = std::int64_t;

constexpr InternalUnits kUnitsPerInch = 7200;
constexpr InternalUnits kUnitsPerDot = 24; ///< 1/300 inch
constexpr InternalUnits kUnitsPerDecipoint = 10; ///< 1/720 inch

/// A command's number in `unit` internal units each, rounded once.
InternalUnits inUnits(double number, double unit);

/// A page size that ESC&l#A selects.
struct PageSize {
    int code;
    double width; ///< decipoints, short edge
    double length; ///< decipoints, long edge
    int dotsWide; ///< the sheet as printers count it, at 300 dots to the inch
    int dotsLong;
    bool isMetric; ///< metric sizes have logical pages inset by 6 mm and 5 mm, the others by 1/4 and 1/5 inch
};

/// Nothing for an unknown code. Ink-jets know more sizes than lasers and give some numbers to others.
std::optional<PageSize> findPageSize(int code, PrinterFamily family = PrinterFamily::Laser);
/// The size whose length comes within a sixth of an inch of `length`; nothing when there is none.
std::optional<PageSize> findPageSizeByLength(InternalUnits length);
/// The sheet of a large-format printer that holds so many inches of lines and hardly more; nothing when there is none.
std::optional<PageSize> findLargeSheetByLength(InternalUnits length);
/// The size as wide as this, to a twentieth of an inch, and as long or up to a sixth of an inch longer; nothing where
/// there is none.
std::optional<PageSize> findPageSizeByMeasure(InternalUnits width, InternalUnits length);
/// The size that job control, panel or driver give under kCustomPaperCode; a logical page may be nothing of it.
PageSize customPageSize(double width, double length);
/// Something is left between the margins at its edges.
bool isPossible(const PageSize& size);

} // namespace quillrip::pcl
