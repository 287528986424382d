#include "quillrip/fonts/soft/intellifont_soft_font.h"

#include "quillrip/fonts/pixels/outline_raster.h"
#include "quillrip/fonts/soft/header_fields.h"

#include <algorithm>
#include <cstdint>
#include <memory>

namespace quillrip {

namespace {

constexpr std::uint8_t kClassContour = 3;
constexpr std::uint8_t kClassCompound = 4;

} // namespace

IntellifontSoftFont::IntellifontSoftFont(SoftFontHeader header)
    : m_header(std::move(header))
{
    m_traits = m_header.traits;
}

bool IntellifontSoftFont::addPclCharacter(std::uint32_t code, ByteView block, const Reporter& reporter)
{
    if (block.size < 4 || block[0] != 10) {
        // A continuation carries nothing that is used, and may be short.
        if (block.size >= 2 && block[0] == 10 && block[1] != 0)
            return true;
        reporter.damage("font.character-format", "character does not have the format of its scalable font, ignored");
        return false;
    }
    if (block[1] != 0)
        return true;
    Character character;
    if (block[3] == kClassCompound) {
        if (block.size < 8) {
            reporter.damage("font.character-short", "compound character shorter than its descriptor, ignored");
            return false;
        }
        const double unit = 1.0 / m_header.unitsPerEm;
        character.escapement = s16At(block, 4) * unit;
        const std::size_t count = std::min<std::size_t>(block[6], (block.size - 8) / 6);
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t at = 8 + 6 * i;
            character.components.push_back(
                { u16At(block, at), s16At(block, at + 2) * unit, s16At(block, at + 4) * unit });
        }
    } else if (block[3] != kClassContour) {
        reporter.damage("font.character", "character of an unknown class, ignored");
        return false;
    }
    reporter.warn("font.intellifont", "characters of a downloaded Intellifont are drawn with a similar built-in face");
    m_characters[code] = std::move(character);
    ++m_revision;
    return true;
}

bool IntellifontSoftFont::addPclXlCharacter(std::uint32_t, ByteView, const Reporter& reporter)
{
    reporter.damage("font.character-format", "character does not have the format of its font, ignored");
    return false;
}

void IntellifontSoftFont::removeCharacter(std::uint32_t code) { m_characters.erase(code); }

std::shared_ptr<SoftFont> IntellifontSoftFont::copy() const
{
    auto font = std::make_shared<IntellifontSoftFont>(m_header);
    font->m_characters = m_characters;
    font->m_shapes = m_shapes;
    return font;
}

std::size_t IntellifontSoftFont::bytes() const
{
    return sizeof(IntellifontSoftFont) + m_characters.size() * (sizeof(Character) + 64);
}

char32_t IntellifontSoftFont::unicodeOf(std::uint32_t code) const
{
    if (m_traits.domain == CodeDomain::MasterSymbolList)
        return code <= 0xFFFF ? unicodeOfMasterSymbol(static_cast<std::uint16_t>(code)) : 0;
    if (m_traits.domain == CodeDomain::Unicode)
        return code;
    const SymbolSet* set = findSymbolSet(m_traits.symbolSet);
    return set ? set->unicode(code) : code < 0x7F ? static_cast<char32_t>(code) : 0;
}

GlyphId IntellifontSoftFont::shapeOf(std::uint32_t code) const
{
    const char32_t unicode = unicodeOf(code);
    return m_shapes && unicode ? m_shapes->glyph(unicode) : kNoGlyph;
}

GlyphId IntellifontSoftFont::glyph(std::uint32_t code) const { return m_characters.count(code) ? code : kNoGlyph; }

double IntellifontSoftFont::advance(GlyphId glyph) const
{
    const auto found = m_characters.find(glyph);
    if (found != m_characters.end() && found->second.escapement > 0)
        return found->second.escapement;
    const GlyphId shape = shapeOf(glyph);
    return shape == kNoGlyph ? m_traits.spaceAdvance : m_shapes->advance(shape);
}

bool IntellifontSoftFont::outline(GlyphId glyph, Path& path) const
{
    const auto found = m_characters.find(glyph);
    if (found == m_characters.end() || !m_shapes)
        return false;
    const GlyphId shape = shapeOf(glyph);
    if (shape != kNoGlyph)
        return m_shapes->outline(shape, path);
    bool hasInk = false;
    for (const Component& component : found->second.components) {
        const GlyphId part = shapeOf(component.code);
        Path outline;
        if (part == kNoGlyph || !m_shapes->outline(part, outline))
            continue;
        path.append(outline.transformed(Matrix::translation(component.x, component.y)));
        hasInk = true;
    }
    return hasInk;
}

bool IntellifontSoftFont::rasterise(
    GlyphId glyph, const Matrix& glyphToDevice, GlyphMask::Depth depth, const GlyphStyle& style, GlyphMask& mask) const
{
    const GlyphId lent = m_characters.count(glyph) ? shapeOf(glyph) : kNoGlyph;
    if (lent != kNoGlyph)
        return m_shapes->rasterise(lent, glyphToDevice, depth, style, mask);
    Path shape;
    if (!outline(glyph, shape))
        return false;
    if (style.bold > 0)
        shape = emboldened(shape, style.bold, style.bold);
    return rasteriseOutline(shape, glyphToDevice, depth, mask);
}

} // namespace quillrip
