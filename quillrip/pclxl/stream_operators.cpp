#include "quillrip/pclxl/machine.h"
#include "quillrip/pclxl/stream_header.h"

#include <algorithm>

namespace quillrip::pclxl {

namespace {

constexpr std::size_t kMaxNesting = 32;

} // namespace

Status Machine::beginStream()
{
    m_definedStream = streamName();
    if (m_definedStream.empty())
        return { Error::IllegalArraySize, Attribute::StreamName };
    m_streamData.clear();
    m_definition = Definition::Stream;
    return {};
}

Status Machine::readStream()
{
    const double length = m_operands.number(Attribute::StreamDataLength);
    if (length < 0)
        return { Error::IllegalAttributeValue, Attribute::StreamDataLength };
    const std::uint64_t wanted = static_cast<std::uint64_t>(length);
    std::uint64_t done = 0;
    while (done < wanted) {
        const ByteView at = data().chunk();
        const ByteView chunk = at.sub(0, static_cast<std::size_t>(std::min<std::uint64_t>(wanted - done, at.size)));
        if (chunk.empty())
            return { Error::MissingData, Attribute::StreamDataLength };
        if (m_streamBytes + m_streamData.size() + chunk.size > m_limits.macroBytes)
            return Error::InsufficientMemory;
        m_streamData.insert(m_streamData.end(), chunk.begin(), chunk.end());
        data().take(chunk.size);
        done += chunk.size;
    }
    return {};
}

Status Machine::endStream()
{
    StreamBytes& stored = m_streams[m_definedStream];
    if (stored)
        m_streamBytes -= stored->size();
    stored = std::make_shared<const std::vector<std::uint8_t>>(std::move(m_streamData));
    m_streamBytes += stored->size();
    m_streamData = {};
    m_definition = Definition::None;
    return {};
}

/// The operators of the stream run as if they stood here: on the same page, with the same graphics state.
Status Machine::execStream()
{
    const std::string name = streamName();
    const auto found = m_streams.find(name);
    if (found == m_streams.end())
        return { Error::StreamUndefined, Attribute::StreamName };
    if (std::find(m_runningStreams.begin(), m_runningStreams.end(), name) != m_runningStreams.end())
        return { Error::StreamAlreadyRunning, Attribute::StreamName };
    if (m_runningStreams.size() >= kMaxNesting)
        return { Error::StreamNestingFull, Attribute::StreamName };
    const StreamBytes bytes = found->second; // it may be replaced while it runs
    if (!m_replay.enter(bytes->size(), openPage())) {
        m_replay.leave(openPage());
        return Error::LimitExceeded;
    }
    const Status status = runStream(name, *bytes);
    m_replay.leave(openPage());
    return status;
}

Status Machine::runStream(const std::string& name, ByteView bytes)
{
    MemoryInputStream input(bytes);
    ByteOrder order = m_reader->byteOrder();
    if (standsOnStreamHeader(input)) {
        const Status status = readStreamHeader(input, order);
        if (!status.isOk())
            return status;
    }
    TagReader* const outerReader = m_reader;
    const ByteOrder outerDataOrder = m_dataOrder;
    const bool outerDataSource = m_dataSourceIsOpen;
    const Definition outerDefinition = m_definition;
    TagReader reader(input, order);
    m_reader = &reader;
    m_dataOrder = order;
    m_runningStreams.push_back(name);
    const Status status = interpret(reader, true);
    m_runningStreams.pop_back();
    m_reader = outerReader;
    m_dataOrder = outerDataOrder;
    m_dataSourceIsOpen = outerDataSource;
    if (status.isOk() && m_definition != outerDefinition)
        return Error::IllegalOperatorSequence;
    return status;
}

Status Machine::removeStream()
{
    const auto found = m_streams.find(streamName());
    if (found == m_streams.end()) {
        warn("pclxl.stream-not-removed", "a user stream is to be removed that does not exist (StreamUndefined)");
        return {};
    }
    m_streamBytes -= found->second->size();
    m_streams.erase(found);
    return {};
}

} // namespace quillrip::pclxl
