#include "quillrip/emf/plus/utf16.h"

namespace quillrip::emf::plus {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

} // namespace

std::u32string charactersOf(ByteView utf16)
{
    std::u32string characters;
    const std::size_t count = utf16.size / 2;
    const auto unit
        = [&utf16](std::size_t i) { return char32_t { utf16[2 * i] } | char32_t { utf16[2 * i + 1] } << 8; };
    for (std::size_t i = 0; i < count; ++i) {
        char32_t character = unit(i);
        if (isHighSurrogate(character) && i + 1 < count && isLowSurrogate(unit(i + 1)))
            character = 0x10000 + ((character - 0xD800) << 10) + (unit(++i) - 0xDC00);
        else if (isHighSurrogate(character) || isLowSurrogate(character))
            character = kReplacement;
        characters.push_back(character);
    }
    return characters;
}

std::string utf8Of(const std::u32string& characters)
{
    std::string text;
    const auto add = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    for (const char32_t c : characters) {
        if (c < 0x80) {
            add(c);
        } else if (c < 0x800) {
            add(0xC0 | c >> 6);
            add(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            add(0xE0 | c >> 12);
            add(0x80 | (c >> 6 & 0x3F));
            add(0x80 | (c & 0x3F));
        } else {
            add(0xF0 | c >> 18);
            add(0x80 | (c >> 12 & 0x3F));
            add(0x80 | (c >> 6 & 0x3F));
            add(0x80 | (c & 0x3F));
        }
    }
    return text;
}

} // namespace quillrip::emf::plus
