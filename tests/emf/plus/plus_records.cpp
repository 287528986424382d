#include "tests/emf/plus/plus_records.h"

#include <cstring>

namespace quillrip::emf::plus::test {

Fields& Fields::u8(std::initializer_list<unsigned> values)
{
    for (const unsigned value : values)
        m_bytes.push_back(static_cast<std::uint8_t>(value));
    return *this;
}

Fields& Fields::u16(std::initializer_list<unsigned> values)
{
    for (const unsigned value : values)
        u8({ value & 0xFF, value >> 8 & 0xFF });
    return *this;
}

Fields& Fields::u32(std::initializer_list<std::uint32_t> values)
{
    for (const std::uint32_t value : values)
        u8({ value & 0xFF, value >> 8 & 0xFF, value >> 16 & 0xFF, value >> 24 });
    return *this;
}

Fields& Fields::f32(std::initializer_list<double> values)
{
    for (const double value : values) {
        const auto number = static_cast<float>(value);
        std::uint32_t bits = 0;
        std::memcpy(&bits, &number, sizeof bits);
        u32({ bits });
    }
    return *this;
}

Fields& Fields::bytes(const std::vector<std::uint8_t>& bytes)
{
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    return *this;
}

Fields& Fields::text(const std::u16string& text)
{
    for (const char16_t unit : text)
        u16({ unit });
    return *this;
}

Fields& Fields::padded()
{
    m_bytes.resize((m_bytes.size() + 3) / 4 * 4);
    return *this;
}

Fields solidBrush(std::uint32_t argb) { return Fields().u32({ kVersion, 0, argb }); }

Fields pen(double width, std::uint32_t argb, std::uint32_t unit)
{
    return Fields().u32({ kVersion, 0, 0, unit }).f32({ width }).bytes(solidBrush(argb));
}

Fields path(const std::vector<std::pair<double, double>>& points, const std::vector<std::uint8_t>& types)
{
    Fields fields;
    fields.u32({ kVersion, static_cast<std::uint32_t>(points.size()), 0 });
    for (const auto& [x, y] : points)
        fields.f32({ x, y });
    return fields.bytes(types).padded();
}

Records& Records::add(std::uint16_t type, std::uint16_t flags, const std::vector<std::uint8_t>& data)
{
    const auto size = static_cast<std::uint32_t>(data.size());
    const Fields fields = Fields().u16({ type, flags }).u32({ 12 + (size + 3) / 4 * 4, size }).bytes(data).padded();
    return raw(fields);
}

Records& Records::object(std::uint8_t kind, std::uint8_t id, const std::vector<std::uint8_t>& data)
{
    return add(0x4008, static_cast<std::uint16_t>(kind << 8 | id), data);
}

Records& Records::raw(const std::vector<std::uint8_t>& bytes)
{
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    return *this;
}

Records header(Header kind)
{
    constexpr std::uint32_t printer = 0;
    Records records;
    records.add(0x4001, kind == Header::Dual ? 1 : 0, Fields().u32({ kVersion, printer, 300, 300 }));
    return records.add(0x4030, 2, Fields().f32({ 1 }));
}

Records& fillRect(Records& records, std::uint32_t argb, double x, double y, double width, double height)
{
    return records.add(0x400A, kColor, Fields().u32({ argb, 1 }).f32({ x, y, width, height }));
}

} // namespace quillrip::emf::plus::test
