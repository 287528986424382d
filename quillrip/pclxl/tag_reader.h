#pragma once

#include "quillrip/base/input_stream.h"
#include "quillrip/pclxl/attribute_list.h"

#include <cstdint>

namespace quillrip::pclxl {

/// The Universal Exit Language, which ends any printer language.
inline constexpr std::uint8_t kUniversalExit[] = { 0x1B, '%', '-', '1', '2', '3', '4', '5', 'X' };

/// The syntax of a stream's body: values, the attributes that name them, and the operator that takes them all. Knows
/// nothing of what any of them mean.
class TagReader {
public:
    enum class Token {
        Operator, ///< tag() is its number; the operands are complete
        EmbeddedData, ///< stands on a data length tag that nobody asked for
        StreamHeader, ///< stands on the byte that starts a header line
        UniversalExit, ///< stands on its <ESC>
        End, ///< the input is at its end, between operators
        Truncated, ///< the input ends within operands
        Illegal, ///< tag() has no meaning where it stands
        TooManyOperands,
    };

    TagReader(InputStream& input, ByteOrder order)
        : m_input(input)
        , m_order(order)
    {
    }

    InputStream& input() { return m_input; }
    ByteOrder byteOrder() const { return m_order; }
    void setByteOrder(ByteOrder order) { m_order = order; }

    /// Collects operands into `operands`, which it clears before, until something else than an operand comes.
    Token next(AttributeList& operands);

    std::uint8_t tag() const { return m_tag; }
    /// Where the operands of the last token began, in bytes of the input.
    std::uint64_t offset() const { return m_offset; }
    /// Values without a name, and names without a value, that were dropped so far.
    std::uint32_t orphans() const { return m_orphans; }

private:
    enum class Step { Ok, Truncated, Full, Illegal };
    Step readValue(AttributeList& operands);
    bool readNumber(Element element, double& value);
    bool standsOnUniversalExit();

    InputStream& m_input;
    ByteOrder m_order;
    std::uint8_t m_tag = 0;
    std::uint64_t m_offset = 0;
    std::uint32_t m_orphans = 0;
};

/// Passes over everything up to the next Universal Exit, wherever it stands. False when there is none. Only for streams
/// that cannot be understood any more: between tags the exit is found by TagReader.
bool skipToUniversalExit(InputStream& input);

/// The bytes that belong to an operator: all data blocks that follow it, or bytes without a data tag, as one run.
class EmbeddedData {
public:
    /// `lengths` is the byte order of the stream, `contents` that of the data source.
    EmbeddedData(InputStream& input, ByteOrder lengths, ByteOrder contents)
        : m_input(input)
        , m_lengths(lengths)
        , m_contents(contents)
    {
    }
    /// The next `count` bytes of the input, which no data tag announces.
    EmbeddedData(InputStream& input, std::uint64_t count, ByteOrder contents)
        : m_input(input)
        , m_lengths(contents)
        , m_contents(contents)
        , m_left(count)
        , m_hasTags(false)
    {
    }
    EmbeddedData(const EmbeddedData&) = delete;
    EmbeddedData& operator=(const EmbeddedData&) = delete;

    /// The bytes that a run or a block begins with are shown together up to this many.
    static constexpr std::size_t kSignature = 8;

    ByteOrder byteOrder() const { return m_contents; }

    /// The bytes at hand, without taking them; empty at the end of the run. Valid until the next call of any member.
    ByteView chunk()
    {
        if (m_at == m_end)
            refill();
        return { m_at, static_cast<std::size_t>(m_end - m_at) };
    }
    /// Takes bytes that chunk() has shown.
    void take(std::size_t count) { m_at += count; }

    /// The next byte, or -1 at the end of the run.
    int get()
    {
        if (m_at == m_end && !refill())
            return -1;
        return *m_at++;
    }
    /// Returns how many bytes there were.
    std::size_t read(std::uint8_t* to, std::size_t count);
    /// False when the run ends before.
    bool readNumber(Element element, double& value);
    /// Takes the rest of the run.
    void skipRest();
    /// The input ended within a block: the bytes that its length promises are not there.
    bool isTruncated() const { return m_isTruncated; }

private:
    bool refill();
    bool beginBlock();
    void giveBack();

    InputStream& m_input;
    ByteOrder m_lengths;
    ByteOrder m_contents;
    const std::uint8_t* m_base = nullptr; ///< the input's window; bytes from here to m_at are taken but not skipped yet
    const std::uint8_t* m_at = nullptr;
    const std::uint8_t* m_end = nullptr;
    std::uint64_t m_left = 0; ///< bytes of the block behind m_end
    bool m_hasTags = true;
    bool m_isTruncated = false;
};

} // namespace quillrip::pclxl
