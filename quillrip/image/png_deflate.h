#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <zlib.h>

namespace quillrip {

/// How zlib looks for repetitions.
struct DeflateMethod {
    int level;
    int strategy;
};

/// Raw deflate streams (RFC 1951) that grow a vector.
class Deflater {
public:
    Deflater(std::vector<std::uint8_t>& out, DeflateMethod method);
    ~Deflater();
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;

    /// False when there was no memory; nothing else may be called then.
    bool isReady() const { return m_isReady; }

    /// With Z_FULL_FLUSH or Z_FINISH all bytes so far are in the vector, and end with a whole byte.
    void add(const std::uint8_t* bytes, std::size_t count, int flush);

    /// Puts bytes of another stream behind what is flushed.
    void join(const std::vector<std::uint8_t>& bytes);

private:
    std::vector<std::uint8_t>& m_out;
    std::size_t m_used; ///< of m_out, which is longer between two flushes
    z_stream m_stream {};
    bool m_isReady = false;
};

/// A run of equal rows, the first byte of each that of a filter and the others 0, compressed beforehand: in powers
/// of four, since no other part of a page is as frequent as repeated white rows.
class WhiteRows {
public:
    /// Rows of `rowBytes` bytes with the filter's; as many as a run of `longestRun` rows needs.
    WhiteRows(std::size_t rowBytes, std::uint8_t filter, std::size_t longestRun);

    std::size_t rowBytes() const { return m_rowBytes; }
    std::size_t longestRun() const { return m_longestRun; }
    /// False when there was no memory; then join() must not be called.
    bool isReady() const { return !m_runs.empty(); }
    /// Whether so many rows are worth the few bytes that joining streams costs.
    static bool isWorthwhile(std::size_t rows, std::size_t rowBytes);

    /// Adds the rows to what is flushed and to the checksum (Adler-32) of the plain bytes so far.
    void join(std::size_t rows, Deflater& deflater, std::uint32_t& checksum) const;

private:
    struct Run {
        std::vector<std::uint8_t> bytes;
        std::uint32_t checksum = 0;
        std::size_t plainSize = 0;
    };
    std::size_t m_rowBytes;
    std::size_t m_longestRun;
    std::vector<Run> m_runs; ///< of 1, 4, 16 ... rows
};

} // namespace quillrip
