#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/fonts/soft/truetype_soft_font.h"
#include "quillrip/raster/paths/path.h"

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace quillrip {

/// A TrueType font whose glyphs come from outside of its tables, read by FreeType.
class IncrementalTrueType {
public:
    using Glyphs = std::map<std::uint16_t, TrueTypeSoftFont::Glyph>;

    /// `tables` is a table directory with its tables; `glyphs` must live as long as the object.
    /// Null when FreeType finds no font in the tables.
    static std::unique_ptr<IncrementalTrueType> open(const std::vector<std::uint8_t>& tables);
    ~IncrementalTrueType();

    /// Where glyphs are looked up from now on; not owned.
    void setGlyphs(const Glyphs* glyphs);

    int unitsPerEm() const;
    /// Advance in font units: what came with the glyph, else the metrics table's; -1 when unknown.
    int advance(unsigned glyph) const;
    /// Left side bearing in font units, from the same places.
    int leftBearing(unsigned glyph) const;
    /// Appends the outline in em, y up. False when the glyph is blank or broken.
    bool outline(unsigned glyph, Path& path) const;
    /// Entry of the glyf table; empty for blank and missing glyphs.
    ByteView glyphData(unsigned glyph) const;

private:
    struct Data;
    explicit IncrementalTrueType(std::unique_ptr<Data> data);

    std::unique_ptr<Data> m_data;
};

} // namespace quillrip
