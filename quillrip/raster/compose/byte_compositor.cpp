#include "quillrip/raster/compose/byte_compositor.h"

namespace quillrip {

namespace {

/// Pixels that the general way handles at a time.
constexpr int kChunk = 256;

/// a + (b - a) * share / 255, rounded.
std::uint8_t mixed(unsigned a, unsigned b, unsigned share)
{
    const unsigned sum = a * (255 - share) + b * share + 128;
    return static_cast<std::uint8_t>((sum + (sum >> 8)) >> 8);
}

template <int Channels> void fillPixels(std::uint8_t* at, int count, const Ink& ink)
{
    const bool isGrey = Channels == 1 || (ink[0] == ink[1] && ink[1] == ink[2]);
    if (isGrey) {
        std::memset(at, ink[0], static_cast<std::size_t>(count) * Channels);
        return;
    }
    for (int i = 0; i < count; ++i) {
        for (std::size_t channel = 0; channel < Channels; ++channel)
            *at++ = ink[channel];
    }
}

template <int Channels> bool isWhite(const std::uint8_t* ink)
{
    if constexpr (Channels == 1)
        return ink[0] == 0;
    else
        return (ink[0] | ink[1] | ink[2]) == 0;
}

} // namespace

template <int Channels>
ByteCompositor<Channels>::ByteCompositor(
    PageBitmap& page, const PaintState& state, std::shared_ptr<const DeviceTexture> texture)
    : Compositor(page, state, std::move(texture))
{
    if (!m_texture.isSolid())
        return;
    constexpr std::uint8_t allInk = 255;
    bool readsPage = false;
    bool copies = true;
    for (std::size_t channel = 0; channel < Channels; ++channel) {
        const std::uint8_t ink = m_texture.ink()[channel];
        readsPage = readsPage || m_operation.keep(allInk, ink) != 0;
        m_storedInk[channel] = m_operation.flip(allInk, ink);
        // An operation that acts bit by bit copies a source if it copies both of a bit's values.
        for (const std::uint8_t source : { std::uint8_t { 0 }, allInk }) {
            copies = copies && m_operation.keep(source, ink) == 0 && m_operation.flip(source, ink) == source;
        }
    }
    m_inkIsStored = !readsPage;
    m_sourceIsCopied = copies;
}

template <int Channels> void ByteCompositor<Channels>::inkRun(int y, int left, int right)
{
    if (m_inkIsStored)
        return fillPixels<Channels>(pixelAt(y, left), right - left, m_storedInk);
    constexpr std::uint8_t black[3] = { 255, 255, 255 };
    combine(y, left, right, black, true, nullptr);
}

template <int Channels> void ByteCompositor<Channels>::whiteRun(int y, int left, int right)
{
    constexpr std::uint8_t white[3] = { 0, 0, 0 };
    combine(y, left, right, white, true, nullptr);
}

template <int Channels>
void ByteCompositor<Channels>::bitsRun(int y, int left, int right, const BitRow& bits, std::ptrdiff_t shift)
{
    // Runs of equal bits, so that each is a plain span.
    int runStart = left;
    bool runIsInk = false;
    const auto endRun = [&](int x) {
        if (x > runStart) {
            if (runIsInk)
                inkRun(y, runStart, x);
            else if (!m_sourceTransparent)
                whiteRun(y, runStart, x);
        }
        runStart = x;
    };
    for (int x = left; x < right; x += 64) {
        const std::uint64_t word = bits.wordAt(x + shift);
        int at = 0;
        const int count = std::min(64, right - x);
        while (at < count) {
            const std::uint64_t differing = (runIsInk ? ~word : word) & bitsFrom(static_cast<unsigned>(at));
            const int change = differing == 0 ? 64 : __builtin_clzll(differing);
            if (change >= count)
                break;
            endRun(x + change);
            runIsInk = !runIsInk;
            at = change;
        }
    }
    endRun(right);
}

template <int Channels>
void ByteCompositor<Channels>::coverageRun(
    int y, int left, int right, const std::uint8_t* coverage, bool whiteElsewhere)
{
    constexpr std::uint8_t black[3] = { 255, 255, 255 };
    if (whiteElsewhere) {
        // Each pixel is a mix of what a black and what a white source would make of it.
        for (int x = left; x < right; ++x) {
            std::uint8_t* at = pixelAt(y, x);
            std::uint8_t before[Channels];
            std::uint8_t underWhite[Channels];
            std::memcpy(before, at, Channels);
            whiteRun(y, x, x + 1);
            std::memcpy(underWhite, at, Channels);
            std::memcpy(at, before, Channels);
            inkRun(y, x, x + 1);
            for (std::size_t channel = 0; channel < Channels; ++channel)
                at[channel] = mixed(underWhite[channel], at[channel], coverage[x - left]);
        }
        return;
    }
    if (!m_inkIsStored)
        return combine(y, left, right, black, true, coverage);
    std::uint8_t* at = pixelAt(y, left);
    for (int i = 0; i < right - left; ++i, at += Channels) {
        const unsigned share = coverage[i];
        if (share == 0)
            continue;
        if (share == 255) {
            std::memcpy(at, m_storedInk.data(), Channels);
            continue;
        }
        for (std::size_t channel = 0; channel < Channels; ++channel)
            at[channel] = mixed(at[channel], m_storedInk[channel], share);
    }
}

template <int Channels>
void ByteCompositor<Channels>::colorsRun(
    int y, int left, int right, const std::uint8_t* ink, const std::uint8_t* coverage)
{
    if (!m_sourceIsCopied || coverage)
        return combine(y, left, right, ink, false, coverage);
    std::uint8_t* at = pixelAt(y, left);
    const auto count = static_cast<std::size_t>(right - left);
    if (!m_sourceTransparent) {
        std::memcpy(at, ink, count * Channels);
        return;
    }
    for (std::size_t i = 0; i < count; ++i, at += Channels, ink += Channels) {
        if (!isWhite<Channels>(ink))
            std::memcpy(at, ink, Channels);
    }
}

template <int Channels>
void ByteCompositor<Channels>::combine(
    int y, int left, int right, const std::uint8_t* source, bool isConstant, const std::uint8_t* coverage)
{
    std::uint8_t textureInk[kChunk * Channels];
    std::uint8_t textureOpaque[kChunk];
    for (int from = left; from < right; from += kChunk) {
        const int count = std::min(kChunk, right - from);
        m_texture.gather(y, from, count, textureInk, textureOpaque);
        std::uint8_t* at = pixelAt(y, from);
        const std::uint8_t* texture = textureInk;
        for (int i = 0; i < count; ++i, at += Channels, texture += Channels) {
            const std::uint8_t* pixel = source;
            if (!isConstant)
                source += Channels;
            const bool keeps
                = isWhite<Channels>(pixel) ? m_sourceTransparent : m_patternTransparent && textureOpaque[i] == 0;
            const unsigned share = coverage ? coverage[from - left + i] : 255;
            if (keeps || share == 0)
                continue;
            for (int channel = 0; channel < Channels; ++channel) {
                const std::uint8_t result = m_operation.apply(pixel[channel], texture[channel], at[channel]);
                at[channel] = share == 255 ? result : mixed(at[channel], result, share);
            }
        }
    }
}

template class ByteCompositor<1>;
template class ByteCompositor<3>;

} // namespace quillrip
