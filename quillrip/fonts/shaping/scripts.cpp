#include "quillrip/fonts/shaping/scripts.h"

#include <algorithm>
#include <cstdint>

#include <hb.h>

namespace quillrip {

namespace {

/// No character below needs more than its glyph: Latin letters, as nearly all text has them.
constexpr char32_t kFirstMark = 0x300;

hb_script_t scriptOf(char32_t character) { return hb_unicode_script(hb_unicode_funcs_get_default(), character); }

bool isMark(char32_t character)
{
    switch (hb_unicode_general_category(hb_unicode_funcs_get_default(), character)) {
    case HB_UNICODE_GENERAL_CATEGORY_NON_SPACING_MARK:
    case HB_UNICODE_GENERAL_CATEGORY_SPACING_MARK:
    case HB_UNICODE_GENERAL_CATEGORY_ENCLOSING_MARK:
        return true;
    default:
        return false;
    }
}

/// Scripts whose letters stand one behind the other from left to right, whatever their neighbours are.
bool isSimpleScript(hb_script_t script)
{
    switch (script) {
    case HB_SCRIPT_LATIN:
    case HB_SCRIPT_GREEK:
    case HB_SCRIPT_CYRILLIC:
    case HB_SCRIPT_ARMENIAN:
    case HB_SCRIPT_GEORGIAN:
    case HB_SCRIPT_HAN:
    case HB_SCRIPT_HIRAGANA:
    case HB_SCRIPT_KATAKANA:
    case HB_SCRIPT_BOPOMOFO:
    case HB_SCRIPT_HANGUL:
    case HB_SCRIPT_YI:
    case HB_SCRIPT_ETHIOPIC:
    case HB_SCRIPT_CHEROKEE:
    case HB_SCRIPT_CANADIAN_SYLLABICS:
    case HB_SCRIPT_OGHAM:
    case HB_SCRIPT_RUNIC:
    case HB_SCRIPT_GOTHIC:
    case HB_SCRIPT_OLD_ITALIC:
    case HB_SCRIPT_COPTIC:
    case HB_SCRIPT_GLAGOLITIC:
    case HB_SCRIPT_BRAILLE:
    case HB_SCRIPT_COMMON:
    case HB_SCRIPT_UNKNOWN:
        return true;
    default:
        return false;
    }
}

/// Parts of Korean syllables, which fonts put together.
bool isConjoiningJamo(char32_t character)
{
    return (character >= 0x1100 && character <= 0x11FF) || (character >= 0xA960 && character <= 0xA97F)
        || (character >= 0xD7B0 && character <= 0xD7FF);
}

/// Signs that several scripts share (dandas, the Arabic comma, the tatweel) lie in the blocks of these.
bool isSharedSign(char32_t character) { return character >= 0x0590 && character <= 0x1CFF; }

enum class Part : std::uint8_t {
    Alone, ///< its own glyph
    Shaped, ///< by its script
    Shared, ///< by the script of its neighbours
    Attached, ///< goes along with the character before it
};

Part partOf(char32_t character)
{
    if (character < kFirstMark)
        return Part::Alone;
    const hb_script_t script = scriptOf(character);
    if (script == HB_SCRIPT_INHERITED || isMark(character))
        return Part::Attached;
    if (script == HB_SCRIPT_COMMON)
        return isSharedSign(character) ? Part::Shared : Part::Alone;
    return isSimpleScript(script) && !isConjoiningJamo(character) ? Part::Alone : Part::Shaped;
}

} // namespace

bool isInvisible(char32_t character)
{
    return character == 0x034F || character == 0x061C || (character >= 0x180B && character <= 0x180F)
        || (character >= 0x200B && character <= 0x200F) || (character >= 0x202A && character <= 0x202E)
        || (character >= 0x2060 && character <= 0x206F) || (character >= 0xFE00 && character <= 0xFE0F)
        || character == 0xFEFF || (character >= 0xE0000 && character <= 0xE0FFF);
}

bool leavesMark(char32_t character)
{
    if (isInvisible(character))
        return false;
    switch (hb_unicode_general_category(hb_unicode_funcs_get_default(), character)) {
    case HB_UNICODE_GENERAL_CATEGORY_CONTROL:
    case HB_UNICODE_GENERAL_CATEGORY_FORMAT:
    case HB_UNICODE_GENERAL_CATEGORY_UNASSIGNED:
    case HB_UNICODE_GENERAL_CATEGORY_PRIVATE_USE:
    case HB_UNICODE_GENERAL_CATEGORY_SURROGATE:
    case HB_UNICODE_GENERAL_CATEGORY_LINE_SEPARATOR:
    case HB_UNICODE_GENERAL_CATEGORY_PARAGRAPH_SEPARATOR:
    case HB_UNICODE_GENERAL_CATEGORY_SPACE_SEPARATOR:
        return false;
    default:
        return true;
    }
}

bool needsShaping(char32_t character)
{
    return character >= kFirstMark && (partOf(character) != Part::Alone || isInvisible(character));
}

bool needsShaping(const std::u32string& text)
{
    return std::any_of(text.begin(), text.end(), [](char32_t character) { return needsShaping(character); });
}

bool isAttached(char32_t character) { return partOf(character) == Part::Attached; }

char32_t composed(char32_t letter, char32_t mark)
{
    hb_codepoint_t result = 0;
    return hb_unicode_compose(hb_unicode_funcs_get_default(), letter, mark, &result) ? char32_t { result } : 0;
}

char32_t mirrored(char32_t character) { return hb_unicode_mirroring(hb_unicode_funcs_get_default(), character); }

std::vector<ScriptRun> scriptRunsOf(const std::u32string& text, std::size_t begin, std::size_t end)
{
    std::vector<ScriptRun> runs;
    const auto begins = [&](std::size_t at, hb_script_t script) { runs.push_back({ at, at + 1, script }); };
    for (std::size_t i = begin; i < end; ++i) {
        const char32_t character = text[i];
        const hb_script_t script = scriptOf(character);
        ScriptRun* last = runs.empty() ? nullptr : &runs.back();
        const bool isLastShaped = last && last->script != 0;
        switch (partOf(character)) {
        case Part::Alone:
            if (last && !isLastShaped)
                last->end = i + 1;
            else
                begins(i, hb_script_t(0));
            break;
        case Part::Shaped:
            // Signs at the front of a line wait for the first letter's script.
            if (isLastShaped && (last->script == script || last->script == HB_SCRIPT_COMMON)) {
                last->script = script;
                last->end = i + 1;
            } else {
                begins(i, script);
            }
            break;
        case Part::Shared:
            if (isLastShaped)
                last->end = i + 1;
            else
                begins(i, HB_SCRIPT_COMMON);
            break;
        case Part::Attached:
            if (isLastShaped) {
                last->end = i + 1;
            } else if (!last || isInvisible(character)) {
                if (last)
                    last->end = i + 1;
                else if (isInvisible(character))
                    begins(i, hb_script_t(0));
                else
                    begins(i, script == HB_SCRIPT_INHERITED ? HB_SCRIPT_COMMON : script);
            } else {
                // The letter before it is drawn together with it.
                const hb_script_t own = script == HB_SCRIPT_INHERITED ? scriptOf(text[i - 1]) : script;
                last->end = i - 1;
                if (last->begin == last->end)
                    runs.pop_back();
                runs.push_back({ i - 1, i + 1, static_cast<std::uint32_t>(own) });
            }
            break;
        }
    }
    return runs;
}

} // namespace quillrip
