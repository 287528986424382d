#include "quillrip/raster/compose/bilevel_compositor.h"

#include "quillrip/raster/compose/mixing.h"

#include <algorithm>
#include <cstdint>
#include <memory>

namespace quillrip {

BilevelCompositor::BilevelCompositor(
    PageBitmap& page, const PaintState& state, std::shared_ptr<const DeviceTexture> texture, WorkMeter& work)
    : Compositor(page, state, std::move(texture), work)
    , m_isMixed(m_texture.hasAlpha() || m_opacity != 255)
{
    if (!m_texture.isUniformBilevel() || m_isMixed)
        return;
    const std::uint64_t ink = m_texture.words(0, 0).ink;
    const bool keeps = m_operation.keep(kAllBits, ink) != 0;
    const bool flips = m_operation.flip(kAllBits, ink) != 0;
    m_inkEffect = keeps ? (flips ? Effect::Invert : Effect::Nothing) : (flips ? Effect::Set : Effect::Clear);
}

void BilevelCompositor::combine(
    std::uint8_t* at, int y, int word, std::uint64_t source, std::uint64_t sourceNotWhite, std::uint64_t wanted) const
{
    if (!m_isMixed)
        return combineWith(m_texture.words(y, word), at, source, sourceNotWhite, wanted);
    const DeviceTexture::MixedWords texture = m_texture.mixedWords(y, word, m_opacity);
    combineWith(texture, at, source, sourceNotWhite, wanted & texture.covered);
}

void BilevelCompositor::combineWith(const DeviceTexture::Words& texture, std::uint8_t* at, std::uint64_t source,
    std::uint64_t sourceNotWhite, std::uint64_t wanted) const
{
    if (m_sourceTransparent)
        wanted &= sourceNotWhite;
    if (m_patternTransparent)
        wanted &= texture.opaque | ~sourceNotWhite;
    const std::uint64_t before = loadWord(at);
    const std::uint64_t after = m_operation.apply(source, texture.ink, before);
    storeWord(at, before ^ ((before ^ after) & wanted));
}

void BilevelCompositor::inkRun(int y, int left, int right)
{
    switch (m_inkEffect) {
    case Effect::Nothing:
        return;
    case Effect::Set:
        return eachWord(
            y, left, right, [](std::uint8_t* at, int, std::uint64_t wanted) { storeWord(at, loadWord(at) | wanted); });
    case Effect::Clear:
        return eachWord(
            y, left, right, [](std::uint8_t* at, int, std::uint64_t wanted) { storeWord(at, loadWord(at) & ~wanted); });
    case Effect::Invert:
        return eachWord(
            y, left, right, [](std::uint8_t* at, int, std::uint64_t wanted) { storeWord(at, loadWord(at) ^ wanted); });
    case Effect::Varies:
        return eachWord(y, left, right, [&](std::uint8_t* at, int word, std::uint64_t wanted) {
            combine(at, y, word, kAllBits, kAllBits, wanted);
        });
    }
}

void BilevelCompositor::whiteRun(int y, int left, int right)
{
    eachWord(
        y, left, right, [&](std::uint8_t* at, int word, std::uint64_t wanted) { combine(at, y, word, 0, 0, wanted); });
}

void BilevelCompositor::bitsRun(int y, int left, int right, const BitRow& bits, std::ptrdiff_t shift)
{
    const auto sourceAt = [&](int word) { return bits.wordAt(std::ptrdiff_t { word } * 64 + shift); };
    if (m_sourceTransparent && m_inkEffect == Effect::Set) {
        return eachWord(y, left, right, [&](std::uint8_t* at, int word, std::uint64_t wanted) {
            storeWord(at, loadWord(at) | (sourceAt(word) & wanted));
        });
    }
    if (m_sourceTransparent && m_inkEffect == Effect::Clear) {
        return eachWord(y, left, right, [&](std::uint8_t* at, int word, std::uint64_t wanted) {
            storeWord(at, loadWord(at) & ~(sourceAt(word) & wanted));
        });
    }
    eachWord(y, left, right, [&](std::uint8_t* at, int word, std::uint64_t wanted) {
        const std::uint64_t source = sourceAt(word);
        combine(at, y, word, source, source, wanted);
    });
}

void BilevelCompositor::coverageRun(int y, int left, int right, const std::uint8_t* coverage, bool whiteElsewhere)
{
    eachWord(y, left, right, [&](std::uint8_t* at, int word, std::uint64_t wanted) {
        const int from = std::max(left, word * 64);
        const int to = std::min(right, word * 64 + 64);
        std::uint64_t source = 0;
        for (int x = from; x < to; ++x)
            source |= static_cast<std::uint64_t>(coverage[x - left] >= 128) << (63 - (x & 63));
        combine(at, y, word, source, source, whiteElsewhere ? wanted : wanted & source);
    });
}

void BilevelCompositor::maskRun(int y, int left, const MaskRows& rows)
{
    if (rows.isBits && m_sourceTransparent && m_inkEffect == Effect::Set)
        return paintMask<true>(y, left, rows);
    if (rows.isBits && m_sourceTransparent && m_inkEffect == Effect::Clear)
        return paintMask<false>(y, left, rows);
    const int right = left + rows.width;
    for (int i = 0; i < rows.count; ++i) {
        if (rows.isBits)
            bitsRun(y + i, left, right, BitRow(rows.row(i), rows.width), -std::ptrdiff_t { left });
        else
            coverageRun(y + i, left, right, rows.row(i), !m_sourceTransparent);
    }
}

template <bool Sets> void BilevelCompositor::paintMask(int y, int left, const MaskRows& rows)
{
    // Within a block of the page's memory each row is a stride behind the one before.
    for (int done = 0; done < rows.count;) {
        MaskRows part = rows;
        part.bytes = rows.row(done);
        part.count = std::min(rows.count - done, m_page.rowsInBlock(y + done));
        paintMaskInBlock<Sets>(m_page.row(y + done), left, part);
        done += part.count;
    }
}

template <bool Sets>
void BilevelCompositor::paintMaskInBlock(std::uint8_t* firstRow, int left, const MaskRows& rows) const
{
    // So many bits, moved to where they belong within a byte, still fit a word.
    constexpr int atATime = 56;
    const std::size_t stride = m_page.stride();
    for (int from = 0; from < rows.width; from += atATime) {
        const int bits = std::min(atATime, rows.width - from);
        const auto bytes = static_cast<std::size_t>(bits + 7) / 8;
        const std::uint64_t wanted = bitsUpTo(static_cast<unsigned>(bits));
        const auto shift = static_cast<unsigned>(left + from) & 7;
        const std::size_t column = static_cast<std::size_t>(left + from) / 8;
        // Rows have a multiple of eight bytes: near their end the bits come from further right in a word.
        const std::size_t back = column + 8 > stride ? column + 8 - stride : 0;
        const std::uint8_t* source = rows.bytes + from / 8;
        std::uint8_t* at = firstRow + column - back;
        for (int i = 0; i < rows.count; ++i, source += rows.stride, at += stride) {
            std::uint64_t ink = 0;
            for (std::size_t byte = 0; byte < bytes; ++byte)
                ink |= std::uint64_t { source[byte] } << (56 - 8 * byte);
            ink = (ink & wanted) >> shift >> 8 * back;
            storeWord(at, Sets ? loadWord(at) | ink : loadWord(at) & ~ink);
        }
    }
}

void BilevelCompositor::colorsRun(int y, int left, int right, const std::uint8_t* ink, const std::uint8_t* coverage)
{
    tonesRun(y, left, right, ink, coverage, false);
}

void BilevelCompositor::blendedRun(int y, int left, int right, const std::uint8_t* ink, const std::uint8_t* alpha)
{
    tonesRun(y, left, right, ink, alpha, true);
}

void BilevelCompositor::tonesRun(
    int y, int left, int right, const std::uint8_t* ink, const std::uint8_t* shares, bool isAlpha)
{
    const std::uint8_t* thresholds = screenRow(y);
    eachWord(y, left, right, [&](std::uint8_t* at, int word, std::uint64_t wanted) {
        const int wordStart = word * 64;
        std::uint8_t dots[64] = {};
        std::uint8_t notWhite[64] = {};
        const int from = std::max(left, wordStart) - wordStart;
        const int to = std::min(right, wordStart + 64) - wordStart;
        const std::uint8_t* tones = ink + (wordStart + from - left);
        const std::uint8_t* shared = shares ? shares + (wordStart + from - left) : nullptr;
        for (int x = from; x < to; ++x) {
            dots[x] = tones[x - from] > thresholds[x];
            notWhite[x] = tones[x - from] != 0;
        }
        if (shared && !isAlpha) {
            std::uint8_t isCovered[64] = {};
            for (int x = from; x < to; ++x)
                isCovered[x] = shared[x - from] >= 128;
            wanted &= packFlags(isCovered);
        }
        if (isAlpha || m_opacity != 255) {
            std::uint8_t alpha[64] = {};
            for (int x = from; x < to; ++x) {
                alpha[x] = isAlpha ? mixed(0, shared[x - from], m_opacity) : m_opacity;
                dots[x] = tones[x - from];
            }
            wanted &= screenMixed(thresholds, dots, alpha);
        }
        // The test for white comes before the screen: a white dot of a grey tone is not white.
        combineWith(m_texture.words(y, word), at, packFlags(dots), packFlags(notWhite), wanted);
    });
}

} // namespace quillrip
