#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace quillrip {

/// Sorts what is mostly in order already, as edges are from one row to the next: by insertion while that is cheap,
/// else anew. True if it took that.
template <typename Item, typename IsBefore> bool sortNearly(std::vector<Item>& items, IsBefore isBefore)
{
    std::size_t movesLeft = 8 * items.size() + 64;
    for (std::size_t i = 1; i < items.size(); ++i) {
        if (!isBefore(items[i], items[i - 1]))
            continue;
        const Item moving = items[i];
        std::size_t to = i;
        for (; to > 0 && isBefore(moving, items[to - 1]); --to)
            items[to] = items[to - 1];
        items[to] = moving;
        if (i - to > movesLeft) {
            std::sort(items.begin(), items.end(), isBefore);
            return true;
        }
        movesLeft -= i - to;
    }
    return false;
}

} // namespace quillrip
