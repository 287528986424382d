#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/input_stream.h"
#include "quillrip/base/limits.h"
#include "quillrip/pclxl/environment.h"
#include "quillrip/raster/page_device.h"

#include <memory>

namespace quillrip {

class FontLibrary;

namespace pclxl {

/// Interprets PCL XL streams, protocol classes 1.1 to 3.0, in both byte orders. One interpreter serves one job: user
/// streams live as long as it does, everything else ends with its session.
class Interpreter {
public:
    /// How a stream ended.
    enum class End {
        InputEnded,
        UniversalExit, ///< at a Universal Exit Language; the input stands on its <ESC>
        Failed, ///< a limit was met or a page could not be delivered: status() says which. Nothing more may be run
    };

    /// The references must outlive the interpreter.
    Interpreter(PageDevice& device, DiagnosticSink& diagnostics, const Limits& limits, FontLibrary& fonts,
        const Environment& environment);
    ~Interpreter();
    Interpreter(const Interpreter&) = delete;
    Interpreter& operator=(const Interpreter&) = delete;

    /// Reads one stream with all its sessions. The input stands on the stream header (`) HP-PCL XL;...`; white space
    /// before it is skipped), or right behind it: then the byte order is taken from the first operands.
    /// After an error the rest of the stream is passed over up to the Universal Exit or the end of the input; the
    /// pages before the error are delivered, the page in progress is not.
    End run(InputStream& input);

    /// The worst that happened in all runs so far: Done, or Damaged after an error in any session.
    RunStatus status() const;

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace pclxl
} // namespace quillrip
