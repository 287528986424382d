#include "quillrip/stream/section_input_stream.h"

#include <algorithm>
#include <cstdint>

namespace quillrip::stream {

SectionInputStream::SectionInputStream(InputStream& parent, std::uint64_t length)
    : m_parent(parent)
    , m_remaining(length)
{
    m_offsetOfEnd = parent.offset();
}

std::size_t SectionInputStream::pull(std::uint8_t* to, std::size_t count)
{
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(count, m_remaining));
    const std::size_t got = wanted == 0 ? 0 : m_parent.read(to, wanted);
    m_remaining -= got;
    m_failed = m_parent.failed();
    return got;
}

ChunkedInputStream::ChunkedInputStream(InputStream& parent)
    : m_parent(parent)
{
    m_offsetOfEnd = parent.offset();
}

// `[CR LF] size-in-hex [; extension] CR LF`; a size of 0 ends the body.
bool ChunkedInputStream::nextChunk()
{
    if (!m_isFirst) {
        while (m_parent.peek() == '\r' || m_parent.peek() == '\n')
            m_parent.get();
    }
    m_isFirst = false;
    std::uint64_t size = 0;
    int digits = 0;
    for (;; ++digits) {
        const int c = m_parent.peek();
        const int lower = c | 0x20;
        int digit = -1;
        if (c >= '0' && c <= '9')
            digit = c - '0';
        else if (lower >= 'a' && lower <= 'f')
            digit = lower - 'a' + 10;
        if (digit < 0 || digits == 15)
            break;
        size = size * 16 + static_cast<std::uint64_t>(digit);
        m_parent.get();
    }
    for (int c = m_parent.get(); c >= 0 && c != '\n';)
        c = m_parent.get();
    m_remaining = size;
    return digits > 0 && size > 0;
}

std::size_t ChunkedInputStream::pull(std::uint8_t* to, std::size_t count)
{
    if (m_ended)
        return 0;
    if (m_remaining == 0 && !nextChunk()) {
        m_ended = true;
        return 0;
    }
    const std::size_t got = m_parent.read(to, static_cast<std::size_t>(std::min<std::uint64_t>(count, m_remaining)));
    m_remaining -= got;
    m_ended = got == 0;
    m_failed = m_parent.failed();
    return got;
}

} // namespace quillrip::stream
