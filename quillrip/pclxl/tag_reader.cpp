#include "quillrip/pclxl/tag_reader.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace quillrip::pclxl {

namespace {

bool isWhiteSpace(int byte) { return byte == 0x00 || (byte >= 0x09 && byte <= 0x0D) || byte == 0x20; }

bool isDataType(std::uint8_t tag)
{
    const bool isShape = (tag >= 0xC0 && tag <= 0xD7) || (tag >= 0xE0 && tag <= 0xE7);
    return isShape && (tag & 7) <= 5;
}

Shape shapeOf(std::uint8_t tag)
{
    switch (tag & 0xF8) {
    case 0xC8:
        return Shape::Array;
    case 0xD0:
        return Shape::Xy;
    case 0xE0:
        return Shape::Box;
    default:
        return Shape::Scalar;
    }
}

} // namespace

bool TagReader::readNumber(Element element, double& value)
{
    std::uint8_t bytes[4];
    const int count = elementBytes(element);
    for (int i = 0; i < count; ++i) {
        const int byte = m_input.get();
        if (byte < 0)
            return false;
        bytes[i] = static_cast<std::uint8_t>(byte);
    }
    value = decodeNumber(bytes, element, m_order);
    return true;
}

TagReader::Step TagReader::readValue(AttributeList& operands)
{
    const Shape shape = shapeOf(m_tag);
    const Element element = static_cast<Element>(m_tag & 7);
    if (operands.hasUnnamedValue())
        ++m_orphans;
    Operand* operand = operands.beginValue(shape, element);
    if (!operand)
        return Step::Full;
    if (shape != Shape::Array) {
        const std::size_t count = shape == Shape::Scalar ? 1 : shape == Shape::Xy ? 2 : 4;
        for (std::size_t i = 0; i < count; ++i)
            if (!readNumber(element, operand->numbers[i]))
                return Step::Truncated;
        return Step::Ok;
    }
    // The length is a value of its own, with a tag: one byte or two.
    const int lengthTag = m_input.get();
    if (lengthTag < 0)
        return Step::Truncated;
    if (lengthTag < 0xC0 || lengthTag > 0xC2) {
        m_tag = static_cast<std::uint8_t>(lengthTag);
        return Step::Illegal;
    }
    double length = 0;
    if (!readNumber(static_cast<Element>(lengthTag & 7), length))
        return Step::Truncated;
    if (length > static_cast<double>(AttributeList::kMaxBytes))
        return Step::Full;
    const std::size_t byteCount = static_cast<std::size_t>(length) * static_cast<std::size_t>(elementBytes(element));
    std::uint8_t* bytes = operands.allocateArray(byteCount);
    if (!bytes && byteCount > 0)
        return Step::Full;
    return byteCount == 0 || m_input.read(bytes, byteCount) == byteCount ? Step::Ok : Step::Truncated;
}

bool TagReader::standsOnUniversalExit()
{
    const ByteView ahead = m_input.window(sizeof kUniversalExit);
    return ahead.size >= sizeof kUniversalExit && std::memcmp(ahead.data, kUniversalExit, sizeof kUniversalExit) == 0;
}

TagReader::Token TagReader::next(AttributeList& operands)
{
    operands.clear();
    operands.setByteOrder(m_order);
    m_offset = m_input.offset();
    for (;;) {
        const int byte = m_input.peek();
        if (byte < 0)
            return operands.empty() && !operands.hasUnnamedValue() ? Token::End : Token::Truncated;
        m_tag = static_cast<std::uint8_t>(byte);
        if (isDataType(m_tag)) {
            m_input.get();
            switch (readValue(operands)) {
            case Step::Ok:
                break;
            case Step::Truncated:
                return Token::Truncated;
            case Step::Full:
                return Token::TooManyOperands;
            case Step::Illegal:
                return Token::Illegal;
            }
        } else if (m_tag == kTagAttributeByte || m_tag == kTagAttributeWord) {
            m_input.get();
            double id = 0;
            if (!readNumber(m_tag == kTagAttributeByte ? Element::UByte : Element::UInt16, id))
                return Token::Truncated;
            if (!operands.nameValue(static_cast<Attribute>(id)))
                ++m_orphans;
        } else if (m_tag >= kFirstOperator && m_tag <= kLastOperator) {
            m_input.get();
            if (operands.hasUnnamedValue()) {
                operands.dropUnnamedValue();
                ++m_orphans;
            }
            return Token::Operator;
        } else if (m_tag == kTagDataLong || m_tag == kTagDataShort) {
            return Token::EmbeddedData;
        } else if (isWhiteSpace(byte)) {
            m_input.get();
            if (operands.empty() && !operands.hasUnnamedValue())
                m_offset = m_input.offset();
        } else if (m_tag == kTagEscape) {
            if (standsOnUniversalExit())
                return Token::UniversalExit;
            const ByteView ahead = m_input.window(2);
            if (ahead.size < 2 || ahead[1] != 'E')
                return Token::Illegal;
            m_input.skip(2); // some jobs put a printer reset before the exit
        } else if (m_tag == '\'' || m_tag == '(' || m_tag == ')') {
            return Token::StreamHeader;
        } else {
            return Token::Illegal;
        }
    }
}

bool skipToUniversalExit(InputStream& input)
{
    for (;;) {
        const ByteView ahead = input.window(sizeof kUniversalExit);
        if (ahead.empty())
            return false;
        const std::uint8_t* found = static_cast<const std::uint8_t*>(std::memchr(ahead.data, kTagEscape, ahead.size));
        if (!found) {
            input.skip(ahead.size);
            continue;
        }
        input.skip(static_cast<std::uint64_t>(found - ahead.data));
        const ByteView here = input.window(sizeof kUniversalExit);
        if (here.size >= sizeof kUniversalExit && std::memcmp(here.data, kUniversalExit, sizeof kUniversalExit) == 0)
            return true;
        input.skip(1);
    }
}

bool EmbeddedData::beginBlock()
{
    while (isWhiteSpace(m_input.peek()))
        m_input.get();
    const int tag = m_input.peek();
    if (tag != kTagDataLong && tag != kTagDataShort)
        return false;
    m_input.get();
    if (tag == kTagDataShort) {
        const int length = m_input.get();
        m_isTruncated = m_isTruncated || length < 0;
        m_left = length < 0 ? 0 : static_cast<std::uint64_t>(length);
        return length >= 0;
    }
    std::uint8_t bytes[4];
    if (m_input.read(bytes, sizeof bytes) != sizeof bytes) {
        m_isTruncated = true;
        return false;
    }
    m_left = static_cast<std::uint64_t>(decodeNumber(bytes, Element::UInt32, m_lengths));
    return true;
}

void EmbeddedData::giveBack()
{
    if (m_at != m_base)
        m_input.skip(static_cast<std::uint64_t>(m_at - m_base));
    m_base = m_at = m_end = nullptr;
}

bool EmbeddedData::refill()
{
    giveBack();
    while (m_left == 0)
        if (m_isTruncated || !m_hasTags || !beginBlock())
            return false;
    const ByteView ahead = m_input.window(static_cast<std::size_t>(std::min<std::uint64_t>(m_left, kSignature)));
    if (ahead.empty()) {
        m_isTruncated = true;
        m_left = 0;
        return false;
    }
    const std::size_t count = static_cast<std::size_t>(std::min<std::uint64_t>(ahead.size, m_left));
    m_left -= count;
    m_base = m_at = ahead.data;
    m_end = ahead.data + count;
    return true;
}

std::size_t EmbeddedData::read(std::uint8_t* to, std::size_t count)
{
    std::size_t done = 0;
    while (done < count) {
        const ByteView at = chunk();
        if (at.empty())
            break;
        const std::size_t step = std::min(count - done, at.size);
        std::memcpy(to + done, at.data, step);
        take(step);
        done += step;
    }
    return done;
}

bool EmbeddedData::readNumber(Element element, double& value)
{
    std::uint8_t bytes[4];
    const std::size_t count = static_cast<std::size_t>(elementBytes(element));
    if (read(bytes, count) != count)
        return false;
    value = decodeNumber(bytes, element, m_contents);
    return true;
}

void EmbeddedData::skipRest()
{
    for (;;) {
        m_at = m_end;
        if (!refill())
            break;
    }
    giveBack();
}

} // namespace quillrip::pclxl
