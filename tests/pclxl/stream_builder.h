#pragma once

#include "quillrip/pclxl/tags.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace quillrip::test {

/// Writes PCL XL, a value at a time, in either byte order.
class XlStream {
public:
    using A = pclxl::Attribute;
    using O = pclxl::Operator;

    explicit XlStream(pclxl::ByteOrder order = pclxl::ByteOrder::LittleEndian)
        : m_order(order)
    {
    }
    /// A stream that begins with its header line.
    static XlStream withHeader(pclxl::ByteOrder order = pclxl::ByteOrder::LittleEndian);

    XlStream& ubyte(A name, int value) { return value1(0xC0, 1, value, name); }
    XlStream& uint16(A name, int value) { return value1(0xC1, 2, value, name); }
    XlStream& uint32(A name, std::uint32_t value);
    XlStream& sint16(A name, int value) { return value1(0xC3, 2, value, name); }
    XlStream& real(A name, float value);
    XlStream& xy(A name, int x, int y);
    XlStream& realXy(A name, float x, float y);
    XlStream& box(A name, int left, int top, int right, int bottom);
    XlStream& bytes(A name, const std::vector<std::uint8_t>& values);
    XlStream& text(A name, const std::string& value);
    XlStream& words(A name, const std::vector<int>& values);
    XlStream& reals(A name, const std::vector<float>& values);
    XlStream& op(O tag);
    /// Embedded data: with a one-byte length where that is enough, unless `isLong`.
    XlStream& data(const std::vector<std::uint8_t>& contents, bool isLong = false);
    /// Embedded signed words, in the stream's byte order.
    XlStream& pointData(const std::vector<int>& values);
    XlStream& raw(const std::vector<std::uint8_t>& bytes);
    XlStream& raw(const std::string& bytes);
    XlStream& append(const XlStream& other) { return raw(other.m_bytes); }

    // Whole operators that nearly every test needs.
    XlStream& beginSession(int unitsPerInch = 100);
    XlStream& openDataSource();
    /// A sheet of so many hundredths of an inch.
    XlStream& beginPage(int width, int height, int orientation = 0);
    XlStream& endPage() { return op(O::EndPage); }
    XlStream& endSession() { return op(O::CloseDataSource).op(O::EndSession); }
    XlStream& universalExit() { return raw("\x1b%-12345X"); }
    XlStream& colorSpace(int space) { return ubyte(A::ColorSpace, space).op(O::SetColorSpace); }
    XlStream& grayBrush(int level) { return ubyte(A::GrayLevel, level).op(O::SetBrushSource); }
    XlStream& rgbBrush(int red, int green, int blue);
    XlStream& grayPen(int level) { return ubyte(A::GrayLevel, level).op(O::SetPenSource); }
    XlStream& nullBrush() { return ubyte(A::NullBrush, 0).op(O::SetBrushSource); }
    XlStream& nullPen() { return ubyte(A::NullPen, 0).op(O::SetPenSource); }
    XlStream& cursor(int x, int y) { return xy(A::Point, x, y).op(O::SetCursor); }
    XlStream& rectangle(int left, int top, int right, int bottom)
    {
        return box(A::BoundingBox, left, top, right, bottom).op(O::Rectangle);
    }
    XlStream& lineTo(int x, int y) { return xy(A::EndPoint, x, y).op(O::LinePath); }
    /// BeginImage at the cursor; depth 0, 1, 2 for 1, 4, 8 bits.
    XlStream& beginImage(bool isIndexed, int depth, int width, int height, int destinationWidth, int destinationHeight);
    XlStream& readImage(
        int startLine, int rows, int compression, const std::vector<std::uint8_t>& contents, int padding = 0);

    const std::vector<std::uint8_t>& bytes() const { return m_bytes; }
    std::size_t size() const { return m_bytes.size(); }

private:
    void put(int byteCount, std::int64_t value);
    void put(float value);
    void name(A attribute);
    XlStream& value1(int tag, int byteCount, std::int64_t value, A attribute);

    pclxl::ByteOrder m_order;
    std::vector<std::uint8_t> m_bytes;
};

} // namespace quillrip::test
