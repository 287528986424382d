#include "quillrip/fonts/select/windows_faces.h"

#include <algorithm>
#include <cstring>

namespace quillrip {

namespace {

using Files = std::array<const char*, 4>;

constexpr Files kSans { "LiberationSans-Regular", "LiberationSans-Bold", "LiberationSans-Italic",
    "LiberationSans-BoldItalic" };
constexpr Files kSerif { "LiberationSerif-Regular", "LiberationSerif-Bold", "LiberationSerif-Italic",
    "LiberationSerif-BoldItalic" };
constexpr Files kMono { "LiberationMono-Regular", "LiberationMono-Bold", "LiberationMono-Italic",
    "LiberationMono-BoldItalic" };
constexpr Files kNarrow { "NimbusSansNarrow-Regular", "NimbusSansNarrow-Bold", "NimbusSansNarrow-Oblique",
    "NimbusSansNarrow-BoldOblique" };
constexpr Files kBlack { "LiberationSans-Bold", nullptr, "LiberationSans-BoldItalic", nullptr };
constexpr Files kCarlito { "Carlito-Regular", "Carlito-Bold", "Carlito-Italic", "Carlito-BoldItalic" };
constexpr Files kCaladea { "Caladea-Regular", "Caladea-Bold", "Caladea-Italic", "Caladea-BoldItalic" };
constexpr Files kDejaVu { "DejaVuSans", "DejaVuSans-Bold", nullptr, nullptr };
constexpr Files kPalladio { "P052-Roman", "P052-Bold", "P052-Italic", "P052-BoldItalic" };
constexpr Files kSchoolbook { "C059-Roman", "C059-Bold", "C059-Italic", "C059-BdIta" };
constexpr Files kBookman { "URWBookman-Light", "URWBookman-Demi", "URWBookman-LightItalic", "URWBookman-DemiItalic" };
constexpr Files kGothic { "URWGothic-Book", "URWGothic-Demi", "URWGothic-BookOblique", "URWGothic-DemiOblique" };
constexpr Files kScript { "Z003-MediumItalic", nullptr, "Z003-MediumItalic", nullptr };
constexpr Files kSymbols { "StandardSymbolsPS", nullptr, nullptr, nullptr };
constexpr Files kDingbats { "DejaVuSans", nullptr, nullptr, nullptr };
constexpr Files kHan { "DroidSansFallbackFull", nullptr, nullptr, nullptr };

constexpr GlyphOrder kSame = GlyphOrder::Same;
constexpr GlyphOrder kClassic = GlyphOrder::Classic;
constexpr GlyphOrder kUnknown = GlyphOrder::Unknown;
constexpr double kEm = 2048;

const WindowsFaceSpec s_faces[] {
    { "arial", kSans, true, kSame, 1, 0, 0, false },
    { "helvetica", kSans, true, kSame, 1, 0, 0, false },
    { "helv", kSans, true, kSame, 1, 0, 0, false },
    { "ms sans serif", kSans, true, kSame, 1, 0, 0, false },
    { "microsoft sans serif", kSans, true, kClassic, 1, 0, 0, false },
    { "arial unicode ms", kSans, true, kClassic, 1, 0, 0, false },
    { "liberation sans", kSans, true, kSame, 1, 0, 0, false },
    { "times new roman", kSerif, true, kSame, 1, 0, 0, false },
    { "times", kSerif, true, kSame, 1, 0, 0, false },
    { "tms rmn", kSerif, true, kSame, 1, 0, 0, false },
    { "ms serif", kSerif, true, kSame, 1, 0, 0, false },
    { "liberation serif", kSerif, true, kSame, 1, 0, 0, false },
    { "courier new", kMono, true, kSame, 1, 0, 0, false },
    { "courier", kMono, true, kSame, 1, 0, 0, false },
    { "liberation mono", kMono, true, kSame, 1, 0, 0, false },
    { "lucida console", kMono, false, kClassic, 1, 0, 0, false },
    { "fixedsys", kMono, false, kUnknown, 1, 0, 0, false },
    { "terminal", kMono, false, kUnknown, 1, 0, 0, false },
    { "consolas", kMono, false, kUnknown, 0.916, 1884 / kEm, 514 / kEm, false },
    { "arial narrow", kNarrow, true, kClassic, 1, 0, 0, false },
    { "arial black", kBlack, false, kClassic, 1.2, 0, 0, false },
    { "impact", kBlack, false, kClassic, 0.85, 0, 0, false },
    { "calibri", kCarlito, true, kUnknown, 1, 0, 0, false },
    { "calibri light", kCarlito, true, kUnknown, 1, 0, 0, false },
    { "carlito", kCarlito, true, kSame, 1, 0, 0, false },
    { "cambria", kCaladea, true, kUnknown, 1, 1946 / kEm, 455 / kEm, false },
    { "caladea", kCaladea, true, kSame, 1, 0, 0, false },
    { "segoe ui", kSans, false, kUnknown, 1, 2210 / kEm, 514 / kEm, false },
    { "tahoma", kDejaVu, false, kClassic, 0.88, 2049 / kEm, 423 / kEm, false },
    { "verdana", kDejaVu, false, kClassic, 1, 2059 / kEm, 430 / kEm, false },
    { "dejavu sans", kDejaVu, true, kSame, 1, 0, 0, false },
    { "trebuchet ms", kSans, false, kClassic, 0.97, 1923 / kEm, 455 / kEm, false },
    { "georgia", kSchoolbook, false, kClassic, 1, 1878 / kEm, 449 / kEm, false },
    { "comic sans ms", kSans, false, kClassic, 1.05, 2257 / kEm, 597 / kEm, false },
    { "garamond", kPalladio, false, kUnknown, 0.9, 0, 0, false },
    { "book antiqua", kPalladio, false, kUnknown, 1, 0, 0, false },
    { "palatino linotype", kPalladio, false, kUnknown, 1, 0, 0, false },
    { "palatino", kPalladio, false, kUnknown, 1, 0, 0, false },
    { "century schoolbook", kSchoolbook, false, kUnknown, 1, 0, 0, false },
    { "century", kSchoolbook, false, kUnknown, 1, 0, 0, false },
    { "bookman old style", kBookman, false, kUnknown, 1, 0, 0, false },
    { "century gothic", kGothic, false, kUnknown, 1, 0, 0, false },
    { "monotype corsiva", kScript, false, kUnknown, 1, 0, 0, false },
    { "system", kBlack, false, kUnknown, 1, 0, 0, false },
    { "symbol", kSymbols, true, kUnknown, 1, 2059 / kEm, 450 / kEm, true },
    { "wingdings", kDingbats, false, kUnknown, 1, 1841 / kEm, 432 / kEm, true },
    { "ms gothic", kHan, false, kUnknown, 1, 220 / 256.0, 36 / 256.0, false },
    { "ms mincho", kHan, false, kUnknown, 1, 220 / 256.0, 36 / 256.0, false },
    { "simsun", kHan, false, kUnknown, 1, 220 / 256.0, 36 / 256.0, false },
};

/// Fonts for the blocks of Unicode that a script has. Those of the Lohit family are the project's own choice; the
/// others are used where a machine has them.
struct ScriptFonts {
    char32_t first;
    char32_t last;
    std::array<const char*, 3> files;
};

constexpr ScriptFonts s_scriptFonts[] {
    { 0x0590, 0x05FF, { "NotoSansHebrew-Regular" } },
    { 0x0600, 0x06FF, { "NotoSansArabic-Regular", "NotoNaskhArabic-Regular" } },
    { 0x0700, 0x074F, { "NotoSansSyriac-Regular", "NotoSansSyriacEastern-Regular" } },
    { 0x0750, 0x077F, { "NotoSansArabic-Regular", "NotoNaskhArabic-Regular" } },
    { 0x0780, 0x07BF, { "NotoSansThaana-Regular" } },
    { 0x07C0, 0x07FF, { "NotoSansNKo-Regular" } },
    { 0x08A0, 0x08FF, { "NotoSansArabic-Regular", "NotoNaskhArabic-Regular" } },
    { 0x0900, 0x097F, { "Lohit-Devanagari", "NotoSansDevanagari-Regular" } },
    { 0x0980, 0x09FF, { "Lohit-Bengali", "NotoSansBengali-Regular" } },
    { 0x0A00, 0x0A7F, { "Lohit-Gurmukhi", "NotoSansGurmukhi-Regular" } },
    { 0x0A80, 0x0AFF, { "Lohit-Gujarati", "NotoSansGujarati-Regular" } },
    { 0x0B00, 0x0B7F, { "Lohit-Odia", "NotoSansOriya-Regular" } },
    { 0x0B80, 0x0BFF, { "Lohit-Tamil", "NotoSansTamil-Regular" } },
    { 0x0C00, 0x0C7F, { "Lohit-Telugu", "NotoSansTelugu-Regular" } },
    { 0x0C80, 0x0CFF, { "Lohit-Kannada", "NotoSansKannada-Regular" } },
    { 0x0D00, 0x0D7F, { "Lohit-Malayalam", "NotoSansMalayalam-Regular" } },
    { 0x0D80, 0x0DFF, { "NotoSansSinhala-Regular", "lklug" } },
    { 0x0E00, 0x0E7F, { "NotoSansThai-Regular" } },
    { 0x0E80, 0x0EFF, { "NotoSansLao-Regular", "Phetsarath_OT" } },
    { 0x0F00, 0x0FFF, { "NotoSerifTibetan-Regular", "NotoSansTibetan-Regular" } },
    { 0x1000, 0x109F, { "NotoSansMyanmar-Regular", "Padauk-Regular" } },
    { 0x10A0, 0x10FF, { "NotoSansGeorgian-Regular" } },
    { 0x1200, 0x139F, { "NotoSansEthiopic-Regular" } },
    { 0x13A0, 0x13FF, { "NotoSansCherokee-Regular" } },
    { 0x1400, 0x167F, { "NotoSansCanadianAboriginal-Regular" } },
    { 0x1780, 0x17FF, { "NotoSansKhmer-Regular", "KhmerOS" } },
    { 0x1800, 0x18AF, { "NotoSansMongolian-Regular" } },
    { 0x19E0, 0x19FF, { "NotoSansKhmer-Regular", "KhmerOS" } },
    { 0xA8E0, 0xA8FF, { "Lohit-Devanagari", "NotoSansDevanagari-Regular" } },
    { 0xAA60, 0xAA7F, { "NotoSansMyanmar-Regular", "Padauk-Regular" } },
};

const WindowsFaceSpec s_sans { "sans", kSans, false, kUnknown, 1, 0, 0, false };
const WindowsFaceSpec s_serif { "serif", kSerif, false, kUnknown, 1, 0, 0, false };
const WindowsFaceSpec s_mono { "mono", kMono, false, kUnknown, 1, 0, 0, false };
const WindowsFaceSpec s_script { "script", kScript, false, kUnknown, 1, 0, 0, false };
const WindowsFaceSpec s_symbols { "symbols", kSymbols, false, kUnknown, 1, 0, 0, true };
const WindowsFaceSpec s_han { "han", kHan, false, kUnknown, 1, 0, 0, false };

} // namespace

const std::array<HelpingFont, 6> kHelpingFonts { {
    { "LiberationSans-Regular", "LiberationSans-Bold" },
    { "DejaVuSans", "DejaVuSans-Bold" },
    { "Symbola_hint", nullptr },
    { "Waree", "Waree-Bold" },
    { "DroidSansFallbackFull", nullptr },
    { "StandardSymbolsPS", nullptr },
} };

std::array<const char*, 3> scriptFontsOf(char32_t character)
{
    const auto found = std::find_if(std::begin(s_scriptFonts), std::end(s_scriptFonts),
        [character](const ScriptFonts& fonts) { return character >= fonts.first && character <= fonts.last; });
    return found == std::end(s_scriptFonts) ? std::array<const char*, 3> {} : found->files;
}

std::string lowerCase(std::string text)
{
    for (char& c : text)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
    return text;
}

const WindowsFaceSpec* findWindowsFace(const std::string& family)
{
    const std::string wanted = lowerCase(family);
    const auto found = std::find_if(
        std::begin(s_faces), std::end(s_faces), [&](const WindowsFaceSpec& face) { return wanted == face.name; });
    return found == std::end(s_faces) ? nullptr : found;
}

const WindowsFaceSpec& windowsFaceByTraits(std::uint8_t charset, std::uint8_t pitchAndFamily)
{
    constexpr std::uint8_t kSymbolCharset = 2;
    constexpr std::uint8_t kEastAsian[] { 128, 129, 130, 134, 136 };
    if (charset == kSymbolCharset)
        return s_symbols;
    if (std::find(std::begin(kEastAsian), std::end(kEastAsian), charset) != std::end(kEastAsian))
        return s_han;
    constexpr std::uint8_t kFixedPitch = 1;
    switch (pitchAndFamily >> 4) {
    case 1:
        return s_serif;
    case 3:
        return s_mono;
    case 4:
        return s_script;
    default:
        return (pitchAndFamily & 3) == kFixedPitch ? s_mono : s_sans;
    }
}

} // namespace quillrip
