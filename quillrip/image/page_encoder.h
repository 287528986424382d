#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/page_bitmap.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace quillrip {

/// One piece of an encoded page, on its way from a thread that encodes to the file.
struct EncodedPiece {
    std::vector<std::uint8_t> bytes;
    std::uint32_t checksum = 0; ///< of the uncompressed bytes, where the format has one over all of them
    std::uint64_t plainSize = 0; ///< how many bytes that checksum covers
};

/// Encodes one page, in pieces that do not depend on each other, so that several threads can do it.
class PageEncoder {
public:
    explicit PageEncoder(PageBitmap&& page)
        : m_page(std::move(page))
    {
        m_page.finish();
    }
    virtual ~PageEncoder() = default;

    const PageBitmap& page() const { return m_page; }

    virtual int pieceCount() const = 0;
    /// Called once for each piece, from 0 to pieceCount() - 1, on several threads at the same time. An empty string,
    /// or what went wrong. `encoded.bytes` may hold what a former piece has left there: all of it is replaced.
    virtual std::string encode(int piece, EncodedPiece& encoded) const = 0;

    /// Gives back the memory of rows that only pieces before this one look at; those are encoded.
    void freeRowsBefore(int piece)
    {
        const RowRange rows = rowsFrom(piece);
        m_page.keepOnly(rows.top, rows.bottom);
    }

    /// begin(), write() of all pieces in order, end(): from one thread at a time. False when the output failed; whoever
    /// owns the output knows why.
    virtual bool begin() = 0;
    virtual bool write(const EncodedPiece& piece) = 0;
    virtual bool end() = 0;

protected:
    struct RowRange {
        int top = 0;
        int bottom = 0;
    };
    /// All rows that encode() of a piece or of those behind it looks at.
    virtual RowRange rowsFrom(int piece) const = 0;

private:
    PageBitmap m_page;
};

/// Rows of a page in bands of about the same number of bytes: the usual way to cut a page into pieces.
class RowBands {
public:
    static constexpr std::size_t kUsualBytes = std::size_t { 1 } << 20;

    RowBands(const PageBitmap& page, std::size_t bytesPerBand)
        : m_height(page.height())
    {
        const std::size_t rows = bytesPerBand / page.rowBytes();
        m_rows = rows < 1 ? 1 : rows > static_cast<std::size_t>(m_height) ? m_height : static_cast<int>(rows);
    }

    int count() const { return (m_height - 1) / m_rows + 1; }
    int rows() const { return m_rows; }
    int top(int band) const { return band * m_rows; }
    int bottom(int band) const { return m_height - top(band) < m_rows ? m_height : top(band) + m_rows; }

private:
    int m_height;
    int m_rows = 1;
};

} // namespace quillrip
