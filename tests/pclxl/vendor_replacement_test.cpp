#include "tests/pclxl/vendor_raster_stream.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;
using Bytes = std::vector<std::uint8_t>;

namespace {

constexpr Rgb kWhite { 255, 255, 255 };
constexpr Rgb kBlack { 0, 0, 0 };

/// A page of `width` by `rows` pixels with one strip of replacement rows.
XlStream replacementPage(bool isColor, int width, int rows, const Bytes& data)
{
    XlStream c;
    c.cursor(0, 0);
    beginRaster(c, isColor, width, rows, {});
    strip(c, 0, rows, chunk(0x9011, data));
    return endRaster(c);
}

TEST(XlVendorReplacement, RowsTakePixelsFromAllSources)
{
    // Row 0: a new pixel, one from the left after a gap, a run of the last one; the rest stays white.
    // Row 1: the last pixel of the row before; the one above on the right; a new run of ten.
    // Row 2: as row 1.
    const Bytes data = { 0x00, 1, 2, 3, 0x28, 0x89, 9, 8, 7, 0x98, 8 - 3, //
        0x60, 0x40, 0x87, 5, 5, 5, 10 - 9, 0x18, 0, //
        0x18, 15 - 3 };
    DrawnPage d(15, 3, replacementPage(true, 15, 3, data));
    ASSERT_EQ(d.job.pageCount(), 1u) << d.job.sink.message();
    const auto rowOf = [&](int y) {
        std::vector<int> reds;
        for (int x = 0; x < 15; ++x)
            reds.push_back(d.at(x, y).red);
        return reds;
    };
    EXPECT_EQ(rowOf(0), (std::vector<int> { 1, 255, 255, 255, 9, 9, 9, 255, 255, 255, 255, 255, 255, 255, 255 }));
    EXPECT_TRUE((d.at(0, 0) == Rgb { 1, 2, 3 }));
    EXPECT_TRUE((d.at(4, 0) == Rgb { 9, 8, 7 }));
    EXPECT_EQ(rowOf(1), (std::vector<int> { 9, 255, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 255, 255, 255 }));
    EXPECT_EQ(rowOf(2), rowOf(1));
}

TEST(XlVendorReplacement, PixelsFromTheLeftAndTheRightAreTheLastOnes)
{
    // 1, then the one above on its right, which is white, as the last; then the one on the left, 7, as the last.
    const Bytes data = { 0x00, 1, 1, 1, 0x40, 0x60, 0x00, 7, 7, 7, 0x00, 8, 8, 8, 0x20, 0x00, 9, 9, 9, 0x68 };
    const Bytes left = { 0x00, 1, 1, 1, 0x01, 2, 2, 2, 3, 3, 3, 0x20, 0xE0 };
    DrawnPage a(9, 1, replacementPage(true, 9, 1, data));
    ASSERT_EQ(a.job.pageCount(), 1u) << a.job.sink.message();
    EXPECT_EQ(a.at(1, 0).red, 255);
    EXPECT_EQ(a.at(2, 0).red, 255);
    EXPECT_EQ(a.at(5, 0).red, 8);
    EXPECT_EQ(a.at(8, 0).red, 9);
    DrawnPage b(6, 1, replacementPage(true, 6, 1, left));
    ASSERT_EQ(b.job.pageCount(), 1u) << b.job.sink.message();
    EXPECT_EQ(b.at(2, 0).red, 3);
    EXPECT_EQ(b.at(3, 0).red, 3);
    EXPECT_EQ(b.at(5, 0).red, 3);
}

TEST(XlVendorReplacement, RowsEndAtTheirWidth)
{
    // A run that passes the end, an offset that does, and a pixel from behind the end, which is black.
    for (const bool isColor : { true, false }) {
        const Bytes data = { 0x85, 90, 90, 90, 0x18, 200, 0x10, 50, 50, 50, 0x40 };
        DrawnPage d(4, 3, replacementPage(isColor, 4, 3, data));
        ASSERT_EQ(d.job.pageCount(), 1u) << d.job.sink.message();
        const int first = isColor ? 90 : 165;
        EXPECT_EQ(d.at(3, 0).red, first);
        EXPECT_EQ(d.at(3, 1).red, first);
        EXPECT_EQ(d.at(1, 2).red, first);
        EXPECT_EQ(d.at(2, 2).red, isColor ? 50 : 205);
        EXPECT_TRUE((d.at(3, 2) == kBlack));
    }
}

TEST(XlVendorReplacement, EachStripStartsFromWhite)
{
    for (const bool isColor : { true, false }) {
        XlStream c;
        c.cursor(0, 0);
        beginRaster(c, isColor, 8, 2, {});
        strip(c, 0, 1, chunk(0x9011, { 0x86, 60, 60, 60 }));
        strip(c, 1, 1, chunk(0x9011, { 0x18, 8 - 3 }));
        endRaster(c);
        DrawnPage d(8, 2, c);
        ASSERT_EQ(d.job.pageCount(), 1u) << d.job.sink.message();
        EXPECT_EQ(d.at(7, 0).red, isColor ? 60 : 195);
        EXPECT_TRUE((d.at(0, 1) == kWhite));
        EXPECT_TRUE((d.at(7, 1) == kWhite));
    }
}

} // namespace
