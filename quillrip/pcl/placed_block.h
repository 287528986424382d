#pragma once

#include "quillrip/base/bytes.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace quillrip::pcl {

/// Raster method 1027, of Brother's lasers: each transfer holds a block of rows with its place on the page, in words of
/// 16 pixels. Pixels are 1/1200 inch wide and 1/600 inch high. Not published: found by printing known pages with a
/// driver.
class PlacedBlock {
public:
    /// Nothing when the data are no such block.
    static std::optional<PlacedBlock> read(ByteView data);

    int left() const { return m_left; } ///< pixels
    int top() const { return m_top; } ///< rows
    int rows() const { return m_rows; }
    int width() const { return m_words * 16; } ///< pixels

    /// Calls `emit` with each row, which returns false to stop. False when the data end or hold too many words before
    /// the last row.
    bool decode(const std::function<bool(ByteView)>& emit) const;

private:
    int m_left = 0;
    int m_top = 0;
    int m_rows = 0;
    int m_words = 0;
    ByteView m_commands;
};

} // namespace quillrip::pcl
