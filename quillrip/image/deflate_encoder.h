#pragma once

#include "quillrip/image/deflate_blocks.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace quillrip {

/// How repetitions are looked for, besides runs of equal pixels, which are always found.
struct DeflateMethod {
    int candidates = 0; ///< former places with the same hash that are compared, at most
    std::size_t isEnough = 0; ///< bytes of a repetition that is not improved any more
    /// Of a row, where rows are like the ones above them: those are compared first. 0 where a filter has taken that
    /// out.
    std::size_t rowBytes = 0;
};

/// Deflates rows of pixels, quickly where they hold much of the same: made for rows after a filter of PNG, most of
/// whose bytes are 0.
///
/// Runs are passed over eight bytes and more at a time, and only what lies between them is looked up. A repetition from
/// far away takes some 24 bits, so it is taken only where what it replaces would take more.
class DeflateEncoder {
public:
    /// The raw stream grows `out`. `pixelBytes` is 1 or 3.
    DeflateEncoder(std::vector<std::uint8_t>& out, std::size_t pixelBytes, DeflateMethod method);

    /// Where the next `count` bytes go, until the next call; commit() makes them part of the stream.
    std::uint8_t* room(std::size_t count);
    void commit(std::size_t count) { m_end += count; }
    /// So many rows, each of the byte `first` and `zeros` bytes 0, without looking at a byte.
    void addZeroRows(std::uint8_t first, std::size_t zeros, std::size_t rows);

    /// As those of DeflateBlocks.
    void flush();
    void finish();

    /// Adler-32 of the bytes that flush() or finish() has written, and how many they are.
    std::uint32_t checksum() const { return m_sumOfSums << 16 | m_sum; }
    std::uint64_t plainSize() const { return m_plainSize; }

private:
    void encodeWindow();
    template <std::size_t PixelBytes> void encode(std::size_t from, std::size_t to);
    struct Match {
        std::size_t length = 0;
        unsigned distance = 0;
    };
    template <std::size_t PixelBytes> Match findMatch(std::size_t at, std::size_t to);
    /// What is the same in the row above.
    Match matchAbove(std::size_t at, std::size_t to) const;
    bool isWorthwhile(const Match& match, std::size_t at) const;
    void remember(std::size_t at, std::size_t slot);
    void addToChecksum(const std::uint8_t* bytes, std::size_t count);
    void addZerosToChecksum(std::uint64_t count);

    DeflateBlocks m_blocks;
    const std::size_t m_pixelBytes;
    const DeflateMethod m_method;
    std::size_t m_capacity = 0;
    std::unique_ptr<std::uint8_t[]> m_window; ///< has a few bytes more than its capacity
    std::size_t m_encoded = 0; ///< bytes of the window that are written
    std::size_t m_end = 0; ///< and that there are
    /// What the stream's position is more than the window's; positions never come near 0, which stands for none.
    std::uint32_t m_offset;
    std::unique_ptr<std::uint32_t[]> m_latest; ///< by hash, the last place that has it
    std::unique_ptr<std::uint32_t[]> m_before; ///< by place, the one before that has the same hash
    std::uint32_t m_sum = 1;
    std::uint32_t m_sumOfSums = 0;
    std::uint64_t m_plainSize = 0;
};

} // namespace quillrip
