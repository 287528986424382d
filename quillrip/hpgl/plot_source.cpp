#include "quillrip/hpgl/plot_source.h"

#include "quillrip/hpgl/lexer.h"

#include <algorithm>
#include <cstring>

namespace quillrip::hpgl {

std::size_t PlotSource::pull(std::uint8_t* to, std::size_t count)
{
    if (m_isOver || count == 0)
        return 0;
    constexpr std::size_t kLook = 4096;
    const ByteView window = m_input.window(kLook);
    if (window.empty()) {
        m_isOver = true;
        m_failed = m_input.failed();
        return 0;
    }
    std::size_t take = std::min(count, window.size);
    if (m_opaque == 0 && m_isInSequence)
        m_opaque = escapeLength();
    if (m_opaque == 0 && window[0] == kEscape) {
        if (startsWithUniversalExit(window)) {
            m_isOver = true;
            m_end = End::UniversalExit;
            return 0;
        }
        if (window.size >= 2 && window[1] == 'E') {
            m_isOver = true;
            m_end = End::Reset;
            m_input.skip(2);
            return 0;
        }
        m_opaque = escapeLength();
    }
    if (m_opaque > 0) {
        take = static_cast<std::size_t>(std::min<std::uint64_t>(take, m_opaque));
        m_opaque -= take;
    } else if (const void* escape = std::memchr(window.data, kEscape, take)) {
        take = static_cast<std::size_t>(static_cast<const std::uint8_t*>(escape) - window.data);
    }
    return m_input.read(to, take);
}

std::uint64_t PlotSource::escapeLength()
{
    constexpr std::size_t kLongest = 256;
    EscapeReader reader(m_input.window(kLongest));
    if (m_isInSequence)
        reader.resume(m_prefix, m_group);
    else if (reader.peek(1) == '.' || !reader.open())
        return 1;
    m_isInSequence = false;
    while (const auto parameter = reader.next()) {
        if (const std::uint64_t data = dataLength(*parameter)) {
            m_isInSequence = parameter->isCombined;
            m_prefix = parameter->prefix;
            m_group = parameter->group;
            return reader.offset() + data;
        }
    }
    return reader.offset();
}

std::size_t ReplayStream::pull(std::uint8_t* to, std::size_t count)
{
    if (m_at < m_kept.size()) {
        const std::size_t take = std::min(count, m_kept.size() - m_at);
        std::memcpy(to, m_kept.data() + m_at, take);
        m_at += take;
        return take;
    }
    return m_rest.read(to, count);
}

} // namespace quillrip::hpgl
