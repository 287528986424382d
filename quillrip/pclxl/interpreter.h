#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/diagnostics.h"
#include "quillrip/base/input_stream.h"
#include "quillrip/base/limits.h"
#include "quillrip/raster/page_device.h"

#include <memory>

namespace quillrip {

class FontLibrary;

namespace pclxl {

/// Runs the PCL 5 data that a PassThrough operator carries. PCL XL knows the page; what PCL 5 means is known elsewhere.
class PassThroughHandler {
public:
    virtual ~PassThroughHandler() = default;
    /// Before the first data of a page: the page's sheet, and the canvas that the page is being drawn on. The handler
    /// starts from PCL 5's default environment and neither begins nor ends a page.
    virtual void beginPage(const SheetRequest& sheet, const PageCanvas& canvas) = 0;
    /// One run of PCL 5 bytes; it continues the run before it on the same page.
    virtual RunStatus data(ByteView bytes) = 0;
    /// The page is about to be delivered, or dropped.
    virtual void endPage() = 0;
};

/// What the job's wrapper or the program sets before the stream speaks for itself.
struct Environment {
    double paperWidth = 6120; ///< decipoints, portrait; for pages whose stream names no medium (Letter)
    double paperHeight = 7920;
    int orientation = 0; ///< as in SheetRequest; for pages without an Orientation
    PassThroughHandler* passThrough = nullptr; ///< not owned; null: PassThrough data is skipped with a warning
};

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
