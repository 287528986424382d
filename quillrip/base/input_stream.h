#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/outcome.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quillrip {

/// Input as a window over something longer: a job of any size needs no more memory than the window. Reading forward
/// is cheap per byte; looking ahead is possible as far as the window reaches. A read error counts as the end of input
/// and is kept in failed().
class InputStream {
public:
    /// How far window() can look ahead, in bytes.
    static constexpr std::size_t kLookAhead = std::size_t { 64 } << 10;

    virtual ~InputStream() = default;
    InputStream(const InputStream&) = delete;
    InputStream& operator=(const InputStream&) = delete;

    /// The next byte, or -1 at the end of input.
    int get()
    {
        if (m_at == m_end && !refill(1))
            return -1;
        return *m_at++;
    }

    /// The next byte without taking it, or -1 at the end of input.
    int peek()
    {
        if (m_at == m_end && !refill(1))
            return -1;
        return *m_at;
    }

    /// The bytes that come next, without taking them: at least `wanted` (at most kLookAhead) unless the input ends
    /// before. Valid until the next call of any member.
    ByteView window(std::size_t wanted);

    /// Takes up to `count` bytes into `to`; returns how many there were.
    std::size_t read(std::uint8_t* to, std::size_t count);

    /// Takes up to `count` bytes without keeping them; returns how many there were.
    std::uint64_t skip(std::uint64_t count);

    /// Bytes taken so far: the place of the next byte in the whole input.
    std::uint64_t offset() const { return m_offsetOfEnd - static_cast<std::uint64_t>(m_end - m_at); }

    bool atEnd() { return peek() < 0; }
    bool failed() const { return m_failed; }

protected:
    InputStream() = default;

    /// Puts up to `count` bytes at `to`; 0 at the end. Sets m_failed on a read error.
    virtual std::size_t pull(std::uint8_t* to, std::size_t count) = 0;

    bool m_failed = false;
    const std::uint8_t* m_at = nullptr;
    const std::uint8_t* m_end = nullptr;
    std::uint64_t m_offsetOfEnd = 0;

private:
    bool refill(std::size_t wanted);

    std::vector<std::uint8_t> m_buffer;
    bool m_ended = false;
};

/// Bytes in memory: macros, user streams, tests. The bytes must outlive the stream.
class MemoryInputStream final : public InputStream {
public:
    explicit MemoryInputStream(ByteView bytes);

protected:
    std::size_t pull(std::uint8_t* to, std::size_t count) override;
};

/// A file read by its descriptor, which the stream owns. Sequential only, so pipes work too.
class FileInputStream final : public InputStream {
public:
    /// Refused when the file cannot be opened.
    static Made<FileInputStream> open(const std::string& path);
    explicit FileInputStream(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    ~FileInputStream() override;

    int descriptor() const { return m_descriptor; }

protected:
    std::size_t pull(std::uint8_t* to, std::size_t count) override;

private:
    int m_descriptor;
};

} // namespace quillrip
