#include "quillrip/hpgl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::hpgl {

namespace {

/// Operands that are kept for a command; the longest, RF with the largest tile, needs 3 + 255 * 255.
constexpr std::size_t kMostOperands = 65536;
/// Operands that a command with any number of coordinates gets at a time: a multiple of two (points) and six (curves).
constexpr std::size_t kCoordinateBatch = 6 * 512;
/// So many unknown commands before the first mark: then the data are hardly a plot.
constexpr unsigned kSuspiciousErrors = 64;

} // namespace

Machine::Machine(Host& host, Surface& surface, FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits,
    PlotListener* listener, RasterLanguage* rasterLanguage)
    : m_host(host)
    , m_surface(surface)
    , m_fonts(fonts)
    , m_sink(sink)
    , m_limits(limits)
    , m_listener(listener)
    , m_rasterLanguage(rasterLanguage)
{
}

void Machine::warn(const char* kind, std::string message)
{
    m_sink.report({ Severity::Warning, m_commandOffset, kind, std::move(message) });
}

int Machine::clampedInteger(std::size_t index, int otherwise) const
{
    if (index >= m_operands.size())
        return otherwise;
    return static_cast<int>(std::lround(std::clamp(m_operands[index], -32768.0, 32767.0)));
}

double Machine::clampedReal(std::size_t index, double otherwise) const
{
    return index < m_operands.size() ? std::clamp(m_operands[index], -32768.0, 32767.9999) : otherwise;
}

void Machine::makeReady()
{
    if (m_isReady) {
        updateFrame();
        return;
    }
    m_isReady = true;
    m_state = State {};
    updateFrame();
    initialise();
}

void Machine::powerOn()
{
    makeReady();
    initialiseCommand();
}

void Machine::reset()
{
    // The frame may not have gone back to its default yet, so the rest waits until it is asked for.
    m_line.clear();
    m_strokes.clear();
    m_polygon.clear();
    m_isPolygonMode = false;
    m_hasFont = false;
    m_isReady = false;
}

Point Machine::penOnPage()
{
    makeReady();
    return m_plotterToPage.apply(m_state.pen);
}

void Machine::setPenOnPage(Point page)
{
    makeReady();
    m_state.pen = m_plotterToPage.inverted().apply(page);
    m_state.carriageReturn = m_state.pen;
    m_linePhase = 0;
    m_hasDotToDraw = false;
}

void Machine::frameChanged()
{
    if (!m_isReady)
        return;
    updateFrame();
    m_state.window = Window {};
    defaultScalingPoints();
    m_isPolygonMode = false;
    m_polygon.clear();
    m_state.pen = m_state.carriageReturn = m_state.p1;
    m_linePhase = 0;
}

void Machine::frameRescaled()
{
    if (m_isReady)
        updateFrame();
}

Machine::Stop Machine::run(InputStream& input)
{
    makeReady();
    m_input = &input;
    Lexer lexer(input);
    Stop stop = Stop::InputEnded;
    bool goesOn = true;
    while (goesOn && status() == RunStatus::Done) {
        Mnemonic mnemonic = 0;
        const Lexer::Token token = lexer.next(mnemonic);
        if (token == Lexer::Token::End)
            break;
        if (token == Lexer::Token::Escape) {
            goesOn = obeyEscape(input, stop);
            continue;
        }
        m_commandOffset = input.offset() - 2;
        if (m_isSwitchedOff) {
            lexer.skipOperands();
            continue;
        }
        execute(mnemonic, lexer);
    }
    finishLine();
    flushStrokes();
    m_input = nullptr;
    return status() == RunStatus::Done ? stop : Stop::Failed;
}

/// False when the escape sequence ends the run.
bool Machine::obeyEscape(InputStream& input, Stop& stop)
{
    m_commandOffset = input.offset();
    if (m_rasterLanguage && !m_isSwitchedOff) {
        // Drivers set up the raster before they enter HP-GL/2 for the first time.
        const ByteView start = input.window(3);
        if (start.size >= 3 && (start[1] == '*' || (start[1] == '&' && (start[2] == 'a' || start[2] == 'p')))) {
            visitRasterLanguage(input, RasterLanguage::Entry::Unannounced);
            return true;
        }
    }
    const EscapeSequence sequence = readEscape(input);
    switch (sequence.kind) {
    case EscapeSequence::Kind::UniversalExit:
        stop = Stop::UniversalExit;
        return false;
    case EscapeSequence::Kind::Reset:
        stop = Stop::Reset;
        return false;
    case EscapeSequence::Kind::EnterPcl:
        if (!m_listener) {
            m_enterPclValue = sequence.value;
            stop = Stop::EnterPcl;
            return false;
        }
        if (m_rasterLanguage)
            visitRasterLanguage(
                input, (sequence.value & 1) ? RasterLanguage::Entry::AtPen : RasterLanguage::Entry::KeepsPosition);
        else
            skipRasterLanguage(input);
        return true;
    case EscapeSequence::Kind::DeviceControl:
        handleControl(sequence.control);
        return true;
    case EscapeSequence::Kind::EnterHpgl:
        return true;
    case EscapeSequence::Kind::Other:
        warn("hpgl.escape-sequence", "an escape sequence inside HP-GL/2 was skipped");
        return true;
    }
    return true;
}

void Machine::handleControl(char control)
{
    if (control == 'Z' || control == ')')
        m_isSwitchedOff = true;
    else if (control == 'Y' || control == '(')
        m_isSwitchedOff = false;
}

void Machine::execute(Mnemonic mnemonic, Lexer& lexer)
{
    const Entry* const entry = find(mnemonic);
    if (!entry || (entry->scope == Scope::PlotFile && !m_listener)) {
        lexer.skipOperands();
        if (!entry) {
            if (m_unknown.insert(mnemonic).second)
                warn("hpgl.unknown-command", "there is no HP-GL/2 command " + toString(mnemonic) + ", skipped");
            if (++m_errors == kSuspiciousErrors && !m_hasDrawn)
                m_sink.report({ Severity::Damage, m_commandOffset, "hpgl.not-a-plot",
                    "many unknown commands and no drawing: the data are hardly HP-GL/2" });
        }
        return;
    }
    if (entry->line != Line::Goes) {
        finishLine();
        flushStrokes();
    }
    if (entry->line == Line::Breaks)
        m_linePhase = 0;
    m_operands.clear();
    m_isContinued = false;
    if (entry->operands == Operands::Raw) {
        (this->*entry->handler)();
        return;
    }
    const bool isIgnored = m_isPolygonMode && !entry->isLegalInPolygon;
    if (entry->operands == Operands::Numbers) {
        if (!lexer.readNumbers(m_operands, kMostOperands))
            lexer.skipOperands();
        if (!isIgnored)
            (this->*entry->handler)();
        return;
    }
    for (;;) {
        const bool hasEnded = lexer.readNumbers(m_operands, kCoordinateBatch);
        if (!isIgnored && !(m_isContinued && m_operands.empty()))
            (this->*entry->handler)();
        if (hasEnded)
            return;
        m_operands.clear();
        m_isContinued = true;
    }
}

} // namespace quillrip::hpgl
