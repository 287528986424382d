#pragma once

#include <optional>
#include <string>

namespace quillrip::pclxl {

/// A sheet in decipoints, as the medium lies in portrait.
struct Medium {
    double width = 0;
    double height = 0;
};

/// The sheet of a MediaSize number; nothing for unknown numbers and for the device's default (96).
std::optional<Medium> mediumOfNumber(int number);

/// The sheet of a media name, as protocol class 2.1 has them ("A4", "JIS B5"); capitals and blanks do not matter.
std::optional<Medium> mediumOfName(const std::string& name);

constexpr int kDefaultMediaSize = 96;
/// The Orientation that leaves the page to the device.
constexpr int kDefaultOrientation = 4;

/// Inches of one Measure: inch, millimetre, tenth of a millimetre.
double inchesOfMeasure(int measure);

} // namespace quillrip::pclxl
