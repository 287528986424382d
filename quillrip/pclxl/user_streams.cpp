#include "quillrip/pclxl/user_streams.h"

#include <algorithm>
#include <utility>

namespace quillrip::pclxl {

namespace {

constexpr std::size_t kMaxNesting = 32;

} // namespace

void UserStreams::beginDefinition(const std::string& name)
{
    m_definedName = name;
    m_definedBytes.clear();
}

Status UserStreams::append(EmbeddedData& data, std::uint64_t length)
{
    while (length > 0) {
        const ByteView at = data.chunk();
        const ByteView chunk = at.sub(0, static_cast<std::size_t>(std::min<std::uint64_t>(length, at.size)));
        if (chunk.empty())
            return { Error::MissingData, Attribute::StreamDataLength };
        if (m_bytes + m_definedBytes.size() + chunk.size > m_maxBytes)
            return Error::InsufficientMemory;
        m_definedBytes.insert(m_definedBytes.end(), chunk.begin(), chunk.end());
        data.take(chunk.size);
        length -= chunk.size;
    }
    return {};
}

void UserStreams::endDefinition()
{
    Bytes& stored = m_streams[m_definedName];
    if (stored)
        m_bytes -= stored->size();
    stored = std::make_shared<const std::vector<std::uint8_t>>(std::move(m_definedBytes));
    m_bytes += stored->size();
    m_definedBytes = {};
}

UserStreams::Bytes UserStreams::find(const std::string& name) const
{
    const auto found = m_streams.find(name);
    return found == m_streams.end() ? nullptr : found->second;
}

bool UserStreams::remove(const std::string& name)
{
    const auto found = m_streams.find(name);
    if (found == m_streams.end())
        return false;
    m_bytes -= found->second->size();
    m_streams.erase(found);
    return true;
}

Status UserStreams::enter(const std::string& name)
{
    if (std::find(m_running.begin(), m_running.end(), name) != m_running.end())
        return { Error::StreamAlreadyRunning, Attribute::StreamName };
    if (m_running.size() >= kMaxNesting)
        return { Error::StreamNestingFull, Attribute::StreamName };
    m_running.push_back(name);
    return {};
}

void UserStreams::abandonDefinition() { m_definedBytes = {}; }

} // namespace quillrip::pclxl
