#pragma once

#include "quillrip/base/reporter.h"
#include "quillrip/raster/glyph_mask.h"
#include "tests/support/recording_sink.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

/// Bytes put together field by field, most significant byte first.
struct Bytes : std::vector<std::uint8_t> {
    Bytes& u8(unsigned value)
    {
        push_back(static_cast<std::uint8_t>(value));
        return *this;
    }
    Bytes& u16(unsigned value) { return u8(value >> 8 & 255).u8(value & 255); }
    Bytes& u32(unsigned value) { return u16(value >> 16).u16(value & 0xFFFF); }
    Bytes& text(const std::string& value)
    {
        insert(end(), value.begin(), value.end());
        return *this;
    }
    Bytes& zeros(std::size_t count)
    {
        insert(end(), count, 0);
        return *this;
    }
    Bytes& bytes(const std::vector<std::uint8_t>& value)
    {
        insert(end(), value.begin(), value.end());
        return *this;
    }
    /// A byte that makes the sum from `from` on 0 modulo 256.
    Bytes& checksum(std::size_t from)
    {
        unsigned sum = 0;
        for (std::size_t i = from; i < size(); ++i)
            sum += (*this)[i];
        return u8((256 - sum % 256) % 256);
    }
};

inline bool hasInk(const quillrip::GlyphMask& mask, int x, int y)
{
    const auto row = static_cast<std::size_t>(y) * mask.stride;
    const auto column = static_cast<std::size_t>(x);
    if (mask.depth == quillrip::GlyphMask::Depth::Bits)
        return mask.bytes[row + column / 8] >> (7 - column % 8) & 1;
    return mask.bytes[row + column] >= 128;
}

/// The mask's rows as text, '#' for ink, without columns that are blank at the sides.
inline std::string art(const quillrip::GlyphMask& mask)
{
    int first = mask.width;
    int end = 0;
    for (int y = 0; y < mask.height; ++y) {
        for (int x = 0; x < mask.width; ++x) {
            if (hasInk(mask, x, y)) {
                first = std::min(first, x);
                end = std::max(end, x + 1);
            }
        }
    }
    std::string text;
    for (int y = 0; y < mask.height; ++y) {
        for (int x = first; x < end; ++x)
            text += hasInk(mask, x, y) ? '#' : '.';
        text += '\n';
    }
    return text;
}
