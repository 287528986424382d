#include "quillrip/fonts/select/windows_fonts.h"

#include "quillrip/fonts/faces/file_face.h"
#include "quillrip/fonts/faces/look_alikes.h"
#include "quillrip/fonts/select/symbol_set.h"
#include "quillrip/fonts/select/windows_face_shelf.h"
#include "quillrip/fonts/select/windows_faces.h"
#include "quillrip/fonts/shaping/scripts.h"

#include <algorithm>

namespace quillrip {

namespace {

constexpr std::size_t kLargestFile = std::size_t { 64 } << 20;
constexpr std::size_t kMostFiles = 256;
constexpr int kBoldWeight = 600;
constexpr double kMadeBold = 0.03; // em
constexpr double kMadeSlant = 0.33;
constexpr std::uint32_t kPrivateArea = 0xF000;

// The order of the first glyphs in the classic faces: space is 3.
constexpr std::uint32_t kClassicFirst = 3;
constexpr std::uint32_t kClassicLast = 97;
constexpr std::uint32_t kClassicShift = 29;

WindowsFontMetrics metricsOf(const FontFileTraits& traits)
{
    WindowsFontMetrics metrics;
    metrics.ascent = traits.windowsAscent;
    metrics.descent = traits.windowsDescent;
    metrics.lineAscent = traits.lineAscent;
    metrics.lineDescent = traits.lineDescent;
    metrics.lineGap = traits.lineGap;
    if (traits.averageWidth > 0)
        metrics.averageWidth = traits.averageWidth;
    if (traits.underlineThickness > 0) {
        metrics.underlineTop = traits.underlineTop;
        metrics.underlineThickness = traits.underlineThickness;
    }
    metrics.strikeoutTop = traits.strikeoutTop;
    metrics.strikeoutThickness = traits.strikeoutThickness > 0 ? traits.strikeoutThickness : metrics.underlineThickness;
    return metrics;
}

} // namespace

class WindowsFonts::Implementation {
public:
    explicit Implementation(const Limits& limits)
        : mostBytes(limits.fontBytes)
    {
    }

    struct Embedded {
        std::uint32_t checksum = 0;
        std::string family; ///< lower case
        bool isBold = false;
        bool isItalic = false;
        std::shared_ptr<const FileFace> face;
    };
    /// Null when none fits.
    const Embedded* findEmbedded(const WindowsFontRequest& request) const
    {
        for (const Embedded& font : embedded) {
            if (request.checksum != 0 && font.checksum == request.checksum)
                return &font;
        }
        const std::string family = lowerCase(request.face);
        const Embedded* best = nullptr;
        int bestScore = -1;
        for (const Embedded& font : embedded) {
            const int score = (font.isBold == (request.weight >= kBoldWeight) ? 2 : 0)
                + (font.isItalic == request.isItalic ? 1 : 0);
            if (font.family == family && score > bestScore) {
                best = &font;
                bestScore = score;
            }
        }
        if (!best && request.usesIndices && embedded.size() == 1)
            best = &embedded.front();
        return best;
    }

    WindowsFaceShelf shelf;
    std::vector<Embedded> embedded;
    std::size_t mostBytes;
    std::size_t bytes = 0;
};

WindowsFonts::WindowsFonts(const Limits& limits)
    : m_implementation(std::make_unique<Implementation>(limits))
{
}

WindowsFonts::~WindowsFonts() = default;

std::uint32_t WindowsFonts::checksumOf(ByteView file)
{
    constexpr std::uint32_t kFactor = 257;
    constexpr std::uint32_t kReserved = 2;
    std::uint32_t sum = 0;
    for (std::size_t at = 0; at + 4 <= file.size; at += 4) {
        const std::uint32_t word = file[at] | std::uint32_t { file[at + 1] } << 8 | std::uint32_t { file[at + 2] } << 16
            | std::uint32_t { file[at + 3] } << 24;
        sum = kFactor * sum + word;
    }
    return std::max(sum, kReserved);
}

bool WindowsFonts::embed(ByteView file, const Reporter& reporter)
{
    Implementation& own = *m_implementation;
    const std::uint32_t checksum = checksumOf(file);
    for (const auto& known : own.embedded) {
        if (known.checksum == checksum)
            return true;
    }
    if (file.size > kLargestFile || own.embedded.size() >= kMostFiles || own.bytes + file.size > own.mostBytes) {
        reporter.warn("font.embedded-limit", "more embedded fonts than may be kept, the last are left out");
        return false;
    }
    const auto opened = own.shelf.add({ file.begin(), file.end() });
    if (!opened) {
        reporter.warn("font.embedded", "embedded font that cannot be opened, left out");
        return false;
    }
    own.bytes += file.size;
    const FontFileTraits traits = opened->file().traits();
    own.embedded.push_back({ checksum, lowerCase(traits.family), traits.isBold, traits.isItalic, opened });
    return true;
}

WindowsFont WindowsFonts::select(const WindowsFontRequest& asked, const Reporter& reporter)
{
    Implementation& own = *m_implementation;
    WindowsFontRequest request = asked;
    if (!request.face.empty() && request.face[0] == '@')
        request.face.erase(0, 1);
    const bool wantsBold = request.weight >= kBoldWeight;

    WindowsFont font;
    bool isBold = false;
    bool isItalic = false;
    std::shared_ptr<const FileFace> face;
    const WindowsFaceSpec* spec = nullptr;
    if (const auto* const embedded = own.findEmbedded(request)) {
        face = embedded->face;
        isBold = embedded->isBold;
        isItalic = embedded->isItalic;
        font.m_isEmbedded = true;
        font.m_isSymbolic = !face->file().mapsUnicode();
    } else {
        spec = findWindowsFace(request.face);
        if (!spec)
            spec = &windowsFaceByTraits(request.charset, request.pitchAndFamily);
        const std::size_t wanted = (wantsBold ? 1u : 0u) + (request.isItalic ? 2u : 0u);
        face = own.shelf.face(spec->files[wanted]);
        isBold = face && wantsBold;
        isItalic = face && request.isItalic;
        if (!face && wanted == 3) {
            face = own.shelf.face(spec->files[1]);
            isBold = face != nullptr;
        }
        if (!face && wanted == 3) {
            face = own.shelf.face(spec->files[2]);
            isItalic = face != nullptr;
        }
        if (!face)
            face = own.shelf.face(spec->files[0]);
        font.m_hasTrueWidths = spec->hasTrueWidths;
        font.m_isSymbolic = spec->isSymbolic;
        font.m_stretch = spec->stretch;
        font.m_indices = spec->order == GlyphOrder::Same ? WindowsFont::Indices::Own
            : spec->order == GlyphOrder::Classic         ? WindowsFont::Indices::Classic
                                                         : WindowsFont::Indices::Unknown;
    }
    font.m_shelf = &own.shelf;
    if (!face) {
        face = own.shelf.anyFace();
        font.m_hasTrueWidths = false;
        font.m_indices = WindowsFont::Indices::Unknown;
    }
    if (!face) {
        reporter.warn("font.none", "no font file is found; text is left out");
        return font;
    }
    font.m_face = face;
    font.m_metrics = metricsOf(face->file().traits());
    if (spec && spec->ascent > 0) {
        font.m_metrics.ascent = spec->ascent;
        font.m_metrics.descent = spec->descent;
    }
    font.m_isWingdings = spec && lowerCase(request.face) == "wingdings";
    font.m_wantsBold = wantsBold;
    font.m_wantsItalic = request.isItalic;
    if (wantsBold && !isBold)
        font.m_bold = kMadeBold;
    if (request.isItalic && !isItalic)
        font.m_slant = kMadeSlant;
    return font;
}

WindowsFont::Glyph WindowsFont::glyphOf(const FileFace& face, GlyphId id) const
{
    const bool isOwn = &face == m_face.get();
    const double bold = isOwn ? m_bold : m_wantsBold && !face.file().isBold() ? kMadeBold : 0;
    const double slant = isOwn ? m_slant : m_wantsItalic && !face.file().isItalic() ? kMadeSlant : 0;
    return { &face, id, face.advance(id), bold, slant };
}

WindowsFont::Glyph WindowsFont::glyphOfCharacter(char32_t character) const
{
    if (!m_face)
        return {};
    const auto& own = static_cast<const FileFace&>(*m_face);
    const char32_t code
        = character >= kPrivateArea && character < kPrivateArea + 0x100 ? character - kPrivateArea : character;
    if (m_isSymbolic && code >= 0x20 && code < 0x100) {
        if (m_isWingdings) {
            const SymbolSet* const set = findSymbolSet(kWingdingsSet);
            character = set ? set->unicode(code) : character;
        } else if (const unsigned glyph = own.file().glyphOfSymbolCode(code)) {
            return glyphOf(own, glyph);
        }
    }
    if (const GlyphId id = own.glyph(character); id != kNoGlyph)
        return glyphOf(own, id);
    for (const char32_t wanted : { character, lookAlike(character) }) {
        const auto has = [wanted](const FileFace& face) { return face.glyph(wanted) != kNoGlyph; };
        if (const FileFace* const helping = wanted == 0 ? nullptr : m_shelf->findHelping(wanted, m_wantsBold, has))
            return glyphOf(*helping, helping->glyph(wanted));
    }
    return { nullptr, kNoGlyph, m_face->advance(kNoGlyph), 0, 0 };
}

const FileFace* WindowsFont::faceWithAll(const std::u32string& text, std::size_t begin, std::size_t end) const
{
    if (!m_face || begin >= end)
        return nullptr;
    const auto hasAll = [&](const FileFace& face) {
        const auto has = [&](char32_t character) { return face.glyph(character) != kNoGlyph; };
        for (std::size_t i = begin; i < end; ++i) {
            // A letter and its mark may be one glyph.
            if (!isInvisible(text[i]) && !has(text[i]) && !(i > begin && has(composed(text[i - 1], text[i]))))
                return false;
        }
        return true;
    };
    const auto& own = static_cast<const FileFace&>(*m_face);
    return hasAll(own) ? &own : m_shelf->findHelping(text[begin], m_wantsBold, hasAll);
}

WindowsFont::Glyph WindowsFont::glyphOfIndex(std::uint32_t index) const
{
    if (!m_face)
        return {};
    switch (m_indices) {
    case Indices::Own: {
        const auto& own = static_cast<const FileFace&>(*m_face);
        if (index < own.file().glyphCount())
            return glyphOf(own, index);
        break;
    }
    case Indices::Classic:
        if (index >= kClassicFirst && index <= kClassicLast)
            return glyphOfCharacter(index + kClassicShift);
        break;
    case Indices::Unknown:
        break;
    }
    return { nullptr, kNoGlyph, m_face->advance(kNoGlyph), 0, 0 };
}

} // namespace quillrip
