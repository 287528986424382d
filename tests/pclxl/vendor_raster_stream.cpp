#include "tests/pclxl/vendor_raster_stream.h"

#include "tests/support/jpeg_writer.h"

#include <cstdlib>

namespace quillrip::test {

using A = pclxl::Attribute;
using O = pclxl::Operator;
using Bytes = std::vector<std::uint8_t>;

namespace {

void append(Bytes& to, std::uint32_t value, int byteCount)
{
    for (int i = 0; i < byteCount; ++i)
        to.push_back(static_cast<std::uint8_t>(value >> 8 * i));
}

} // namespace

DivisorTables flatTables(unsigned divisor)
{
    Divisors table {};
    table.fill(divisor);
    return { table, table, table };
}

Bytes chunk(int tag, const Bytes& contents)
{
    Bytes result;
    append(result, static_cast<std::uint32_t>(tag), 2);
    append(result, static_cast<std::uint32_t>(contents.size()), 4);
    result.insert(result.end(), contents.begin(), contents.end());
    return result;
}

Bytes imageHeader(const DivisorTables& tables, const std::array<int, 9>& conversion)
{
    Bytes divisors;
    for (const Divisors& table : tables)
        for (const unsigned divisor : table)
            append(divisors, divisor, 4);
    Bytes factors(8);
    for (const int factor : conversion)
        append(factors, static_cast<std::uint32_t>(factor) & 0xFFFF, 4);
    Bytes result = chunk(0x8000, divisors);
    const Bytes second = chunk(0x8001, factors);
    result.insert(result.end(), second.begin(), second.end());
    return result;
}

Bytes wholeJpeg(const Bytes& samples, int width, int height, int components, const DivisorTables& tables)
{
    return writeJpeg(samples, width, height, components, components == 1 ? JCS_GRAYSCALE : JCS_YCbCr,
        [&](jpeg_compress_struct& info) {
            for (int i = 0; i < components; ++i) {
                jpeg_add_quant_table(&info, i, tables[static_cast<std::size_t>(i)].data(), 100, FALSE);
                info.comp_info[i].quant_tbl_no = i;
                info.comp_info[i].h_samp_factor = info.comp_info[i].v_samp_factor = 1;
            }
        });
}

Bytes withoutHeaders(const Bytes& jpeg)
{
    std::size_t at = 2;
    for (;;) {
        const std::size_t length = jpeg[at + 2] * 256u + jpeg[at + 3];
        const bool isScan = jpeg[at + 1] == 0xDA;
        at += 2 + length;
        if (isScan)
            return Bytes(jpeg.begin() + static_cast<std::ptrdiff_t>(at), jpeg.end());
    }
}

Bytes asComponents(const Bytes& rgb)
{
    Bytes result;
    for (std::size_t i = 0; i < rgb.size(); i += 3) {
        result.push_back(static_cast<std::uint8_t>(rgb[i] / 2));
        result.push_back(static_cast<std::uint8_t>(128 + (rgb[i] - rgb[i + 1]) / 2));
        result.push_back(static_cast<std::uint8_t>(128 + (rgb[i] - rgb[i + 2]) / 2));
    }
    return result;
}

Bytes colorStrip(const Bytes& rgb, int width, int height, const DivisorTables& tables)
{
    return chunk(0x9021, withoutHeaders(wholeJpeg(asComponents(rgb), width, height, 3, tables)));
}

Bytes flat(Rgb color, int count)
{
    Bytes result;
    for (int i = 0; i < count; ++i)
        result.insert(result.end(), { color.red, color.green, color.blue });
    return result;
}

XlStream& vendor(XlStream& to, int command, const Bytes& payload)
{
    to.uint32(A::VUExtension, 0x68700000u | static_cast<unsigned>(command));
    return to.uint32(A::VUDataLength, static_cast<std::uint32_t>(payload.size())).op(O::VendorUnique).raw(payload);
}

XlStream& beginRaster(XlStream& to, bool isColor, int width, int height, const Bytes& payload)
{
    to.uint16(A::SourceWidth, width).uint16(A::SourceHeight, height).uint16(A::VUAttr1, 1).uint16(A::VUAttr2, height);
    to.ubyte(A::VUAttr5, isColor ? 4 : 0).ubyte(A::VUAttr6, 0).uint32(A::VUAttr3, 0x00040000);
    return vendor(to, 0x4000, payload);
}

XlStream& strip(XlStream& to, int start, int rows, const Bytes& payload)
{
    return vendor(to.uint16(A::StartLine, start).uint16(A::BlockHeight, rows).ubyte(A::VUAttr4, 0), 0x4001, payload);
}

XlStream& endRaster(XlStream& to) { return vendor(to, 0x4002, {}); }

bool isNear(Rgb a, Rgb b, int distance)
{
    return std::abs(a.red - b.red) <= distance && std::abs(a.green - b.green) <= distance
        && std::abs(a.blue - b.blue) <= distance;
}

} // namespace quillrip::test
