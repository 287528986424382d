#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/limits.h"
#include "quillrip/image/document_options.h"
#include "quillrip/job/conversion_observer.h"
#include "quillrip/job/conversion_status.h"
#include "quillrip/job/page_layout.h"

#include <string>

namespace quillrip {

struct ConversionOptions {
    std::string inputPath; ///< "-" is standard input
    PageSettings page;
    DocumentOptions document; ///< its path is the output
    Limits limits;
    /// Once the input and the output's folder are open, the process gives up what it does not need any more, for good:
    /// for programs that convert one job.
    bool isConfined = false;
};

/// One conversion from file to file. With BadOptions, BadInput, OutputFailed and LimitExceeded nothing of the output
/// is there, and a former file of its name is as it was.
ConversionResult convert(const ConversionOptions& options, DiagnosticSink& diagnostics, ConversionObserver& observer);

} // namespace quillrip
