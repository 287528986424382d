#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/fonts/faces/typeface.h"
#include "quillrip/raster/paths/path.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct FT_LibraryRec_;
struct FT_FaceRec_;
struct FT_CharMapRec_;

namespace quillrip {

class FreeTypeLibrary;

/// What a font file tells of itself besides its glyphs. Lengths in em, heights above the baseline positive.
struct FontFileTraits {
    std::string family; ///< as the file spells it
    bool isBold = false;
    bool isItalic = false;
    double windowsAscent = 0; ///< usWinAscent; as the line's where the file has none
    double windowsDescent = 0; ///< usWinDescent, positive below the baseline
    double lineAscent = 0;
    double lineDescent = 0; ///< positive below the baseline
    double lineGap = 0;
    double averageWidth = 0; ///< xAvgCharWidth; 0 where the file has none
    double underlineTop = 0;
    double underlineThickness = 0;
    double strikeoutTop = 0;
    double strikeoutThickness = 0;
};

/// An outline font, opened. All lengths in em.
class FontFile {
public:
    ~FontFile();
    FontFile(const FontFile&) = delete;
    FontFile& operator=(const FontFile&) = delete;

    /// The glyph of a Unicode character; 0 when the font has none.
    unsigned glyphOfUnicode(char32_t unicode) const;
    /// The glyph of a code of the font's own encoding (symbol fonts); 0 when the font has none.
    unsigned glyphOfOwnCode(unsigned code) const;
    /// Whether the character map is by Unicode. Symbol fonts in OpenType form map their own codes instead.
    bool mapsUnicode() const { return m_mapsUnicode; }

    /// The glyph of a code 0x20 to 0xFF of a symbol font, whichever way its map is made; 0 when it has none.
    unsigned glyphOfSymbolCode(unsigned code) const;
    unsigned glyphCount() const;
    FontFileTraits traits() const;
    bool isBold() const;
    bool isItalic() const;

    double advance(unsigned glyph) const;
    /// Unhinted, y up. False when the glyph is blank or broken.
    bool outline(unsigned glyph, Path& path) const;
    /// The box around the glyph, y up: its `bottom` is the upper side. Empty for blank ones.
    Rect extent(unsigned glyph) const;
    unsigned unitsPerEm() const;
    /// Of the file, bytes.
    std::size_t size() const;
    /// A table of an OpenType or TrueType file by its tag as four bytes ('GPOS' begins with G in the highest); empty
    /// when there is none, or one above `mostBytes`.
    std::vector<std::uint8_t> table(std::uint32_t tag, std::size_t mostBytes) const;

private:
    friend class FontFiles;
    FontFile(FT_FaceRec_* face, FreeTypeLibrary& library);

    FT_FaceRec_* m_face;
    FreeTypeLibrary& m_library;
    std::vector<std::uint8_t> m_bytes; ///< of a font that came in memory
    FT_CharMapRec_* m_symbolMap = nullptr; ///< codes from 0xF000 on
    FT_CharMapRec_* m_ownMap = nullptr; ///< the font's own encoding, when it is not a standard one
    bool m_mapsUnicode = false;
};

/// Appends the outline that FreeType holds in the face's glyph slot, scaled by `unit`. False when it has none.
bool appendSlotOutline(FT_FaceRec_* face, double unit, Path& path);

/// All folders that FontFiles looks in.
std::vector<std::string> fontFolders();

/// Finds font files by name and opens each once. Folders, in this order: what the environment variable PCLFONTSOURCE
/// names, "fonts" beside the executable, "fonts" beside the application bundle that the executable lies in, the
/// system's. Nothing is looked for before the first question.
class FontFiles {
public:
    FontFiles();
    /// Only these folders, without those below them; for tests.
    explicit FontFiles(std::vector<std::string> folders);
    ~FontFiles();

    /// `stem` is the file's name without its extension: .otf, .ttf, .t1 and .pfb are tried. Null when there is no such
    /// file in any folder, or none that can be opened.
    const FontFile* open(const std::string& stem);
    /// A font that came in memory; it stays as long as this object. Null when it cannot be opened.
    const FontFile* openBytes(std::vector<std::uint8_t> bytes);

private:
    FreeTypeLibrary& library();
    std::string locate(const std::string& stem);
    void scanSystemFolders();

    std::unique_ptr<FreeTypeLibrary> m_library; ///< from the first font on
    std::vector<std::string> m_folders;
    bool m_usesSystemFolders;
    bool m_hasScanned = false;
    std::map<std::string, std::string> m_systemFiles; ///< stem to path
    std::vector<std::unique_ptr<FontFile>> m_fromBytes;
    std::map<std::string, std::unique_ptr<FontFile>> m_opened; ///< null: looked for and not found
};

} // namespace quillrip
