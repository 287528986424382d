#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace quillrip {

/// The widths of the printer's own faces, as the build makes them from advance_widths.txt. The unit is such that
/// kAdvanceUnits of them are the requested height.
constexpr double kAdvanceUnits = 79375.0 / 3;

/// Design em of the faces whose point is 1/72.307 inch, as a fraction of the requested height.
constexpr double kOlderPoint = 26346 / kAdvanceUnits;

constexpr std::size_t kAdvanceFaceCount = 36;

struct AdvanceRow {
    char32_t unicode;
    std::array<std::uint16_t, kAdvanceFaceCount> widths; ///< 0 = unknown
};

struct SymbolAdvance {
    char32_t unicode;
    std::uint16_t width;
};

extern const std::array<const char*, kAdvanceFaceCount> kAdvanceFaces;
extern const AdvanceRow kAdvanceRows[]; ///< sorted
extern const std::size_t kAdvanceRowCount;
extern const SymbolAdvance kSymbolAdvances[]; ///< sorted
extern const std::size_t kSymbolAdvanceCount;
extern const std::array<std::uint16_t, 256> kWingdingsAdvances; ///< by code in set 579L

/// Column of a face, or -1.
int advanceColumn(const char* face);
/// The width in the requested height of a character in a column; 0 when unknown.
double tabledAdvance(int column, char32_t unicode);
/// The width that symbols share in all faces of the older kind; 0 when unknown.
double tabledSymbolAdvance(char32_t unicode);

} // namespace quillrip
