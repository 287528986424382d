#include "quillrip/emf/plus/field_reader.h"

#include <cmath>
#include <cstring>

namespace quillrip::emf::plus {

namespace {

constexpr double kLargestNumber = 1e9;

} // namespace

bool FieldReader::has(std::uint64_t count, std::uint64_t size)
{
    if (size != 0 && count > remaining() / size)
        m_hasFailed = true;
    return !m_hasFailed;
}

ByteView FieldReader::take(std::size_t count)
{
    if (count > remaining()) {
        m_hasFailed = true;
        m_offset = m_bytes.size;
        return {};
    }
    const ByteView taken = m_bytes.sub(m_offset, count);
    m_offset += count;
    return taken;
}

std::uint8_t FieldReader::u8()
{
    const ByteView at = take(1);
    return at.empty() ? std::uint8_t { 0 } : at[0];
}

std::uint16_t FieldReader::u16()
{
    const ByteView at = take(2);
    return at.empty() ? std::uint16_t { 0 } : static_cast<std::uint16_t>(at[0] | at[1] << 8);
}

std::uint32_t FieldReader::u32()
{
    const ByteView at = take(4);
    if (at.empty())
        return 0;
    return at[0] | std::uint32_t { at[1] } << 8 | std::uint32_t { at[2] } << 16 | std::uint32_t { at[3] } << 24;
}

double FieldReader::f32()
{
    const std::uint32_t bits = u32();
    float value = 0;
    static_assert(sizeof value == sizeof bits);
    std::memcpy(&value, &bits, sizeof value);
    if (!std::isfinite(value) || std::abs(double { value }) > kLargestNumber) {
        m_hasFailed = true;
        return 0;
    }
    return double { value };
}

Point FieldReader::pointF()
{
    const double x = f32();
    return { x, f32() };
}

RectF FieldReader::rectF()
{
    const Point corner = pointF();
    const Point size = pointF();
    return { corner.x, corner.y, size.x, size.y };
}

RectF FieldReader::rect(PointForm form)
{
    if (form != PointForm::Integer)
        return rectF();
    RectF rect;
    rect.x = i16();
    rect.y = i16();
    rect.width = i16();
    rect.height = i16();
    return rect;
}

Matrix FieldReader::matrix()
{
    Matrix matrix;
    for (double* element : { &matrix.a, &matrix.b, &matrix.c, &matrix.d, &matrix.e, &matrix.f })
        *element = f32();
    return matrix;
}

Point FieldReader::relativePoint()
{
    const auto difference = [this]() -> double {
        const int first = u8();
        if (!(first & 0x80))
            return first & 0x40 ? first - 0x80 : first;
        const int value = (first & 0x7F) << 8 | u8();
        return value & 0x4000 ? value - 0x8000 : value;
    };
    const double x = difference();
    return { x, difference() };
}

std::vector<Point> FieldReader::points(PointForm form, std::uint32_t count)
{
    const std::uint64_t smallest = form == PointForm::Float ? 8 : form == PointForm::Integer ? 4 : 2;
    std::vector<Point> points;
    if (!has(count, smallest))
        return points;
    points.reserve(count);
    Point last;
    for (std::uint32_t i = 0; i < count; ++i) {
        switch (form) {
        case PointForm::Float:
            points.push_back(pointF());
            break;
        case PointForm::Integer: {
            const double x = i16();
            points.push_back({ x, static_cast<double>(i16()) });
            break;
        }
        case PointForm::Relative:
            last = last + relativePoint();
            points.push_back(last);
            break;
        }
    }
    return points;
}

std::u16string FieldReader::text(std::uint32_t count)
{
    std::u16string text;
    if (!has(count, 2))
        return text;
    text.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i)
        text.push_back(char16_t { u16() });
    return text;
}

std::vector<double> FieldReader::numbers(std::uint32_t count)
{
    std::vector<double> numbers;
    if (!has(count, 4))
        return numbers;
    numbers.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i)
        numbers.push_back(f32());
    return numbers;
}

} // namespace quillrip::emf::plus
