#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillrip::stream {

/// One line of the Printer Job Language, taken apart. Words are in upper case; values keep their case and have lost
/// their quotes.
struct PjlLine {
    struct Option {
        std::string name;
        std::string value; ///< empty when the option has none
    };

    std::string command; ///< empty: the line is `@PJL` alone
    std::vector<Option> modifiers; ///< name:value, such as LPARM:PCL or FORMAT:BINARY
    std::vector<Option> options; ///< name or name=value

    /// The value of the first option of that name.
    std::optional<std::string> option(const char* name) const;
    std::optional<std::string> modifier(const char* name) const;
};

/// `text` is the line behind its @PJL, without the line end. Nothing is an error: what makes no sense is left out, as
/// printers do. COMMENT and ECHO keep no options.
PjlLine parsePjlLine(const std::string& text);

/// A whole non-negative number in decimal digits; nothing when there is anything else or it does not fit.
std::optional<std::uint64_t> parseWholeNumber(const std::string& text);

/// A decimal number with optional sign and fraction.
std::optional<double> parseDecimal(const std::string& text);

} // namespace quillrip::stream
