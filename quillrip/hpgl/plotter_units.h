#pragma once

#include "quillrip/base/units.h"

namespace quillrip::hpgl {

/// Plotter units to the inch.
constexpr double kPlotterUnitsPerInch = 1016;
/// Plotter units to the millimetre.
constexpr double kPlotterUnitsPerMillimetre = 40;
constexpr double kDecipointsPerPlotterUnit = kDecipointsPerInch / kPlotterUnitsPerInch;
constexpr double kPlotterUnitsPerDecipoint = kPlotterUnitsPerInch / kDecipointsPerInch;

} // namespace quillrip::hpgl
