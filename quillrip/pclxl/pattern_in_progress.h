#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/pclxl/image_source.h"
#include "quillrip/pclxl/pattern_store.h"
#include "quillrip/pclxl/raster_pattern.h"

#include <cstddef>
#include <cstdint>

namespace quillrip::pclxl {

/// A raster pattern between BeginRastPattern and EndRastPattern.
class PatternInProgress {
public:
    /// A tile of `size` user units. It stays empty until begin().
    PatternInProgress(ImageSource source, Point size, std::int32_t number, PatternLife life);

    std::int32_t number() const { return m_number; }
    PatternLife life() const { return m_life; }
    ImageSource& source() { return m_source; }
    /// What its pixels will take.
    std::uint64_t bytes() const;
    /// Makes the tile, all white: rows that never come stay so.
    void begin();
    void goToRow(std::uint32_t row) { m_nextRow = row; }
    void storeRow(const std::uint8_t* pixels);
    RasterPattern finish();

private:
    ImageSource m_source;
    RasterPattern m_pattern;
    std::int32_t m_number;
    PatternLife m_life;
    std::size_t m_nextRow = 0;
};

} // namespace quillrip::pclxl
