#pragma once

#include <string>

namespace quillrip {

/// How a conversion ended, or the drawing of a job, its part before the output is published.
enum class ConversionStatus {
    Done,
    BadOptions, ///< they contradict each other, or name the same file twice
    BadInput, ///< cannot be read, is no print job that quillrip knows, or one without a page
    OutputFailed,
    Damaged, ///< the whole pages before the damage are in the output
    LimitExceeded,
};

struct ConversionResult {
    ConversionStatus status = ConversionStatus::Done;
    std::string reason; ///< a sentence without full stop; empty when Done
    std::string file; ///< which of the two files the reason is about, where both are known
    int pages = 0; ///< in the output
};

} // namespace quillrip
