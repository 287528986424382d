// From the order in which text is read to the one in which it stands on the line, and from Arabic letters to the shapes
// that they take beside their neighbours.

#include "quillrip/emf/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillrip::emf {

namespace {

using Units = std::vector<TextRun::Unit>;

/// How a letter meets its neighbours (Unicode, ArabicShaping): with both, with the one before it, or with none.
enum class Joining : std::uint8_t { None, Before, Both };

struct ArabicLetter {
    char32_t letter;
    char32_t isolated; ///< presentation form; final, initial and medial follow it as far as the letter has them
    Joining joining;
};

constexpr char32_t kLam = 0x0644;
constexpr char32_t kTatweel = 0x0640;

constexpr std::array<ArabicLetter, 42> kArabicLetters { {
    { 0x0621, 0xFE80, Joining::None },
    { 0x0622, 0xFE81, Joining::Before },
    { 0x0623, 0xFE83, Joining::Before },
    { 0x0624, 0xFE85, Joining::Before },
    { 0x0625, 0xFE87, Joining::Before },
    { 0x0626, 0xFE89, Joining::Both },
    { 0x0627, 0xFE8D, Joining::Before },
    { 0x0628, 0xFE8F, Joining::Both },
    { 0x0629, 0xFE93, Joining::Before },
    { 0x062A, 0xFE95, Joining::Both },
    { 0x062B, 0xFE99, Joining::Both },
    { 0x062C, 0xFE9D, Joining::Both },
    { 0x062D, 0xFEA1, Joining::Both },
    { 0x062E, 0xFEA5, Joining::Both },
    { 0x062F, 0xFEA9, Joining::Before },
    { 0x0630, 0xFEAB, Joining::Before },
    { 0x0631, 0xFEAD, Joining::Before },
    { 0x0632, 0xFEAF, Joining::Before },
    { 0x0633, 0xFEB1, Joining::Both },
    { 0x0634, 0xFEB5, Joining::Both },
    { 0x0635, 0xFEB9, Joining::Both },
    { 0x0636, 0xFEBD, Joining::Both },
    { 0x0637, 0xFEC1, Joining::Both },
    { 0x0638, 0xFEC5, Joining::Both },
    { 0x0639, 0xFEC9, Joining::Both },
    { 0x063A, 0xFECD, Joining::Both },
    { 0x0641, 0xFED1, Joining::Both },
    { 0x0642, 0xFED5, Joining::Both },
    { 0x0643, 0xFED9, Joining::Both },
    { kLam, 0xFEDD, Joining::Both },
    { 0x0645, 0xFEE1, Joining::Both },
    { 0x0646, 0xFEE5, Joining::Both },
    { 0x0647, 0xFEE9, Joining::Both },
    { 0x0648, 0xFEED, Joining::Before },
    { 0x0649, 0xFEEF, Joining::Before },
    { 0x064A, 0xFEF1, Joining::Both },
    // Of Persian.
    { 0x067E, 0xFB56, Joining::Both },
    { 0x0686, 0xFB7A, Joining::Both },
    { 0x0698, 0xFB8A, Joining::Before },
    { 0x06A9, 0xFB8E, Joining::Both },
    { 0x06AF, 0xFB92, Joining::Both },
    { 0x06CC, 0xFBFC, Joining::Both },
} };

/// The one shape of lam and an alef behind it, isolated; the final one follows. 0 for other letters.
char32_t lamAlef(char32_t alef)
{
    switch (alef) {
    case 0x0622:
        return 0xFEF5;
    case 0x0623:
        return 0xFEF7;
    case 0x0625:
        return 0xFEF9;
    case 0x0627:
        return 0xFEFB;
    default:
        return 0;
    }
}

const ArabicLetter* findLetter(char32_t code)
{
    const auto found = std::lower_bound(kArabicLetters.begin(), kArabicLetters.end(), code,
        [](const ArabicLetter& entry, char32_t wanted) { return entry.letter < wanted; });
    return found != kArabicLetters.end() && found->letter == code ? &*found : nullptr;
}

/// Stands over or under a letter, which joins its neighbours all the same.
bool isMark(char32_t c) { return (c >= 0x064B && c <= 0x065F) || c == 0x0670 || (c >= 0x06D6 && c <= 0x06ED); }

bool isDigit(char32_t c)
{
    return (c >= '0' && c <= '9') || (c >= 0x0660 && c <= 0x0669) || (c >= 0x06F0 && c <= 0x06F9);
}

bool isRightToLeft(char32_t c)
{
    return !isDigit(c)
        && ((c >= 0x0590 && c <= 0x08FF) || (c >= 0xFB1D && c <= 0xFDFF) || (c >= 0xFE70 && c <= 0xFEFF));
}

/// Blanks and punctuation, which go along with the letters on both sides.
bool isNeutral(char32_t c) { return c <= 0x40 || c == 0xA0 || (c >= 0x2000 && c <= 0x206F); }

/// Letters that would have to be joined and that the table does not have.
bool isUnknown(char32_t c)
{
    constexpr char32_t kFirstLetter = 0x0620;
    return c >= kFirstLetter && c <= 0x08FF && c != kTatweel && !isDigit(c) && !isMark(c) && !findLetter(c)
        && !(c >= 0x066A && c <= 0x066D) && c != 0x06D4;
}

/// The letters of a run, still in the order of reading, take their shapes.
void join(Units& units, std::size_t begin, std::size_t end)
{
    bool joinsBefore = false; // the letter before reaches out to this one
    for (std::size_t i = begin; i < end; ++i) {
        const char32_t code = units[i].code;
        if (isMark(code) || code == 0)
            continue;
        const ArabicLetter* letter = findLetter(code);
        if (!letter || letter->joining == Joining::None) {
            joinsBefore = code == kTatweel;
            if (letter)
                units[i].code = letter->isolated;
            continue;
        }
        const char32_t ligature = code == kLam && i + 1 < end ? lamAlef(units[i + 1].code) : 0;
        if (ligature != 0) {
            // Drawn from where the alef begins, which stands left of the lam.
            units[i].code = 0;
            units[i + 1].code = ligature + (joinsBefore ? 1 : 0);
            joinsBefore = false;
            ++i;
            continue;
        }
        bool joinsNext = false;
        if (letter->joining == Joining::Both) {
            std::size_t next = i + 1;
            while (next < end && isMark(units[next].code))
                ++next;
            const ArabicLetter* neighbour = next < end ? findLetter(units[next].code) : nullptr;
            joinsNext
                = (neighbour && neighbour->joining != Joining::None) || (next < end && units[next].code == kTatweel);
        }
        constexpr char32_t kFinal = 1;
        constexpr char32_t kInitial = 2;
        constexpr char32_t kMedial = 3;
        units[i].code = letter->isolated + (joinsBefore ? (joinsNext ? kMedial : kFinal) : (joinsNext ? kInitial : 0));
        joinsBefore = joinsNext;
    }
}

/// Numbers are read from left to right within a run, too.
void turnNumbers(Units& units, std::size_t begin, std::size_t end)
{
    for (std::size_t i = begin; i < end; ++i) {
        if (!isDigit(units[i].code))
            continue;
        std::size_t last = i;
        for (std::size_t next = i + 1; next < end; ++next) {
            if (isDigit(units[next].code))
                last = next;
            else if (units[next].code != '.' && units[next].code != ',' && units[next].code != ':')
                break;
        }
        std::reverse(
            units.begin() + static_cast<std::ptrdiff_t>(i), units.begin() + static_cast<std::ptrdiff_t>(last + 1));
        i = last;
    }
}

} // namespace

bool putInVisualOrder(Units& units)
{
    bool isIncomplete = false;
    for (std::size_t i = 0; i < units.size();) {
        if (!isRightToLeft(units[i].code)) {
            ++i;
            continue;
        }
        // A run goes on over blanks, punctuation and numbers, as long as more of its letters follow.
        std::size_t end = i + 1;
        for (std::size_t next = end; next < units.size(); ++next) {
            if (isRightToLeft(units[next].code))
                end = next + 1;
            else if (!isDigit(units[next].code) && !isNeutral(units[next].code))
                break;
        }
        isIncomplete = isIncomplete
            || std::any_of(units.begin() + static_cast<std::ptrdiff_t>(i),
                units.begin() + static_cast<std::ptrdiff_t>(end),
                [](const TextRun::Unit& unit) { return isUnknown(unit.code); });
        join(units, i, end);
        // The last character of a string needs no step, and writers do not give a true one. Here it comes first.
        if (end == units.size())
            units[end - 1].hasOwnStep = true;
        std::reverse(units.begin() + static_cast<std::ptrdiff_t>(i), units.begin() + static_cast<std::ptrdiff_t>(end));
        turnNumbers(units, i, end);
        i = end;
    }
    return isIncomplete;
}

} // namespace quillrip::emf
