#include "quillrip/pcl/machine.h"

#include <algorithm>

namespace quillrip::pcl {

namespace {

constexpr double kUniversalExitValue = -12345;

} // namespace

Machine::Machine(
    PageDevice& device, DiagnosticSink& sink, const Limits& limits, FontLibrary& fonts, const Environment& environment)
    : m_device(device)
    , m_sink(sink)
    , m_limits(limits)
    , m_fonts(fonts)
    , m_environment(environment)
    , m_patterns(limits.patternBytes)
{
    m_state = userDefaults();
    home();
}

Machine::~Machine() = default;

void Machine::warn(const char* kind, std::string message)
{
    m_sink.report({ Severity::Warning, m_offset, kind, std::move(message) });
}

void Machine::damage(const char* kind, std::string message)
{
    m_sink.report({ Severity::Damage, m_offset, kind, std::move(message) });
}

void Machine::setEnvironment(const Environment& environment)
{
    m_environment = environment;
    // The exit that came before has just reset everything, to defaults that are now others.
    if (!m_pageIsOpen) {
        m_state = userDefaults();
        geometryChanged();
        home();
    }
}

State Machine::userDefaults() const
{
    State state = defaultState(m_environment);
    if (m_environment.fontNumber <= 0)
        return state;
    const std::vector<std::shared_ptr<const Typeface>> faces = m_fonts.builtInFaces();
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
    m_sawUniversalExit = false;
    if (m_isAtStart) {
        m_isAtStart = false;
        const ByteView start = input.window(3);
        if (start.size >= 3 && start[0] == 0xEF && start[1] == 0xBB && start[2] == 0xBF)
            input.skip(3); // a byte order mark is nothing to print
    }
    Tokenizer tokenizer { input };
    switch (interpret(tokenizer)) {
    case Flow::UniversalExit:
        return failed() ? Interpreter::End::Failed : Interpreter::End::UniversalExit;
    case Flow::Failed:
        return Interpreter::End::Failed;
    default:
        break;
    }
    if (m_isRecording)
        stopRecording(tokenizer);
    return failed() ? Interpreter::End::Failed : Interpreter::End::InputEnded;
}

RunStatus Machine::finish()
{
    if (failed())
        return m_status;
    finishRaster();
    ejectPage(false);
    return m_status;
}

Machine::Flow Machine::interpret(Tokenizer& tokenizer)
{
    while (!failed()) {
        if (m_replay.isRunning() && !m_replay.mayGoOn(openPage())) {
            damage("pcl.macro-drawing", "the job's macros draw more than the limit allows");
            fail(RunStatus::LimitExceeded);
            break;
        }
        if (m_isPlotting && !m_isRecording) {
            if (tokenizer.stream().atEnd())
                return Flow::Ended;
            runPlot(tokenizer);
            continue;
        }
        if (m_displaysFunctions && !m_isRecording) {
            if (tokenizer.stream().atEnd())
                return Flow::Ended;
            displayByte(tokenizer);
            continue;
        }
        if (m_plotterPage && visitHasEnded(tokenizer))
            return Flow::Ended;
        const Token token = tokenizer.next();
        if (!m_isInMacro)
            m_offset = token.offset;
        if (token.kind == Token::Kind::End)
            return Flow::Ended;
        if (m_isRecording && !record(tokenizer, token))
            continue;
        if (m_plotterPage && token.kind != Token::Kind::Command)
            continue; // plotters print no text here, and what stands between commands moves nothing
        switch (token.kind) {
        case Token::Kind::Text:
            finishRaster();
            if (token.byte == 0x1A && tokenizer.stream().atEnd())
                break; // the end-of-file mark of older systems
            text(token.byte);
            break;
        case Token::Kind::Control:
            if (token.byte != 0)
                finishRaster();
            control(token.byte);
            break;
        case Token::Kind::TwoCharacter:
            finishRaster();
            executeTwoCharacter(token);
            break;
        default:
            if (!execute(tokenizer, token))
                return Flow::UniversalExit;
        }
    }
    return Flow::Failed;
}

const Machine::Entry* Machine::findCommand(const Token& token)
{
    const auto find = [&token](char terminator) -> const Entry* {
        const Entry wanted { token.prefix, token.group, terminator, nullptr, "" };
        const auto& all = commands();
        const auto found = std::lower_bound(
            all.begin(), all.end(), wanted, [](const Entry& a, const Entry& b) { return a.key() < b.key(); });
        return found != all.end() && found->key() == wanted.key() ? &*found : nullptr;
    };
    if (const Entry* entry = find(token.terminator))
        return entry;
    // A symbol set's letter is part of its name.
    const bool isSymbolSet = token.group == 0 && (token.prefix == '(' || token.prefix == ')');
    return isSymbolSet && token.terminator >= 'A' && token.terminator <= 'Z' ? find(0) : nullptr;
}

std::uint64_t Machine::dataLength(const Token& token, const Entry* entry)
{
    // What nobody knows but ends like a transfer is one; symbol sets end in any letter.
    const bool isSymbolSet = token.group == 0 && (token.prefix == '(' || token.prefix == ')');
    const bool hasData = entry ? entry->data == DataRule::Bytes : token.terminator == 'W' && !isSymbolSet;
    return hasData && token.value.number >= 1 ? static_cast<std::uint64_t>(token.value.number) : 0;
}

void Machine::readData(Tokenizer& tokenizer, const Token& token, std::uint64_t count)
{
    m_data.clear();
    const std::uint64_t taken = tokenizer.takeData(count, m_data, m_limits.imageRowBytes);
    if (taken == count)
        return;
    tokenizer.abandonSequence();
    const std::string shown
        = std::string("ESC") + token.prefix + (token.group ? std::string(1, token.group) : "") + "#" + token.terminator;
    const std::string message
        = "the data of " + shown + " end after " + std::to_string(taken) + " of " + std::to_string(count) + " bytes";
    if (m_isInMacro) {
        warn("pcl.macro-cut", message + " with the macro");
        return;
    }
    m_inputWasCut = true;
    damage("pcl.input-cut", message);
}

bool Machine::execute(Tokenizer& tokenizer, const Token& token)
{
    const Entry* entry = findCommand(token);
    const std::uint64_t count = dataLength(token, entry);
    if (count > 0)
        readData(tokenizer, token, count);
    else
        m_data.clear();
    const bool isObeyed = entry && entry->handler && (!m_environment.isPlotterRaster || isOfPlotters(*entry));
    if (isObeyed && !(m_raster && entry->raster == RasterRule::Waits)) {
        if (entry->raster == RasterRule::Ends)
            finishRaster();
        Command command;
        command.value = token.value;
        command.data = m_data;
        command.prefix = token.prefix;
        command.terminator = token.terminator;
        command.chained = token.chained;
        (this->*entry->handler)(command);
    }
    if (m_inputWasCut)
        fail(RunStatus::Damaged);
    if (m_sawUniversalExit)
        return false;
    if (m_wantsRecording)
        startRecording(tokenizer);
    // Some ink-jet drivers end a row offset or a plane with a capital letter and go on with the rows all the same.
    const bool isWithinRows
        = token.prefix == '*' && token.group == 'b' && (token.terminator == 'Y' || token.terminator == 'V');
    if (m_raster && !token.chained && isWithinRows)
        tokenizer.resumeIfContinued('*', 'b', "vwym");
    return true;
}

void Machine::executeTwoCharacter(const Token& token)
{
    for (const TwoCharacterEntry& entry : twoCharacterCommands()) {
        if (entry.code == static_cast<char>(token.byte) && entry.handler)
            (this->*entry.handler)({});
    }
}

void Machine::printerReset(const Command&)
{
    if (m_macroDepth == 0)
        reset();
}

void Machine::universalExit(const Command& command)
{
    if (command.value.number != kUniversalExitValue)
        return;
    reset();
    m_sawUniversalExit = true;
}

void Machine::reset()
{
    finishRaster();
    ejectPage(false);
    m_fonts.softFonts().removeTemporary();
    m_fonts.removeTemporarySymbolSets();
    m_macros.removeTemporary();
    m_patterns.removeTemporary();
    m_overlayMacro.reset();
    m_cursorStack.clear();
    m_isPlotting = false;
    m_displaysFunctions = false;
    m_leadByte = -1;
    m_utf8Missing = 0;
    m_pagesOnSheet = 0;
    m_state = userDefaults();
    softFontsChanged();
    m_tileCache = {};
    geometryChanged();
    if (m_plotter)
        m_plotter->reset();
    home();
}

} // namespace quillrip::pcl
