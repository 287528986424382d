#include "quillrip/image/prefix_code.h"

#include <algorithm>
#include <array>

namespace quillrip {

namespace {

constexpr std::size_t kMostSymbols = 288;

struct Leaf {
    std::uint32_t frequency;
    std::uint16_t symbol;
};

/// Depths of the leaves in Huffman's tree, rarest leaf first. The two smallest weights are always at the front of one
/// of two queues: leaves, and nodes in the order they were made.
void findDepths(const Leaf* leaves, std::size_t count, int* depths)
{
    std::array<std::uint64_t, 2 * kMostSymbols> weights;
    std::array<std::uint16_t, 2 * kMostSymbols> parents;
    const std::size_t nodes = 2 * count - 1;
    for (std::size_t i = 0; i < count; ++i)
        weights[i] = leaves[i].frequency;
    std::size_t nextLeaf = 0;
    std::size_t nextNode = count;
    for (std::size_t made = count; made < nodes; ++made) {
        weights[made] = 0;
        for (int child = 0; child < 2; ++child) {
            const bool takesLeaf = nextNode >= made || (nextLeaf < count && weights[nextLeaf] <= weights[nextNode]);
            const std::size_t taken = takesLeaf ? nextLeaf++ : nextNode++;
            weights[made] += weights[taken];
            parents[taken] = static_cast<std::uint16_t>(made);
        }
    }
    std::array<int, 2 * kMostSymbols> all;
    all[nodes - 1] = 0;
    for (std::size_t i = nodes - 1; i-- > 0;)
        all[i] = all[parents[i]] + 1;
    std::copy_n(all.begin(), count, depths);
}

unsigned reversed(unsigned bits, int length)
{
    unsigned result = 0;
    for (int i = 0; i < length; ++i)
        result |= (bits >> i & 1) << (length - 1 - i);
    return result;
}

} // namespace

void findCodeLengths(const std::uint32_t* frequencies, std::size_t count, int longest, std::uint8_t* lengths)
{
    std::array<Leaf, kMostSymbols> leaves;
    std::size_t used = 0;
    for (std::size_t i = 0; i < count; ++i) {
        lengths[i] = 0;
        if (frequencies[i] > 0)
            leaves[used++] = { frequencies[i], static_cast<std::uint16_t>(i) };
    }
    if (used == 0)
        return;
    if (used == 1) {
        lengths[leaves[0].symbol] = 1;
        return;
    }
    std::sort(leaves.begin(), leaves.begin() + static_cast<std::ptrdiff_t>(used), [](const Leaf& a, const Leaf& b) {
        return a.frequency != b.frequency ? a.frequency < b.frequency : a.symbol < b.symbol;
    });
    std::array<int, kMostSymbols> depths;
    findDepths(leaves.data(), used, depths.data());

    // Leaves that lie too deep come up to `longest`; for each bit pattern that is then missing, a leaf from higher up
    // goes down a level, which makes room for one beside it.
    std::array<unsigned, kLongestPrefixCode + 1> ofLength {};
    for (std::size_t i = 0; i < used; ++i)
        ++ofLength[static_cast<std::size_t>(std::min(depths[i], longest))];
    std::uint32_t patterns = 0;
    for (int length = 1; length <= longest; ++length)
        patterns += ofLength[static_cast<std::size_t>(length)] << (longest - length);
    for (; patterns > std::uint32_t { 1 } << longest; --patterns) {
        --ofLength[static_cast<std::size_t>(longest)];
        auto length = static_cast<std::size_t>(longest) - 1;
        while (ofLength[length] == 0)
            --length;
        --ofLength[length];
        ofLength[length + 1] += 2;
    }
    std::size_t leaf = 0;
    for (int length = longest; length > 0; --length) {
        for (unsigned i = 0; i < ofLength[static_cast<std::size_t>(length)]; ++i)
            lengths[leaves[leaf++].symbol] = static_cast<std::uint8_t>(length);
    }
}

void assignCodes(const std::uint8_t* lengths, std::size_t count, PrefixCode* codes)
{
    std::array<unsigned, kLongestPrefixCode + 1> ofLength {};
    for (std::size_t i = 0; i < count; ++i)
        ++ofLength[lengths[i]];
    ofLength[0] = 0;
    std::array<unsigned, kLongestPrefixCode + 1> next {};
    for (std::size_t length = 1; length <= kLongestPrefixCode; ++length)
        next[length] = (next[length - 1] + ofLength[length - 1]) << 1;
    for (std::size_t i = 0; i < count; ++i) {
        const int length = lengths[i];
        const unsigned code = length == 0 ? 0 : reversed(next[static_cast<std::size_t>(length)]++, length);
        codes[i] = { static_cast<std::uint16_t>(code), static_cast<std::uint8_t>(length) };
    }
}

} // namespace quillrip
