#include "quillrip/pclxl/machine.h"

#include "quillrip/base/reporter.h"
#include "quillrip/fonts/font_library.h"
#include "quillrip/pclxl/drawing.h"
#include "quillrip/pclxl/graphics_stack.h"
#include "quillrip/pclxl/held_diagnostics.h"
#include "quillrip/pclxl/page.h"
#include "quillrip/pclxl/page_image.h"
#include "quillrip/pclxl/pattern_in_progress.h"
#include "quillrip/pclxl/pattern_store.h"
#include "quillrip/pclxl/session.h"
#include "quillrip/pclxl/soft_fonts.h"
#include "quillrip/pclxl/stream_header.h"
#include "quillrip/pclxl/text_setter.h"
#include "quillrip/pclxl/trace.h"
#include "quillrip/pclxl/user_streams.h"
#include "quillrip/pclxl/vendor_image.h"

#include <cstdint>
#include <string>

namespace quillrip::pclxl {

namespace {

/// Work of an operator without what it draws.
constexpr std::uint64_t kUnitsPerOperator = 200;

} // namespace

struct Machine::Rooms {
    Rooms(PageDevice& device, DiagnosticSink& diagnostics, const Limits& limits, GlyphPainter& glyphs)
        : sink(diagnostics)
        , reporter(&diagnostics)
        , page(device)
        , drawing(page, graphics, limits, reporter)
        , textSetter(page, graphics, drawing, glyphs, limits, reporter)
        , patterns(limits.patternBytes)
        , softFonts(limits.fontBytes)
        , userStreams(limits.macroBytes)
    {
    }

    DiagnosticSink& sink;
    HeldDiagnostics fontDiagnostics;
    Reporter reporter;
    Session session;
    DataSource dataSource;
    Page page;
    GraphicsStack graphics;
    Drawing drawing;
    TextSetter textSetter;
    PatternStore patterns;
    SoftFonts softFonts;
    UserStreams userStreams;
    std::unique_ptr<PageImage> image;
    std::unique_ptr<PatternInProgress> definedPattern;
    std::unique_ptr<VendorImage> vendorImage;
    std::unique_ptr<FastRasterImage> fastRaster;
};

Machine::Machine(PageDevice& device, DiagnosticSink& diagnostics, const Limits& limits, FontLibrary& fonts,
    const Environment& environment)
    : m_limits(limits)
    , m_fonts(fonts)
    , m_environment(environment)
    , m_rooms(std::make_unique<Rooms>(device, diagnostics, m_limits, fonts.glyphs()))
{
}

Machine::~Machine() = default;

Reporter& Machine::reporter() { return m_rooms->reporter; }

Reporter Machine::fontReporter() { return { &m_rooms->fontDiagnostics, m_rooms->reporter.offset() }; }

Session& Machine::session() { return m_rooms->session; }

DataSource& Machine::dataSource() { return m_rooms->dataSource; }

Page& Machine::page() { return m_rooms->page; }

GraphicsStack& Machine::graphics() { return m_rooms->graphics; }

GraphicsState& Machine::state() { return m_rooms->graphics.state(); }

const GraphicsState& Machine::state() const { return m_rooms->graphics.state(); }

Drawing& Machine::drawing() { return m_rooms->drawing; }

TextSetter& Machine::textSetter() { return m_rooms->textSetter; }

PatternStore& Machine::patterns() { return m_rooms->patterns; }

const PatternStore& Machine::patterns() const { return m_rooms->patterns; }

SoftFonts& Machine::softFonts() { return m_rooms->softFonts; }

UserStreams& Machine::userStreams() { return m_rooms->userStreams; }

std::unique_ptr<PageImage>& Machine::image() { return m_rooms->image; }

std::unique_ptr<PatternInProgress>& Machine::definedPattern() { return m_rooms->definedPattern; }

std::unique_ptr<VendorImage>& Machine::vendorImage() { return m_rooms->vendorImage; }

std::unique_ptr<FastRasterImage>& Machine::fastRaster() { return m_rooms->fastRaster; }

Interpreter::End Machine::run(InputStream& input)
{
    ByteOrder order = ByteOrder::LittleEndian;
    Status status;
    while (input.peek() == ' ' || (input.peek() >= '\t' && input.peek() <= '\r') || input.peek() == 0)
        input.get();
    m_position = 0;
    m_rooms->reporter.at(input.offset());
    m_command = nullptr;
    if (standsOnStreamHeader(input))
        status = readStreamHeader(input, order);
    else
        order = guessByteOrder(input);

    TagReader reader(input, order);
    m_reader = &reader;
    m_rooms->dataSource = { false, order };
    if (status.isOk())
        status = interpret(reader, false);
    if (status.isOk() && m_rooms->page.isOpen()) {
        m_rooms->reporter.at(reader.offset());
        m_command = nullptr;
        status = Error::PrematureEnd;
    }
    if (!status.isOk())
        reportError(status);
    else if (m_rooms->session.isOpen)
        m_rooms->reporter.warn("pclxl.session-not-ended", "the stream ends without EndSession");
    leavePage();
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
    std::uint32_t orphans = 0;
    for (;;) {
        const TagReader::Token token = reader.next(m_operands);
        if (!isUserStream)
            m_rooms->reporter.at(reader.offset());
        switch (token) {
        case TagReader::Token::Operator: {
            const Status status = execute(reader);
            if (!status.isOk())
                return status;
            if (!m_limits.work->allows(Work::Commands, kUnitsPerOperator))
                return Error::LimitExceeded;
            break;
        }
        case TagReader::Token::EmbeddedData: {
            m_rooms->reporter.warn("pclxl.extra-data", "data that no operator asked for are passed over");
            EmbeddedData surplus(reader.input(), reader.byteOrder(), m_rooms->dataSource.order);
            surplus.skipRest();
            if (surplus.isTruncated())
                return Error::PrematureEnd;
            break;
        }
        case TagReader::Token::StreamHeader: {
            // Jobs put together from parts may start a new stream without a Universal Exit in between.
            if (m_rooms->session.isOpen || isUserStream) {
                m_command = nullptr;
                return Error::IllegalTag;
            }
            ByteOrder order = reader.byteOrder();
            const Status status = readStreamHeader(reader.input(), order);
            if (!status.isOk())
                return status;
            reader.setByteOrder(order);
            m_rooms->dataSource.order = order;
            break;
        }
        case TagReader::Token::UniversalExit:
            if (isUserStream) {
                m_command = nullptr;
                return Error::IllegalTag;
            }
            return {};
        case TagReader::Token::End:
            return {};
        case TagReader::Token::Truncated:
            m_command = nullptr;
            return Error::PrematureEnd;
        case TagReader::Token::Illegal:
            m_command = nullptr;
            return Error::IllegalTag;
        case TagReader::Token::TooManyOperands:
            m_command = nullptr;
            return Error::IllegalArraySize;
        }
        if (reader.orphans() > orphans) {
            orphans = reader.orphans();
            m_rooms->reporter.warn("pclxl.orphan", "a value without a name, or a name without a value, is ignored");
        }
    }
}

Status Machine::execute(TagReader& reader)
{
    ++m_position;
    const CommandEntry* command = find(reader.tag());
    m_command = command;
    if (!command) {
        m_rooms->reporter.warn("pclxl.unknown-operator",
            "operator number " + std::to_string(reader.tag()) + " is not known and is ignored");
        return {};
    }
    const std::uint8_t place = m_rooms->page.isOpen() ? kInPage : m_rooms->session.isOpen ? kInSession : kOutside;
    if (!(command->places & place) || (command->within != Definition::Any && command->within != m_definition))
        return Error::IllegalOperatorSequence;
    Attribute ignored = Attribute::None;
    Status status = validate(*command, m_operands, ignored);
    if (!status.isOk())
        return status;
    if (ignored != Attribute::None)
        m_rooms->reporter.warn("pclxl.attribute",
            std::string(command->name) + " has no attribute " + nameOf(ignored) + " ("
                + std::to_string(static_cast<unsigned>(ignored)) + "), it is ignored");

    if (m_rooms->reporter.isTracing())
        m_rooms->reporter.trace(traceOf(*command, m_operands));

    EmbeddedData data(reader.input(), reader.byteOrder(), m_rooms->dataSource.order);
    EmbeddedData* const outer = m_data;
    m_data = &data;
    status = command->run(*this);
    if (command->takesData) {
        data.skipRest();
        if (data.isTruncated() && !status.endsJob())
            status = Error::PrematureEnd;
    }
    m_data = outer;
    m_rooms->fontDiagnostics.passOn(m_rooms->sink, !status.isOk());
    // An error within a user stream has named its own operator.
    if (!status.isOk() && command->tag != Operator::ExecStream)
        m_command = command;
    return status;
}

Status Machine::runUserStream(ByteView bytes)
{
    return m_limits.work->allowsRecording(bytes.size) ? readOperators(bytes) : Status(Error::LimitExceeded);
}

Status Machine::readOperators(ByteView bytes)
{
    MemoryInputStream input(bytes);
    ByteOrder order = m_reader->byteOrder();
    if (standsOnStreamHeader(input)) {
        const Status status = readStreamHeader(input, order);
        if (!status.isOk())
            return status;
    }
    TagReader* const outerReader = m_reader;
    const DataSource outerSource = m_rooms->dataSource;
    const Definition outerDefinition = m_definition;
    TagReader reader(input, order);
    m_reader = &reader;
    m_rooms->dataSource.order = order;
    const Status status = interpret(reader, true);
    m_reader = outerReader;
    m_rooms->dataSource = outerSource;
    if (status.isOk() && m_definition != outerDefinition)
        return Error::IllegalOperatorSequence;
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

void Machine::reportError(const Status& status)
{
    std::string message;
    if (status.error == Error::PrematureEnd)
        message = m_rooms->page.isOpen() ? "the stream ends within a page" : "the stream ends too soon";
    else
        message = std::string("PCL XL error ") + nameOf(status.error);
    if (m_command)
        message += std::string(", subsystem ") + nameOf(m_command->subsystem) + ", operator " + m_command->name;
    if (status.attribute != Attribute::None)
        message += std::string(", attribute ") + nameOf(status.attribute);
    message += ", position " + std::to_string(m_position);
    const std::string kind = std::string("pclxl.error.") + nameOf(status.error);
    m_rooms->reporter.damage(kind.c_str(), message);
}

void Machine::endVendorImages()
{
    if (m_rooms->vendorImage)
        m_rooms->vendorImage->image.finish();
    m_rooms->vendorImage.reset();
    if (m_rooms->fastRaster)
        m_rooms->fastRaster->image.finish();
    m_rooms->fastRaster.reset();
}

void Machine::leavePage()
{
    // Images hold on to the page's painter.
    m_rooms->image.reset();
    m_rooms->definedPattern.reset();
    m_rooms->vendorImage.reset();
    m_rooms->fastRaster.reset();
    m_rooms->page.close();
    m_rooms->graphics.reset();
    m_rooms->drawing.stateChanged();
    m_definition = Definition::None;
}

void Machine::resetSession()
{
    m_rooms->session = {};
    m_rooms->patterns.endSession();
    m_rooms->softFonts.endSession();
    m_rooms->userStreams.abandonDefinition();
    m_rooms->dataSource.isOpen = false;
}

} // namespace quillrip::pclxl
