#include "quillrip/emf/plus/machine.h"

#include "quillrip/emf/plus/command_table.h"

#include <cstdint>
#include <cstdio>

namespace quillrip::emf::plus {

namespace {

constexpr std::uint32_t kVideoDisplay = 1;
/// Dots per inch that a header may give; others are mistakes.
constexpr std::uint32_t kFewestDots = 10;
constexpr std::uint32_t kMostDots = 100000;

std::string hexadecimal(std::uint16_t number)
{
    char text[8];
    std::snprintf(text, sizeof text, "0x%04X", unsigned { number });
    return text;
}

} // namespace

Machine::Machine(const Host& host)
    : m_host(host)
    , m_reporter(&host.diagnostics)
    , m_canvas(m_host, m_states, [this](const char* kind, const std::string& message) { warn(kind, message); })
{
}

void Machine::comment(ByteView records, std::uint64_t offset, bool mayStart)
{
    if (m_hasStopped || (m_kind == Interpreter::Kind::None && !mayStart))
        return;
    RecordReader reader(records);
    for (Record record;;) {
        switch (reader.next(record)) {
        case RecordReader::Step::End:
            return;
        case RecordReader::Step::Damaged:
            m_isDamaged = true;
            return damage("emfplus.size", "an EMF+ record has a size that cannot be right");
        case RecordReader::Step::Record:
            break;
        }
        m_reporter.at(offset + record.offset);
        if (m_reporter.isTracing())
            trace(record);
        if (m_kind == Interpreter::Kind::None) {
            if (record.type != kHeaderRecord)
                return;
            start(record);
            continue;
        }
        execute(record);
        if (m_hasStopped)
            return;
        if (m_host.painter.work().isExhausted())
            return;
    }
}

void Machine::start(const Record& header)
{
    m_kind = header.flags & kDualFlag ? Interpreter::Kind::Dual : Interpreter::Kind::Only;
    FieldReader fields(header.data);
    fields.u32(); // version
    LogicalDevice device;
    device.isVideoDisplay = fields.u32() & kVideoDisplay;
    device.dpiX = m_host.referenceResolution.x;
    device.dpiY = m_host.referenceResolution.y;
    const auto isUsable = [](std::uint32_t dpi) { return dpi >= kFewestDots && dpi <= kMostDots; };
    const std::uint32_t dpiX = fields.u32();
    const std::uint32_t dpiY = fields.u32();
    if (!fields.hasFailed() && isUsable(dpiX) && isUsable(dpiY)) {
        device.dpiX = dpiX;
        device.dpiY = dpiY;
    }
    m_canvas.setDevice(device);
}

void Machine::execute(const Record& record)
{
    if (m_isWithinPasted) {
        m_isWithinPasted = record.type != kEndOfFileRecord;
        return;
    }
    if (record.type == kHeaderRecord) {
        // A picture pasted into this one, mostly by plain records behind a GetDC: they show it too, and go on to draw.
        m_isWithinPasted = true;
        return;
    }
    m_hasHandedOver = false;
    if (record.type == kEndOfFileRecord) {
        m_hasStopped = true;
        return;
    }
    const std::string problem = record.type == kObjectRecord ? m_objects.define(record) : m_objects.interrupt();
    if (!problem.empty())
        warn("emfplus.object", "an object of EMF+ is left out: " + problem);
    const Command* const command = findCommand(record.type);
    if (!command)
        return warn("emfplus.unknown", "EMF+ record of an unknown kind (" + hexadecimal(record.type) + ") passed over");
    if (!command->handler)
        return;
    FieldReader fields(record.data);
    command->handler(*this, record, fields);
    if (fields.hasFailed())
        warn("emfplus.operands",
            std::string(command->name) + " record too short, or with a number that no drawing can use, passed over");
}

void Machine::trace(const Record& record) const
{
    const Command* const command = findCommand(record.type);
    m_reporter.trace("EMF+ " + (command ? command->name : "record " + hexadecimal(record.type)) + " flags "
        + hexadecimal(record.flags) + ", " + std::to_string(record.data.size) + " bytes");
}

bool Machine::letsRecordsThrough() const
{
    if (m_kind == Interpreter::Kind::None || m_hasHandedOver)
        return true;
    return m_isDamaged && m_kind == Interpreter::Kind::Dual && !m_canvas.hasMarked();
}

bool Machine::takeEffect()
{
    const bool had = m_hasEffect;
    m_hasEffect = false;
    return had;
}

void Machine::warn(const char* kind, const std::string& message)
{
    if (m_warned.insert(kind).second)
        m_reporter.warn(kind, message);
}

void Machine::damage(const char* kind, const std::string& message)
{
    m_hasStopped = true;
    m_reporter.damage(kind, message);
}

} // namespace quillrip::emf::plus
