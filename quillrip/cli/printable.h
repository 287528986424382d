#pragma once

#include <string>

namespace quillrip::cli {

/// The text as a terminal may get it: with '?' for control characters, which could move the cursor, change colours or
/// answer as if they were typed, and for bytes that are no UTF-8. Names of files and fonts come from anywhere.
std::string printable(const std::string& text);

} // namespace quillrip::cli
