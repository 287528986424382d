#pragma once

#include "quillrip/base/replay_meter.h"
#include "quillrip/fonts/pixels/glyph_cache.h"
#include "quillrip/hpgl/host.h"
#include "quillrip/hpgl/interpreter.h"
#include "quillrip/hpgl/raster_language.h"
#include "quillrip/pcl/interpreter.h"
#include "quillrip/pcl/raster_session.h"
#include "quillrip/pcl/state.h"
#include "quillrip/pcl/tokenizer.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quillrip::pcl {

/// A command with its data, ready to be carried out.
struct Command {
    Value value;
    ByteView data;
    char prefix = 0;
    char terminator = 0;
    bool chained = false;
};

/// The printer: what all commands work on. Each handler is one command of the table in commands.cpp; handlers of one
/// subject share a file.
class Machine final : private hpgl::Host {
public:
    Machine(PageDevice& device, DiagnosticSink& sink, const Limits& limits, FontLibrary& fonts,
        const Environment& environment);
    ~Machine() override;

    void setEnvironment(const Environment& environment);
    Interpreter::End run(InputStream& input);
    RunStatus status() const { return m_status; }
    RunStatus finish();

    /// A stretch of raster in a plot, of which run() reads the commands: up to ESC%#B, or, when it was not announced,
    /// to anything that is no escape sequence. The page must last until endVisit().
    void beginVisit(hpgl::RasterPage& page, hpgl::RasterLanguage::Entry entry, const hpgl::RasterExchange& exchange);
    void endVisit(hpgl::RasterExchange& exchange);
    /// The # of the ESC%#B that ended the visit; nothing when none did.
    std::optional<int> enterPlotValue() const { return m_enterPlotValue; }

    using Handler = void (Machine::*)(const Command&);
    struct Entry;
    struct TwoCharacterEntry;
    /// Everything that is understood, sorted by key.
    static const std::vector<Entry>& commands();
    static const std::vector<TwoCharacterEntry>& twoCharacterCommands();

private:
    // machine.cpp: the loop, resets, diagnostics
    enum class Flow { Ended, UniversalExit, Failed };
    Flow interpret(Tokenizer& tokenizer);
    bool execute(Tokenizer& tokenizer, const Token& token);
    void executeTwoCharacter(const Token& token);
    void readData(Tokenizer& tokenizer, const Token& token, std::uint64_t count);
    static const Entry* findCommand(const Token& token);
    static std::uint64_t dataLength(const Token& token, const Entry* entry);
    bool failed() const { return m_status != RunStatus::Done; }
    void fail(RunStatus status) { m_status = failed() ? m_status : status; }
    void warn(const char* kind, std::string message);
    void damage(const char* kind, std::string message);
    void reset();
    /// What a reset leaves, the default font included.
    State userDefaults() const;
    void printerReset(const Command&);
    void universalExit(const Command&);

    // page.cpp: pages, geometry, cursor
    bool ensurePage();
    Painter* painterForMark();
    void ejectPage(bool evenWhenUnmarked);
    void closePage();
    const PageBitmap* openPage() const { return m_pageIsOpen ? &m_canvas.painter->page() : nullptr; }
    void runOverlay();
    PageCanvas canvas() const;
    const Matrix& unitsToDevice();
    Matrix unitsToDevice(int direction) const;
    PixelRect deviceRect(Position from, Position to, int direction) const;
    std::shared_ptr<const ClipRegion> logicalPageClip() const;
    void geometryChanged() { m_matrixIsStale = true; }
    InternalUnits pageWidth() const { return m_state.page.width(m_state.direction); }
    InternalUnits pageLength() const { return m_state.page.length(m_state.direction); }
    Position homePosition() const;
    void home();
    void moveTo(InternalUnits x, InternalUnits y);
    void moveToClamped(InternalUnits x, InternalUnits y);
    void applyRegistration();

    // page_commands.cpp
    void setPageSize(const Command&);
    void setPageLength(const Command&);
    void setOrientation(const Command&);
    void setPaperSource(const Command&);
    void setDuplex(const Command&);
    void selectSide(const Command&);
    void setPrintDirection(const Command&);
    void setLeftRegistration(const Command&);
    void setTopRegistration(const Command&);
    void setTopMargin(const Command&);
    void setTextLength(const Command&);
    void setPerforationSkip(const Command&);
    void setLeftMargin(const Command&);
    void setRightMargin(const Command&);
    void clearHorizontalMargins(const Command&);
    void setColumnWidth(const Command&);
    void setLineSpacing(const Command&);
    void setLinesPerInch(const Command&);
    void setUnitOfMeasure(const Command&);
    void setLineTermination(const Command&);
    void setWrap(const Command&);
    void extendedSetting(const Command&);
    void layOutPage(const PageLayout& page);

    // cursor_commands.cpp
    void moveColumns(const Command&);
    void moveHorizontalDecipoints(const Command&);
    void moveHorizontalUnits(const Command&);
    void moveRows(const Command&);
    void moveVerticalDecipoints(const Command&);
    void moveVerticalUnits(const Command&);
    void moveHorizontal(const Value& value, double unit);
    void moveVertical(const Value& value, double unit, InternalUnits offset);
    void pushOrPopCursor(const Command&);
    void halfLineFeed(const Command&);
    void carriageReturn();
    void lineFeed(InternalUnits distance);
    void formFeed();
    void backspace();
    void tabulate();
    void control(std::uint8_t code);

    // text.cpp
    void text(std::uint8_t byte);
    void textByte(std::uint8_t byte, bool isTransparent);
    void utf8Byte(std::uint8_t byte);
    void printCode(const Font& font, std::uint32_t code, bool isTransparent);
    void flushLeadByte();
    bool makeRoom(InternalUnits width);
    void drawGlyph(const Font& font, const Font::Lookup& found, Position at, InternalUnits width);
    void advance(InternalUnits distance);
    void displayByte(Tokenizer& tokenizer);
    void transparentText(const Command&);
    void setTextParsing(const Command&);
    void setTextPath(const Command&);
    void displayFunctionsOn(const Command&);
    void displayFunctionsOff(const Command&);

    // underline.cpp
    void setUnderline(const Command&);
    void beginUnderline();
    void endUnderlineRun();
    void noteUnderlineOf(const Font& font);

    // font_commands.cpp
    const Font& currentFont();
    InternalUnits columnWidth();
    SelectionContext selectionContext() const;
    FontSlot& slotOf(const Command& command) { return m_state.fonts[command.prefix == ')' ? 1 : 0]; }
    void changed(FontSlot& slot);
    void softFontsChanged();
    void setSymbolSet(const Command&);
    void selectFontById(const Command&);
    void selectFontById(FontSlot& slot, const ResourceKey& key);
    void selectDefaultFont(const Command&);
    void setSpacing(const Command&);
    void setPitch(const Command&);
    void setHeight(const Command&);
    void setStyle(const Command&);
    void setWeight(const Command&);
    void setTypeface(const Command&);
    void setPitchMode(const Command&);
    void useFont(std::size_t slot);

    // soft_font_commands.cpp
    FontReporter fontReporter() const { return { &m_sink, m_offset }; }
    void setFontId(const Command&);
    void setCharacterCode(const Command&);
    void downloadFontHeader(const Command&);
    void downloadCharacter(const Command&);
    void controlFonts(const Command&);
    void setSymbolSetCode(const Command&);
    void defineSymbolSet(const Command&);
    void controlSymbolSets(const Command&);
    void alphanumericId(const Command&);

    // macro_commands.cpp
    void setMacroId(const Command&);
    void controlMacro(const Command&);
    void startRecording(Tokenizer& tokenizer);
    void stopRecording(Tokenizer& tokenizer);
    /// True when the token is to be carried out although a macro is being defined.
    bool record(Tokenizer& tokenizer, const Token& token);
    void runMacro(const MacroBytes& bytes);
    void callMacro(const MacroBytes& bytes);
    void restore(const State& saved, Position place);

    // print_model.cpp
    PaintState paintState(PatternChoice choice);
    std::shared_ptr<const PatternTile> deviceTile(
        PatternChoice choice, int direction, const Matrix& toDevice, Resolution resolution) const;
    bool patternExists(PatternChoice choice) const;
    void setPattern(const Command&);
    void setPatternId(const Command&);
    void downloadPattern(const Command&);
    void controlPatterns(const Command&);
    void setPatternReference(const Command&);
    void setSourceTransparency(const Command&);
    void setPatternTransparency(const Command&);
    void setRasterOperation(const Command&);
    void setPixelPlacement(const Command&);
    void setRectangleSize(const Command&);
    void fillRectangle(const Command&);

    // raster_commands.cpp
    void setRasterResolution(const Command&);
    void setPresentation(const Command&);
    void setSourceHeight(const Command&);
    void setSourceWidth(const Command&);
    void setDestinationSize(const Command&);
    void startRaster(const Command&);
    void endRaster(const Command&);
    void setCompression(const Command&);
    void moveRasterRows(const Command&);
    void transferPlane(const Command&);
    void transferRow(const Command&);
    void configureRasterData(const Command&);
    void beginRaster(bool isScaled);
    void ensureRaster();
    void finishRaster();
    int rasterDirection() const;
    void report(RasterSession::Outcome outcome);

    // color_commands.cpp
    void setSimpleColor(const Command&);
    void configureImageData(const Command&);
    void setColorComponent(const Command&);
    void assignColor(const Command&);
    void setForeground(const Command&);
    void pushOrPopPalette(const Command&);
    void selectPalette(const Command&);
    void setPaletteControlId(const Command&);
    void controlPalettes(const Command&);
    void setRenderAlgorithm(const Command&);
    void setGamma(const Command&);
    void downloadLookup(const Command&);
    void setMonochrome(const Command&);
    Rgb shown(Rgb color) const;

    // plotter_raster.cpp: raster in plots
    bool visitHasEnded(Tokenizer& tokenizer) const;
    static bool isOfPlotters(const Entry& entry);

    // plot.cpp: HP-GL/2
    void enterPlot(const Command&);
    void enterPcl(const Command&);
    void setFrameSize(const Command&);
    void setFrameAnchor(const Command&);
    void setPlotSize(const Command&);
    hpgl::Interpreter& plotter();
    void defaultFrame();
    void runPlot(Tokenizer& tokenizer);
    RunStatus beginMark(PageCanvas& canvas) override;
    PageCanvas previewCanvas() const override;
    hpgl::PictureFrame pictureFrame() const override;
    std::size_t paletteSize() const override;
    Rgb paletteColor(std::size_t index) const override;
    void newPalette(std::size_t size) override;
    void resizePalette(std::size_t size) override;
    void setPaletteColor(std::size_t index, Rgb color) override;
    std::uint8_t rasterOperation() const override;
    void setRasterOperation(std::uint8_t operation) override;
    bool isGridCentred() const override;
    void setGridCentred(bool isCentred) override;
    std::shared_ptr<const PatternTile> areaPattern(hpgl::AreaPattern kind, int id, const PageCanvas& canvas) override;
    SelectionContext fontContext() const override;

    PageDevice& m_device;
    DiagnosticSink& m_sink;
    Limits m_limits;
    FontLibrary& m_fonts;
    Environment m_environment;
    RunStatus m_status = RunStatus::Done;

    State m_state;
    Position m_cursor; ///< in the axes of the print direction
    std::vector<Position> m_cursorStack; ///< direction 0: a pop finds the place on the sheet again

    MacroStore m_macros;
    std::optional<ResourceKey> m_overlayMacro;
    bool m_isOverlayRunning = false;
    int m_macroDepth = 0;
    bool m_hasReportedDepth = false;
    ReplayMeter m_replay { m_limits };
    std::vector<std::uint8_t> m_recorded;
    bool m_isRecording = false;
    bool m_wantsRecording = false; ///< the command that starts a recording was just carried out
    ResourceKey m_recordingKey;

    PatternStore m_patterns;
    struct TileCache {
        PatternChoice choice;
        int direction = -1;
        std::uint32_t revision = 0;
        const Palette* palette = nullptr;
        std::shared_ptr<const PatternTile> tile;
    };
    TileCache m_tileCache;

    std::unique_ptr<RasterSession> m_raster;
    GlyphCache m_glyphs;
    std::unique_ptr<hpgl::Interpreter> m_plotter;
    bool m_isPlotting = false;

    hpgl::RasterPage* m_plotterPage = nullptr; ///< during a visit
    bool m_isUnannounced = false;
    std::optional<int> m_enterPlotValue;
    std::vector<Rgb> m_lentPalette; ///< what the plot's pens were when the visit began

    PageCanvas m_canvas; ///< while a page is open
    bool m_pageIsOpen = false;
    bool m_isMarked = false;
    std::uint32_t m_pagesBegun = 0;
    int m_pagesOnSheet = 0; ///< duplex: 1 when the next page is a back
    Matrix m_unitsToDevice;
    bool m_matrixIsStale = true;

    // Text between commands.
    InternalUnits m_lastAdvance = 0;
    bool m_isClippedAtMargin = false; ///< text runs on beyond the right margin, unseen
    bool m_isBeyondMargin = false; ///< a command put the cursor there: text then runs to the page's edge
    struct {
        bool isPending = false;
        InternalUnits x = 0;
        InternalUnits advance = 0;
    } m_backspaced;
    int m_leadByte = -1;
    std::uint32_t m_utf8Code = 0;
    int m_utf8Missing = 0;
    bool m_displaysFunctions = false;
    bool m_displaySawEscape = false;
    struct {
        bool isOpen = false;
        InternalUnits from = 0;
        InternalUnits to = 0;
        InternalUnits top = 0; ///< from the baseline down
        InternalUnits thickness = 0;
    } m_underlineRun;

    std::vector<std::uint8_t> m_data;
    std::uint64_t m_offset = 0; ///< of the command in progress, in the job
    bool m_isInMacro = false;
    bool m_sawUniversalExit = false;
    bool m_inputWasCut = false;
    bool m_isAtStart = true;
};

enum class DataRule : std::uint8_t {
    None,
    Bytes, ///< the value counts the bytes that follow
};

enum class RasterRule : std::uint8_t {
    Ends, ///< ends a raster in progress
    Within, ///< part of it
    Waits, ///< without effect while it lasts
};

struct Machine::Entry {
    char prefix;
    char group; ///< 0: none
    char terminator; ///< 0: any letter not named otherwise
    Handler handler; ///< null: nothing that an image shows
    const char* name;
    DataRule data = DataRule::None;
    RasterRule raster = RasterRule::Ends;

    std::uint32_t key() const
    {
        return (static_cast<std::uint32_t>(static_cast<unsigned char>(prefix)) << 16)
            | (static_cast<std::uint32_t>(static_cast<unsigned char>(group)) << 8)
            | static_cast<std::uint32_t>(static_cast<unsigned char>(terminator));
    }
};

struct Machine::TwoCharacterEntry {
    char code;
    Handler handler;
    const char* name;
};

} // namespace quillrip::pcl
