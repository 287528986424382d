#pragma once

#include <string>

namespace quillrip::emf {

/// Surrogates without their partner become U+FFFD.
std::u32string toCharacters(const std::u16string& text);
std::string toUtf8(const std::u16string& text);

} // namespace quillrip::emf
