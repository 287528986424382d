#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quillrip {

/// Neighbours on the line that are read in one direction.
struct VisualRun {
    std::size_t begin = 0; ///< in the order of reading
    std::size_t end = 0;
    bool isRightToLeft = false;
};

/// The runs of a line from left to right, by the Unicode Bidirectional Algorithm (UAX 9). `isBaseRightToLeft`: the line
/// itself is one of a language that is written from right to left, so that what has no direction goes that way.
std::vector<VisualRun> visualRunsOf(const std::u32string& line, bool isBaseRightToLeft);

} // namespace quillrip
