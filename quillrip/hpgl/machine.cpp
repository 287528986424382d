#include "quillrip/hpgl/machine.h"

#include "quillrip/hpgl/command_table.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace quillrip::hpgl {

namespace {

/// Operands that are kept for a command; the longest, RF with the largest tile, needs 3 + 255 * 255.
constexpr std::size_t kMostOperands = 65536;
/// Operands that a command with any number of coordinates gets at a time: a multiple of two (points) and six (curves).
constexpr std::size_t kCoordinateBatch = std::size_t { 6 } * 512;
/// Work of a command without what it draws.
constexpr std::uint64_t kUnitsPerCommand = 100;
/// So many unknown commands before the first mark: then the data are hardly a plot.
constexpr unsigned kSuspiciousErrors = 64;

} // namespace

Machine::Machine(Host& host, Surface& surface, FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits,
    PlotListener* listener, RasterLanguage* rasterLanguage)
    : m_plotter(host, surface, fonts, sink, limits, listener, rasterLanguage)
{
}

void Machine::powerOn()
{
    m_plotter.makeReady();
    m_plotter.initialiseWithPalette();
}

End Machine::run(InputStream& input)
{
    m_plotter.makeReady();
    Lexer lexer(input);
    Command command(input);
    End end = End::InputEnded;
    while (status() == RunStatus::Done) {
        Mnemonic mnemonic = 0;
        const Lexer::Token token = lexer.next(mnemonic);
        if (token == Lexer::Token::End)
            break;
        if (token == Lexer::Token::Escape) {
            if (const std::optional<End> reached = obeyEscape(input)) {
                end = *reached;
                break;
            }
            continue;
        }
        m_plotter.work.charge(Work::Commands, kUnitsPerCommand);
        m_plotter.reporter.at(input.offset() - 2);
        // Within PCL a plot has no pages that noise could multiply, and PCL watches its own text.
        if (m_plotter.listener && hearsNoise(input)) {
            m_plotter.reporter.damage("hpgl.noise", "binary data where commands of a plot would be");
            break;
        }
        if (m_isSwitchedOff)
            lexer.skipOperands();
        else
            execute(mnemonic, lexer, command);
    }
    m_plotter.linePen.end();
    return status() == RunStatus::Done ? end : End::Failed;
}

/// Listens to what stands ahead of a command, each byte once; behind an escape sequence there may be raster.
bool Machine::hearsNoise(InputStream& input)
{
    constexpr std::size_t kAhead = 256;
    const TextState& text = m_plotter.text;
    const bool isText = text.mode == LabelMode::OneByte || text.mode == LabelMode::OneByteVertical;
    if (input.offset() < m_heardUntil || !isText)
        return false;
    const ByteView ahead = input.window(kAhead);
    bool isNoise = false;
    std::size_t heard = 0;
    while (heard < std::min(ahead.size, kAhead) && ahead[heard] != kEscape)
        isNoise = m_noise.isNoise(ahead[heard++], false) || isNoise;
    m_heardUntil = input.offset() + heard;
    return isNoise;
}

/// Tells the end when the escape sequence ends the run.
std::optional<End> Machine::obeyEscape(InputStream& input)
{
    m_plotter.reporter.at(input.offset());
    const RasterVisit& raster = m_plotter.raster;
    if (raster.isPossible() && !m_isSwitchedOff) {
        // Drivers set up the raster before they enter HP-GL/2 for the first time.
        const ByteView start = input.window(3);
        if (start.size >= 3 && (start[1] == '*' || (start[1] == '&' && (start[2] == 'a' || start[2] == 'p')))) {
            m_plotter.visitRasterLanguage(input, RasterLanguage::Entry::Unannounced);
            return std::nullopt;
        }
    }
    const EscapeSequence sequence = readEscape(input);
    switch (sequence.kind) {
    case EscapeSequence::Kind::UniversalExit:
        return End::UniversalExit;
    case EscapeSequence::Kind::Reset:
        return End::Reset;
    case EscapeSequence::Kind::EnterPcl:
        if (!m_plotter.listener) {
            m_enterPclValue = sequence.value;
            return End::EnterPcl;
        }
        if (raster.isPossible()) {
            m_plotter.visitRasterLanguage(
                input, (sequence.value & 1) ? RasterLanguage::Entry::AtPen : RasterLanguage::Entry::KeepsPosition);
        } else {
            m_plotter.reporter.warn("hpgl.raster-language", "raster graphics between HP-GL/2 (HP RTL) are not drawn");
            RasterVisit::skip(input);
        }
        return std::nullopt;
    case EscapeSequence::Kind::DeviceControl:
        obeyDeviceControl(sequence.control);
        return std::nullopt;
    case EscapeSequence::Kind::EnterHpgl:
        return std::nullopt;
    case EscapeSequence::Kind::Other:
        m_plotter.reporter.warn("hpgl.escape-sequence", "an escape sequence inside HP-GL/2 was skipped");
        return std::nullopt;
    }
    return std::nullopt;
}

void Machine::obeyDeviceControl(char control)
{
    if (control == 'Z' || control == ')')
        m_isSwitchedOff = true;
    else if (control == 'Y' || control == '(')
        m_isSwitchedOff = false;
}

void Machine::reportUnknown(Mnemonic mnemonic)
{
    if (m_unknown.insert(mnemonic).second)
        m_plotter.reporter.warn(
            "hpgl.unknown-command", "there is no HP-GL/2 command " + toString(mnemonic) + ", skipped");
    if (++m_errors == kSuspiciousErrors && !m_plotter.state.hasDrawn)
        m_plotter.reporter.damage(
            "hpgl.not-a-plot", "many unknown commands and no drawing: the data are hardly HP-GL/2");
}

void Machine::trace(const MnemonicEntry& entry, const std::vector<double>& operands) const
{
    if (m_plotter.reporter.isTracing())
        m_plotter.reporter.trace(toString(entry.mnemonic) + " (" + entry.name + ")", operands);
}

void Machine::execute(Mnemonic mnemonic, Lexer& lexer, Command& command)
{
    const MnemonicEntry* const entry = findMnemonic(mnemonic);
    if (!entry)
        reportUnknown(mnemonic);
    if (!entry || (entry->isForPlotFiles() && !m_plotter.listener)) {
        lexer.skipOperands();
        return;
    }
    if (entry->line != LineEffect::Goes)
        m_plotter.linePen.end();
    if (entry->line == LineEffect::Breaks)
        m_plotter.linePen.restartPattern();
    const Handler handler = findHandler(mnemonic);
    if (!handler) {
        trace(*entry, {});
        lexer.skipOperands();
        return;
    }
    command.operands.clear();
    command.isContinued = false;
    const bool isIgnored = m_plotter.polygon.isOpen() && !entry->isLegalInPolygon();
    switch (entry->reading()) {
    case Reading::ByHandler:
        trace(*entry, {});
        handler(m_plotter, command);
        return;
    case Reading::AtOnce:
        if (!lexer.readNumbers(command.operands, kMostOperands))
            lexer.skipOperands();
        trace(*entry, command.operands);
        if (!isIgnored)
            handler(m_plotter, command);
        return;
    case Reading::InBatches:
        for (;;) {
            const bool hasEnded = lexer.readNumbers(command.operands, kCoordinateBatch);
            trace(*entry, command.operands);
            if (!isIgnored && !(command.isContinued && command.empty()))
                handler(m_plotter, command);
            if (hasEnded)
                return;
            command.operands.clear();
            command.isContinued = true;
        }
    }
}

} // namespace quillrip::hpgl
