#include "quillrip/fonts/shaping/visual_runs.h"

#include <numeric>

#include <fribidi.h>

namespace quillrip {

std::vector<VisualRun> visualRunsOf(const std::u32string& line, bool isBaseRightToLeft)
{
    if (line.empty())
        return {};
    const auto length = static_cast<FriBidiStrIndex>(line.size());
    const std::vector<FriBidiChar> characters(line.begin(), line.end());
    std::vector<FriBidiCharType> types(line.size());
    std::vector<FriBidiBracketType> brackets(line.size());
    std::vector<FriBidiLevel> levels(line.size());
    fribidi_get_bidi_types(characters.data(), length, types.data());
    fribidi_get_bracket_types(characters.data(), length, types.data(), brackets.data());
    FriBidiParType base = isBaseRightToLeft ? FRIBIDI_PAR_RTL : FRIBIDI_PAR_LTR;
    std::vector<FriBidiStrIndex> order(line.size());
    std::iota(order.begin(), order.end(), 0);
    // Both give 0 where memory is missing.
    if (fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), length, &base, levels.data()) == 0
        || fribidi_reorder_line(0, types.data(), length, 0, base, levels.data(), nullptr, order.data()) == 0)
        return { { 0, line.size(), false } };

    std::vector<VisualRun> runs;
    FriBidiLevel level = 0;
    for (const FriBidiStrIndex place : order) {
        const auto at = static_cast<std::size_t>(place);
        const bool isRightToLeft = FRIBIDI_LEVEL_IS_RTL(levels[at]);
        if (!runs.empty() && levels[at] == level) {
            VisualRun& last = runs.back();
            if (!isRightToLeft && at == last.end) {
                ++last.end;
                continue;
            }
            if (isRightToLeft && at + 1 == last.begin) {
                --last.begin;
                continue;
            }
        }
        level = levels[at];
        runs.push_back({ at, at + 1, isRightToLeft });
    }
    return runs;
}

} // namespace quillrip
