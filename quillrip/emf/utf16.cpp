#include "quillrip/emf/utf16.h"

namespace quillrip::emf {

std::u32string toCharacters(const std::u16string& text)
{
    constexpr char32_t kReplacement = 0xFFFD;
    std::u32string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char32_t unit = text[i];
        const bool isHigh = unit >= 0xD800 && unit < 0xDC00;
        const bool isLow = unit >= 0xDC00 && unit < 0xE000;
        if (isHigh && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
            result.push_back(0x10000 + ((unit - 0xD800) << 10) + (text[i + 1] - 0xDC00u));
            ++i;
        } else {
            result.push_back(isHigh || isLow ? kReplacement : unit);
        }
    }
    return result;
}

std::string toUtf8(const std::u16string& text)
{
    std::string result;
    for (const char32_t c : toCharacters(text)) {
        const auto tail = [&](int shift) { result.push_back(static_cast<char>(0x80 | (c >> shift & 0x3F))); };
        if (c < 0x80) {
            result.push_back(static_cast<char>(c));
        } else if (c < 0x800) {
            result.push_back(static_cast<char>(0xC0 | c >> 6));
            tail(0);
        } else if (c < 0x10000) {
            result.push_back(static_cast<char>(0xE0 | c >> 12));
            tail(6);
            tail(0);
        } else {
            result.push_back(static_cast<char>(0xF0 | c >> 18));
            tail(12);
            tail(6);
            tail(0);
        }
    }
    return result;
}

} // namespace quillrip::emf
