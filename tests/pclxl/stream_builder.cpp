#include "tests/pclxl/stream_builder.h"

#include <cstring>

namespace quillrip::test {

using pclxl::ByteOrder;

XlStream XlStream::withHeader(ByteOrder order)
{
    XlStream stream(order);
    stream.raw(order == ByteOrder::LittleEndian ? ") HP-PCL XL;2;0;test\n" : "( HP-PCL XL;2;0;test\n");
    return stream;
}

void XlStream::put(int byteCount, std::int64_t value)
{
    for (int i = 0; i < byteCount; ++i) {
        const int shift = m_order == ByteOrder::LittleEndian ? 8 * i : 8 * (byteCount - 1 - i);
        m_bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> shift));
    }
}

void XlStream::put(float value)
{
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    put(4, bits);
}

void XlStream::name(A attribute)
{
    m_bytes.push_back(0xF8);
    m_bytes.push_back(static_cast<std::uint8_t>(attribute));
}

XlStream& XlStream::value1(int tag, int byteCount, std::int64_t value, A attribute)
{
    m_bytes.push_back(static_cast<std::uint8_t>(tag));
    put(byteCount, value);
    name(attribute);
    return *this;
}

XlStream& XlStream::uint32(A attribute, std::uint32_t value) { return value1(0xC2, 4, value, attribute); }

XlStream& XlStream::real(A attribute, float value)
{
    m_bytes.push_back(0xC5);
    put(value);
    name(attribute);
    return *this;
}

XlStream& XlStream::xy(A attribute, int x, int y)
{
    m_bytes.push_back(0xD3);
    put(2, x);
    put(2, y);
    name(attribute);
    return *this;
}

XlStream& XlStream::realXy(A attribute, float x, float y)
{
    m_bytes.push_back(0xD5);
    put(x);
    put(y);
    name(attribute);
    return *this;
}

XlStream& XlStream::box(A attribute, int left, int top, int right, int bottom)
{
    m_bytes.push_back(0xE3);
    for (const int v : { left, top, right, bottom })
        put(2, v);
    name(attribute);
    return *this;
}

XlStream& XlStream::bytes(A attribute, const std::vector<std::uint8_t>& values)
{
    m_bytes.push_back(0xC8);
    m_bytes.push_back(0xC1);
    put(2, static_cast<std::int64_t>(values.size()));
    raw(values);
    name(attribute);
    return *this;
}

XlStream& XlStream::text(A attribute, const std::string& value)
{
    return bytes(attribute, std::vector<std::uint8_t>(value.begin(), value.end()));
}

XlStream& XlStream::words(A attribute, const std::vector<int>& values)
{
    m_bytes.push_back(0xC9);
    m_bytes.push_back(0xC0);
    put(1, static_cast<std::int64_t>(values.size()));
    for (const int v : values)
        put(2, v);
    name(attribute);
    return *this;
}

XlStream& XlStream::reals(A attribute, const std::vector<float>& values)
{
    m_bytes.push_back(0xCD);
    m_bytes.push_back(0xC0);
    put(1, static_cast<std::int64_t>(values.size()));
    for (const float v : values)
        put(v);
    name(attribute);
    return *this;
}

XlStream& XlStream::op(O tag)
{
    m_bytes.push_back(static_cast<std::uint8_t>(tag));
    return *this;
}

XlStream& XlStream::data(const std::vector<std::uint8_t>& contents, bool isLong)
{
    if (contents.size() > 255 || isLong) {
        m_bytes.push_back(0xFA);
        put(4, static_cast<std::int64_t>(contents.size()));
    } else {
        m_bytes.push_back(0xFB);
        put(1, static_cast<std::int64_t>(contents.size()));
    }
    return raw(contents);
}

XlStream& XlStream::pointData(const std::vector<int>& values)
{
    XlStream contents(m_order);
    for (const int v : values)
        contents.put(2, v);
    return data(contents.m_bytes);
}

XlStream& XlStream::raw(const std::vector<std::uint8_t>& bytes)
{
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    return *this;
}

XlStream& XlStream::raw(const std::string& bytes)
{
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    return *this;
}

XlStream& XlStream::beginSession(int unitsPerInch)
{
    return xy(A::UnitsPerMeasure, unitsPerInch, unitsPerInch)
        .ubyte(A::Measure, 0)
        .ubyte(A::ErrorReport, 3)
        .op(O::BeginSession);
}

XlStream& XlStream::openDataSource()
{
    return ubyte(A::SourceType, 0).ubyte(A::DataOrg, m_order == ByteOrder::LittleEndian ? 1 : 0).op(O::OpenDataSource);
}

XlStream& XlStream::beginPage(int width, int height, int orientation)
{
    return ubyte(A::Orientation, orientation)
        .realXy(A::CustomMediaSize, static_cast<float>(width) / 100.0F, static_cast<float>(height) / 100.0F)
        .ubyte(A::CustomMediaSizeUnits, 0)
        .op(O::BeginPage);
}

XlStream& XlStream::rgbBrush(int red, int green, int blue)
{
    return bytes(A::RGBColor,
        { static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green), static_cast<std::uint8_t>(blue) })
        .op(O::SetBrushSource);
}

XlStream& XlStream::beginImage(
    bool isIndexed, int depth, int width, int height, int destinationWidth, int destinationHeight)
{
    return ubyte(A::ColorMapping, isIndexed ? 1 : 0)
        .ubyte(A::ColorDepth, depth)
        .uint16(A::SourceWidth, width)
        .uint16(A::SourceHeight, height)
        .xy(A::DestinationSize, destinationWidth, destinationHeight)
        .op(O::BeginImage);
}

XlStream& XlStream::readImage(
    int startLine, int rows, int compression, const std::vector<std::uint8_t>& contents, int padding)
{
    uint16(A::StartLine, startLine).uint16(A::BlockHeight, rows).ubyte(A::CompressMode, compression);
    if (padding > 0)
        ubyte(A::PadBytesMultiple, padding);
    return op(O::ReadImage).data(contents);
}

} // namespace quillrip::test
