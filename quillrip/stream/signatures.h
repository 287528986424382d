#pragma once

#include "quillrip/base/bytes.h"

#include <optional>
#include <string>

namespace quillrip::stream {

/// Whether `bytes` has the characters of `text` at `at`.
bool hasAt(ByteView bytes, std::size_t at, const char* text, std::size_t length);
template <std::size_t N> bool hasAt(ByteView bytes, std::size_t at, const char (&text)[N])
{
    return hasAt(bytes, at, text, N - 1);
}

/// The name, with its article, of a file format or printer language that quillrip does not read and whose files begin
/// with a fixed mark. `isStartOfInput`: marks that could also be padding count only at the first byte of an input.
std::optional<std::string> foreignFormatByMark(ByteView bytes, bool isStartOfInput);

/// The same for languages of escape sequences, whose data begins with <ESC>.
std::optional<std::string> foreignEscapeLanguage(ByteView bytes);

} // namespace quillrip::stream
