#include "quillrip/job/image_store.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <unistd.h>

namespace quillrip {

namespace {

/// A stretch of a file that others read and write too.
class FileStretch final : public InputStream {
public:
    FileStretch(int descriptor, std::uint64_t from, std::uint64_t to)
        : m_descriptor(descriptor)
        , m_place(from)
        , m_end(to)
    {
    }

protected:
    std::size_t pull(std::uint8_t* to, std::size_t count) override
    {
        const std::size_t wanted = static_cast<std::size_t>(std::min<std::uint64_t>(count, m_end - m_place));
        ssize_t got = -1;
        do
            got = ::pread(m_descriptor, to, wanted, static_cast<off_t>(m_place));
        while (got < 0 && errno == EINTR);
        m_failed = got < 0;
        if (got <= 0)
            return 0;
        m_place += static_cast<std::uint64_t>(got);
        return static_cast<std::size_t>(got);
    }

private:
    int m_descriptor;
    std::uint64_t m_place;
    std::uint64_t m_end;
};

} // namespace

std::unique_ptr<InputStream> ImageStore::keep(InputStream& images)
{
    if (m_file.descriptor() < 0 && !m_file.create())
        return nullptr;
    const std::uint64_t from = m_bytes;
    for (ByteView window = images.window(1); !window.empty(); window = images.window(1)) {
        if (m_bytes + window.size > m_mostBytes || !m_file.write(window.data, window.size)) {
            // The room is free again.
            m_bytes = ::lseek(m_file.descriptor(), static_cast<off_t>(from), SEEK_SET) < 0 ? m_mostBytes : from;
            return nullptr;
        }
        m_bytes += window.size;
        images.skip(window.size);
    }
    return std::make_unique<FileStretch>(m_file.descriptor(), from, m_bytes);
}

} // namespace quillrip
