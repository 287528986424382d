#pragma once

#include "quillrip/base/input_stream.h"

#include <cstdint>

namespace quillrip::stream {

/// The next `length` bytes of another stream as an input of their own; offsets stay those of the other stream, which
/// must outlive this one and must not be read meanwhile.
class SectionInputStream final : public InputStream {
public:
    SectionInputStream(InputStream& parent, std::uint64_t length);

protected:
    std::size_t pull(std::uint8_t* to, std::size_t count) override;

private:
    InputStream& m_parent;
    std::uint64_t m_remaining;
};

/// The body of an HTTP message in chunks (RFC 9112, section 7.1) put together again.
class ChunkedInputStream final : public InputStream {
public:
    explicit ChunkedInputStream(InputStream& parent);

protected:
    std::size_t pull(std::uint8_t* to, std::size_t count) override;

private:
    bool nextChunk();

    InputStream& m_parent;
    std::uint64_t m_remaining = 0;
    bool m_ended = false;
    bool m_isFirst = true;
};

} // namespace quillrip::stream
