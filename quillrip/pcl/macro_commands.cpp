#include "quillrip/pcl/machine.h"

#include <algorithm>

namespace quillrip::pcl {

namespace {

/// A macro may run another, and that one a third.
constexpr int kMacroDepth = 3;

} // namespace

void Machine::setMacroId(const Command& command)
{
    m_state.macroKey = {};
    m_state.macroKey.number = std::clamp(command.value.integer(), 0, 32767);
}

void Machine::controlMacro(const Command& command)
{
    const int action = command.value.integer();
    const bool isDefinition = action == 0 || action == 1 || (action >= 6 && action <= 10);
    // A macro may not change macros while it runs.
    if (isDefinition && m_macroDepth > 0)
        return;
    const bool concernsOverlay
        = m_overlayMacro && !(*m_overlayMacro < m_state.macroKey) && !(m_state.macroKey < *m_overlayMacro);
    switch (action) {
    case 0:
        if (concernsOverlay)
            m_overlayMacro.reset();
        m_wantsRecording = true;
        break;
    case 2:
        runMacro(m_macros.find(m_state.macroKey));
        break;
    case 3:
        callMacro(m_macros.find(m_state.macroKey));
        break;
    case 4:
        if (m_macros.find(m_state.macroKey))
            m_overlayMacro = m_state.macroKey;
        break;
    case 5:
        m_overlayMacro.reset();
        break;
    case 6:
        m_macros.removeAll();
        m_overlayMacro.reset();
        break;
    case 7:
        m_macros.removeTemporary();
        if (m_overlayMacro && !m_macros.find(*m_overlayMacro))
            m_overlayMacro.reset();
        break;
    case 8:
        m_macros.remove(m_state.macroKey);
        if (concernsOverlay)
            m_overlayMacro.reset();
        break;
    case 9:
    case 10:
        m_macros.setPermanent(m_state.macroKey, action == 10);
        break;
    default:
        break;
    }
}

void Machine::startRecording(Tokenizer& tokenizer)
{
    m_wantsRecording = false;
    m_isRecording = true;
    m_recordingKey = m_state.macroKey;
    m_macros.remove(m_recordingKey);
    m_recorded.clear();
    const std::size_t held = m_macros.bytes();
    tokenizer.startRecording(m_recorded, m_limits.macroBytes - std::min(m_limits.macroBytes, held));
}

void Machine::stopRecording(Tokenizer& tokenizer)
{
    tokenizer.stopRecording();
    m_isRecording = false;
    if (tokenizer.recordOverflowed()) {
        damage("pcl.macro-memory", "the job's macros need more memory than the limit allows");
        fail(RunStatus::LimitExceeded);
        return;
    }
    m_macros.put(m_recordingKey, std::make_shared<const std::vector<std::uint8_t>>(std::move(m_recorded)));
    m_recorded = {};
}

bool Machine::record(Tokenizer& tokenizer, const Token& token)
{
    if (token.kind == Token::Kind::TwoCharacter) {
        // A reset is not allowed in a macro and is not kept.
        if (token.byte == 'E')
            tokenizer.dropTokenFromRecord();
        return false;
    }
    if (token.kind != Token::Kind::Command)
        return false;
    const bool isStop
        = token.prefix == '&' && token.group == 'f' && token.terminator == 'X' && token.value.integer() == 1;
    const bool isExit = token.prefix == '%' && token.group == 0 && token.terminator == 'X';
    if (isStop || isExit) {
        tokenizer.dropTokenFromRecord();
        stopRecording(tokenizer);
        return isExit;
    }
    tokenizer.skipData(dataLength(token, findCommand(token)));
    return false;
}

void Machine::runMacro(const MacroBytes& bytes)
{
    if (!bytes || failed())
        return;
    if (m_macroDepth >= kMacroDepth) {
        if (!m_hasReportedDepth)
            warn("pcl.macro-depth", "macros that run each other more than three levels deep are not followed further");
        m_hasReportedDepth = true;
        return;
    }
    if (!m_replay.enter(bytes->size(), openPage())) {
        m_replay.leave(openPage());
        damage("pcl.macro-executions", "the job runs macros more often than the limit allows");
        fail(RunStatus::LimitExceeded);
        return;
    }
    const bool wasInMacro = m_isInMacro;
    m_isInMacro = true;
    ++m_macroDepth;
    // The command that came here, such as text that fills a page, may still be using its data.
    std::vector<std::uint8_t> data;
    data.swap(m_data);
    MemoryInputStream stream { ByteView(*bytes) };
    Tokenizer tokenizer { stream };
    interpret(tokenizer);
    m_data.swap(data);
    m_replay.leave(openPage());
    --m_macroDepth;
    m_isInMacro = wasInMacro;
}

void Machine::callMacro(const MacroBytes& bytes)
{
    if (!bytes)
        return;
    const State saved = m_state;
    const Position place = m_state.page.toOrientation(m_cursor, m_state.direction);
    runMacro(bytes);
    if (!failed())
        restore(saved, place);
}

void Machine::restore(const State& saved, Position place)
{
    finishRaster();
    endUnderlineRun();
    const PageLayout& now = m_state.page;
    const bool isOtherPage = now.size().code != saved.page.size().code || now.length() != saved.page.length()
        || now.orientation() != saved.page.orientation();
    if (isOtherPage)
        ejectPage(false);
    m_state = saved;
    m_cursor = saved.page.fromOrientation(place, saved.direction);
    geometryChanged();
    softFontsChanged();
    if (isOtherPage)
        home();
    beginUnderline();
}

} // namespace quillrip::pcl
