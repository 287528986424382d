#pragma once

#include "quillrip/base/page_bitmap.h"

#include <cstdint>

namespace quillrip::emf::plus {

/// What a number of a drawing counts ([MS-EMFPLUS] 2.1.1.33, UnitType).
enum class Unit : std::uint8_t { World, Display, Pixel, Point, Inch, Document, Millimeter };

/// Numbers beyond the list count as pixels.
inline Unit unitOf(std::uint32_t number)
{
    return number <= static_cast<std::uint32_t>(Unit::Millimeter) ? static_cast<Unit>(number) : Unit::Pixel;
}

/// How many units make an inch, where a unit has a length at all; 0 for those counted in pixels.
constexpr double unitsPerInch(Unit unit)
{
    switch (unit) {
    case Unit::Point:
        return 72;
    case Unit::Inch:
        return 1;
    case Unit::Document:
        return 300;
    case Unit::Millimeter:
        return 25.4;
    case Unit::World:
    case Unit::Display:
    case Unit::Pixel:
        break;
    }
    return 0;
}

/// The logical device that a metafile was recorded for, as its EMF+ header tells it.
struct LogicalDevice {
    double dpiX = 96;
    double dpiY = 96;
    bool isVideoDisplay = true;

    /// Pixels that one unit takes across. A display unit is a pixel of a video display and 1/100 inch of a printer.
    double pixelsAcross(Unit unit) const { return pixels(unit, dpiX); }
    double pixelsDown(Unit unit) const { return pixels(unit, dpiY); }

private:
    double pixels(Unit unit, double dpi) const
    {
        if (unit == Unit::Display)
            return isVideoDisplay ? 1 : dpi / 100;
        const double perInch = unitsPerInch(unit);
        return perInch > 0 ? dpi / perInch : 1;
    }
};

} // namespace quillrip::emf::plus
