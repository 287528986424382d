#pragma once

#include "quillrip/raster/images/image_painter.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillrip {

/// Neighbouring rows of an image, of which new ones come at the end and old ones go at the beginning. Rows hold ink, in
/// as few bytes as the page can tell apart: a bilevel source stays packed, a grey one has a byte a pixel, colours have
/// the page's channels, and alpha is a byte behind them that they are multiplied by.
class RowWindow {
public:
    /// Of each row it keeps the columns firstColumn <= x < endColumn. `pageChannels`: 1 or 3.
    RowWindow(ImageFormat format, int pageChannels, int firstColumn, int endColumn);

    /// What a row of so many columns takes, in bytes.
    static std::size_t rowBytes(ImageFormat format, int pageChannels, std::int64_t columns);
    static std::size_t channels(ImageFormat format, int pageChannels);

    /// So many rows never cost more memory than they take.
    void reserve(std::int64_t rows) { m_bytes.reserve(static_cast<std::size_t>(rows) * m_rowBytes); }
    /// The next row, whole as the source has it.
    void add(const std::uint8_t* pixels);
    /// White ones, or transparent ones where the source has alpha. Together they take a row's memory, until add() is
    /// called before they are dropped.
    void addBlank(std::int64_t count);
    /// Rows that nobody is going to ask for, before the first that are kept or behind the last.
    void pass(std::int64_t count);
    /// Gives up the rows before `row`.
    void dropBefore(std::int64_t row);

    /// Rows that have come, those that went included.
    std::int64_t end() const { return m_first + count(); }
    /// Rows that it has, blank ones included.
    std::int64_t count() const { return m_stored + m_repeats; }
    /// A row's pixels from the first column on. A row that is not there gives its nearest; there must be one.
    const std::uint8_t* row(std::int64_t row) const
    {
        const std::int64_t index = row - m_first;
        const std::int64_t inside = index < 0 ? 0 : index < m_stored ? index : m_stored - 1;
        return m_bytes.data() + static_cast<std::size_t>(inside) * m_rowBytes;
    }
    int firstColumn() const { return m_firstColumn; }
    int columns() const { return m_columns; }

private:
    std::uint8_t* append(std::int64_t count);

    ImageFormat m_format;
    int m_pageChannels;
    int m_firstColumn; ///< a whole byte's in a bilevel source
    int m_columns;
    std::size_t m_rowBytes;
    std::int64_t m_first = 0; ///< row
    std::int64_t m_stored = 0;
    std::int64_t m_repeats = 0; ///< how often the last row, a blank one, comes again
    std::vector<std::uint8_t> m_bytes;
};

} // namespace quillrip
