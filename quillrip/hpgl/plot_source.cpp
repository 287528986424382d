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
    // ESC, a parameterised character, perhaps a group character, numbers and letters up to a capital. A number before
    // W counts bytes of data behind it, in which an ESC means nothing, as does that before the V of a raster's plane.
    constexpr std::size_t kLongest = 256;
    const ByteView window = m_input.window(kLongest);
    std::size_t at = 0;
    if (!m_isInSequence) {
        if (window.size < 2 || window[1] < 0x21 || window[1] > 0x2F || window[1] == '.')
            return 1;
        m_isTransfer = window.size > 2 && isRasterTransfer(window[1], window[2]);
        at = 2;
    }
    m_isInSequence = false;
    std::uint64_t number = 0;
    for (; at < window.size; ++at) {
        const std::uint8_t byte = window[at];
        if (byte >= '0' && byte <= '9') {
            number = std::min<std::uint64_t>(number * 10 + (byte - '0'), UINT32_MAX);
            continue;
        }
        if (byte < 0x20 || byte > 0x7E)
            return at;
        const std::uint8_t letter = byte & 0xDF;
        const std::uint64_t data = letter == 'W' || (letter == 'V' && m_isTransfer) ? number : 0;
        if (byte >= '@' && byte <= '^')
            return at + 1 + data;
        if (data > 0) {
            m_isInSequence = true; // and goes on behind the data
            return at + 1 + data;
        }
        if (byte != '.' && byte != ' ')
            number = 0;
    }
    return window.size;
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
