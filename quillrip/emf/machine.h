#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/limits.h"
#include "quillrip/base/reporter.h"
#include "quillrip/emf/canvas.h"
#include "quillrip/emf/plus/interpreter.h"
#include "quillrip/emf/state.h"
#include "quillrip/fonts/select/windows_fonts.h"

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace quillrip::emf {

class Record;
struct Command;

/// What every metafile of a job is played with.
struct Job {
    WindowsFonts& fonts;
    GlyphPainter& glyphs;
    const Limits& limits;
    DiagnosticSink& diagnostics;
};

/// Where one metafile is drawn.
struct Place {
    Painter& painter;
    PixelFormat format;
    Matrix referenceToDevice;
    Region limit; ///< null: the whole page
    int depth = 0; ///< metafiles around this one
};

/// Plays one metafile. The command table says which handler runs a record; handlers work with the rooms below.
class Machine {
public:
    enum class End {
        Done,
        Damaged, ///< reported; what came before is drawn
        LimitExceeded, ///< reported
    };

    Machine(const Job& job, const Place& place, const MetafileHeader& header);
    ~Machine();

    /// `metafile` may be cut off anywhere; `offset` is its place in the input, for reports.
    End play(ByteView metafile, std::uint64_t offset);

    DeviceContext& dc() { return m_dc; }
    ObjectTable& objects() { return m_objects; }
    Canvas& canvas() { return m_canvas; }
    const Job& job() const { return m_job; }
    plus::Interpreter& plus() { return m_plus; }
    /// Whether anything has been drawn yet, by plain records or EMF+.
    bool hasDrawn() const { return m_hasDrawn; }

    void save();
    /// Below 0: counted from the last saved one.
    void restore(std::int32_t level);

    /// A figure in logical units: becomes part of the path that is being recorded, or is drawn.
    enum class Draw { Stroke, FillAndStroke };
    void figure(const Path& logical, Draw draw);
    /// The same where fill and stroke are of different sizes (boxes): reference pixels.
    void figure(const Path& fill, const Path& stroke);
    /// Figures of its own, reference pixels, for the path that is being recorded.
    void addToPath(const Path& path);
    /// A segment from the current position on, logical units: the path starts there. Moves the position.
    void segments(const Path& logical, Point end);
    /// Ends the path that stands ready; empty, with a warning, when there is none.
    PathState takePath();

    /// The face for the selected font; it stays until the next call. `usesIndices`: the text is glyph numbers.
    const WindowsFont& font(bool usesIndices);

    /// Pixels that a record has been through besides those it paints.
    void spend(std::uint64_t pixels) { m_job.limits.work->charge(Work::Images, pixels); }

    /// Shown once for each kind.
    void warn(const char* kind, const std::string& message);
    const Reporter& reporter() const { return m_reporter; }
    /// How many times narrower than high a reference pixel is.
    double pixelAspect() const;
    /// The metafile's own drawing resolution: reference pixels per inch.
    double dotsPerInch() const { return m_dc.coordinates.dotsPerInch(); }

private:
    void runRecord(const Record& record);
    void trace(const Record& record, const Command* command) const;
    plus::Host plusHost();

    const Job& m_job;
    Reporter m_reporter; ///< stands on the record that runs
    Place m_place;
    MetafileHeader m_header;
    DeviceContext m_dc;
    std::vector<DeviceContext> m_saved;
    std::uint64_t m_unsaved = 0; ///< levels beyond the limit: counted, not kept
    std::size_t m_savedPoints = 0; ///< of the paths in m_saved
    ObjectTable m_objects;
    Canvas m_canvas;
    plus::Interpreter m_plus;
    WindowsFont m_font; ///< for the three below
    std::shared_ptr<const Object> m_fontObject;
    std::uint32_t m_fontChecksum = 0;
    bool m_fontUsesIndices = false;
    bool m_hasDrawn = false;
    std::set<std::string> m_warned;
};

/// Plays a metafile that lies within another: its frame fills the unit square of `unitSquareToDevice`.
void playWithin(const Job& job, Painter& painter, PixelFormat format, ByteView metafile, std::uint64_t offset,
    const Matrix& unitSquareToDevice, Region clip, int depth);

/// The page space of a metafile's frame: from reference pixels to the unit square that its frame fills.
Matrix referenceToFrame(const MetafileHeader& header);

} // namespace quillrip::emf
