#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/color.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillrip::emf {

/// The rows of a bitmap in the run-length coding of device-independent bitmaps (BI_RLE8 and BI_RLE4 of
/// BITMAPINFOHEADER), decoded when they are asked for, in any order. Only where each begins is kept, as a few bytes can
/// stand for millions of pixels. The coded bytes must outlive it.
///
/// Runs that leave the picture are dropped; pixels that no run reaches have number 0.
class RunLengthRows {
public:
    enum class Coding : std::uint8_t {
        Bytes, ///< RLE8
        Nibbles, ///< RLE4
    };

    RunLengthRows() = default;
    /// Goes through all of `coded` once. `width` and `height` in pixels.
    RunLengthRows(ByteView coded, std::size_t width, std::size_t height, Coding coding);

    /// Writes three bytes a pixel. Rows count as they are stored; `table` has a colour for each number there can be.
    void row(std::size_t y, const std::vector<Rgb>& table, std::uint8_t* to) const;

private:
    struct Command;
    struct Start {
        std::size_t at; ///< of the first command of the row
        std::size_t x; ///< where that begins; the width when it is beyond
    };

    Command commandAt(std::size_t at) const;
    void noteStarts(std::size_t height);
    std::uint8_t literal(const Command& command, std::size_t index) const;

    ByteView m_coded;
    std::size_t m_width = 0;
    Coding m_coding = Coding::Bytes;
    std::vector<Start> m_starts; ///< at the end of the coded bytes: nothing comes for the row
};

} // namespace quillrip::emf
