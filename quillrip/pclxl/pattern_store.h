#pragma once

#include "quillrip/pclxl/raster_pattern.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>

namespace quillrip::pclxl {

enum class PatternLife : std::uint8_t { Page, Session };

/// The raster patterns that are defined, by their numbers.
class PatternStore {
public:
    explicit PatternStore(std::size_t maxBytes)
        : m_maxBytes(maxBytes)
    {
    }

    bool hasRoomFor(std::uint64_t bytes) const { return bytes <= m_maxBytes && m_bytes <= m_maxBytes - bytes; }
    /// Takes the place of the number's former pattern.
    void put(std::int32_t number, RasterPattern pattern, PatternLife life);
    /// Null when there is none.
    std::shared_ptr<const RasterPattern> find(std::int32_t number) const;
    void endPage();
    void endSession();

private:
    struct Stored {
        std::shared_ptr<const RasterPattern> pattern;
        PatternLife life = PatternLife::Page;

        std::size_t bytes() const { return pattern ? pattern->tile.pixels.size() : 0; }
    };

    const std::size_t m_maxBytes;
    std::map<std::int32_t, Stored> m_patterns;
    std::size_t m_bytes = 0;
};

} // namespace quillrip::pclxl
