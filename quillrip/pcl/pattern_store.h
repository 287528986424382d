#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/pcl/palette.h"
#include "quillrip/raster/compose/paint_state.h"

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace quillrip::pcl {

/// What ESC*v#T and ESC*c#P choose from.
enum class PatternKind {
    Solid = 0,
    White = 1,
    Shading = 2, ///< ID: percent of ink
    CrossHatch = 3, ///< ID: 1 to 6
    User = 4, ///< ID: a downloaded pattern's
};

struct PatternChoice {
    PatternKind kind = PatternKind::Solid;
    int id = 0;
};
inline bool operator==(PatternChoice a, PatternChoice b) { return a.kind == b.kind && a.id == b.id; }

/// A pattern that a job brings along.
struct UserPattern {
    int width = 0;
    int height = 0;
    bool isColor = false; ///< pixels are palette indices; else 1 is ink
    double resolutionX = 300; ///< dots per inch
    double resolutionY = 300;
    std::vector<std::uint8_t> pixels; ///< one byte a pixel

    /// From the data of ESC*c#W; null when they make no pattern.
    static std::shared_ptr<const UserPattern> parse(ByteView data);
    PatternTile tile(const Palette& palette) const;
};

/// A built-in shading or cross-hatch tile at 300 dots to the inch; null for an ID that has none.
std::shared_ptr<const PatternTile> builtInTile(PatternKind kind, int id);

class PatternStore {
public:
    explicit PatternStore(std::size_t limitBytes)
        : m_limit(limitBytes)
    {
    }

    /// New patterns are temporary and replace one of that ID. False above the memory limit.
    bool put(int id, std::shared_ptr<const UserPattern> pattern);
    std::shared_ptr<const UserPattern> find(int id) const;
    void remove(int id);
    void removeAll();
    void removeTemporary();
    void setPermanent(int id, bool isPermanent);
    /// Grows with every change: tiles made from a former state are stale.
    std::uint32_t revision() const { return m_revision; }

private:
    struct Entry {
        std::shared_ptr<const UserPattern> pattern;
        bool isPermanent = false;
    };

    std::size_t m_limit;
    std::size_t m_bytes = 0;
    std::uint32_t m_revision = 0;
    std::map<int, Entry> m_entries;
};

} // namespace quillrip::pcl
