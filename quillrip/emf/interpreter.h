#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/input_stream.h"
#include "quillrip/base/limits.h"
#include "quillrip/raster/page_device.h"

#include <memory>

namespace quillrip::emf {

/// Plays EMF spool files of Windows (published as MS-EMFSPOOL; data types NT EMF 1.003 to 1.008) and single metafiles
/// (MS-EMF). One interpreter serves one job.
class Interpreter {
public:
    /// How a job ended.
    enum class End {
        InputEnded, ///< behind the last record of the job
        Failed, ///< a limit was met or a page could not be delivered: status() says which
    };

    /// The references must outlive the interpreter.
    Interpreter(PageDevice& device, DiagnosticSink& diagnostics, const Limits& limits);
    ~Interpreter();
    Interpreter(const Interpreter&) = delete;
    Interpreter& operator=(const Interpreter&) = delete;

    /// Reads one job. The input stands on the header of a spool file or on a metafile. Damage is reported; pages before
    /// it are whole, and of the page in which it lies everything up to there is drawn.
    End run(InputStream& input);

    RunStatus status() const;

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace quillrip::emf
