#include "quillrip/fonts/shaping/text_shaper.h"

#include "quillrip/fonts/faces/file_face.h"
#include "quillrip/fonts/shaping/face_shaper.h"
#include "quillrip/fonts/shaping/scripts.h"
#include "quillrip/fonts/shaping/visual_runs.h"

#include <algorithm>

namespace quillrip {

namespace {

/// As much as Windows takes at a time; longer lines are cut, which keeps what a line may cost in proportion.
constexpr std::size_t kLongestPiece = 8192;

/// What one face shapes.
struct FacePart {
    std::size_t begin;
    std::size_t end;
    const FileFace* face; ///< null: no face has the letters
};

class LineShaper {
public:
    LineShaper(const std::u32string& text, const WindowsFont& font)
        : m_text(text)
        , m_font(font)
    {
    }

    ShapedLine shape(bool isBaseRightToLeft)
    {
        for (const VisualRun& run : visualRunsOf(m_text, isBaseRightToLeft)) {
            std::vector<ScriptRun> parts = scriptRunsOf(m_text, run.begin, run.end);
            if (run.isRightToLeft)
                std::reverse(parts.begin(), parts.end());
            for (const ScriptRun& part : parts) {
                if (part.script == 0)
                    addAlone(part.begin, part.end, run.isRightToLeft);
                else
                    addShaped(part, run.isRightToLeft);
            }
        }
        return std::move(m_line);
    }

private:
    void addAlone(std::size_t begin, std::size_t end, bool isRightToLeft)
    {
        for (std::size_t i = 0; i < end - begin; ++i) {
            const std::size_t at = isRightToLeft ? end - 1 - i : begin + i;
            WindowsFont::Glyph glyph;
            if (!isInvisible(m_text[at]))
                glyph = m_font.glyphOfCharacter(isRightToLeft ? mirrored(m_text[at]) : m_text[at]);
            const std::size_t first = m_line.glyphs.size();
            m_line.glyphs.push_back(glyph);
            m_line.clusters.push_back({ at, at + 1, first, first + 1, glyph.advance, isRightToLeft });
        }
    }

    void addShaped(const ScriptRun& run, bool isRightToLeft)
    {
        std::vector<FacePart> parts = facesOf(run);
        if (isRightToLeft)
            std::reverse(parts.begin(), parts.end());
        for (const FacePart& part : parts) {
            const ShapingRun wanted { part.begin, part.end, run.script, isRightToLeft };
            std::vector<PositionedGlyph> glyphs;
            if (part.face)
                glyphs = part.face->shaper().shape(m_text, wanted);
            if (glyphs.empty())
                addAlone(part.begin, part.end, isRightToLeft);
            else
                addGlyphs(glyphs, part, isRightToLeft);
        }
    }

    /// One face for a whole run where there is one; otherwise one for each letter with its marks.
    std::vector<FacePart> facesOf(const ScriptRun& run) const
    {
        if (const FileFace* const face = m_font.faceWithAll(m_text, run.begin, run.end))
            return { { run.begin, run.end, face } };
        std::vector<FacePart> parts;
        for (std::size_t begin = run.begin; begin < run.end;) {
            std::size_t end = begin + 1;
            while (end < run.end && isAttached(m_text[end]))
                ++end;
            const FileFace* face = m_font.faceWithAll(m_text, begin, end);
            if (!face)
                face = m_font.faceWithAll(m_text, begin, begin + 1);
            if (!parts.empty() && parts.back().face == face)
                parts.back().end = end;
            else
                parts.push_back({ begin, end, face });
            begin = end;
        }
        return parts;
    }

    void addGlyphs(const std::vector<PositionedGlyph>& glyphs, const FacePart& part, bool isRightToLeft)
    {
        const std::size_t before = m_line.clusters.size();
        for (std::size_t i = 0; i < glyphs.size();) {
            ShapedCluster cluster { glyphs[i].cluster, part.end, m_line.glyphs.size(), 0, 0, isRightToLeft };
            for (; i < glyphs.size() && glyphs[i].cluster == cluster.begin; ++i) {
                const PositionedGlyph& from = glyphs[i];
                WindowsFont::Glyph glyph;
                if (from.glyph != kNoGlyph)
                    glyph = m_font.glyphOf(*part.face, from.glyph);
                glyph.advance = from.advance;
                glyph.shift = { cluster.advance + from.shiftX, from.shiftY };
                m_line.glyphs.push_back(glyph);
                cluster.advance += from.advance;
            }
            cluster.lastGlyph = m_line.glyphs.size();
            m_line.clusters.push_back(cluster);
        }
        // A cluster ends where the next one, in the order of reading, begins; the first one begins where the part does.
        const auto own = m_line.clusters.begin() + static_cast<std::ptrdiff_t>(before);
        if (isRightToLeft) {
            for (auto cluster = own; cluster != m_line.clusters.end(); ++cluster)
                cluster->end = cluster == own ? part.end : std::prev(cluster)->begin;
            m_line.clusters.back().begin = part.begin;
        } else {
            for (auto cluster = own; cluster != m_line.clusters.end(); ++cluster)
                cluster->end = std::next(cluster) == m_line.clusters.end() ? part.end : std::next(cluster)->begin;
            own->begin = part.begin;
        }
    }

    const std::u32string& m_text;
    const WindowsFont& m_font;
    ShapedLine m_line;
};

void append(ShapedLine& line, const ShapedLine& piece, std::size_t offset)
{
    const std::size_t glyphs = line.glyphs.size();
    for (ShapedCluster cluster : piece.clusters) {
        cluster.begin += offset;
        cluster.end += offset;
        cluster.firstGlyph += glyphs;
        cluster.lastGlyph += glyphs;
        line.clusters.push_back(cluster);
    }
    line.glyphs.insert(line.glyphs.end(), piece.glyphs.begin(), piece.glyphs.end());
}

} // namespace

ShapedLine shapeLine(const std::u32string& line, const WindowsFont& font, bool isBaseRightToLeft)
{
    if (line.size() <= kLongestPiece)
        return LineShaper(line, font).shape(isBaseRightToLeft);
    ShapedLine whole;
    for (std::size_t at = 0; at < line.size(); at += kLongestPiece) {
        const std::u32string piece = line.substr(at, kLongestPiece);
        append(whole, LineShaper(piece, font).shape(isBaseRightToLeft), at);
    }
    return whole;
}

} // namespace quillrip
