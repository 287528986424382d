#include "quillrip/fonts/soft/bitmap_soft_font.h"

#include "quillrip/fonts/pixels/outline_raster.h"
#include "quillrip/fonts/soft/header_fields.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

namespace quillrip {

namespace {

constexpr int kLargestSide = 16384;
/// Room for one character's rows; a whole page at 600 dots per inch fits.
constexpr std::size_t kMostBits = std::size_t { 32 } << 20;
/// What run lengths may make out of little data.
constexpr std::size_t kMostFromNothing = std::size_t { 2 } << 20;

/// Run-length rows: a count of further copies of the row, then run lengths from white on until the width is full.
/// A run longer than 255 is written as 255, 0, the rest.
std::vector<std::uint8_t> decodeRuns(ByteView data, int width, int height)
{
    const auto columns = static_cast<std::size_t>(width);
    const std::size_t stride = (columns + 7) / 8;
    // A few bytes can ask for many copies of a row; no glyph that is meant needs them all.
    const std::size_t most = std::min(stride * static_cast<std::size_t>(height), kMostFromNothing + 64 * data.size);
    std::vector<std::uint8_t> bits;
    std::vector<std::uint8_t> row(stride);
    std::size_t at = 0;
    while (bits.size() < most && at < data.size) {
        const std::size_t copies = data[at++] + std::size_t { 1 };
        std::fill(row.begin(), row.end(), std::uint8_t { 0 });
        bool isInk = false;
        for (std::size_t x = 0; x < columns && at < data.size; isInk = !isInk) {
            const std::size_t end = std::min(columns, x + data[at++]);
            for (; x < end; ++x) {
                if (isInk)
                    row[x / 8] |= static_cast<std::uint8_t>(0x80 >> (x % 8));
            }
        }
        for (std::size_t i = 0; i < copies && bits.size() < most; ++i)
            bits.insert(bits.end(), row.begin(), row.end());
    }
    return bits;
}

/// A glyph whose data ended early has the rows that came, the last one filled up with white.
void cutToRows(BitmapGlyph& glyph)
{
    const std::size_t stride = glyph.stride();
    if (stride == 0)
        return;
    const std::size_t rows
        = std::min((glyph.bits.size() + stride - 1) / stride, static_cast<std::size_t>(glyph.height));
    glyph.bits.resize(rows * stride, 0);
    glyph.height = static_cast<int>(rows);
}

bool sizeIsPossible(int width, int height)
{
    const auto stride = (static_cast<std::size_t>(width) + 7) / 8;
    return width >= 1 && height >= 1 && width <= kLargestSide && height <= kLargestSide
        && stride * static_cast<std::size_t>(height) <= kMostBits;
}

} // namespace

BitmapSoftFont::BitmapSoftFont(SoftFontHeader header)
    : m_header(std::move(header))
    , m_bytes(sizeof(BitmapSoftFont))
{
    m_traits = m_header.traits;
}

bool BitmapSoftFont::addPclCharacter(std::uint32_t code, ByteView block, const Reporter& reporter)
{
    constexpr std::size_t kDescriptor = 16;
    if (block.size < 2 || block[0] != 4) {
        reporter.damage("font.character-format", "character does not have the format of its bitmap font, ignored");
        return false;
    }
    if (block[1] != 0) {
        if (m_unfinished.imageClass == 0 || m_unfinished.code != code) {
            reporter.damage("font.continuation", "continuation of a character that was not begun, ignored");
            return false;
        }
    } else {
        finish();
        if (block.size < kDescriptor) {
            reporter.damage("font.character-short", "character shorter than its descriptor, ignored");
            return false;
        }
        const std::uint8_t imageClass = block[3];
        const int width = u16At(block, 10);
        const int height = u16At(block, 12);
        const bool isBlank = width == 0 || height == 0;
        if ((imageClass != 1 && imageClass != 2) || (!isBlank && !sizeIsPossible(width, height))) {
            reporter.damage("font.character", "character with an impossible size or class, ignored");
            return false;
        }
        m_unfinished.code = code;
        m_unfinished.imageClass = imageClass;
        m_unfinished.stored.left = s16At(block, 6);
        m_unfinished.stored.top = s16At(block, 8);
        m_unfinished.stored.width = isBlank ? 0 : width;
        m_unfinished.stored.height = isBlank ? 0 : height;
        m_unfinished.stored.advance = s16At(block, 14) / 4.0;
    }

    const ByteView data = block.sub(block[1] != 0 ? 2 : kDescriptor);
    const BitmapGlyph& stored = m_unfinished.stored;
    const std::size_t rows = stored.stride() * static_cast<std::size_t>(stored.height);
    std::vector<std::uint8_t>& collected = m_unfinished.data;
    // Run-length data may at worst be longer than the rows: two bytes a dot, and the counts of copies.
    const std::size_t most = m_unfinished.imageClass == 1 ? rows : 16 * rows + static_cast<std::size_t>(stored.height);
    const std::size_t taken = std::min(data.size, most - std::min(most, collected.size()));
    collected.insert(collected.end(), data.begin(), data.begin() + taken);
    return true;
}

void BitmapSoftFont::finish() const
{
    if (m_unfinished.imageClass == 0)
        return;
    BitmapGlyph glyph = std::move(m_unfinished.stored);
    if (m_unfinished.imageClass == 1) {
        glyph.bits = std::move(m_unfinished.data);
        cutToRows(glyph);
    } else {
        glyph.bits = decodeRuns(m_unfinished.data, glyph.width, glyph.height);
        cutToRows(glyph);
    }
    const std::uint32_t code = m_unfinished.code;
    m_unfinished = {};
    store(code, m_traits.orientation == 0 ? std::move(glyph) : glyph.turnedUpright(m_traits.orientation));
}

bool BitmapSoftFont::addPclXlCharacter(std::uint32_t code, ByteView data, const Reporter& reporter)
{
    constexpr std::size_t kDescriptor = 10;
    if (data.size < kDescriptor || data[0] != 0 || data[1] != 0) {
        reporter.damage("font.character-format", "character does not have the format of its bitmap font, ignored");
        return false;
    }
    BitmapGlyph glyph;
    glyph.left = s16At(data, 2);
    glyph.top = s16At(data, 4);
    glyph.width = u16At(data, 6);
    glyph.height = u16At(data, 8);
    if (glyph.width == 0 || glyph.height == 0) {
        glyph.width = glyph.height = 0;
    } else if (!sizeIsPossible(glyph.width, glyph.height)) {
        reporter.damage("font.character", "character with an impossible size, ignored");
        return false;
    }
    const std::size_t rows = glyph.stride() * static_cast<std::size_t>(glyph.height);
    const ByteView bits = data.sub(kDescriptor, rows);
    if (bits.size < rows)
        reporter.damage("font.character-short", "character with fewer rows than its height");
    glyph.bits.assign(bits.begin(), bits.end());
    cutToRows(glyph);
    glyph.advance = glyph.left + glyph.width;
    store(code, glyph.turnedUpright(m_traits.orientation));
    return true;
}

void BitmapSoftFont::store(std::uint32_t code, BitmapGlyph glyph) const
{
    erase(code);
    m_bytes += sizeof(BitmapGlyph) + glyph.bits.size();
    m_glyphs.emplace(code, std::move(glyph));
}

void BitmapSoftFont::removeCharacter(std::uint32_t code)
{
    finish();
    erase(code);
}

void BitmapSoftFont::erase(std::uint32_t code) const
{
    const auto found = m_glyphs.find(code);
    if (found == m_glyphs.end())
        return;
    m_bytes -= sizeof(BitmapGlyph) + found->second.bits.size();
    m_glyphs.erase(found);
    m_glyphRevisions[code] = ++m_revision;
}

std::uint32_t BitmapSoftFont::glyphRevision(GlyphId glyph) const
{
    const auto found = m_glyphRevisions.find(glyph);
    return found == m_glyphRevisions.end() ? 0 : found->second;
}

std::shared_ptr<SoftFont> BitmapSoftFont::copy() const
{
    finish();
    auto font = std::make_shared<BitmapSoftFont>(m_header);
    font->m_glyphs = m_glyphs;
    font->m_bytes = m_bytes;
    return font;
}

GlyphId BitmapSoftFont::glyph(std::uint32_t code) const
{
    finish();
    if (m_glyphs.count(code))
        return code;
    for (const GalleyRange& range : m_header.galley) {
        if (code >= range.first && code <= range.last)
            return m_glyphs.count(range.substitute) ? range.substitute : kNoGlyph;
    }
    return m_glyphs.count(m_header.galleyDefault) ? m_header.galleyDefault : kNoGlyph;
}

double BitmapSoftFont::advance(GlyphId glyph) const
{
    const auto found = m_glyphs.find(glyph);
    return found == m_glyphs.end() ? m_traits.spaceAdvance : found->second.advance / m_header.resolutionX;
}

bool BitmapSoftFont::outline(GlyphId glyph, Path& path) const
{
    // Bitmap fonts do not become paths: the languages say so.
    (void)glyph;
    (void)path;
    return false;
}

bool BitmapSoftFont::rasterise(
    GlyphId glyph, const Matrix& glyphToDevice, GlyphMask::Depth depth, const GlyphStyle& style, GlyphMask& mask) const
{
    (void)style; // the dots are the shape
    const auto found = m_glyphs.find(glyph);
    if (found == m_glyphs.end())
        return false;
    const Matrix dots = Matrix::scaling(1.0 / m_header.resolutionX, 1.0 / m_header.resolutionY);
    return found->second.rasterise(dots * glyphToDevice, depth, mask);
}

bool BitmapSoftFont::staysUpright(std::uint32_t code) const
{
    return std::any_of(m_header.uprightCodes.begin(), m_header.uprightCodes.end(),
        [code](const CodeSpan& span) { return code >= span.first && code <= span.last; });
}

} // namespace quillrip
