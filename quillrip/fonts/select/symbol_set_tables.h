#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace quillrip {

/// A built-in symbol set as the build makes it from symbol_sets.txt; sorted by number.
struct SymbolSetTable {
    std::uint16_t number;
    const char* name;
    int range; ///< CodeRange
    std::array<char32_t, 256> unicode;
};

extern const SymbolSetTable kSymbolSetTables[];
extern const std::size_t kSymbolSetTableCount;

/// Unicode of each number of the master symbol list, 0 where unknown.
extern const std::array<char16_t, 2048> kMasterSymbolList;

} // namespace quillrip
