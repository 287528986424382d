#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

extern "C" {
#include <jpeglib.h>
}

namespace quillrip {

/// Bytes that rows of coefficients may have as the library wants them; others are coded. Shared by the arrays of one
/// file, so that small pictures are never coded at all.
class PlainRowAllowance {
public:
    static constexpr std::size_t kDefault = std::size_t { 4 } << 20;

    explicit PlainRowAllowance(std::size_t bytes = kDefault)
        : m_left(bytes)
    {
    }

    bool take(std::size_t bytes)
    {
        if (bytes > m_left)
            return false;
        m_left -= bytes;
        return true;
    }

private:
    std::size_t m_left;
};

/// The coefficients of one component of a JPEG file that comes in several scans (ITU-T Recommendation T.81, G), as rows
/// of blocks. Each scan passes over all of them. A picture's coefficients take two bytes for each sample, whatever the
/// file has; but most are zero, and those that are not took a bit of it at least. So only the rows in use are plain;
/// the others keep what is not zero, and an empty one keeps nothing.
class JpegCoefficients {
public:
    /// All zero. `mostInUse`: rows that are asked for at once. `allowance` must outlive it.
    JpegCoefficients(std::size_t blocksInRow, std::size_t rows, std::size_t mostInUse, PlainRowAllowance& allowance);
    JpegCoefficients(const JpegCoefficients&) = delete;
    JpegCoefficients& operator=(const JpegCoefficients&) = delete;

    std::size_t rowCount() const { return m_rows.size(); }
    std::size_t mostInUse() const { return m_mostInUse; }
    /// Blocks of the rows from `first` on, plain until the next call. What is written into them is kept where
    /// `willBeWritten`. Throws std::bad_alloc, and is not to be used then.
    JBLOCKARRAY rows(std::size_t first, std::size_t count, bool willBeWritten);

private:
    using Blocks = std::unique_ptr<JBLOCK[]>;
    struct Row {
        Blocks plain; ///< null: the row is coded
        std::vector<std::uint8_t> coded; ///< what is not zero
        bool isAhead = false; ///< `plain` has what `coded` has not
        bool isKeptPlain = false; ///< by the allowance
    };

    void makePlain(Row& row);
    void putAway(Row& row);
    void encode(Row& row);
    void decode(const Row& row) const;

    std::size_t m_blocksInRow;
    std::size_t m_mostInUse;
    std::vector<Row> m_rows;
    std::size_t m_firstInUse = 0;
    std::size_t m_inUse = 0;
    std::vector<JBLOCKROW> m_window;
    std::vector<Blocks> m_spare; ///< all zero
    std::unique_ptr<std::uint8_t[]> m_code; ///< of the row that is being put away; room for any
    PlainRowAllowance& m_allowance;
};

} // namespace quillrip
