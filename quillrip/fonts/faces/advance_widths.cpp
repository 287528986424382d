#include "quillrip/fonts/faces/advance_widths.h"

#include <algorithm>
#include <cstring>

namespace quillrip {

int advanceColumn(const char* face)
{
    for (std::size_t i = 0; i < kAdvanceFaces.size(); ++i) {
        if (face && std::strcmp(kAdvanceFaces[i], face) == 0)
            return static_cast<int>(i);
    }
    return -1;
}

double tabledAdvance(int column, char32_t unicode)
{
    if (column < 0)
        return 0;
    const AdvanceRow* const end = kAdvanceRows + kAdvanceRowCount;
    const AdvanceRow* const row = std::lower_bound(
        kAdvanceRows, end, unicode, [](const AdvanceRow& r, char32_t wanted) { return r.unicode < wanted; });
    return row != end && row->unicode == unicode ? row->widths[static_cast<std::size_t>(column)] / kAdvanceUnits : 0;
}

double tabledSymbolAdvance(char32_t unicode)
{
    const SymbolAdvance* const end = kSymbolAdvances + kSymbolAdvanceCount;
    const SymbolAdvance* const row = std::lower_bound(
        kSymbolAdvances, end, unicode, [](const SymbolAdvance& r, char32_t wanted) { return r.unicode < wanted; });
    return row != end && row->unicode == unicode ? row->width / kAdvanceUnits : 0;
}

} // namespace quillrip
