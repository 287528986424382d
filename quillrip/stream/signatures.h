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

/// Whether `bytes` begins with a ZIP archive whose first parts are those of an XPS or OpenXPS document.
bool startsWithXpsPackage(ByteView bytes);

/// The name of the language of receipt printers (ESC/POS), when a job in it begins here.
std::optional<std::string> receiptLanguage(ByteView bytes);

/// The name of a host-based raster whose rows are wrapped in sequences that look like PCL's, when one begins here.
std::optional<std::string> pclLookAlike(ByteView bytes);

/// The same for languages of escape sequences, whose data begins with <ESC>.
std::optional<std::string> foreignEscapeLanguage(ByteView bytes);

} // namespace quillrip::stream
