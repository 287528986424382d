#include "quillrip/pcl/macro_runner.h"

#include "quillrip/pcl/command_table.h"
#include "quillrip/pcl/error_state.h"
#include "quillrip/pcl/tokenizer.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace quillrip::pcl {

namespace {

/// A macro may run another, and that one a third.
constexpr int kDeepest = 3;

} // namespace

MacroRunner::MacroRunner(const Limits& limits, ErrorState& errors, std::function<void(InputStream&)> interpret)
    : m_limits(limits)
    , m_errors(errors)
    , m_interpret(std::move(interpret))
{
}

void MacroRunner::requestRecording(const ResourceKey& key)
{
    m_isRequested = true;
    m_recordingKey = key;
}

void MacroRunner::startRecording(Tokenizer& tokenizer)
{
    m_isRequested = false;
    m_isRecording = true;
    m_store.remove(m_recordingKey);
    m_recorded.clear();
    const std::size_t held = m_store.bytes();
    tokenizer.startRecording(m_recorded, m_limits.macroBytes - std::min(m_limits.macroBytes, held));
}

void MacroRunner::stopRecording(Tokenizer& tokenizer)
{
    tokenizer.stopRecording();
    m_isRecording = false;
    if (tokenizer.recordOverflowed()) {
        m_errors.damage("pcl.macro-memory", "the job's macros need more memory than the limit allows");
        m_errors.fail(RunStatus::LimitExceeded);
        return;
    }
    m_store.put(m_recordingKey, std::make_shared<const std::vector<std::uint8_t>>(std::move(m_recorded)));
    m_recorded = {};
}

void MacroRunner::record(Tokenizer& tokenizer, const Token& token)
{
    if (token.kind == Token::Kind::TwoCharacter) {
        // A reset is not allowed in a macro and is not kept.
        if (token.byte == 'E')
            tokenizer.dropTokenFromRecord();
        return;
    }
    if (token.kind != Token::Kind::Command)
        return;
    const bool isStop
        = token.prefix == '&' && token.group == 'f' && token.terminator == 'X' && token.value.integer() == 1;
    if (isStop) {
        tokenizer.dropTokenFromRecord();
        stopRecording(tokenizer);
    } else {
        tokenizer.skipData(dataLength(token, find(token)));
    }
}

void MacroRunner::play(const MacroBytes& bytes)
{
    if (!bytes || m_errors.failed())
        return;
    if (m_depth >= kDeepest) {
        if (!m_hasReportedDepth)
            m_errors.warn(
                "pcl.macro-depth", "macros that run each other more than three levels deep are not followed further");
        m_hasReportedDepth = true;
        return;
    }
    if (!m_limits.work->allowsRecording(bytes->size()))
        return; // the run ends with the next command
    ++m_depth;
    MemoryInputStream stream { ByteView(*bytes) };
    m_interpret(stream);
    --m_depth;
}

void MacroRunner::setOverlay(const ResourceKey& key)
{
    if (m_store.find(key))
        m_overlay = key;
}

bool MacroRunner::isOverlay(const ResourceKey& key) const
{
    return m_overlay && !(*m_overlay < key) && !(key < *m_overlay);
}

void MacroRunner::playOverlay(const MacroBytes& bytes)
{
    m_isOverlayPlaying = true;
    play(bytes);
    m_isOverlayPlaying = false;
}

void MacroRunner::removeTemporary()
{
    m_store.removeTemporary();
    if (!overlay())
        m_overlay.reset();
}

} // namespace quillrip::pcl
