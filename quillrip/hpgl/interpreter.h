#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/geometry.h"
#include "quillrip/base/input_stream.h"
#include "quillrip/base/limits.h"
#include "quillrip/hpgl/end.h"
#include "quillrip/hpgl/host.h"

#include <memory>

namespace quillrip {

class FontLibrary;

namespace hpgl {

/// HP-GL/2 inside PCL 5. One object lives as long as the PCL interpreter: its state survives every switch between
/// the languages, page breaks included, until reset().
///
/// PCL calls run() after ESC%#B; with an odd value it calls setPen() with its cursor before. After EnterPcl with an
/// odd enterPclValue() its cursor becomes pen().
class Interpreter {
public:
    using End = hpgl::End;

    /// All references must outlive the interpreter.
    Interpreter(Host& host, FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits);
    ~Interpreter();
    Interpreter(const Interpreter&) = delete;
    Interpreter& operator=(const Interpreter&) = delete;

    /// Reads HP-GL/2 until the language ends. The input may be a macro: then InputEnded is normal, and another run()
    /// goes on in HP-GL/2.
    [[nodiscard]] End run(InputStream& input);
    /// The # of the ESC%#A that ended the last run; 0 when it had none.
    int enterPclValue() const;
    RunStatus status() const;

    /// The pen's place in page space, decipoints. May lie anywhere.
    Point pen() const;
    /// Moves the pen (up) and the carriage return point to a place in page space.
    void setPen(Point page);

    /// ESC E, UEL: everything as after power on, without touching the host's palette and logical operation.
    void reset();
    /// ESC*c#X, ESC*c#Y, ESC*c0T, page size, page length, orientation: P1 and P2 and the window go to the frame, the
    /// polygon buffer is cleared, the pen goes to P1.
    void frameChanged();
    /// ESC*c#K, ESC*c#L: only the scale changes.
    void plotSizeChanged();

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};

} // namespace hpgl
} // namespace quillrip
