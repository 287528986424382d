#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/emf/dib.h"
#include "quillrip/emf/run_length_rows.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillrip::emf {

/// Width times height of a DIB, at most.
constexpr std::uint64_t kMostDibPixels = std::uint64_t { 1 } << 27;

/// A run of bits in a pixel's word.
struct DibChannel {
    std::uint32_t mask = 0;
    int shift = 0;
    int width = 0;

    DibChannel() = default;
    explicit DibChannel(std::uint32_t bits);
    /// As many bits as there are, said again until there are eight: what Windows does.
    std::uint8_t of(std::uint32_t word) const
    {
        if (width == 0)
            return 0;
        const std::uint64_t value = (word & mask) >> shift & ((std::uint64_t { 1 } << width) - 1);
        if (width >= 8)
            return static_cast<std::uint8_t>(value >> (width - 8));
        std::uint64_t repeated = 0;
        int bits = 0;
        for (; bits < 8; bits += width)
            repeated = repeated << width | value;
        return static_cast<std::uint8_t>(repeated >> (bits - 8));
    }
};

/// Where a pixel's word has its colours.
struct DibChannels {
    DibChannel red;
    DibChannel green;
    DibChannel blue;
    DibChannel alpha;
};

/// A device-independent bitmap of which rows are decoded when they are asked for. The bits must outlive it.
class DibReader {
public:
    /// The JPEG or PNG that stands in the place of the bits; nothing for a DIB of rows, which open() reads.
    static std::optional<ByteView> imageFile(ByteView header, ByteView bits);

    /// False, with the reason in `problem`, when there is nothing to be read. Rows that the bits do not reach are
    /// white, and `problem` says so.
    bool open(ByteView header, ByteView bits, const DibContext& context, std::string& problem);

    const PictureShape& shape() const { return m_shape; }
    /// Writes shape().rowBytes().
    void row(int y, std::uint8_t* to) const;

private:
    PictureShape m_shape;
    ByteView m_bits; ///< rows as they are stored
    bool m_isRuns = false; ///< the rows are those of m_runs
    RunLengthRows m_runs;
    std::size_t m_stride = 0;
    std::size_t m_rows = 0; ///< that the bits hold
    int m_depth = 0;
    std::vector<Rgb> m_table;
    DibChannels m_channels;
};

} // namespace quillrip::emf
