#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/diagnostics.h"
#include "quillrip/base/limits.h"
#include "quillrip/raster/page_device.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace quillrip {

class GlyphPainter;
class WindowsFonts;

namespace emf::plus {

/// What a metafile lends to its EMF+ half. All references outlive the interpreter.
struct Host {
    Painter& painter;
    PixelFormat format;
    /// Pixels of the recording device (EMF+'s device space) to pixels of the page.
    Matrix referenceToDevice;
    /// Pixels of the recording device per inch, as the metafile's header tells it.
    Resolution referenceResolution;
    /// What the metafile around it allows to be painted: the sheet, or a picture's frame. Null: the whole page. EMF
    /// clip records of the same metafile do not count for EMF+.
    std::shared_ptr<const ClipRegion> clip;
    WindowsFonts& fonts;
    GlyphPainter& glyphs;
    const Limits& limits;
    DiagnosticSink& diagnostics;
    /// Plays a whole metafile (EMF, with or without EMF+) that an image object holds. The matrix takes the unit square
    /// to pixels of the page: the metafile's frame fills it. Beyond the allowed depth it does nothing but warn.
    std::function<void(ByteView metafile, const Matrix& unitSquareToDevice, std::shared_ptr<const ClipRegion> clip)>
        playMetafile;
};

/// Plays the EMF+ records that stand in comments of a metafile (published as MS-EMFPLUS). It lives as long as the
/// metafile is being played: one page of a spool file, one file, or one picture within another.
class Interpreter {
public:
    /// What the EMF+ header says of the metafile.
    enum class Kind {
        None, ///< no header has come
        Dual, ///< the plain records draw the same picture once more
        Only, ///< there is no other picture than that of EMF+
    };

    explicit Interpreter(const Host& host);
    ~Interpreter();
    Interpreter(const Interpreter&) = delete;
    Interpreter& operator=(const Interpreter&) = delete;

    /// The records of one comment, in order: the bytes behind its "EMF+" identifier. `offset` is their place in the
    /// input, for reports. `mayStart`: nothing but the metafile's header came before, so that an EMF+ header counts;
    /// headers of pictures pasted into the middle of a page do not.
    void comment(ByteView records, std::uint64_t offset, bool mayStart);

    /// From now on plain records draw everything, as in a metafile without EMF+.
    void standBack();

    Kind kind() const;
    /// Whether plain records that draw are to be painted at this point: no EMF+ header has come, or a GetDC record
    /// handed the page to them, or EMF+ turned out damaged before it marked anything and a dual file can do without.
    /// Plain records that change the state are run in any case.
    bool letsRecordsThrough() const;
    /// The EMF+ clip that holds for the plain records behind a GetDC, in page pixels; null: none.
    std::shared_ptr<const ClipRegion> clipForRecords() const;

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace emf::plus
} // namespace quillrip
