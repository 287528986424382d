#pragma once

#include "quillrip/job/conversion.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace quillrip::cli {

/// What the command line asks for.
struct ShowHelp { };
struct ShowVersion { };
struct UsageError {
    std::string message; ///< a sentence without full stop
};
struct Convert {
    ConversionOptions options;
    std::uint32_t seconds = 0; ///< how long it may take in real time
    std::string reportPath; ///< what the line about the conversion is appended to; empty: nothing
    bool isQuiet = false; ///< no warnings, no progress
    bool isTraced = false; ///< every command of the job is named as it is carried out
};
using Request = std::variant<Convert, ShowHelp, ShowVersion, UsageError>;

/// `arguments` without the program's name. Numbers are read completely or refused; the last of several equal options
/// counts; an option that takes a value has it in the next argument.
Request parseCommandLine(const std::vector<std::string>& arguments);

/// The text of --help.
std::string helpText();

/// The option list of the manual page, in troff's man macros: the same table as --help.
std::string manualOptionList();

} // namespace quillrip::cli
