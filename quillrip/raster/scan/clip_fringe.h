#pragma once

#include "quillrip/base/geometry.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillrip {

/// The pixels that the edge of a clip crosses, with how much of each lies inside. Rows of cells from left to right.
class ClipFringe {
public:
    struct Cell {
        int x;
        std::uint8_t coverage; ///< 1 to 254
    };

    /// For rows top <= y < bottom.
    ClipFringe(int top, int bottom);

    /// Cells come in the order of rows and columns. What is all inside or all outside is no cell.
    void add(int y, int x, unsigned coverage);

    bool empty() const { return m_cells.empty(); }
    /// Nothing for rows that there are no cells in.
    const Cell* begin(int y) const { return m_cells.data() + firstOf(y); }
    const Cell* end(int y) const { return m_cells.data() + firstOf(y + 1); }
    ClipFringe moved(int right, int down) const;

private:
    std::size_t firstOf(int y) const;

    int m_top;
    int m_bottom;
    std::vector<std::size_t> m_rowStarts; ///< rows up to the last one with a cell
    std::vector<Cell> m_cells;
};

} // namespace quillrip
