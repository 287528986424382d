#include "quillrip/job/netpbm_reader.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

namespace quillrip {

namespace {

constexpr int kLargestNumber = 99999999; // one more digit still fits an int

bool isBlank(int c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }

// Light to ink, except in bilevel images, which hold ink already. True when there is any ink.
bool becomeInk(std::uint8_t* bytes, std::size_t count, PixelFormat format)
{
    std::uint8_t any = 0;
    for (std::size_t at = 0; at < count; ++at) {
        if (format != PixelFormat::Bilevel)
            bytes[at] = static_cast<std::uint8_t>(~bytes[at]);
        any = any | bytes[at];
    }
    return any != 0;
}

} // namespace

int NetpbmReader::number()
{
    int c = m_input.get();
    while (isBlank(c) || c == '#') {
        if (c == '#') {
            while (c >= 0 && c != '\n')
                c = m_input.get();
        } else {
            c = m_input.get();
        }
    }
    int value = 0;
    for (; c >= '0' && c <= '9' && value <= kLargestNumber; c = m_input.get())
        value = value * 10 + (c - '0');
    // The one blank behind the last number has been taken.
    return isBlank(c) && value <= kLargestNumber ? value : 0;
}

bool NetpbmReader::nextPage(NetpbmHeader& header)
{
    if (m_input.get() != 'P')
        return false;
    const int kind = m_input.get();
    if (kind < '4' || kind > '6')
        return false;
    m_header.format = kind == '4' ? PixelFormat::Bilevel : kind == '5' ? PixelFormat::Gray8 : PixelFormat::Rgb24;
    m_header.width = number();
    m_header.height = number();
    if (m_header.width < 1 || m_header.height < 1 || (kind != '4' && number() != 255))
        return false;
    header = m_header;
    return true;
}

template <typename Place> bool NetpbmReader::readRows(PageBitmap& page, Place place)
{
    if (page.format() != m_header.format)
        return false;
    const std::size_t bytes
        = (static_cast<std::size_t>(m_header.width) * static_cast<std::size_t>(bitsPerPixel(m_header.format)) + 7) / 8;
    std::vector<std::uint8_t> row(bytes);
    for (int y = 0; y < m_header.height; ++y) {
        if (m_input.read(row.data(), bytes) < bytes)
            return false;
        if (becomeInk(row.data(), bytes, m_header.format))
            place(row.data(), y);
    }
    return true;
}

bool NetpbmReader::readUpright(PageBitmap& page, int margin)
{
    const int from = std::max(0, -margin);
    const int to = std::min(m_header.width, page.width() - margin);
    return readRows(page, [&](const std::uint8_t* row, int y) {
        if (y >= page.height() || from >= to)
            return;
        std::uint8_t* target = page.row(y);
        if (page.format() == PixelFormat::Bilevel && margin == 0) {
            std::memcpy(target, row, static_cast<std::size_t>(to + 7) / 8);
            if (to % 8 != 0)
                target[to / 8] = static_cast<std::uint8_t>(target[to / 8] & 0xFF00 >> to % 8);
        } else if (page.format() == PixelFormat::Bilevel) {
            for (int x = from; x < to; ++x) {
                if ((row[x / 8] >> (7 - x % 8)) & 1)
                    target[(x + margin) / 8]
                        = static_cast<std::uint8_t>(target[(x + margin) / 8] | 0x80 >> (x + margin) % 8);
            }
        } else {
            const auto samples = static_cast<std::size_t>(bitsPerPixel(page.format()) / 8);
            std::memcpy(target + static_cast<std::size_t>(from + margin) * samples,
                row + static_cast<std::size_t>(from) * samples, static_cast<std::size_t>(to - from) * samples);
        }
        page.touch(y, from + margin, to + margin);
    });
}

bool NetpbmReader::readTurned(PageBitmap& page, int quarterTurns, int margin)
{
    if (page.format() != PixelFormat::Bilevel)
        return false;
    return readRows(page, [&](const std::uint8_t* row, int y) {
        const int column = margin + ((quarterTurns & 3) == 1 ? y : m_header.height - 1 - y);
        if (column < 0 || column >= page.width())
            return;
        for (int x = 0; x < m_header.width; ++x) {
            const int line = (quarterTurns & 3) == 1 ? m_header.width - 1 - x : x;
            if (((row[x / 8] >> (7 - x % 8)) & 1) && line >= 0 && line < page.height()) {
                std::uint8_t* target = page.row(line) + column / 8;
                *target = static_cast<std::uint8_t>(*target | 0x80 >> column % 8);
                page.touch(line, column, column + 1);
            }
        }
    });
}

} // namespace quillrip
