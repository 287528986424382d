#pragma once

#include "quillrip/base/replay_meter.h"
#include "quillrip/fonts/font_library.h"
#include "quillrip/fonts/pixels/glyph_cache.h"
#include "quillrip/pclxl/graphics_state.h"
#include "quillrip/pclxl/image_decoders.h"
#include "quillrip/pclxl/interpreter.h"
#include "quillrip/pclxl/media.h"
#include "quillrip/pclxl/operator_table.h"
#include "quillrip/pclxl/pixel_converter.h"
#include "quillrip/pclxl/tag_reader.h"
#include "quillrip/pclxl/vendor_raster.h"

#include <functional>
#include <map>
#include <set>
#include <string>

namespace quillrip::pclxl {

/// What BeginSession sets, and what ends with it.
struct Session {
    bool isOpen = false;
    double unitsPerInchX = 300;
    double unitsPerInchY = 300;
    // A page that leaves its medium out is printed on that of the page before it.
    Medium medium;
    int orientation = 0;
};

/// The page between BeginPage and EndPage.
struct PageInProgress {
    bool isOpen = false;
    SheetRequest sheet;
    PageCanvas canvas;
    PixelRect bounds;
    Matrix initialMatrix;
    bool hasPassedThrough = false;
};

/// An image between BeginImage and EndImage, or a pattern between BeginRastPattern and EndRastPattern.
struct ImageInProgress {
    BlockLayout layout;
    SeedRow seed;
    PixelConverter converter;
    Matrix imageToDevice; ///< images: source pixels to device pixels
    PaintState paint; ///< images
    std::unique_ptr<ImagePainter> painter; ///< images; null while no row has come, or when nothing can be seen
    bool isVisible = false; ///< images: the destination is no point or line
    std::int64_t nextRow = -1; ///< the row that the painter expects; -1: no row has come

    std::int32_t patternId = 0;
    bool endsWithPage = true;
    RasterPattern pattern;
};

/// An image of vendor raster between its beginning and its end.
struct VendorImage {
    ImageInProgress image;
    StripCoding coding;
};

/// Keeps what the font code reports until it is known whether the operator fails: the operator's own error then says
/// what the job's damage is.
class HeldDiagnostics final : public DiagnosticSink {
public:
    void report(const Diagnostic& diagnostic) override { m_held.push_back(diagnostic); }
    void passOn(DiagnosticSink& sink, bool asWarnings)
    {
        for (Diagnostic& diagnostic : m_held) {
            if (asWarnings)
                diagnostic.severity = Severity::Warning;
            sink.report(diagnostic);
        }
        m_held.clear();
    }

private:
    std::vector<Diagnostic> m_held;
};

/// Runs operators: one member function each, grouped by subject into files. The operator table says which runs when,
/// and has checked the operands before.
class Machine {
public:
    Machine(PageDevice& device, DiagnosticSink& diagnostics, const Limits& limits, FontLibrary& fonts,
        const Environment& environment);

    Interpreter::End run(InputStream& input);
    RunStatus status() const { return m_status; }

    // Sessions and what has no effect on a page: session_operators.cpp
    Status beginSession();
    Status endSession();
    Status openDataSource();
    Status closeDataSource();
    Status ignoreOperator();
    Status ignoreOnce();

    // Pages and their coordinates: page_operators.cpp
    Status beginPage();
    Status endPage();
    Status setDefaultGS();
    Status setPageDefaultCTM();
    Status setPageOrigin();
    Status setPageRotation();
    Status setPageScale();
    Status passThrough();

    // Colours, pens and other graphics state: state_operators.cpp
    Status pushGS();
    Status popGS();
    Status setColorSpace();
    Status setBrushSource();
    Status setPenSource();
    Status setHalftoneMethod();
    Status setFillMode();
    Status setLineDash();
    Status setLineCap();
    Status setLineJoin();
    Status setMiterLimit();
    Status setPenWidth();
    Status setROP();
    Status setSourceTxMode();
    Status setPaintTxMode();

    // clip_operators.cpp
    Status setClipReplace();
    Status setClipIntersect();
    Status setClipRectangle();
    Status setClipToPage();
    Status setClipMode();
    Status setPathToClip();

    // Paths and painting them: path_operators.cpp, shape_operators.cpp
    Status setCursor();
    Status setCursorRel();
    Status newPath();
    Status closeSubPath();
    Status paintPath();
    Status linePath();
    Status lineRelPath();
    Status bezierPath();
    Status bezierRelPath();
    Status arcPath();
    Status chordPath();
    Status chord();
    Status piePath();
    Status pie();
    Status ellipsePath();
    Status ellipse();
    Status rectanglePath();
    Status rectangle();
    Status roundRectanglePath();
    Status roundRectangle();
    Status beginScan();
    Status scanLineRel();
    Status endScan();

    // image_operators.cpp
    Status beginImage();
    Status readImage();
    Status endImage();
    Status beginRastPattern();
    Status readRastPattern();
    Status endRastPattern();

    // vendor_operators.cpp
    Status vendorUnique();

    // Soft fonts: font_operators.cpp
    Status beginFontHeader();
    Status readFontHeader();
    Status endFontHeader();
    Status beginChar();
    Status readChar();
    Status endChar();
    Status removeFont();

    // text_operators.cpp
    Status setFont();
    Status setCharAngle();
    Status setCharScale();
    Status setCharShear();
    Status setCharBoldValue();
    Status setCharAttributes();
    Status setCharSubMode();
    Status text();
    Status textPath();

    // User streams: stream_operators.cpp
    Status beginStream();
    Status readStream();
    Status endStream();
    Status execStream();
    Status runStream(const std::string& name, ByteView bytes);
    Status removeStream();

private:
    // machine.cpp
    Status interpret(TagReader& reader, bool isUserStream);
    Status dispatch(TagReader& reader);
    void passOver(TagReader& reader, bool hasLostTrack);
    void reportError(const Status& status, std::uint64_t offset);
    void warn(const char* kind, const std::string& message);
    void resetSession();
    void abandonPage();
    const PageBitmap* openPage() const { return m_page.isOpen ? &m_page.canvas.painter->page() : nullptr; }
    EmbeddedData& data() { return *m_data; }
    FontReporter fontReporter() { return { &m_fontDiagnostics, m_offset }; }

    // page_operators.cpp
    Medium chooseMedium();
    GraphicsState newState() const;
    Status changeMatrix(const Matrix& matrix);
    Status deviceStatus(RunStatus status);

    // state_operators.cpp
    Status setInk(Ink& ink, Attribute none);
    const PaintState& brushPaint();
    const PaintState& penPaint();
    PaintState makePaint(const Ink& ink);
    Texture textureOf(const Ink& ink);
    void paintChanged() { m_brushPaintIsValid = m_penPaintIsValid = false; }

    // clip_operators.cpp
    std::shared_ptr<const ClipRegion> regionOf(const Path& devicePath);
    Status setClip(std::shared_ptr<const ClipRegion> region, std::shared_ptr<const Path> outline, bool isExterior);

    // path_operators.cpp
    Status beginSegment(std::size_t points);
    const StrokeStyle& drawableStroke();
    Status readPoints(bool isRelative, int perSegment, std::vector<Point>& points);
    Status addPoints(bool isCurve, bool isRelative);
    Status checkPathSize(std::size_t points);
    void paint(const Path& userPath);
    bool fillCell(const Path& devicePath, FillRule rule);
    void fillDevicePath(const Path& devicePath, FillRule rule);

    // shape_operators.cpp
    Status paintShape(Status (Machine::*append)());
    enum class ArcKind { Open, Chord, Pie };
    Status appendArc(ArcKind kind);

    // image_operators.cpp
    Status readSourceSize(BlockLayout& layout) const;
    Status describeImage(ImageInProgress& image, PixelFormat target);
    void preparePaint(ImageInProgress& image, Point corner, Point size);
    Status checkBlock(const BlockLayout& layout) const;
    Status readBlock(
        const std::function<void(std::int64_t)>& begin, const std::function<void(const std::uint8_t*)>& each);
    void beginImagePainter(ImageInProgress& image, std::int64_t row);
    void finishPainter(ImageInProgress& image);
    void paintRow(ImageInProgress& image, const std::uint8_t* pixels);
    void storePatternRow(const std::uint8_t* row);

    // vendor_operators.cpp
    Status runVendorCommand(VendorCommand command, std::uint64_t length);
    Status beginVendorImage();
    Status readVendorHeader(VendorChunk kind, EmbeddedData& chunk, std::uint32_t length);
    Status readVendorStrip(VendorChunk kind, EmbeddedData& chunk);
    void endVendorImage();

    // font_operators.cpp
    std::string fontName() const;
    std::shared_ptr<SoftFont> softFont(const std::string& name) const;

    // text_operators.cpp
    enum class TextUse { Paint, Outline };
    Status showText(TextUse use);
    Matrix characterMatrix(bool isTurned) const;
    Status showGlyph(GlyphId glyph, const Matrix& glyphToDevice, TextUse use);

    // stream_operators.cpp
    std::string streamName() const;

    PageDevice& m_device;
    DiagnosticSink& m_diagnostics;
    const Limits m_limits;
    FontLibrary& m_fonts;
    const Environment m_environment;
    RunStatus m_status = RunStatus::Done;
    HeldDiagnostics m_fontDiagnostics;
    std::set<std::string> m_warned;

    // The operator that runs.
    TagReader* m_reader = nullptr;
    EmbeddedData* m_data = nullptr;
    AttributeList m_operands;
    const OperatorEntry* m_entry = nullptr;
    std::uint64_t m_offset = 0;
    std::uint64_t m_position = 0; ///< operators since the stream's start, the first is 1

    Session m_session;
    bool m_dataSourceIsOpen = false;
    ByteOrder m_dataOrder = ByteOrder::LittleEndian;
    Definition m_definition = Definition::None;
    PageInProgress m_page;

    GraphicsState m_state;
    std::vector<GraphicsState> m_stack;
    std::vector<std::size_t> m_stackCosts; ///< path points and clip runs that each saved state may hold
    std::size_t m_stackCost = 0;
    PaintState m_brushPaint;
    PaintState m_penPaint;
    bool m_brushPaintIsValid = false;
    bool m_penPaintIsValid = false;
    StrokeStyle m_plainStroke; ///< the state's stroke without its dashes, for widths that hide them
    std::vector<Point> m_points; ///< of the operator that runs; kept for its memory

    ImageInProgress m_image;
    std::unique_ptr<VendorImage> m_vendorImage;
    struct StoredPattern {
        std::shared_ptr<const RasterPattern> pattern;
        bool endsWithPage = true;
    };
    std::map<std::int32_t, StoredPattern> m_patterns;
    std::size_t m_patternBytes = 0;

    std::map<std::string, std::shared_ptr<SoftFont>> m_softFonts;
    std::size_t m_softFontBytes = 0;
    GlyphCache m_glyphs;
    std::string m_definedFont; ///< of BeginFontHeader or BeginChar
    std::vector<std::uint8_t> m_fontHeader;

    using StreamBytes = std::shared_ptr<const std::vector<std::uint8_t>>;
    std::map<std::string, StreamBytes> m_streams;
    std::size_t m_streamBytes = 0;
    std::string m_definedStream;
    std::vector<std::uint8_t> m_streamData;
    std::vector<std::string> m_runningStreams;
    ReplayMeter m_replay { m_limits };
};

} // namespace quillrip::pclxl
