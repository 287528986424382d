#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/raster/scan/span_sink.h"

#include <cstdint>
#include <vector>

namespace quillrip {

/// Collects the area that a shape covers in one row of pixels. Kept as differences from each pixel to the one on its
/// left, so that a wide span costs no more than its two ends.
class CoverageRow {
public:
    explicit CoverageRow(const PixelRect& area);

    /// All that lies right of a straight line gains `sign` times its area. The line runs from topX to bottomX (1/256
    /// pixels) and is `height` (1 to 256) 256ths of a pixel high.
    void addRightOf(std::int32_t topX, std::int32_t bottomX, std::int32_t height, std::int32_t sign);

    /// Hands over what row y has, and starts anew.
    void emit(int y, SpanSink& sink);

private:
    void addPiece(std::size_t pixel, std::int32_t height, std::int32_t leftPlusRight);

    int m_left;
    std::int32_t m_end; ///< of the last column, in 1/256 pixels from the first
    std::vector<std::int32_t> m_differences;
    std::vector<std::uint64_t> m_changed; ///< a bit for each pixel that differs from its left neighbour
    std::vector<std::uint8_t> m_bytes;
};

} // namespace quillrip
