#pragma once

#include <cstddef>
#include <cstdint>

namespace quillrip {

/// One face that the printer has built in, and the free font that stands for it.
struct InternalFaceSpec {
    enum class Make : std::uint8_t {
        Older, ///< a point of 1/72.307 inch, and signs shared by all faces of this make
        TrueType,
        AddOn, ///< later devices only: candidates when the job asks for their family
    };

    const char* name; ///< for people
    const char* nameInPclXl; ///< without trailing blanks
    std::uint16_t family;
    std::uint16_t style;
    std::int16_t weight;
    Make make;
    std::uint16_t boundSet; ///< number of the only symbol set, 0 for unbound faces
    double fixedAdvance; ///< em; 0 for proportional faces
    double space; ///< width of the space, em, where the advance table does not tell it
    const char* widths; ///< column of the advance table, or null: the substitute's own widths hold
    const char* file; ///< stem of the font file
    const char* secondFile; ///< stem of the next best one
    double scaleX; ///< of glyphs whose own width is not known, and middle of the per-glyph fit
    double scaleY; ///< brings heights of capitals and small letters near the original's
    double lowerScale; ///< faces with large small letters: their scale both ways; 0: as all others
    double boldX; ///< emboldening, em
    double boldY;
};

extern const InternalFaceSpec kInternalFaces[];
extern const std::size_t kInternalFaceCount;

/// Heights that labels are fitted by.
struct FaceHeights {
    double capHeight; ///< em
    double xHeight;
};
FaceHeights heightsOf(const InternalFaceSpec& spec);

} // namespace quillrip
