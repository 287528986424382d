#include "quillrip/pclxl/machine.h"

#include "quillrip/pclxl/stream_header.h"

namespace quillrip::pclxl {

Machine::Machine(PageDevice& device, DiagnosticSink& diagnostics, const Limits& limits, FontLibrary& fonts,
    const Environment& environment)
    : m_device(device)
    , m_diagnostics(diagnostics)
    , m_limits(limits)
    , m_fonts(fonts)
    , m_environment(environment)
{
}

Interpreter::End Machine::run(InputStream& input)
{
    ByteOrder order = ByteOrder::LittleEndian;
    Status status;
    while (input.peek() == ' ' || (input.peek() >= '\t' && input.peek() <= '\r') || input.peek() == 0)
        input.get();
    m_position = 0;
    m_offset = input.offset();
    m_entry = nullptr;
    if (standsOnStreamHeader(input))
        status = readStreamHeader(input, order);
    else
        order = guessByteOrder(input);

    TagReader reader(input, order);
    m_reader = &reader;
    m_dataSourceIsOpen = false;
    m_dataOrder = order;
    if (status.isOk())
        status = interpret(reader, false);
    if (status.isOk() && m_page.isOpen) {
        m_offset = reader.offset();
        m_entry = nullptr;
        status = Error::PrematureEnd;
    }
    if (!status.isOk())
        reportError(status, m_offset);
    else if (m_session.isOpen)
        warn("pclxl.session-not-ended", "the stream ends without EndSession");
    abandonPage();
    resetSession();
    if (status.endsJob()) {
        m_status = status.error == Error::LimitExceeded ? RunStatus::LimitExceeded : RunStatus::OutputFailed;
        m_reader = nullptr;
        return Interpreter::End::Failed;
    }
    if (!status.isOk()) {
        if (m_status == RunStatus::Done)
            m_status = RunStatus::Damaged;
        passOver(reader, status.error == Error::IllegalTag || status.error == Error::IllegalStreamHeader);
    }
    m_reader = nullptr;
    return input.atEnd() ? Interpreter::End::InputEnded : Interpreter::End::UniversalExit;
}

/// Operators till the end of the stream, or of a user stream.
Status Machine::interpret(TagReader& reader, bool isUserStream)
{
    for (;;) {
        const TagReader::Token token = reader.next(m_operands);
        if (!isUserStream)
            m_offset = reader.offset();
        switch (token) {
        case TagReader::Token::Operator: {
            const Status status = dispatch(reader);
            if (!status.isOk())
                return status;
            if (m_replay.isRunning() && !m_replay.mayGoOn(openPage()))
                return Error::LimitExceeded;
            break;
        }
        case TagReader::Token::EmbeddedData: {
            warn("pclxl.extra-data", "data that no operator asked for are passed over");
            EmbeddedData surplus(reader.input(), reader.byteOrder(), m_dataOrder);
            surplus.skipRest();
            if (surplus.isTruncated())
                return Error::PrematureEnd;
            break;
        }
        case TagReader::Token::StreamHeader: {
            // Jobs put together from parts may start a new stream without a Universal Exit in between.
            if (m_session.isOpen || isUserStream) {
                m_entry = nullptr;
                return Error::IllegalTag;
            }
            ByteOrder order = reader.byteOrder();
            const Status status = readStreamHeader(reader.input(), order);
            if (!status.isOk())
                return status;
            reader.setByteOrder(order);
            m_dataOrder = order;
            break;
        }
        case TagReader::Token::UniversalExit:
            if (isUserStream) {
                m_entry = nullptr;
                return Error::IllegalTag;
            }
            return {};
        case TagReader::Token::End:
            return {};
        case TagReader::Token::Truncated:
            m_entry = nullptr;
            return Error::PrematureEnd;
        case TagReader::Token::Illegal:
            m_entry = nullptr;
            return Error::IllegalTag;
        case TagReader::Token::TooManyOperands:
            m_entry = nullptr;
            return Error::IllegalArraySize;
        }
        if (reader.orphans() > 0)
            warn("pclxl.orphan", "a value without a name, or a name without a value, is ignored");
    }
}

Status Machine::dispatch(TagReader& reader)
{
    ++m_position;
    const OperatorEntry* entry = findOperator(reader.tag());
    m_entry = entry;
    if (!entry) {
        warn("pclxl.unknown-operator",
            "operator number " + std::to_string(reader.tag()) + " is not known and is ignored");
        return {};
    }
    const std::uint8_t place = m_page.isOpen ? kInPage : m_session.isOpen ? kInSession : kOutside;
    if (!(entry->places & place) || (entry->within != Definition::Any && entry->within != m_definition))
        return Error::IllegalOperatorSequence;
    Attribute ignored = Attribute::None;
    Status status = validate(*entry, m_operands, ignored);
    if (!status.isOk())
        return status;
    if (ignored != Attribute::None)
        warn("pclxl.attribute",
            std::string(entry->name) + " has no attribute " + nameOf(ignored) + " ("
                + std::to_string(static_cast<unsigned>(ignored)) + "), it is ignored");

    EmbeddedData data(reader.input(), reader.byteOrder(), m_dataOrder);
    EmbeddedData* const outer = m_data;
    m_data = &data;
    status = (this->*entry->run)();
    if (entry->takesData) {
        data.skipRest();
        if (data.isTruncated() && !status.endsJob())
            status = Error::PrematureEnd;
    }
    m_data = outer;
    m_fontDiagnostics.passOn(m_diagnostics, !status.isOk());
    // An error within a user stream has named its own operator.
    if (!status.isOk() && entry->tag != Operator::ExecStream)
        m_entry = entry;
    return status;
}

/// After an error: to the end of the stream. As long as the syntax holds it shows where data end, in which anything
/// may look like an exit.
void Machine::passOver(TagReader& reader, bool hasLostTrack)
{
    while (!hasLostTrack) {
        switch (reader.next(m_operands)) {
        case TagReader::Token::Operator:
            if (reader.tag() == static_cast<std::uint8_t>(Operator::VendorUnique))
                reader.input().skip(static_cast<std::uint64_t>(m_operands.integer(Attribute::VUDataLength)));
            break;
        case TagReader::Token::EmbeddedData: {
            EmbeddedData data(reader.input(), reader.byteOrder(), reader.byteOrder());
            data.skipRest();
            break;
        }
        case TagReader::Token::UniversalExit:
        case TagReader::Token::End:
            return;
        default:
            hasLostTrack = true;
        }
    }
    skipToUniversalExit(reader.input());
}

void Machine::reportError(const Status& status, std::uint64_t offset)
{
    std::string message;
    if (status.error == Error::PrematureEnd)
        message = m_page.isOpen ? "the stream ends within a page" : "the stream ends too soon";
    else
        message = std::string("PCL XL error ") + nameOf(status.error);
    if (m_entry)
        message += std::string(", subsystem ") + nameOf(m_entry->subsystem) + ", operator " + m_entry->name;
    if (status.attribute != Attribute::None)
        message += std::string(", attribute ") + nameOf(status.attribute);
    message += ", position " + std::to_string(m_position);
    m_diagnostics.report({ Severity::Damage, offset, std::string("pclxl.error.") + nameOf(status.error), message });
}

void Machine::warn(const char* kind, const std::string& message)
{
    if (m_warned.insert(kind).second)
        m_diagnostics.report({ Severity::Warning, m_offset, kind, message });
}

void Machine::abandonPage()
{
    if (m_page.hasPassedThrough && m_environment.passThrough)
        m_environment.passThrough->endPage();
    m_image = {};
    m_vendorImage.reset();
    m_page = {};
    m_replay.pageEnded();
    m_state = {};
    m_stack.clear();
    m_stackCosts.clear();
    m_stackCost = 0;
    m_definition = Definition::None;
    paintChanged();
}

void Machine::resetSession()
{
    m_session = {};
    m_patterns.clear();
    m_patternBytes = 0;
    m_softFonts.clear();
    m_softFontBytes = 0;
    m_glyphs.clear();
    m_fontHeader = {};
    m_streamData = {};
    m_runningStreams.clear();
    m_dataSourceIsOpen = false;
}

Status Machine::deviceStatus(RunStatus status)
{
    switch (status) {
    case RunStatus::Done:
        return {};
    case RunStatus::LimitExceeded:
        return Error::LimitExceeded;
    default:
        return Error::OutputFailed;
    }
}

} // namespace quillrip::pclxl
