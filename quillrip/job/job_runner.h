#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/input_stream.h"
#include "quillrip/base/limits.h"
#include "quillrip/job/conversion_observer.h"
#include "quillrip/job/conversion_status.h"
#include "quillrip/job/document_program.h"
#include "quillrip/job/page_layout.h"
#include "quillrip/job/page_sink.h"

namespace quillrip {

/// Draws everything that an input holds, job after job, in whatever languages. The result names no file. No programs
/// are started but `programs`; documents that none of them draws are refused. `observer` hears of the parts.
ConversionResult runJob(InputStream& input, PageSink& sink, const PageSettings& settings, const Limits& limits,
    DiagnosticSink& diagnostics, const DocumentPrograms& programs, ConversionObserver& observer);

} // namespace quillrip
