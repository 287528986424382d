#pragma once

#include "quillrip/base/reporter.h"
#include "quillrip/emf/plus/canvas.h"
#include "quillrip/emf/plus/interpreter.h"
#include "quillrip/emf/plus/object_store.h"
#include "quillrip/emf/plus/record_reader.h"
#include "quillrip/emf/plus/state.h"

#include <cstdint>
#include <set>
#include <string>

namespace quillrip::emf::plus {

/// Plays the EMF+ records of one metafile. The command table says which handler runs a record; handlers work with the
/// rooms below.
class Machine {
public:
    explicit Machine(const Host& host);

    /// As Interpreter says.
    void comment(ByteView records, std::uint64_t offset, bool mayStart);
    void standBack()
    {
        m_kind = Interpreter::Kind::None;
        m_hasStopped = true;
    }
    Interpreter::Kind kind() const { return m_kind; }
    bool letsRecordsThrough() const;
    PixelSet clipForRecords() const { return m_canvas.clip(); }

    StateStack& states() { return m_states; }
    GraphicsState& state() { return m_states.current(); }
    ObjectStore& objects() { return m_objects; }
    Canvas& canvas() { return m_canvas; }
    const Host& host() const { return m_host; }

    /// Shown once for each kind.
    void warn(const char* kind, const std::string& message);
    const Reporter& reporter() const { return m_reporter; }
    /// Plain records draw from here to the next record of EMF+.
    void handOver() { m_hasHandedOver = true; }
    /// The next image drawn by points asks for an effect.
    void noteEffect() { m_hasEffect = true; }
    bool takeEffect();

private:
    void start(const Record& header);
    void execute(const Record& record);
    void damage(const char* kind, const std::string& message);
    void trace(const Record& record) const;

    const Host m_host;
    Interpreter::Kind m_kind = Interpreter::Kind::None;
    Reporter m_reporter; ///< stands on the record that runs
    bool m_hasHandedOver = false;
    bool m_hasStopped = false; ///< at the end record, or at damage
    bool m_isDamaged = false;
    bool m_isWithinPasted = false;
    bool m_hasEffect = false;
    StateStack m_states;
    ObjectStore m_objects;
    Canvas m_canvas;
    std::set<std::string> m_warned;
};

} // namespace quillrip::emf::plus
