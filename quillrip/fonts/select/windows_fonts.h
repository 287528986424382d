#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/limits.h"
#include "quillrip/base/reporter.h"
#include "quillrip/fonts/faces/typeface.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillrip {

class FileFace;
class WindowsFaceShelf;

/// A font as a Windows program asks for it: the fields of a LOGFONT that choose the face.
struct WindowsFontRequest {
    std::string face; ///< family name, UTF-8; an `@` in front asks for vertical writing
    int weight = 400; ///< 0 to 1000; 0: any
    bool isItalic = false;
    std::uint8_t charset = 1; ///< as in LOGFONT: 0 Western, 1 default, 2 symbols, 128 Japanese ...
    std::uint8_t pitchAndFamily = 0; ///< as in LOGFONT: low two bits pitch, high four bits family
    std::uint32_t checksum = 0; ///< of the embedded font file that is meant; 0: by name
    bool usesIndices = false; ///< the text is glyph numbers: an only embedded font is meant whatever its name
};

/// Measures of a face that Windows lays text out with. All in em, heights above the baseline positive.
struct WindowsFontMetrics {
    double ascent = 0.9; ///< of the character cell (usWinAscent)
    double descent = 0.2; ///< below the baseline, positive (usWinDescent)
    double lineAscent = 0.9; ///< of a line of GDI+ (hhea)
    double lineDescent = 0.2; ///< below the baseline, positive (hhea)
    double lineGap = 0; ///< (hhea)
    double averageWidth = 0.45; ///< that LOGFONT's width is a multiple of (xAvgCharWidth)
    double underlineTop = -0.1; ///< upper side of the bar
    double underlineThickness = 0.05;
    double strikeoutTop = 0.3;
    double strikeoutThickness = 0.05;
};

/// A face chosen for a request, with what stands in where it lacks a character. Cheap to copy. Glyph ids are those of
/// the font file.
class WindowsFont {
public:
    struct Glyph {
        const Typeface* face = nullptr; ///< null: nothing to draw
        GlyphId id = kNoGlyph;
        double advance = 0; ///< em
        double bold = 0; ///< em, for GlyphStyle: emboldening where a bold face is asked for and this one is not
        double slant = 0; ///< x grows by this times y where an italic face is asked for and this one is not
        Point shift {}; ///< em, y up: of a mark, from where the line has come to
    };

    /// The glyph of a character; the advance is told even where no face has it.
    Glyph glyphOfCharacter(char32_t character) const;
    /// A glyph of the font's own face or of one that stands in, with what makes it bold and italic.
    Glyph glyphOf(const FileFace& face, GlyphId id) const;
    /// The first of the faces, the font's own and those that stand in, that has all characters of a part of a text, so
    /// that they can be shaped together; null when none has.
    const FileFace* faceWithAll(const std::u32string& text, std::size_t begin, std::size_t end) const;
    /// The glyph that has a number in the face asked for. Where a substitute stands in, numbers of the classic faces
    /// are known for the characters of their common order; other numbers give no glyph.
    Glyph glyphOfIndex(std::uint32_t index) const;
    /// As glyphOfCharacter(), for the codes of a symbol font: 0x20 to 0xFF mean U+F020 to U+F0FF.
    bool isSymbolic() const { return m_isSymbolic; }
    /// Glyph numbers mean nothing: the face asked for is not here and its numbers are unknown.
    bool lacksIndices() const { return m_indices == Indices::Unknown; }

    /// Whether any font file was found at all; without one there are no glyphs and no face().
    explicit operator bool() const { return m_face != nullptr; }
    const Typeface& face() const { return *m_face; }
    const WindowsFontMetrics& metrics() const { return m_metrics; }
    /// Whether the face's widths are those of the face asked for: the face itself, or one that is metrically equal.
    /// Otherwise glyphs may be squeezed into the widths that the job gives.
    bool hasTrueWidths() const { return m_hasTrueWidths; }
    /// The job carries the face.
    bool isEmbedded() const { return m_isEmbedded; }
    /// Stretch of the substitute along the line that brings it near the face asked for; 1 mostly.
    double stretch() const { return m_stretch; }

private:
    friend class WindowsFonts;
    enum class Indices { Own, Classic, Unknown };

    std::shared_ptr<const Typeface> m_face;
    WindowsFaceShelf* m_shelf = nullptr; ///< whose other faces are asked for characters that the face lacks
    WindowsFontMetrics m_metrics;
    Indices m_indices = Indices::Own;
    bool m_isSymbolic = false;
    bool m_isWingdings = false;
    bool m_hasTrueWidths = true;
    bool m_isEmbedded = false;
    double m_stretch = 1;
    double m_bold = 0;
    double m_slant = 0;
    bool m_wantsBold = false;
    bool m_wantsItalic = false;
};

/// All fonts of a Windows job: those that it carries, and free ones for all others, equal in widths where there are
/// such. Font files are opened when their first glyph is asked for.
class WindowsFonts {
public:
    explicit WindowsFonts(const Limits& limits = {});
    ~WindowsFonts();
    WindowsFonts(const WindowsFonts&) = delete;
    WindowsFonts& operator=(const WindowsFonts&) = delete;

    /// A TrueType or OpenType file that the job carries; it stays for the whole job. False, with a report, when it is
    /// no font that can be opened, or above the memory limit.
    bool embed(ByteView file, const Reporter& reporter);

    /// The best face there is; the font must not outlive this object.
    WindowsFont select(const WindowsFontRequest& request, const Reporter& reporter);

    /// The number that the spooler names a font file by: 257 times the sum so far plus the next word, over all whole
    /// little-endian words of four bytes; results below 2 become 2.
    static std::uint32_t checksumOf(ByteView file);

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace quillrip
