#include "quillrip/pcl/machine.h"

#include "quillrip/base/escape_sequence.h"
#include "quillrip/fonts/soft/soft_font.h"
#include "quillrip/pcl/character_decoder.h"
#include "quillrip/pcl/command_handlers.h"
#include "quillrip/pcl/current_raster.h"
#include "quillrip/pcl/cursor.h"
#include "quillrip/pcl/error_state.h"
#include "quillrip/pcl/font_slots.h"
#include "quillrip/pcl/macro_runner.h"
#include "quillrip/pcl/page.h"
#include "quillrip/pcl/pattern_cache.h"
#include "quillrip/pcl/plot_host.h"
#include "quillrip/pcl/plot_visit.h"
#include "quillrip/pcl/print_model.h"
#include "quillrip/pcl/text_printer.h"
#include "quillrip/pcl/tokenizer.h"
#include "quillrip/pcl/underline_run.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace quillrip::pcl {

namespace {

/// Work of a character or command without what it draws.
constexpr std::uint64_t kUnitsPerToken = 50;

constexpr std::uint8_t kEndOfFile = 0x1A; ///< of older systems
constexpr std::uint8_t kFormFeed = 0x0C;

} // namespace

/// In the order in which they need each other.
struct Machine::Rooms {
    Rooms(Machine& machine, PageDevice& device, DiagnosticSink& sink, FontLibrary& library)
        : errors(sink)
        , page(device, machine.m_limits, machine.m_state, errors)
        , patterns(machine.m_limits)
        , printModel(machine.m_state, page, patterns)
        , underline(machine.m_state, page, printModel)
        , cursor(machine.m_state, machine.m_environment, underline, [&machine] { machine.ejectPage(true); })
        , fonts(library, machine.m_state, machine.m_environment)
        , text({ machine.m_state, fonts, cursor, page, printModel, underline })
        , visit(machine.m_state, page, cursor)
        , raster({ machine.m_state, machine.m_environment, page, cursor, printModel, visit, errors,
              *machine.m_limits.work })
        , macros(machine.m_limits, errors, [&machine](InputStream& stream) { machine.interpretMacro(stream); })
        , plot({ machine.m_state, page, cursor, fonts, patterns, printModel, errors, machine.m_limits })
    {
    }

    ErrorState errors;
    Page page;
    PatternCache patterns;
    PrintModel printModel;
    UnderlineRun underline;
    Cursor cursor;
    FontSlots fonts;
    TextPrinter text;
    DisplayFunctions displayFunctions;
    PlotVisit visit;
    CurrentRaster raster;
    MacroRunner macros;
    PlotHost plot;
};

Machine::Machine(
    PageDevice& device, DiagnosticSink& sink, const Limits& limits, FontLibrary& fonts, const Environment& environment)
    : m_limits(limits)
    , m_environment(environment)
    , m_rooms(std::make_unique<Rooms>(*this, device, sink, fonts))
{
    m_state = userDefaults();
    cursor().home();
}

Machine::~Machine() = default;

ErrorState& Machine::errors() { return m_rooms->errors; }
Page& Machine::page() { return m_rooms->page; }
Cursor& Machine::cursor() { return m_rooms->cursor; }
UnderlineRun& Machine::underline() { return m_rooms->underline; }
FontSlots& Machine::fonts() { return m_rooms->fonts; }
TextPrinter& Machine::text() { return m_rooms->text; }
DisplayFunctions& Machine::displayFunctions() { return m_rooms->displayFunctions; }
PatternCache& Machine::patterns() { return m_rooms->patterns; }
PrintModel& Machine::printModel() { return m_rooms->printModel; }
CurrentRaster& Machine::raster() { return m_rooms->raster; }
MacroRunner& Machine::macros() { return m_rooms->macros; }
PlotHost& Machine::plot() { return m_rooms->plot; }
PlotVisit& Machine::visit() { return m_rooms->visit; }

RunStatus Machine::status() const { return m_rooms->errors.status(); }

void Machine::setEnvironment(const Environment& environment)
{
    m_environment = environment;
    // The exit that came before has just reset everything, to defaults that are now others.
    if (!page().isOpen()) {
        m_state = userDefaults();
        page().geometryChanged();
        cursor().home();
    }
}

State Machine::userDefaults()
{
    State state = defaultState(m_environment);
    if (m_environment.fontNumber <= 0)
        return state;
    const std::vector<std::shared_ptr<const Typeface>> faces = fonts().library().builtInFaces();
    const auto number = static_cast<std::size_t>(m_environment.fontNumber);
    if (number > faces.size())
        return state;
    const FontTraits& traits = faces[number - 1]->traits();
    for (FontSlot& slot : state.fonts) {
        slot.request.isProportional = traits.isProportional;
        slot.request.style = traits.style;
        slot.request.weight = traits.weight;
        slot.request.family = traits.family;
        if (traits.isBoundToSet)
            slot.request.symbolSet = traits.symbolSet;
    }
    return state;
}

Interpreter::End Machine::run(InputStream& input)
{
    if (m_isAtStart) {
        m_isAtStart = false;
        const ByteView start = input.window(3);
        if (start.size >= 3 && start[0] == 0xEF && start[1] == 0xBB && start[2] == 0xBF)
            input.skip(3); // a byte order mark is nothing to print
    }
    Tokenizer tokenizer { input };
    const Interpreter::End end = interpret(tokenizer);
    if (end != Interpreter::End::Failed) {
        if (macros().isRecording())
            macros().stopRecording(tokenizer);
        if (end == Interpreter::End::UniversalExit)
            reset();
    }
    return errors().failed() ? Interpreter::End::Failed : end;
}

RunStatus Machine::finish()
{
    if (errors().failed())
        return status();
    raster().finish();
    ejectPage(false);
    return status();
}

Interpreter::End Machine::interpret(Tokenizer& tokenizer)
{
    while (!errors().failed()) {
        if (!m_limits.work->allows(Work::Commands, kUnitsPerToken)) {
            errors().damage("pcl.work", m_limits.work->reason());
            errors().fail(RunStatus::LimitExceeded);
            break;
        }
        const bool isRecording = macros().isRecording();
        if (plot().isOn() && !isRecording) {
            if (tokenizer.stream().atEnd())
                return Interpreter::End::InputEnded;
            runPlot(tokenizer);
            continue;
        }
        if (displayFunctions().isOn() && !isRecording) {
            if (tokenizer.stream().atEnd())
                return Interpreter::End::InputEnded;
            printDisplayed(tokenizer);
            continue;
        }
        if (visit().hasEnded(tokenizer))
            return Interpreter::End::InputEnded;
        const Token token = tokenizer.next();
        if (!macros().isPlaying())
            errors().setOffset(token.offset);
        if (token.kind == Token::Kind::End)
            return Interpreter::End::InputEnded;
        if (token.kind == Token::Kind::UniversalExit)
            return Interpreter::End::UniversalExit;
        if (isRecording) {
            macros().record(tokenizer, token);
            continue;
        }
        const bool hasJustReset = m_hasJustReset;
        m_hasJustReset = false;
        if (visit().isOn() && token.kind != Token::Kind::Command)
            continue; // plotters print no text here, and what stands between commands moves nothing
        const bool isWithinLine = m_isWithinLine;
        m_isWithinLine = token.kind == Token::Kind::Text;
        switch (token.kind) {
        case Token::Kind::Text:
            if (!isWithinLine && skipJobLanguageLine(tokenizer, token))
                break;
            raster().finish();
            if (m_noise.isNoise(token.byte, isSoftFontCurrent(token.byte))) {
                errors().damage("pcl.noise", "binary data where text would be printed");
                errors().fail(RunStatus::Damaged);
                break;
            }
            // In ink-jet raster languages what looks like text is what is left of a broken command.
            if (m_environment.family != PrinterFamily::InkjetRaster
                && !(token.byte == kEndOfFile && tokenizer.stream().atEnd()))
                text().print(token.byte, false);
            break;
        case Token::Kind::Control:
            if (token.byte != 0)
                raster().finish();
            // Drivers end a page by a reset and a form feed, and mean one page.
            if (!(token.byte == kFormFeed && hasJustReset))
                obeyControlCode(*this, token.byte);
            break;
        case Token::Kind::TwoCharacter:
            raster().finish();
            executeTwoCharacter(token);
            break;
        default:
            execute(tokenizer, token);
        }
    }
    return Interpreter::End::Failed;
}

// Asked for the codes alone that nothing but a soft font has characters for.
bool Machine::isSoftFontCurrent(std::uint8_t code)
{
    return code < ' ' && dynamic_cast<const SoftFont*>(fonts().current().face.get());
}

// Some drivers go on with lines of the job language after it has entered PCL.
bool Machine::skipJobLanguageLine(Tokenizer& tokenizer, const Token& token)
{
    constexpr char kRest[] = { 'P', 'J', 'L', ' ' };
    if (!m_environment.isLanguageNamed || token.byte != '@')
        return false;
    InputStream& stream = tokenizer.stream();
    const ByteView ahead = stream.window(sizeof kRest);
    if (ahead.size < sizeof kRest || !std::equal(std::begin(kRest), std::end(kRest), ahead.data))
        return false;
    while (stream.peek() >= 0 && stream.peek() != kEscape && stream.get() != '\n') { }
    m_isWithinLine = false;
    return true;
}

void Machine::interpretMacro(InputStream& stream)
{
    // The command that came here, such as text that fills a page, may still be using its data.
    std::vector<std::uint8_t> data;
    data.swap(m_data);
    Tokenizer tokenizer { stream };
    interpret(tokenizer);
    m_data.swap(data);
}

void Machine::readData(Tokenizer& tokenizer, const Token& token, std::uint64_t count)
{
    // What is not a row of raster can be as long as the longest thing that is downloaded, a soft font.
    const bool isRow = token.prefix == '*' && token.group == 'b';
    const std::uint64_t taken = tokenizer.takeData(count, m_data, isRow ? m_limits.imageRowBytes : m_limits.fontBytes);
    if (taken == count)
        return;
    tokenizer.abandonSequence();
    const std::string shown
        = std::string("ESC") + token.prefix + (token.group ? std::string(1, token.group) : "") + "#" + token.terminator;
    const std::string message
        = "the data of " + shown + " end after " + std::to_string(taken) + " of " + std::to_string(count) + " bytes";
    if (macros().isPlaying()) {
        errors().warn("pcl.macro-cut", message + " with the macro");
        return;
    }
    m_inputWasCut = true;
    errors().damage("pcl.input-cut", message);
}

void Machine::execute(Tokenizer& tokenizer, const Token& token)
{
    const CommandEntry* entry = find(token);
    m_data.clear();
    if (const std::uint64_t count = dataLength(token, entry))
        readData(tokenizer, token, count);
    if (errors().reporter().isTracing())
        trace(token, entry);
    const bool isObeyed = entry && entry->handler && (!m_environment.isPlotterRaster || isOfPlotters(*entry));
    if (isObeyed && !isHeldBack(entry->raster)) {
        const bool isSetting = entry->raster == RasterRule::BeforeRows
            || (entry->raster == RasterRule::BeforeRowsOrEnds && !raster().hasData());
        const bool isMove = entry->raster == RasterRule::EndsOrMoves;
        if (isMove && m_environment.family != PrinterFamily::Laser)
            raster().interrupt();
        else if (isMove || entry->raster == RasterRule::Ends
            || (entry->raster == RasterRule::BeforeRowsOrEnds && !isSetting))
            raster().finish();
        entry->handler(*this, { token.value, m_data, token.prefix, token.terminator });
        if (isSetting && raster().isOpen())
            raster().settingsChanged();
    }
    // What there is of the data has been drawn.
    if (m_inputWasCut)
        errors().fail(RunStatus::Damaged);
    if (macros().isRecordingRequested())
        macros().startRecording(tokenizer);
    // Some ink-jet drivers end a row offset or a plane with a capital letter and go on with the rows all the same.
    const bool isWithinRows
        = token.prefix == '*' && token.group == 'b' && (token.terminator == 'Y' || token.terminator == 'V');
    if (raster().isOpen() && !token.chained && isWithinRows)
        tokenizer.resumeIfContinued('*', 'b', "vwym");
}

void Machine::trace(const Token& token, const CommandEntry* entry) const
{
    std::string command = std::string("ESC") + token.prefix;
    if (token.group)
        command += token.group;
    command += Reporter::spelled(token.value.number) + token.terminator;
    command += std::string(", ") + (entry ? entry->name : "unknown");
    if (!m_data.empty())
        command += ", " + std::to_string(m_data.size()) + " bytes";
    m_rooms->errors.reporter().trace(command);
}

bool Machine::isHeldBack(RasterRule rule)
{
    return (rule == RasterRule::Waits && raster().isOpen()) || (rule == RasterRule::BeforeRows && raster().hasData());
}

void Machine::executeTwoCharacter(const Token& token)
{
    const TwoCharacterEntry* entry = findTwoCharacter(static_cast<char>(token.byte));
    if (entry && errors().reporter().isTracing())
        errors().reporter().trace(std::string("ESC") + entry->code + ", " + entry->name);
    if (entry && entry->handler)
        entry->handler(*this, {});
}

void Machine::printDisplayed(Tokenizer& tokenizer)
{
    const int byte = tokenizer.stream().get();
    if (byte < 0)
        return;
    text().print(static_cast<std::uint8_t>(byte), true);
    if (byte == '\r') {
        cursor().carriageReturn();
        cursor().lineFeed(m_state.lineSpacing);
    }
    displayFunctions().note(static_cast<std::uint8_t>(byte));
}

void Machine::runPlot(Tokenizer& tokenizer)
{
    tokenizer.abandonSequence();
    if (!macros().isPlaying())
        errors().setOffset(tokenizer.stream().offset());
    if (plot().run(tokenizer.stream()) == PlotHost::End::Reset)
        printerReset(*this, {});
}

void Machine::closePage()
{
    if (!page().ensureOpen())
        return;
    page().close();
}

void Machine::ejectPage(bool evenWhenUnmarked)
{
    raster().finish();
    underline().end();
    if (macros().isOverlayPlaying() || (!evenWhenUnmarked && !page().isMarked()))
        return;
    playOverlay();
    closePage();
}

// The overlay starts from the user defaults, on the page as it lies.
void Machine::playOverlay()
{
    const MacroBytes macro = macros().overlay();
    if (!macro || errors().failed())
        return;
    const State saved = m_state;
    const Position place = cursor().position();
    State overlay = userDefaults();
    overlay.page = saved.page;
    overlay.registrationX = saved.registrationX;
    overlay.registrationY = saved.registrationY;
    overlay.duplex = saved.duplex;
    overlay.text = defaultTextArea(saved.page);
    m_state = overlay;
    page().geometryChanged();
    cursor().home();
    macros().playOverlay(macro);
    raster().finish();
    underline().end();
    m_state = saved;
    cursor().restore(place);
    page().geometryChanged();
    fonts().resourcesChanged();
}

void Machine::callMacro(const MacroBytes& bytes)
{
    if (!bytes)
        return;
    const State saved = m_state;
    const Position place = m_state.page.toOrientation(cursor().position(), m_state.direction);
    macros().play(bytes);
    if (!errors().failed())
        restore(saved, place);
}

void Machine::restore(const State& saved, Position place)
{
    raster().finish();
    underline().end();
    const LogicalPage& now = m_state.page;
    const bool isOtherPage = now.size().code != saved.page.size().code || now.length() != saved.page.length()
        || now.orientation() != saved.page.orientation();
    if (isOtherPage)
        ejectPage(false);
    m_state = saved;
    cursor().restore(saved.page.fromOrientation(place, saved.direction));
    page().geometryChanged();
    fonts().resourcesChanged();
    if (isOtherPage)
        cursor().home();
    underline().begin(cursor().position());
}

void printerReset(Machine& machine, const Command& /*command*/)
{
    if (!machine.macros().isPlaying())
        machine.reset();
}

void Machine::recogniseInkjet()
{
    if (m_environment.family != PrinterFamily::Laser || m_environment.isPlotterRaster)
        return;
    m_environment.family = PrinterFamily::Inkjet;
    if (page().isOpen())
        return;
    const InternalUnits width = m_state.page.width(m_state.direction);
    const InternalUnits length = m_state.page.length(m_state.direction);
    m_state.page.changeFamily(PrinterFamily::Inkjet);
    if (m_state.text.right == width)
        m_state.text.right = m_state.page.width(m_state.direction);
    if (m_state.page.length(m_state.direction) != length)
        m_state.text.bottom = defaultTextBottom(m_state.text.top, m_state.page.length(m_state.direction));
    page().geometryChanged();
}

void Machine::reset()
{
    raster().finish();
    m_hasJustReset = page().isMarked();
    ejectPage(false);
    fonts().library().softFonts().removeTemporary();
    fonts().library().removeTemporarySymbolSets();
    macros().store().removeTemporary();
    macros().clearOverlay();
    patterns().store().removeTemporary();
    cursor().clearStack();
    displayFunctions().end();
    text().decoder().reset();
    page().beginSheet();
    m_state = userDefaults();
    fonts().resourcesChanged();
    patterns().clear();
    page().geometryChanged();
    plot().reset();
    cursor().home();
}

} // namespace quillrip::pcl
