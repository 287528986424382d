#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/base/limits.h"
#include "quillrip/base/page_bitmap.h"
#include "quillrip/pcl/pattern_store.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace quillrip::pcl {

class Page;

/// Quarter turns clockwise that a matrix makes of its axes.
int quarterTurnsOf(const Matrix& matrix);

/// The job's patterns and the built-in ones as tiles of device pixels; the last tile is kept.
class PatternCache {
public:
    explicit PatternCache(const Limits& limits);

    PatternStore& store() { return m_store; }
    bool exists(PatternChoice choice) const;

    /// A tile in device pixels, turned as `toDevice` turns `direction`'s axes. Null for solid black, for a pattern that
    /// does not exist, and for one that would need more memory than the limit allows.
    std::shared_ptr<const PatternTile> makeTile(PatternChoice choice, const Palette& palette, int direction,
        const Matrix& toDevice, Resolution resolution) const;

    /// The same for the axes of a direction of the page, from the cache when nothing has changed.
    const std::shared_ptr<const PatternTile>& tile(
        PatternChoice choice, const Palette& palette, int direction, const Page& page);
    void clear() { m_last = {}; }

private:
    struct Entry {
        PatternChoice choice;
        int direction = -1;
        int turns = 0;
        std::uint32_t revision = 0;
        const Palette* palette = nullptr;
        std::shared_ptr<const PatternTile> tile;
    };

    std::size_t m_limitBytes;
    PatternStore m_store;
    Entry m_last;
};

} // namespace quillrip::pcl
