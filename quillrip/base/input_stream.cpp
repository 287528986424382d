#include "quillrip/base/input_stream.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace quillrip {

bool InputStream::refill(std::size_t wanted)
{
    std::size_t have = static_cast<std::size_t>(m_end - m_at);
    if (m_ended || have >= wanted)
        return have > 0;
    if (m_buffer.empty())
        m_buffer.resize(2 * kLookAhead);
    if (have > 0)
        std::memmove(m_buffer.data(), m_at, have);
    while (have < wanted && !m_ended) {
        const std::size_t pulled = pull(m_buffer.data() + have, m_buffer.size() - have);
        m_ended = pulled == 0;
        have += pulled;
        m_offsetOfEnd += pulled;
    }
    m_at = m_buffer.data();
    m_end = m_at + have;
    return have > 0;
}

ByteView InputStream::window(std::size_t wanted)
{
    refill(std::min(wanted, kLookAhead));
    return { m_at, static_cast<std::size_t>(m_end - m_at) };
}

std::size_t InputStream::read(std::uint8_t* to, std::size_t count)
{
    std::size_t done = 0;
    while (done < count && (m_at != m_end || refill(1))) {
        const std::size_t step = std::min(count - done, static_cast<std::size_t>(m_end - m_at));
        std::memcpy(to + done, m_at, step);
        m_at += step;
        done += step;
    }
    return done;
}

std::uint64_t InputStream::skip(std::uint64_t count)
{
    std::uint64_t done = 0;
    while (done < count && (m_at != m_end || refill(1))) {
        const std::uint64_t step = std::min<std::uint64_t>(count - done, static_cast<std::uint64_t>(m_end - m_at));
        m_at += step;
        done += step;
    }
    return done;
}

MemoryInputStream::MemoryInputStream(ByteView bytes)
{
    m_at = bytes.data;
    m_end = bytes.data + bytes.size;
    m_offsetOfEnd = bytes.size;
}

std::size_t MemoryInputStream::pull(std::uint8_t*, std::size_t) { return 0; }

Made<FileInputStream> FileInputStream::open(const std::string& path)
{
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return Made<FileInputStream>::refused(std::strerror(errno));
    return std::make_unique<FileInputStream>(descriptor);
}

FileInputStream::~FileInputStream() { ::close(m_descriptor); }

std::size_t FileInputStream::pull(std::uint8_t* to, std::size_t count)
{
    for (;;) {
        const ssize_t got = ::read(m_descriptor, to, count);
        if (got >= 0)
            return static_cast<std::size_t>(got);
        if (errno != EINTR) {
            m_failed = true;
            return 0;
        }
    }
}

} // namespace quillrip
