#include "quillrip/image/deflate_encoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <random>
#include <string>

#include <zlib.h>

using namespace quillrip;

namespace {

using Bytes = std::vector<std::uint8_t>;

/// What a raw deflate stream holds; nothing when it is damaged, does not end, or ends before the bytes do.
Bytes inflated(const Bytes& stream, std::size_t plainSize)
{
    Bytes plain(plainSize + 1);
    z_stream state {};
    if (inflateInit2(&state, -15) != Z_OK)
        return {};
    state.next_in = const_cast<std::uint8_t*>(stream.data());
    state.avail_in = static_cast<uInt>(stream.size());
    state.next_out = plain.data();
    state.avail_out = static_cast<uInt>(plain.size());
    const int status = inflate(&state, Z_FINISH);
    plain.resize(plain.size() - state.avail_out);
    const bool isWhole = status == Z_STREAM_END && state.avail_in == 0;
    inflateEnd(&state);
    return isWhole ? plain : Bytes {};
}

void add(DeflateEncoder& encoder, const Bytes& bytes)
{
    if (bytes.empty())
        return;
    std::memcpy(encoder.room(bytes.size()), bytes.data(), bytes.size());
    encoder.commit(bytes.size());
}

constexpr DeflateMethod kMethods[] { {}, { 1, 16 }, { 16, 64 }, { 6, 32, 310 }, { 32, 128, 40000 } };

/// The stream of bytes that are added in pieces of so many, whatever the pixels and the method.
void expectRoundTrip(const Bytes& bytes, std::size_t piece)
{
    for (const std::size_t pixelBytes : { std::size_t { 1 }, std::size_t { 3 } }) {
        for (const DeflateMethod& method : kMethods) {
            SCOPED_TRACE(std::to_string(bytes.size()) + " bytes by " + std::to_string(piece) + ", pixels of "
                + std::to_string(pixelBytes) + ", candidates " + std::to_string(method.candidates));
            Bytes out;
            DeflateEncoder encoder { out, pixelBytes, method };
            for (std::size_t at = 0; at < bytes.size(); at += piece) {
                const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(at);
                add(encoder, { first, first + static_cast<std::ptrdiff_t>(std::min(piece, bytes.size() - at)) });
            }
            encoder.finish();
            ASSERT_TRUE(inflated(out, bytes.size()) == bytes);
            EXPECT_EQ(encoder.plainSize(), bytes.size());
            EXPECT_EQ(encoder.checksum(), adler32_z(adler32_z(0, nullptr, 0), bytes.data(), bytes.size()));
        }
    }
}

Bytes made(std::size_t count, const std::function<unsigned(std::size_t)>& byteAt)
{
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<std::uint8_t>(byteAt(i));
    return bytes;
}

std::size_t sizeOf(const Bytes& bytes, DeflateMethod method)
{
    Bytes out;
    DeflateEncoder encoder { out, 3, method };
    add(encoder, bytes);
    encoder.finish();
    return out.size();
}

} // namespace

TEST(DeflateEncoder, AnyShortInputIsWhole)
{
    std::mt19937 random { 5 };
    for (std::size_t count = 0; count < 40; ++count) {
        expectRoundTrip(Bytes(count), 7);
        expectRoundTrip(Bytes(count, 0xFF), 100);
        expectRoundTrip(made(count, [&](std::size_t) { return random(); }), 3);
        expectRoundTrip(made(count, [&](std::size_t i) { return i % 9 == 4 ? 200 : 0; }), 11);
    }
}

TEST(DeflateEncoder, NoiseIsWholeAndHardlyGrows)
{
    std::mt19937 random { 1 };
    const Bytes noise = made(700001, [&](std::size_t) { return random(); });
    expectRoundTrip(noise, 7441);
    for (const DeflateMethod& method : kMethods)
        EXPECT_LT(sizeOf(noise, method), noise.size() + noise.size() / 200);
}

TEST(DeflateEncoder, RunsAndRepetitionsAreWholeAcrossTheWindow)
{
    std::mt19937 random { 2 };
    // Stretches of all kinds and lengths: zeros, one byte, one pixel, noise, and what lay before, near and far.
    for (int round = 0; round < 6; ++round) {
        Bytes bytes;
        while (bytes.size() < 600000) {
            const std::size_t count = 1 + random() % (round % 2 == 0 ? 40 : 3000);
            const auto kind = static_cast<unsigned>(random() % 6);
            const std::size_t far = bytes.empty() ? 0 : 1 + random() % std::min<std::size_t>(bytes.size(), 70000);
            const std::uint8_t pixel[3]
                = { static_cast<std::uint8_t>(random()), static_cast<std::uint8_t>(random()), 0 };
            for (std::size_t i = 0; i < count; ++i) {
                const unsigned byte = kind == 0 ? 0
                    : kind == 1                 ? pixel[0]
                    : kind == 2                 ? pixel[i % 3]
                    : kind == 3                 ? static_cast<unsigned>(random() % 256)
                    : far > 0                   ? bytes[bytes.size() - far]
                                                : 1;
                bytes.push_back(static_cast<std::uint8_t>(byte));
            }
        }
        expectRoundTrip(bytes, round < 3 ? 5003 : 300000);
    }
}

TEST(DeflateEncoder, RareBytesGetCodesThatAreNotTooLong)
{
    // Counts that grow like Fibonacci's would give the rarest byte a code of more than 15 bits.
    Bytes bytes;
    std::uint32_t before = 1;
    std::uint32_t count = 1;
    for (unsigned byte = 1; byte <= 20; ++byte) {
        for (std::uint32_t i = 0; i < count; ++i)
            bytes.push_back(static_cast<std::uint8_t>(byte * 11));
        const std::uint32_t next = before + count;
        before = count;
        count = next;
    }
    std::mt19937 random { 3 };
    std::shuffle(bytes.begin(), bytes.end(), random);
    expectRoundTrip(bytes, bytes.size());
}

TEST(DeflateEncoder, ZeroRowsAreThoseThatAreAddedByteByByte)
{
    for (const std::size_t zeros : { 1, 2, 3, 4, 5, 9, 300, 7440 }) {
        for (const std::size_t rows : { std::size_t { 1 }, std::size_t { 20 }, 70000 / zeros + 1 }) {
            Bytes out;
            DeflateEncoder encoder { out, 3, { 16, 64 } };
            const Bytes before = made(50, [](std::size_t i) { return i * i; });
            Bytes all = before;
            add(encoder, before);
            encoder.addZeroRows(2, zeros, rows);
            for (std::size_t row = 0; row < rows; ++row) {
                all.push_back(2);
                all.insert(all.end(), zeros, 0);
            }
            // What follows is like what lies before and like the end of the rows.
            Bytes after = { 0, 0, 0, 2, 0 };
            after.insert(after.end(), before.begin(), before.end());
            after.insert(after.end(), 600, 0);
            add(encoder, after);
            all.insert(all.end(), after.begin(), after.end());
            encoder.finish();
            ASSERT_TRUE(inflated(out, all.size()) == all) << zeros << " zeros, " << rows << " rows";
            EXPECT_EQ(encoder.checksum(), adler32_z(adler32_z(0, nullptr, 0), all.data(), all.size()));
            EXPECT_EQ(encoder.plainSize(), all.size());
        }
    }
}

TEST(DeflateEncoder, FlushedStreamsCanBeJoined)
{
    const Bytes text = made(90000, [](std::size_t i) { return i % 300 < 40 ? i * 7 / 5 : 0; });
    Bytes stream;
    Bytes all;
    for (int part = 0; part < 3; ++part) {
        DeflateEncoder encoder { stream, 3, { 16, 64 } };
        add(encoder, text);
        all.insert(all.end(), text.begin(), text.end());
        if (part < 2)
            encoder.flush();
        else
            encoder.finish();
    }
    EXPECT_TRUE(inflated(stream, all.size()) == all);
}

TEST(DeflateEncoder, ZerosTakeLittleMoreThanTheStandardNeeds)
{
    Bytes out;
    DeflateEncoder encoder { out, 3, { 16, 64 } };
    encoder.addZeroRows(2, 7440, 3000);
    encoder.finish();
    // 258 bytes a symbol, of two bits.
    const std::size_t least = 7441 * 3000 / 258 / 4;
    EXPECT_LT(out.size(), least + least / 4);
}

TEST(DeflateEncoder, WhatIsRepeatedWithinTheWindowIsFound)
{
    std::mt19937 random { 4 };
    const Bytes glyph = made(150, [&](std::size_t) { return 1 + random() % 255; });
    Bytes line;
    for (int i = 0; i < 200; ++i) {
        line.insert(line.end(), glyph.begin(), glyph.end());
        line.insert(line.end(), 30 * 3, 0);
    }
    EXPECT_GT(sizeOf(line, {}), 200 * 120u);
    EXPECT_LT(sizeOf(line, { 1, 16 }), 150 + 200 * 8u);
}

TEST(DeflateEncoder, ARowLikeTheOneAboveTakesFewBytes)
{
    // Noise between stretches of zeros, again and again: nothing is like anything but the row above.
    std::mt19937 random { 6 };
    const Bytes row = made(3000, [&](std::size_t i) { return i % 50 < 20 ? 0 : 1 + random() % 255; });
    Bytes rows;
    for (int i = 0; i < 40; ++i)
        rows.insert(rows.end(), row.begin(), row.end());
    expectRoundTrip(rows, row.size());
    const auto firstRow = sizeOf(row, { 1, 16 });
    EXPECT_LT(sizeOf(rows, { 1, 16, row.size() }), firstRow + 39 * 12 * 5);
}

TEST(PrefixCode, LengthsAreThoseOfHuffmansTree)
{
    const std::uint32_t frequencies[] = { 5, 0, 9, 12, 13, 16, 45 };
    std::uint8_t lengths[7];
    findCodeLengths(frequencies, 7, 15, lengths);
    const std::uint8_t expected[] = { 4, 0, 4, 3, 3, 3, 1 };
    EXPECT_TRUE(std::equal(lengths, lengths + 7, expected));
}

TEST(PrefixCode, LimitedLengthsFillTheCodeSpaceExactly)
{
    std::uint32_t frequencies[19];
    std::uint32_t frequency = 1;
    for (std::uint32_t& each : frequencies) {
        each = frequency;
        frequency = frequency * 2;
    }
    std::uint8_t lengths[19];
    findCodeLengths(frequencies, 19, 7, lengths);
    unsigned patterns = 0;
    for (std::size_t i = 0; i < 19; ++i) {
        ASSERT_GE(lengths[i], 1);
        ASSERT_LE(lengths[i], 7);
        EXPECT_TRUE(i == 0 || lengths[i] <= lengths[i - 1]);
        patterns += 128u >> lengths[i];
    }
    EXPECT_EQ(patterns, 128u);
}

TEST(PrefixCode, CodesCountUpWithinALengthLowestBitFirst)
{
    // The example of RFC 1951, 3.2.2: 010 011 100 101 110 00 1110 1111.
    const std::uint8_t lengths[] = { 3, 3, 3, 3, 3, 2, 4, 4 };
    PrefixCode codes[8];
    assignCodes(lengths, 8, codes);
    const unsigned expected[] = { 0b010, 0b110, 0b001, 0b101, 0b011, 0b00, 0b0111, 0b1111 };
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_EQ(codes[i].bits, expected[i]) << i;
        EXPECT_EQ(codes[i].length, lengths[i]);
    }
}
