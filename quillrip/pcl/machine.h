#pragma once

#include "quillrip/base/input_stream.h"
#include "quillrip/base/limits.h"
#include "quillrip/base/noise_watch.h"
#include "quillrip/pcl/environment.h"
#include "quillrip/pcl/interpreter.h"
#include "quillrip/pcl/macro_store.h"
#include "quillrip/pcl/state.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quillrip::pcl {

class CurrentRaster;
class Cursor;
class DisplayFunctions;
class ErrorState;
class FontSlots;
class MacroRunner;
class Page;
class PatternCache;
class PlotHost;
class PlotVisit;
class PrintModel;
class TextPrinter;
class Tokenizer;
class UnderlineRun;
enum class RasterRule : std::uint8_t;
struct CommandEntry;
struct Token;

/// The printer: reads commands and has them carried out by the handlers of the command table, which ask its rooms. Each
/// room knows one subject; what concerns several of them is here.
class Machine {
public:
    /// All references must outlive the machine.
    Machine(PageDevice& device, DiagnosticSink& sink, const Limits& limits, FontLibrary& fonts,
        const Environment& environment);
    ~Machine();

    void setEnvironment(const Environment& environment);
    [[nodiscard]] Interpreter::End run(InputStream& input);
    RunStatus status() const;
    [[nodiscard]] RunStatus finish();

    const Limits& limits() const { return m_limits; }
    Environment& environment() { return m_environment; }
    State& state() { return m_state; }

    ErrorState& errors();
    Page& page();
    Cursor& cursor();
    UnderlineRun& underline();
    FontSlots& fonts();
    TextPrinter& text();
    DisplayFunctions& displayFunctions();
    PatternCache& patterns();
    PrintModel& printModel();
    CurrentRaster& raster();
    MacroRunner& macros();
    PlotHost& plot();
    PlotVisit& visit();

    /// Ends what is in progress on the page and delivers it with the overlay; a page without marks only when asked to.
    void ejectPage(bool evenWhenUnmarked);
    /// Delivers the page as it is, or a blank one when none was begun.
    void closePage();
    /// ESC E and the universal exit.
    void reset();
    /// The job has sent a command that only ink-jets have: their sheets and margins count, from an unmarked page on.
    void recogniseInkjet();
    /// What a reset leaves, the default font included.
    State userDefaults();
    /// Runs a macro and brings the state back afterwards, the place on the page included. Ignored when null.
    void callMacro(const MacroBytes& bytes);

private:
    struct Rooms;

    Interpreter::End interpret(Tokenizer& tokenizer);
    bool isSoftFontCurrent(std::uint8_t code);
    bool skipJobLanguageLine(Tokenizer& tokenizer, const Token& token);
    void interpretMacro(InputStream& stream);
    void execute(Tokenizer& tokenizer, const Token& token);
    void trace(const Token& token, const CommandEntry* entry) const;
    bool isHeldBack(RasterRule rule);
    void executeTwoCharacter(const Token& token);
    void readData(Tokenizer& tokenizer, const Token& token, std::uint64_t count);
    void printDisplayed(Tokenizer& tokenizer);
    void runPlot(Tokenizer& tokenizer);
    void playOverlay();
    void restore(const State& saved, Position place);

    Limits m_limits;
    Environment m_environment;
    State m_state;
    std::unique_ptr<Rooms> m_rooms;

    std::vector<std::uint8_t> m_data; ///< of the command in progress
    bool m_inputWasCut = false; ///< within those data
    bool m_isAtStart = true;
    bool m_isWithinLine = false; ///< text came last
    NoiseWatch m_noise; ///< of text outside of commands' data
    bool m_hasJustReset = false; ///< a reset ejected a page, and nothing came since
};

} // namespace quillrip::pcl
