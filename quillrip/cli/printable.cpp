#include "quillrip/cli/printable.h"

#include <cstddef>
#include <cstdint>

namespace quillrip::cli {

namespace {

std::uint8_t byteAt(const std::string& text, std::size_t at)
{
    return at < text.size() ? static_cast<std::uint8_t>(text[at]) : std::uint8_t { 0 };
}

/// How many bytes the character at `at` has; 0 when it is not to be shown.
std::size_t shownLength(const std::string& text, std::size_t at)
{
    const std::uint8_t first = byteAt(text, at);
    if (first < 0x80)
        return first >= 0x20 && first != 0x7F ? 1 : 0;
    const std::size_t length = first >= 0xF0 && first <= 0xF4 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byteAt(text, at + i) & 0xC0) != 0x80)
            return 0;
    const std::uint8_t second = byteAt(text, at + 1);
    // C1 controls; longer forms than needed; surrogates; beyond Unicode.
    const bool isRefused = (first == 0xC2 && second < 0xA0) || (first == 0xE0 && second < 0xA0)
        || (first == 0xED && second >= 0xA0) || (first == 0xF0 && second < 0x90) || (first == 0xF4 && second >= 0x90);
    // Marks that turn the direction of the text around them: U+200E, U+200F, U+202A to U+202E, U+2066 to U+2069.
    const std::uint8_t third = byteAt(text, at + 2);
    const bool isDirection = first == 0xE2
        && ((second == 0x80 && (third == 0x8E || third == 0x8F || (third >= 0xAA && third <= 0xAE)))
            || (second == 0x81 && third >= 0xA6 && third <= 0xA9));
    return isRefused || isDirection ? 0 : length;
}

} // namespace

std::string printable(const std::string& text)
{
    std::string shown;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = shownLength(text, at);
        if (length == 0)
            shown += '?';
        else
            shown.append(text, at, length);
        at += length == 0 ? 1 : length;
    }
    return shown;
}

} // namespace quillrip::cli
