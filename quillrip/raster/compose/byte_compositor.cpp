#include "quillrip/raster/compose/byte_compositor.h"

#include "quillrip/raster/compose/mixing.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>

namespace quillrip {

namespace {

/// Pixels that the general way handles at a time.
constexpr int kChunk = 256;
/// Pixels, at least, that the operation is worked out for with a texture that repeats itself.
constexpr int kWorkedOut = 64;

/// What an operation does to bytes of the page under one texture: for each byte
///   page = (page & (keep ^ (keepOfSource & source))) ^ flip ^ (flipOfSource & source).
template <std::size_t Bytes> struct TextureTerms {
    std::array<std::uint8_t, Bytes> keep;
    std::array<std::uint8_t, Bytes> flip;
    std::array<std::uint8_t, Bytes> keepOfSource; ///< unused with a source of one colour, which is part of the others
    std::array<std::uint8_t, Bytes> flipOfSource;

    /// For a source that is all `plain`.
    void workOut(const RasterOperation& operation, const std::uint8_t* texture, std::uint8_t plain, std::size_t bytes)
    {
        workOut(operation, texture, plain, bytes, keep.data(), flip.data());
    }

    /// For any source.
    void workOut(const RasterOperation& operation, const std::uint8_t* texture, std::size_t bytes)
    {
        workOut(operation, texture, 0, bytes, keep.data(), flip.data());
        workOut(operation, texture, 255, bytes, keepOfSource.data(), flipOfSource.data());
        for (std::size_t i = 0; i < bytes; ++i) {
            keepOfSource[i] = keepOfSource[i] ^ keep[i];
            flipOfSource[i] = flipOfSource[i] ^ flip[i];
        }
    }

    /// Bytes of the page stay as they are where `changes` has 0; elsewhere it has 255.
    void restrictTo(const std::uint8_t* changes, std::size_t bytes)
    {
        for (std::size_t i = 0; i < bytes; ++i) {
            keep[i] = static_cast<std::uint8_t>(keep[i] | ~changes[i]);
            flip[i] = flip[i] & changes[i];
        }
    }

    void apply(std::uint8_t* __restrict page, std::size_t bytes) const
    {
        const std::uint8_t* __restrict keeps = keep.data();
        const std::uint8_t* __restrict flips = flip.data();
        for (std::size_t i = 0; i < bytes; ++i)
            page[i] = static_cast<std::uint8_t>((page[i] & keeps[i]) ^ flips[i]);
    }

    void apply(std::uint8_t* __restrict page, const std::uint8_t* __restrict source, std::size_t bytes) const
    {
        const std::uint8_t* __restrict keeps = keep.data();
        const std::uint8_t* __restrict flips = flip.data();
        const std::uint8_t* __restrict keepsOfSource = keepOfSource.data();
        const std::uint8_t* __restrict flipsOfSource = flipOfSource.data();
        for (std::size_t i = 0; i < bytes; ++i) {
            const std::uint8_t s = source[i];
            page[i] = static_cast<std::uint8_t>(
                (page[i] & (keeps[i] ^ (keepsOfSource[i] & s))) ^ flips[i] ^ (flipsOfSource[i] & s));
        }
    }

private:
    static void workOut(const RasterOperation& operation, const std::uint8_t* texture, std::uint8_t source,
        std::size_t bytes, std::uint8_t* keeps, std::uint8_t* flips)
    {
        // A page all 0 becomes what is flipped, one all 1 that and what is kept.
        std::uint8_t sources[Bytes];
        std::uint8_t zeros[Bytes];
        std::uint8_t ones[Bytes];
        std::memset(sources, source, bytes);
        std::memset(zeros, 0, bytes);
        std::memset(ones, 255, bytes);
        operation.applyBytes(sources, texture, zeros, flips, bytes);
        operation.applyBytes(sources, texture, ones, keeps, bytes);
        for (std::size_t i = 0; i < bytes; ++i)
            keeps[i] = keeps[i] ^ flips[i];
    }
};

template <int Channels> bool isWhite(const std::uint8_t* ink)
{
    if constexpr (Channels == 1)
        return ink[0] == 0;
    else
        return (ink[0] | ink[1] | ink[2]) == 0;
}

/// Whether one of so many bytes, a multiple of 8, is 0.
template <std::size_t Count> bool hasZeroByte(const std::uint8_t* bytes)
{
    constexpr std::uint64_t ones = 0x0101010101010101;
    std::uint64_t found = 0;
    for (std::size_t i = 0; i < Count; i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes + i, 8);
        found |= (word - ones) & ~word;
    }
    return (found & ones << 7) != 0;
}

/// Sets the bytes of `flags` where pixels of ink are white.
template <int Channels> void markWhite(const std::uint8_t* ink, int count, std::uint8_t flag, std::uint8_t* flags)
{
    // Most pixels of a picture have some of every ink.
    constexpr int block = 16;
    for (int i = 0; i < count;) {
        const std::uint8_t* pixel = ink + static_cast<std::ptrdiff_t>(i) * Channels;
        if (count - i >= block && !hasZeroByte<block * Channels>(pixel)) {
            i += block;
            continue;
        }
        for (const int end = std::min(count, i + block); i < end; ++i, pixel += Channels) {
            if (isWhite<Channels>(pixel))
                std::memset(flags + static_cast<std::ptrdiff_t>(i) * Channels, flag, Channels);
        }
    }
}

} // namespace

template <int Channels>
ByteCompositor<Channels>::Stencil::Stencil(const RasterOperation& operation, std::uint8_t source, const Ink& texture)
    : isStored(true)
{
    for (std::size_t channel = 0; channel < Channels; ++channel) {
        keep[channel] = operation.keep(source, texture[channel]);
        flip[channel] = operation.flip(source, texture[channel]);
        isStored = isStored && keep[channel] == 0;
        isNothing = isNothing && keep[channel] == 255 && flip[channel] == 0;
    }
    for (std::size_t filled = Channels; filled < kBytes; filled *= 2) {
        std::memcpy(keep.data() + filled, keep.data(), filled);
        std::memcpy(flip.data() + filled, flip.data(), filled);
    }
}

template <int Channels> void ByteCompositor<Channels>::Stencil::apply(std::uint8_t* at, std::size_t pixels) const
{
    std::size_t left = pixels * Channels;
    if (isStored) {
        if (Channels == 1 || (flip[0] == flip[1] && flip[1] == flip[2])) {
            std::memset(at, flip[0], left);
            return;
        }
        for (; left >= kBytes; left -= kBytes, at += kBytes)
            std::memcpy(at, flip.data(), kBytes);
        std::memcpy(at, flip.data(), left);
        return;
    }
    for (; left >= kBytes; left -= kBytes, at += kBytes) {
        for (std::size_t i = 0; i < kBytes; ++i)
            at[i] = static_cast<std::uint8_t>((at[i] & keep[i]) ^ flip[i]);
    }
    for (std::size_t i = 0; i < left; ++i)
        at[i] = static_cast<std::uint8_t>((at[i] & keep[i]) ^ flip[i]);
}

template <int Channels>
void ByteCompositor<Channels>::Stencil::mix(std::uint8_t* at, std::size_t pixels, unsigned share) const
{
    for (std::size_t i = 0; i < pixels * Channels; ++i) {
        const std::size_t place = i % kBytes;
        at[i] = mixed(at[i], static_cast<std::uint8_t>((at[i] & keep[place]) ^ flip[place]), share);
    }
}

template <int Channels>
ByteCompositor<Channels>::ByteCompositor(
    PageBitmap& page, const PaintState& state, std::shared_ptr<const DeviceTexture> texture, WorkMeter& work)
    : Compositor(page, state, std::move(texture), work)
{
    if (!m_texture.isSolid())
        return;
    constexpr std::uint8_t allInk = 255;
    m_inkStencil = Stencil(m_operation, allInk, m_texture.ink());
    if (!m_sourceTransparent)
        m_whiteStencil = Stencil(m_operation, 0, m_texture.ink());
    bool copies = true;
    for (std::size_t channel = 0; channel < Channels; ++channel) {
        const std::uint8_t ink = m_texture.ink()[channel];
        // An operation that acts bit by bit copies a source if it copies both of a bit's values.
        for (const std::uint8_t source : { std::uint8_t { 0 }, allInk }) {
            copies = copies && m_operation.keep(source, ink) == 0 && m_operation.flip(source, ink) == source;
        }
    }
    m_sourceIsCopied = copies && m_opacity == 255;
}

template <int Channels>
void ByteCompositor<Channels>::plainRun(int y, int left, int right, std::uint8_t source, const Stencil& stencil)
{
    if (!m_texture.isSolid())
        return combine(y, left, right, nullptr, source, nullptr);
    if (stencil.isNothing)
        return;
    const auto pixels = static_cast<std::size_t>(right - left);
    if (m_opacity == 255)
        stencil.apply(pixelAt(y, left), pixels);
    else
        stencil.mix(pixelAt(y, left), pixels, m_opacity);
}

template <int Channels> void ByteCompositor<Channels>::inkRun(int y, int left, int right)
{
    plainRun(y, left, right, 255, m_inkStencil);
}

template <int Channels> void ByteCompositor<Channels>::whiteRun(int y, int left, int right)
{
    plainRun(y, left, right, 0, m_whiteStencil);
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
    if (!m_texture.isSolid() || !m_inkStencil.isStored)
        return combine(y, left, right, nullptr, 255, coverage);
    // Of their own, since what is written to the page could be members for all that the compiler knows.
    const std::uint8_t opacity = m_opacity;
    std::uint8_t ink[Channels];
    std::memcpy(ink, m_inkStencil.flip.data(), Channels);
    std::uint8_t* at = pixelAt(y, left);
    const int count = right - left;
    for (int i = 0; i < count; ++i, at += Channels) {
        unsigned share = coverage[i];
        if (share == 0)
            continue;
        if (opacity != 255)
            share = mixed(0, coverage[i], opacity);
        if (share == 255) {
            std::memcpy(at, ink, Channels);
            continue;
        }
        for (std::size_t channel = 0; channel < Channels; ++channel)
            at[channel] = mixed(at[channel], ink[channel], share);
    }
}

template <int Channels> void ByteCompositor<Channels>::maskRun(int y, int left, const MaskRows& rows)
{
    const int right = left + rows.width;
    for (int i = 0; i < rows.count; ++i) {
        if (rows.isBits)
            bitsRun(y + i, left, right, BitRow(rows.row(i), rows.width), -std::ptrdiff_t { left });
        else
            coverageRun(y + i, left, right, rows.row(i), !m_sourceTransparent);
    }
}

template <int Channels>
void ByteCompositor<Channels>::colorsRun(
    int y, int left, int right, const std::uint8_t* ink, const std::uint8_t* coverage)
{
    if (!m_sourceIsCopied || coverage)
        return combine(y, left, right, ink, 0, coverage);
    std::uint8_t* at = pixelAt(y, left);
    const auto count = static_cast<std::size_t>(right - left);
    if (!m_sourceTransparent) {
        std::memcpy(at, ink, count * Channels);
        return;
    }
    std::size_t i = 0;
    const auto copyPixels = [&](std::size_t end) {
        for (; i < end; ++i) {
            if (!isWhite<Channels>(ink + i * Channels))
                std::memcpy(at + i * Channels, ink + i * Channels, Channels);
        }
    };
    // Most pixels of a picture have some of every ink.
    constexpr std::size_t block = 16;
    while (i + block <= count) {
        if (hasZeroByte<block * Channels>(ink + i * Channels)) {
            copyPixels(i + block);
        } else {
            std::memcpy(at + i * Channels, ink + i * Channels, block * Channels);
            i += block;
        }
    }
    copyPixels(count);
}

template <int Channels>
void ByteCompositor<Channels>::combine(
    int y, int left, int right, const std::uint8_t* source, std::uint8_t plain, const std::uint8_t* coverage)
{
    const bool isPlain = source == nullptr;
    if (isPlain && plain == 0 && m_sourceTransparent)
        return;
    const bool sourceDecides = !isPlain && (m_sourceTransparent || tileDecides(source, plain));
    if (!coverage && !sourceDecides && !m_texture.hasAlpha() && m_opacity == 255)
        return combineOpaque(y, left, right, source, plain);
    const int chunk = std::min(kChunk, right - left);
    std::uint8_t plainInk[kChunk * Channels];
    if (isPlain)
        std::memset(plainInk, plain, static_cast<std::size_t>(chunk) * Channels);
    std::uint8_t texture[kChunk * Channels];
    std::uint8_t changes[kChunk * Channels];
    std::uint8_t result[kChunk * Channels];
    std::uint8_t alpha[kChunk];
    // A solid texture is the same everywhere.
    if (m_texture.isSolid())
        m_texture.gather(y, left, chunk, texture, changes, alpha);
    for (int from = left; from < right; from += kChunk) {
        const int count = std::min(kChunk, right - from);
        const auto bytes = static_cast<std::size_t>(count) * Channels;
        const std::uint8_t* ink = isPlain ? plainInk : source + static_cast<std::ptrdiff_t>(from - left) * Channels;
        if (!m_texture.isSolid())
            m_texture.gather(y, from, count, texture, changes, alpha);
        std::uint8_t* at = pixelAt(y, from);
        m_operation.applyBytes(ink, texture, at, result, bytes);

        // The tile's white says what changes only under a source that is not white itself.
        if (!tileDecides(source, plain))
            std::memset(changes, 255, bytes);
        if (sourceDecides)
            markWhite<Channels>(ink, count, m_sourceTransparent ? 0 : 255, changes);

        const std::uint8_t* shares = coverage ? coverage + (from - left) : nullptr;
        if (m_texture.hasAlpha() || m_opacity != 255) {
            for (int i = 0; i < count; ++i) {
                unsigned share = m_texture.hasAlpha() ? alpha[i] : 255u;
                share = shares ? mixed(0, share, shares[i]) : share;
                alpha[i] = mixed(0, share, m_opacity);
            }
            shares = alpha;
        }
        store(at, result, changes, shares, count);
    }
}

template <int Channels>
void ByteCompositor<Channels>::combineOpaque(int y, int left, int right, const std::uint8_t* source, std::uint8_t plain)
{
    const int period = m_texture.period();
    const bool isRepeated = period > 0 && period <= kChunk;
    const int step = std::min(right - left, !isRepeated ? kChunk : std::max(period, kWorkedOut / period * period));
    TextureTerms<std::size_t { kChunk } * Channels> terms;
    for (int from = left; from < right; from += step) {
        const auto bytes = static_cast<std::size_t>(std::min(step, right - from)) * Channels;
        if (from == left || !isRepeated) {
            std::uint8_t texture[kChunk * Channels];
            std::uint8_t changes[kChunk * Channels];
            m_texture.gather(y, from, static_cast<int>(bytes) / Channels, texture, changes, nullptr);
            if (source)
                terms.workOut(m_operation, texture, bytes);
            else
                terms.workOut(m_operation, texture, plain, bytes);
            if (!source && tileDecides(source, plain))
                terms.restrictTo(changes, bytes);
        }
        if (source)
            terms.apply(pixelAt(y, from), source + static_cast<std::ptrdiff_t>(from - left) * Channels, bytes);
        else
            terms.apply(pixelAt(y, from), bytes);
    }
}

template <int Channels>
void ByteCompositor<Channels>::store(
    std::uint8_t* at, const std::uint8_t* result, const std::uint8_t* changes, const std::uint8_t* shares, int count)
{
    const auto bytes = static_cast<std::size_t>(count) * Channels;
    if (!shares) {
        for (std::size_t i = 0; i < bytes; ++i)
            at[i] = static_cast<std::uint8_t>(at[i] ^ ((at[i] ^ result[i]) & changes[i]));
        return;
    }
    for (int pixel = 0; pixel < count; ++pixel, at += Channels, result += Channels, changes += Channels) {
        const unsigned share = shares[pixel];
        if (share == 0 || changes[0] == 0)
            continue;
        for (int channel = 0; channel < Channels; ++channel)
            at[channel] = share == 255 ? result[channel] : mixed(at[channel], result[channel], share);
    }
}

template class ByteCompositor<1>;
template class ByteCompositor<3>;

} // namespace quillrip
