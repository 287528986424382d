#include "quillrip/pcl/placed_block.h"

#include <algorithm>

namespace quillrip::pcl {

namespace {

constexpr int kMostWords = 4096; // 54 inches

/// A row that commands fill from its left end on.
class WordRow {
public:
    explicit WordRow(int words)
        : m_bytes(static_cast<std::size_t>(words) * 2)
    {
    }

    void restart() { m_at = 0; }
    bool isFull() const { return m_at == m_bytes.size(); }
    ByteView bytes() const { return ByteView(m_bytes); }

    /// One command and its words. False when they do not fit the data or the row.
    bool fill(ByteReader& reader)
    {
        const auto command = reader.readU16BigEndian();
        if (!command)
            return false;
        switch (*command >> 13) {
        case 4: { // one word, repeated
            const auto word = reader.readU16BigEndian();
            return word && repeat(*command & 0x1FFFu, *word);
        }
        case 5: // four pixels, repeated
            return repeat(*command & 0x1FFu, ((*command >> 9) & 0xFu) * 0x1111u);
        case 6: // eight pixels, repeated
            return repeat((*command >> 8) & 0x1Fu, (*command & 0xFFu) * 0x101u);
        case 7: // as in the row before
            return skip((*command & 0x1FFFu) * std::size_t { 2 });
        default: // words as they are
            return copy(reader, (*command >> 4) * std::size_t { 2 });
        }
    }

private:
    bool skip(std::size_t bytes)
    {
        if (bytes == 0 || bytes > m_bytes.size() - m_at)
            return false;
        m_at += bytes;
        return true;
    }

    bool repeat(unsigned count, unsigned word)
    {
        std::size_t at = m_at;
        if (!skip(count * std::size_t { 2 }))
            return false;
        for (; at < m_at; at += 2) {
            m_bytes[at] = static_cast<std::uint8_t>(word >> 8);
            m_bytes[at + 1] = static_cast<std::uint8_t>(word);
        }
        return true;
    }

    bool copy(ByteReader& reader, std::size_t bytes)
    {
        const std::size_t at = m_at;
        const ByteView words = reader.takeUpTo(bytes);
        if (words.size < bytes || !skip(bytes))
            return false;
        std::copy_n(words.data, bytes, m_bytes.begin() + static_cast<std::ptrdiff_t>(at));
        return true;
    }

    std::vector<std::uint8_t> m_bytes;
    std::size_t m_at = 0;
};

} // namespace

std::optional<PlacedBlock> PlacedBlock::read(ByteView data)
{
    ByteReader reader { data };
    const auto length = reader.readU16BigEndian();
    if (!length || *length != reader.remaining())
        return std::nullopt;
    PlacedBlock block;
    block.m_left = reader.readU16BigEndian().value_or(0);
    block.m_top = reader.readU16BigEndian().value_or(0);
    block.m_rows = reader.readU8().value_or(0);
    block.m_words = reader.readU16BigEndian().value_or(0);
    if (block.m_words < 1 || block.m_words > kMostWords)
        return std::nullopt;
    block.m_commands = reader.takeUpTo(reader.remaining());
    return block;
}

bool PlacedBlock::decode(const std::function<bool(ByteView)>& emit) const
{
    ByteReader reader { m_commands };
    WordRow row(m_words);
    for (int i = 0; i < m_rows; ++i) {
        row.restart();
        while (!row.isFull()) {
            if (!row.fill(reader))
                return false;
        }
        if (!emit(row.bytes()))
            return true;
    }
    return true;
}

} // namespace quillrip::pcl
