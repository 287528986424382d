#pragma once

#include "quillrip/fonts/faces/typeface.h"
#include "quillrip/fonts/select/symbol_set.h"

#include <cstdint>
#include <memory>

namespace quillrip {

/// What text is printed with: a face, the meaning of its codes, and a size. A value; cheap to copy.
struct Font {
    std::shared_ptr<const Typeface> face;
    std::shared_ptr<const SymbolSet> symbolSet; ///< unbound faces; null for bound ones
    double height = 12; ///< points: the em of a scalable face, the height of a bitmap face
    double pitch = 0; ///< characters per inch of a fixed face; 0 for proportional ones
    double bitmapScale = 1; ///< bitmap faces: how many times as large as their own resolution makes them

    explicit operator bool() const { return face != nullptr; }

    struct Lookup {
        /// False: the code is outside the set's range and is ignored, without motion.
        bool isPrintable = false;
        /// kNoGlyph for a printable code: no mark, and the space's width as advance.
        GlyphId glyph = kNoGlyph;
        /// The code in the face's own domain (for Typeface::staysUpright()).
        std::uint32_t faceCode = 0;
    };
    Lookup find(std::uint32_t code) const;

    /// Inches per glyph space unit at this size: height / 72, and the scale for bitmap faces.
    double unitInches() const { return face && face->traits().isScalable ? height / 72 : bitmapScale; }

    /// In inches: 1 / pitch for fixed faces, the glyph's own width for proportional ones (the space's for kNoGlyph).
    double advanceInches(GlyphId glyph) const;
    /// What HMI becomes when this font is selected, in inches: 1 / pitch, or the width of the space.
    double defaultHmiInches() const;
};

} // namespace quillrip
