#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/geometry.h"
#include "quillrip/pclxl/tags.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quillrip::pclxl {

/// One value of the element type that starts at `at`; elementBytes(element) bytes are read.
double decodeNumber(const std::uint8_t* at, Element element, ByteOrder order);

/// The elements of an array operand, as they stand in the stream.
class ArrayView {
public:
    ArrayView() = default;
    ArrayView(ByteView bytes, Element element, ByteOrder order)
        : m_bytes(bytes)
        , m_element(element)
        , m_order(order)
    {
    }
    std::size_t size() const { return m_bytes.size / static_cast<std::size_t>(elementBytes(m_element)); }
    bool empty() const { return m_bytes.empty(); }
    Element element() const { return m_element; }
    double at(std::size_t index) const
    {
        return decodeNumber(
            m_bytes.data + index * static_cast<std::size_t>(elementBytes(m_element)), m_element, m_order);
    }
    /// Ubyte and uint16 arrays: codes, and names that are compared byte for byte.
    std::uint32_t code(std::size_t index) const
    {
        return m_element == Element::UByte ? m_bytes[index] : static_cast<std::uint32_t>(at(index));
    }
    ByteView bytes() const { return m_bytes; }
    /// No element is an infinity or no number at all.
    bool isFinite() const;
    /// Names are compared code by code, so one of bytes and one of words can be the same.
    std::string name() const;

private:
    ByteView m_bytes;
    Element m_element = Element::UByte;
    ByteOrder m_order = ByteOrder::LittleEndian;
};

/// A value with its name. Scalars, pairs and boxes stand in `numbers`, arrays in the list's bytes.
struct Operand {
    Attribute attribute = Attribute::None;
    Shape shape = Shape::Scalar;
    Element element = Element::UByte;
    std::array<double, 4> numbers {};
    std::size_t bytesAt = 0;
    std::size_t byteCount = 0;
};

/// The operands collected for the next operator. Where an attribute comes twice the later value counts.
class AttributeList {
public:
    /// More operands, or more bytes of arrays, than any operator can use.
    static constexpr std::size_t kMaxOperands = 128;
    static constexpr std::size_t kMaxBytes = std::size_t { 4 } << 20;

    void clear()
    {
        m_operands.clear();
        m_bytes.clear();
        m_hasPending = false;
    }
    bool empty() const { return m_operands.empty(); }

    /// Starts a value that still lacks its name; null when the list is full. A value that lacked its name till now is
    /// dropped.
    Operand* beginValue(Shape shape, Element element);
    /// Room for the elements of the array that was just begun; null when that is too much.
    std::uint8_t* allocateArray(std::size_t byteCount);
    /// Names the value begun last. False when there is none.
    bool nameValue(Attribute attribute);
    bool hasUnnamedValue() const { return m_hasPending; }
    void dropUnnamedValue();
    void setByteOrder(ByteOrder order) { m_order = order; }

    const std::vector<Operand>& operands() const { return m_operands; }
    const Operand* find(Attribute attribute) const;
    bool has(Attribute attribute) const { return find(attribute) != nullptr; }

    /// The readers below expect a list that has passed validation: a shape that does not fit gives the fallback.
    double number(Attribute attribute, double fallback = 0) const;
    /// Saturated to the range of int; fractions are cut.
    int integer(Attribute attribute, int fallback = 0) const;
    Point point(Attribute attribute, Point fallback = {}) const;
    ArrayView array(Attribute attribute) const;
    ArrayView array(const Operand& operand) const;

private:
    std::vector<Operand> m_operands;
    std::vector<std::uint8_t> m_bytes;
    Operand m_pending;
    bool m_hasPending = false;
    ByteOrder m_order = ByteOrder::LittleEndian;
};

} // namespace quillrip::pclxl
