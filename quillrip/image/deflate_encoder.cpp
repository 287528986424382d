#include "quillrip/image/deflate_encoder.h"

#include <algorithm>
#include <cstring>

#include <zlib.h>

namespace quillrip {

namespace {

constexpr std::size_t kWindow = DeflateBlocks::kFarthest;
constexpr std::size_t kCapacity = std::size_t { 256 } << 10;
/// Bytes behind the window's end that may be read, whatever they are.
constexpr std::size_t kSlack = 64;
constexpr int kHashBits = 15;
constexpr std::size_t kPlaces = kWindow;
constexpr std::uint32_t kFirstOffset = 2 * kWindow;
constexpr std::uint32_t kAdlerBase = 65521;
/// Bytes that a repetition has to cover more than a run, which is short to write.
constexpr std::size_t kWorthOfRun = 4;
/// Shorter ones are seldom worth the bits of their distance.
constexpr std::size_t kShortestFarMatch = 4;

// What bits a repetition would replace, roughly: of a byte that is not 0, and of every change from one byte to the
// next, since a run takes a symbol however long it is; and what it takes itself.
constexpr unsigned kBitsPerByte = 5;
constexpr unsigned kBitsPerChange = 6;
constexpr unsigned kBitsPerMatch = 11; // without the further bits of its distance

std::uint64_t load(const std::uint8_t* at)
{
    std::uint64_t word = 0;
    std::memcpy(&word, at, 8);
    return word;
}

/// Index of the first byte in memory that is not 0; `word` is not 0.
std::size_t firstSetByte(std::uint64_t word)
{
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    return static_cast<std::size_t>(__builtin_ctzll(word)) / 8;
#else
    return static_cast<std::size_t>(__builtin_clzll(word)) / 8;
#endif
}

/// The first `count` bytes in memory.
std::uint64_t firstBytes(std::size_t count)
{
    if (count >= 8)
        return ~std::uint64_t { 0 };
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    return (std::uint64_t { 1 } << 8 * count) - 1;
#else
    return ~(~std::uint64_t { 0 } >> 8 * count);
#endif
}

unsigned countSetBytes(std::uint64_t word)
{
    constexpr std::uint64_t sevenBits = 0x7F7F7F7F7F7F7F7F;
    constexpr std::uint64_t ones = 0x0101010101010101;
    const std::uint64_t flags = ((word | ((word & sevenBits) + sevenBits)) >> 7) & ones;
    return static_cast<unsigned>(flags * ones >> 56);
}

/// Bytes that two places have in common, at most `most`.
std::size_t commonBytes(const std::uint8_t* here, const std::uint8_t* there, std::size_t most)
{
    for (std::size_t i = 0; i < most; i += 8) {
        const std::uint64_t differing = load(here + i) ^ load(there + i);
        if (differing != 0)
            return std::min(most, i + firstSetByte(differing));
    }
    return most;
}

/// Bytes 0 from a place on, at most `most`; the first eight are known.
std::size_t zeroBytes(const std::uint8_t* at, std::size_t most)
{
    std::size_t i = 8;
    while (i + 32 <= most && (load(at + i) | load(at + i + 8) | load(at + i + 16) | load(at + i + 24)) == 0)
        i += 32;
    for (; i < most; i += 8) {
        if (const std::uint64_t word = load(at + i))
            return std::min(most, i + firstSetByte(word));
    }
    return most;
}

/// Of the bytes that two pixels have, or of five where pixels have one.
template <std::size_t PixelBytes> std::size_t hashOf(std::uint64_t word)
{
    constexpr unsigned unusedBits = PixelBytes == 3 ? 16 : 24;
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    word <<= unusedBits;
#else
    word >>= unusedBits;
#endif
    return static_cast<std::size_t>(word * 0x9E3779B97F4A7C15 >> (64 - kHashBits));
}

} // namespace

DeflateEncoder::DeflateEncoder(std::vector<std::uint8_t>& out, std::size_t pixelBytes, DeflateMethod method)
    : m_blocks(out)
    , m_pixelBytes(pixelBytes)
    , m_method(method)
    , m_offset(kFirstOffset)
{
    if (method.candidates > 0) {
        m_latest = std::make_unique<std::uint32_t[]>(std::size_t { 1 } << kHashBits);
        m_before.reset(new std::uint32_t[kPlaces]);
    }
}

std::uint8_t* DeflateEncoder::room(std::size_t count)
{
    if (m_end + count <= m_capacity)
        return m_window.get() + m_end;
    encodeWindow();
    const std::size_t kept = std::min(m_end, kWindow);
    const std::size_t dropped = m_end - kept;
    if (kept + count > m_capacity) {
        const std::size_t capacity = std::max(kCapacity, kept + count);
        std::unique_ptr<std::uint8_t[]> window { new std::uint8_t[capacity + kSlack] };
        // Nothing depends on what lies behind the end, but it is read.
        std::memset(window.get() + kept, 0, capacity + kSlack - kept);
        if (kept > 0)
            std::memcpy(window.get(), m_window.get() + dropped, kept);
        m_window = std::move(window);
        m_capacity = capacity;
    } else {
        std::memmove(m_window.get(), m_window.get() + dropped, kept);
    }
    m_offset += static_cast<std::uint32_t>(dropped);
    m_encoded = m_end = kept;
    return m_window.get() + m_end;
}

void DeflateEncoder::addZeroRows(std::uint8_t first, std::size_t zeros, std::size_t rows)
{
    if (rows * (zeros + 1) < 2 * kWindow) {
        for (std::size_t i = 0; i < rows; ++i) {
            std::uint8_t* row = room(zeros + 1);
            row[0] = first;
            std::memset(row + 1, 0, zeros);
            commit(zeros + 1);
        }
        return;
    }
    encodeWindow();
    // Codes of their own make these rows as short as can be.
    m_blocks.endBlock();
    for (std::size_t i = 0; i < rows; ++i) {
        m_blocks.literal(first);
        const std::size_t literals = zeros <= DeflateBlocks::kShortestMatch ? zeros : 1;
        for (std::size_t zero = 0; zero < literals; ++zero)
            m_blocks.literal(0);
        if (zeros > literals)
            m_blocks.match(zeros - literals, 1);
        addToChecksum(&first, 1);
        addZerosToChecksum(zeros);
    }
    m_blocks.endBlock();
    // The window starts again, with what lies right before.
    m_offset += static_cast<std::uint32_t>(m_end + 2 * kWindow);
    m_encoded = m_end = 0;
    constexpr std::size_t known = 8;
    std::uint8_t* last = room(known);
    std::memset(last, 0, known);
    if (zeros < known)
        last[known - 1 - zeros] = first;
    m_encoded = m_end = known;
}

void DeflateEncoder::flush()
{
    encodeWindow();
    m_blocks.flush();
}

void DeflateEncoder::finish()
{
    encodeWindow();
    m_blocks.finish();
}

void DeflateEncoder::encodeWindow()
{
    if (m_pixelBytes == 3)
        encode<3>(m_encoded, m_end);
    else
        encode<1>(m_encoded, m_end);
    m_encoded = m_end;
}

template <std::size_t PixelBytes> void DeflateEncoder::encode(std::size_t from, std::size_t to)
{
    const std::uint8_t* bytes = m_window.get();
    std::size_t at = from;
    std::size_t checked = from;
    const auto literals = [&](std::size_t count) {
        for (; count > 0 && at < to; --count)
            m_blocks.literal(bytes[at++]);
    };
    // Until there are as many bytes before as a pixel has; what is looked at ends eight bytes further on.
    if (at < PixelBytes)
        literals(PixelBytes - at);
    while (at + 8 <= to) {
        const std::uint64_t word = load(bytes + at);
        if (word == 0) {
            const std::size_t count = zeroBytes(bytes + at, to - at);
            if (const Match above = matchAbove(at, to); above.length > count + kWorthOfRun) {
                m_blocks.match(above.length, above.distance);
                at += above.length;
                continue;
            }
            addToChecksum(bytes + checked, at - checked);
            addZerosToChecksum(count);
            checked = at + count;
            if (bytes[at - 1] != 0)
                literals(1);
            m_blocks.match(checked - at, 1);
            at = checked;
            continue;
        }
        if (word == load(bytes + at - 1)) {
            const std::size_t count = commonBytes(bytes + at, bytes + at - 1, to - at);
            m_blocks.match(count, 1);
            at += count;
            continue;
        }
        if (m_method.candidates > 0) {
            const Match match = findMatch<PixelBytes>(at, to);
            if (match.length >= kShortestFarMatch && isWorthwhile(match, at)) {
                m_blocks.match(match.length, match.distance);
                const std::size_t end = at + match.length;
                for (at += PixelBytes; at < std::min(end, to - 8); at += PixelBytes) {
                    if (const std::uint64_t next = load(bytes + at))
                        remember(at, hashOf<PixelBytes>(next));
                }
                at = end;
                continue;
            }
        }
        const std::size_t asBefore
            = commonBytes(bytes + at, bytes + at - PixelBytes, std::min<std::size_t>(to - at, 64));
        if (asBefore >= DeflateBlocks::kShortestMatch) {
            m_blocks.match(asBefore, PixelBytes);
            at += asBefore;
            continue;
        }
        literals(PixelBytes);
    }
    literals(to - at);
    addToChecksum(bytes + checked, to - checked);
}

template <std::size_t PixelBytes> DeflateEncoder::Match DeflateEncoder::findMatch(std::size_t at, std::size_t to)
{
    const std::uint8_t* bytes = m_window.get();
    const std::uint64_t word = load(bytes + at);
    const std::size_t slot = hashOf<PixelBytes>(word);
    const auto position = static_cast<std::uint32_t>(at) + m_offset;
    std::uint32_t candidate = m_latest[slot];
    remember(at, slot);
    const std::size_t most = std::min<std::size_t>(to - at, DeflateBlocks::kLongestMatch);
    Match best = matchAbove(at, to);
    if (best.length >= std::min(m_method.isEnough, most))
        return best;
    for (int i = 0; i < m_method.candidates && position - candidate <= kWindow; ++i) {
        const std::uint8_t* there = bytes + (candidate - m_offset);
        if (there[best.length] == bytes[at + best.length]) {
            const std::size_t length = commonBytes(bytes + at, there, most);
            if (length > best.length) {
                best = { length, position - candidate };
                if (length >= std::min(m_method.isEnough, most))
                    break;
            }
        }
        const std::uint32_t next = m_before[candidate % kPlaces];
        if (next >= candidate)
            break; // the place has been taken by a later one
        candidate = next;
    }
    return best;
}

DeflateEncoder::Match DeflateEncoder::matchAbove(std::size_t at, std::size_t to) const
{
    const std::size_t distance = m_method.rowBytes;
    if (distance == 0 || distance > at || distance > kWindow)
        return {};
    const std::uint8_t* bytes = m_window.get() + at;
    const std::size_t most = std::min<std::size_t>(to - at, DeflateBlocks::kLongestMatch);
    return { commonBytes(bytes, bytes - distance, most), static_cast<unsigned>(distance) };
}

bool DeflateEncoder::isWorthwhile(const Match& match, std::size_t at) const
{
    const std::uint8_t* bytes = m_window.get() + at;
    const unsigned least = kBitsPerMatch + 31u - static_cast<unsigned>(__builtin_clz(match.distance));
    unsigned bits = 0;
    for (std::size_t i = 0; i < match.length; i += 8) {
        const std::uint64_t word = load(bytes + i);
        const std::uint64_t mask = firstBytes(match.length - i);
        bits += kBitsPerByte * countSetBytes(word & mask)
            + kBitsPerChange * countSetBytes((word ^ load(bytes + i - 1)) & mask);
        if (bits >= least)
            return true;
    }
    return false;
}

void DeflateEncoder::remember(std::size_t at, std::size_t slot)
{
    const auto position = static_cast<std::uint32_t>(at) + m_offset;
    m_before[position % kPlaces] = m_latest[slot];
    m_latest[slot] = position;
}

void DeflateEncoder::addToChecksum(const std::uint8_t* bytes, std::size_t count)
{
    if (count == 0)
        return;
    const auto sums = static_cast<std::uint32_t>(adler32_z(checksum(), bytes, count));
    m_sum = sums & 0xFFFF;
    m_sumOfSums = sums >> 16;
    m_plainSize += count;
}

void DeflateEncoder::addZerosToChecksum(std::uint64_t count)
{
    m_sumOfSums = static_cast<std::uint32_t>((m_sumOfSums + count % kAdlerBase * m_sum) % kAdlerBase);
    m_plainSize += count;
}

} // namespace quillrip
