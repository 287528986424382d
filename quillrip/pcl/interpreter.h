#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/input_stream.h"
#include "quillrip/base/limits.h"
#include "quillrip/pcl/environment.h"
#include "quillrip/raster/page_device.h"

#include <memory>

namespace quillrip {
class FontLibrary;
}

namespace quillrip::pcl {

class Machine;

/// PCL 5e and 5c. One object lives as long as the job: permanent fonts, macros and patterns survive a universal exit,
/// everything else is reset there.
class Interpreter {
public:
    enum class End {
        InputEnded, ///< nothing more to read
        UniversalExit, ///< the input stands on the ESC of ESC%-12345X
        Failed, ///< status() says why
    };

    /// All references must outlive the interpreter.
    Interpreter(PageDevice& device, DiagnosticSink& sink, const Limits& limits, FontLibrary& fonts,
        const Environment& environment);
    ~Interpreter();

    /// New user defaults, to be called between two runs.
    void setEnvironment(const Environment& environment);

    /// Prints what comes until the input or this stretch of PCL ends. May be called again for the next stretch.
    /// A page is delivered when it is ejected; a page that is still open at the end stays open until finish().
    [[nodiscard]] End run(InputStream& input);

    /// Done, or why the last run failed. Damaged: the input ended inside a command's data.
    RunStatus status() const;

    /// The end of the job: delivers a page that has marks. After damage the open page is cut off and is not delivered.
    [[nodiscard]] RunStatus finish();

private:
    std::unique_ptr<Machine> m_machine;
};

} // namespace quillrip::pcl
