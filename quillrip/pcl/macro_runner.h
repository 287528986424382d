#pragma once

#include "quillrip/base/input_stream.h"
#include "quillrip/base/limits.h"
#include "quillrip/pcl/macro_store.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace quillrip::pcl {

class ErrorState;
class Tokenizer;
struct Token;

/// Records macros and plays them, within bounds: a macro may run another, and that one a third, and every run
/// is charged to the job's work.
class MacroRunner {
public:
    /// `interpret` carries out what a macro holds. All references must outlive the runner.
    MacroRunner(const Limits& limits, ErrorState& errors, std::function<void(InputStream&)> interpret);

    MacroStore& store() { return m_store; }

    /// Recording begins behind the command in progress, which may be part of a combined sequence.
    void requestRecording(const ResourceKey& key);
    bool isRecordingRequested() const { return m_isRequested; }
    void startRecording(Tokenizer& tokenizer);
    void stopRecording(Tokenizer& tokenizer);
    bool isRecording() const { return m_isRecording; }
    /// A token that was read while recording; its data are taken along.
    void record(Tokenizer& tokenizer, const Token& token);

    /// Ignored when null.
    void play(const MacroBytes& bytes);
    bool isPlaying() const { return m_depth > 0; }

    /// The macro that is called for every page; kept only as long as it exists.
    void setOverlay(const ResourceKey& key);
    void clearOverlay() { m_overlay.reset(); }
    bool isOverlay(const ResourceKey& key) const;
    MacroBytes overlay() const { return m_overlay ? m_store.find(*m_overlay) : nullptr; }
    void playOverlay(const MacroBytes& bytes);
    bool isOverlayPlaying() const { return m_isOverlayPlaying; }
    void removeTemporary();

private:
    const Limits& m_limits;
    ErrorState& m_errors;
    std::function<void(InputStream&)> m_interpret;
    MacroStore m_store;

    std::vector<std::uint8_t> m_recorded;
    bool m_isRequested = false;
    bool m_isRecording = false;
    ResourceKey m_recordingKey;

    int m_depth = 0;
    bool m_hasReportedDepth = false;

    std::optional<ResourceKey> m_overlay;
    bool m_isOverlayPlaying = false;
};

} // namespace quillrip::pcl
