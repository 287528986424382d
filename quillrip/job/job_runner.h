#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/input_stream.h"
#include "quillrip/base/limits.h"
#include "quillrip/job/page_layout.h"
#include "quillrip/job/page_sink.h"

#include <string>

namespace quillrip {

enum class JobOutcome {
    Done,
    NothingToPrint, ///< no print job that quillrip knows, or one without a page; `reason` says what it is
    Damaged, ///< `pages` whole pages were delivered all the same
    LimitExceeded,
    OutputFailed,
};

struct JobResult {
    JobOutcome outcome = JobOutcome::Done;
    std::string reason; ///< a sentence without full stop; empty when Done
    int pages = 0; ///< delivered to the sink
};

/// Draws everything that an input holds, job after job, in whatever languages. Starts no program but the one that
/// `ghostscriptPath` names, which draws PostScript and PDF; empty: those are refused.
JobResult runJob(InputStream& input, PageSink& sink, const PageSettings& settings, const Limits& limits,
    DiagnosticSink& diagnostics, const std::string& ghostscriptPath);

} // namespace quillrip
