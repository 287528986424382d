#include "quillrip/emf/run_length_rows.h"

#include <algorithm>

namespace quillrip::emf {

struct RunLengthRows::Command {
    enum class Kind : std::uint8_t { Run, Literals, EndOfLine, Delta, End };

    Kind kind = Kind::End;
    std::uint8_t value = 0; ///< of a run: one number or, of nibbles, two that take turns
    std::size_t pixels = 0; ///< of a run and of literals: those that there are bytes for
    std::size_t literals = 0; ///< where they lie
    std::size_t right = 0; ///< of a delta
    std::size_t up = 0;
    std::size_t next = 0; ///< where the next command is
};

namespace {

std::uint8_t nibble(std::uint8_t byte, std::size_t index)
{
    return static_cast<std::uint8_t>(index % 2 == 0 ? byte >> 4 : byte & 0xF);
}

} // namespace

RunLengthRows::RunLengthRows(ByteView coded, std::size_t width, std::size_t height, Coding coding)
    : m_coded(coded)
    , m_width(width)
    , m_coding(coding)
{
    noteStarts(height);
}

RunLengthRows::Command RunLengthRows::commandAt(std::size_t at) const
{
    enum : std::uint8_t { kEndOfLine = 0, kEndOfBitmap = 1, kDelta = 2 };
    using Kind = Command::Kind;
    Command command;
    // A coding that breaks off has ended.
    if (at + 1 >= m_coded.size)
        return command;
    const std::uint8_t count = m_coded[at];
    const std::uint8_t value = m_coded[at + 1];
    at += 2;
    command.next = at;
    if (count > 0) {
        command.kind = Kind::Run;
        command.pixels = count;
        command.value = value;
    } else if (value == kEndOfLine) {
        command.kind = Kind::EndOfLine;
    } else if (value == kDelta) {
        if (at + 1 >= m_coded.size)
            return command;
        command.kind = Kind::Delta;
        command.right = m_coded[at];
        command.up = m_coded[at + 1];
        command.next = at + 2;
    } else if (value != kEndOfBitmap) {
        const std::size_t perByte = m_coding == Coding::Nibbles ? 2 : 1;
        command.kind = Kind::Literals;
        command.pixels = std::min<std::size_t>(value, (m_coded.size - at) * perByte);
        command.literals = at;
        // They end on a word.
        const std::size_t bytes = (value + perByte - 1) / perByte;
        command.next = at + (bytes + 1) / 2 * 2;
    }
    return command;
}

void RunLengthRows::noteStarts(std::size_t height)
{
    m_starts.assign(height, { m_coded.size, 0 });
    std::size_t x = 0;
    std::size_t y = 0;
    std::size_t at = 0;
    while (y < height) {
        // No command leads back, so that all of a row's follow one another.
        if (m_starts[y].at == m_coded.size)
            m_starts[y] = { at, x };
        const Command command = commandAt(at);
        switch (command.kind) {
        case Command::Kind::Run:
        case Command::Kind::Literals:
            x = std::min(m_width, x + command.pixels);
            break;
        case Command::Kind::EndOfLine:
            x = 0;
            ++y;
            break;
        case Command::Kind::Delta:
            x = std::min(m_width, x + command.right);
            y += command.up;
            break;
        case Command::Kind::End:
            return;
        }
        at = command.next;
    }
}

std::uint8_t RunLengthRows::literal(const Command& command, std::size_t index) const
{
    return m_coding == Coding::Nibbles ? nibble(m_coded[command.literals + index / 2], index)
                                       : m_coded[command.literals + index];
}

void RunLengthRows::row(std::size_t y, const std::vector<Rgb>& table, std::uint8_t* to) const
{
    const auto put = [&](std::size_t x, std::uint8_t number) {
        const Rgb color = table[number];
        to[3 * x] = color.red;
        to[3 * x + 1] = color.green;
        to[3 * x + 2] = color.blue;
    };
    for (std::size_t x = 0; x < m_width; ++x)
        put(x, 0);
    std::size_t x = m_starts[y].x;
    // What is right of the picture leads to nothing but the next row.
    for (std::size_t at = m_starts[y].at; x < m_width;) {
        const Command command = commandAt(at);
        const std::size_t drawn = std::min(command.pixels, m_width - x);
        switch (command.kind) {
        case Command::Kind::Run:
            for (std::size_t i = 0; i < drawn; ++i)
                put(x + i, m_coding == Coding::Nibbles ? nibble(command.value, i) : command.value);
            break;
        case Command::Kind::Literals:
            for (std::size_t i = 0; i < drawn; ++i)
                put(x + i, literal(command, i));
            break;
        case Command::Kind::Delta:
            if (command.up > 0)
                return;
            break;
        case Command::Kind::EndOfLine:
        case Command::Kind::End:
            return;
        }
        x += command.pixels + command.right;
        at = command.next;
    }
}

} // namespace quillrip::emf
