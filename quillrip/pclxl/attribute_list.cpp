#include "quillrip/pclxl/attribute_list.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace quillrip::pclxl {

double decodeNumber(const std::uint8_t* at, Element element, ByteOrder order)
{
    const bool isLittle = order == ByteOrder::LittleEndian;
    const auto word = [&] { return static_cast<std::uint16_t>(isLittle ? at[0] | at[1] << 8 : at[0] << 8 | at[1]); };
    const auto longWord = [&] {
        const std::uint32_t a = at[0], b = at[1], c = at[2], d = at[3];
        return isLittle ? d << 24 | c << 16 | b << 8 | a : a << 24 | b << 16 | c << 8 | d;
    };
    switch (element) {
    case Element::UByte:
        return at[0];
    case Element::UInt16:
        return word();
    case Element::SInt16:
        return static_cast<std::int16_t>(word());
    case Element::UInt32:
        return longWord();
    case Element::SInt32:
        return static_cast<std::int32_t>(longWord());
    case Element::Real32: {
        const std::uint32_t bits = longWord();
        float value = 0;
        static_assert(sizeof value == sizeof bits);
        std::memcpy(&value, &bits, sizeof value);
        return static_cast<double>(value);
    }
    }
    return 0;
}

bool ArrayView::isFinite() const
{
    for (std::size_t i = 0; i < size(); ++i)
        if (!std::isfinite(at(i)))
            return false;
    return true;
}

std::string ArrayView::name() const
{
    std::string name;
    for (std::size_t i = 0; i < size(); ++i) {
        const std::uint32_t value = code(i);
        if (value > 0xFF)
            name += static_cast<char>(value >> 8);
        name += static_cast<char>(value & 0xFF);
    }
    return name;
}

Operand* AttributeList::beginValue(Shape shape, Element element)
{
    if (m_hasPending)
        dropUnnamedValue();
    if (m_operands.size() >= kMaxOperands)
        return nullptr;
    m_pending.attribute = Attribute::None;
    m_pending.shape = shape;
    m_pending.element = element;
    m_pending.bytesAt = m_bytes.size();
    m_pending.byteCount = 0;
    m_hasPending = true;
    return &m_pending;
}

std::uint8_t* AttributeList::allocateArray(std::size_t byteCount)
{
    if (byteCount > kMaxBytes - m_bytes.size())
        return nullptr;
    m_pending.bytesAt = m_bytes.size();
    m_pending.byteCount = byteCount;
    m_bytes.resize(m_bytes.size() + byteCount);
    return m_bytes.data() + m_pending.bytesAt;
}

bool AttributeList::nameValue(Attribute attribute)
{
    if (!m_hasPending)
        return false;
    m_hasPending = false;
    m_pending.attribute = attribute;
    m_operands.push_back(m_pending);
    return true;
}

void AttributeList::dropUnnamedValue()
{
    m_hasPending = false;
    m_bytes.resize(m_pending.bytesAt);
}

const Operand* AttributeList::find(Attribute attribute) const
{
    for (auto it = m_operands.rbegin(); it != m_operands.rend(); ++it)
        if (it->attribute == attribute)
            return &*it;
    return nullptr;
}

double AttributeList::number(Attribute attribute, double fallback) const
{
    const Operand* operand = find(attribute);
    return operand && operand->shape == Shape::Scalar ? operand->numbers[0] : fallback;
}

int AttributeList::integer(Attribute attribute, int fallback) const
{
    const double value = number(attribute, fallback);
    if (value >= std::numeric_limits<int>::max())
        return std::numeric_limits<int>::max();
    if (value <= std::numeric_limits<int>::min())
        return std::numeric_limits<int>::min();
    return static_cast<int>(value);
}

Point AttributeList::point(Attribute attribute, Point fallback) const
{
    const Operand* operand = find(attribute);
    return operand && operand->shape == Shape::Xy ? Point { operand->numbers[0], operand->numbers[1] } : fallback;
}

ArrayView AttributeList::array(Attribute attribute) const
{
    const Operand* operand = find(attribute);
    return operand ? array(*operand) : ArrayView();
}

ArrayView AttributeList::array(const Operand& operand) const
{
    if (operand.shape != Shape::Array)
        return {};
    return { ByteView(m_bytes).sub(operand.bytesAt, operand.byteCount), operand.element, m_order };
}

} // namespace quillrip::pclxl
