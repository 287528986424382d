#include "tests/pclxl/xl_job.h"
#include "tests/support/jpeg_writer.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;
using A = pclxl::Attribute;
using O = pclxl::Operator;
using Bytes = std::vector<std::uint8_t>;

namespace {

constexpr Rgb kWhite { 255, 255, 255 };

/// A checked arrow of 8 by 4 bits, 0 = black, padded to 4 bytes.
const Bytes kArrow = { 0x7F, 0, 0, 0, 0x3F, 0, 0, 0, 0x1F, 0, 0, 0, 0x00, 0, 0, 0 };
const char* const kArrowArt = "#.......\n"
                              "##......\n"
                              "###.....\n"
                              "########\n";

std::string draw(const XlStream& contents, int width, int height, PixelFormat format = PixelFormat::Bilevel)
{
    XlJob job(format);
    job.run(onePage(width, height, contents));
    return job.pageCount() == 1 ? job.art(0, width, height) : job.sink.message();
}

TEST(XlImage, BitsAtTheirOwnScaleAreExact)
{
    for (const PixelFormat format : { PixelFormat::Bilevel, PixelFormat::Gray8, PixelFormat::Rgb24 }) {
        XlStream c;
        c.cursor(0, 0).beginImage(false, 0, 8, 4, 8, 4).readImage(0, 4, 0, kArrow).op(O::EndImage);
        EXPECT_EQ(draw(c, 8, 4, format), kArrowArt);
    }
}

TEST(XlImage, TheCursorIsTheUpperLeftCornerAndStays)
{
    XlStream c;
    c.cursor(2, 1);
    for (int i = 0; i < 2; ++i)
        c.beginImage(false, 0, 1, 1, 1, 1)
            .readImage(0, 1, 0, { 0, 0, 0, 0 })
            .op(O::EndImage)
            .xy(A::Point, 2, 0)
            .op(O::SetCursorRel);
    EXPECT_EQ(draw(c, 6, 2), "......\n..#.#.\n");
}

TEST(XlImage, WholeScalesAreBlocks)
{
    XlStream c;
    c.cursor(0, 0).beginImage(false, 0, 8, 4, 16, 12).readImage(0, 4, 0, kArrow).op(O::EndImage);
    EXPECT_EQ(draw(c, 4, 6), "##..\n##..\n##..\n####\n####\n####\n");
}

TEST(XlImage, BlocksMayUseDifferentCompressions)
{
    XlStream c;
    c.cursor(0, 0).beginImage(false, 0, 8, 4, 8, 4);
    c.readImage(0, 1, 0, { 0x7F, 0, 0, 0 }).readImage(1, 1, 1, { 0, 0x3F, 254, 0 });
    c.readImage(2, 2, 3, { 2, 0, 0x00, 0x1F, 2, 0, 0x00, 0x00 }).op(O::EndImage);
    EXPECT_EQ(draw(c, 8, 4), kArrowArt);
}

TEST(XlImage, DeltaRowsBuildOnTheLastRowOfTheBlockBefore)
{
    // Three bands: the second begins with a row that only repeats, the third with one that changes its second byte.
    XlStream c;
    c.cursor(0, 0).beginImage(false, 0, 16, 4, 16, 4);
    c.readImage(0, 2, 3, { 3, 0, 0x20, 0x7F, 0xFE, 3, 0, 0x20, 0x3F, 0xFC }).readImage(2, 1, 3, { 0, 0 });
    c.readImage(3, 1, 3, { 2, 0, 0x01, 0x00 }).op(O::EndImage);
    EXPECT_EQ(draw(c, 16, 4), "#..............#\n##............##\n##............##\n##......########\n");
}

TEST(XlImage, DeltaRowsBuildOnBlocksInOtherCodesToo)
{
    for (const int compression : { 0, 1 }) {
        XlStream c;
        c.cursor(0, 0).beginImage(false, 0, 8, 2, 8, 2);
        c.readImage(0, 1, compression, compression == 0 ? Bytes { 0x7E, 0, 0, 0 } : Bytes { 0, 0x7E, 254, 0 });
        c.readImage(1, 1, 3, { 0, 0 }).op(O::EndImage);
        EXPECT_EQ(draw(c, 8, 2), "#......#\n#......#\n");
    }
}

TEST(XlImage, EachImageBeginsItsDeltaRowsAtZero)
{
    XlStream c;
    for (int i = 0; i < 2; ++i) {
        c.cursor(8 * i, 0).beginImage(false, 0, 8, 1, 8, 1);
        c.readImage(0, 1, 3, i == 0 ? Bytes { 2, 0, 0x00, 0xFF } : Bytes { 0, 0 }).op(O::EndImage);
    }
    EXPECT_EQ(draw(c, 16, 1), "........########\n");
}

TEST(XlImage, RowsThatDoNotComeStayUnpainted)
{
    XlStream c;
    c.nullPen().grayBrush(0).rectangle(0, 0, 8, 4).cursor(0, 0).ubyte(A::ROP3, 204).op(O::SetROP);
    c.beginImage(false, 0, 8, 4, 8, 4).readImage(2, 1, 0, { 0xFF, 0, 0, 0 }).readImage(0, 1, 0, { 0xF0, 0, 0, 0 });
    c.op(O::EndImage);
    EXPECT_EQ(draw(c, 8, 4), "....####\n########\n........\n########\n");
}

TEST(XlImage, PaddingIsAsTheAttributeSays)
{
    XlStream c;
    c.cursor(0, 0).beginImage(false, 0, 8, 4, 8, 4).readImage(0, 4, 0, { 0x7F, 0x3F, 0x1F, 0x00 }, 1).op(O::EndImage);
    EXPECT_EQ(draw(c, 8, 4), kArrowArt);
}

TEST(XlImage, RotationTurnsTheImage)
{
    XlStream c;
    c.xy(A::PageOrigin, 0, 8).op(O::SetPageOrigin).sint16(A::PageAngle, 90).op(O::SetPageRotation).cursor(0, 0);
    c.beginImage(false, 0, 8, 4, 8, 4).readImage(0, 4, 0, kArrow).op(O::EndImage);
    EXPECT_EQ(draw(c, 4, 8), "...#\n...#\n...#\n...#\n...#\n..##\n.###\n####\n");
}

TEST(XlImage, ColoursComeFromAllDepths)
{
    XlStream c;
    c.colorSpace(2).cursor(0, 0).beginImage(false, 2, 2, 1, 2, 1);
    c.readImage(0, 1, 0, { 1, 2, 3, 4, 5, 6, 0, 0 }).op(O::EndImage);
    c.colorSpace(1).cursor(2, 0).beginImage(false, 1, 2, 1, 2, 1).readImage(0, 1, 0, { 0x3C, 0, 0, 0 }).op(O::EndImage);
    c.ubyte(A::ColorSpace, 2).ubyte(A::PaletteDepth, 2);
    Bytes palette(48);
    palette[3 * 5] = 77;
    c.bytes(A::PaletteData, palette).op(O::SetColorSpace).cursor(4, 0).beginImage(true, 1, 1, 1, 1, 1);
    c.readImage(0, 1, 0, { 0x50, 0, 0, 0 }).op(O::EndImage);
    XlJob job(PixelFormat::Rgb24);
    job.run(onePage(6, 1, c));
    ASSERT_EQ(job.pageCount(), 1u) << job.sink.message();
    EXPECT_TRUE((job.pixel(0, 0, 0) == Rgb { 1, 2, 3 }));
    EXPECT_TRUE((job.pixel(0, 1, 0) == Rgb { 4, 5, 6 }));
    EXPECT_TRUE((job.pixel(0, 2, 0) == Rgb { 51, 51, 51 }));
    EXPECT_TRUE((job.pixel(0, 3, 0) == Rgb { 204, 204, 204 }));
    EXPECT_TRUE((job.pixel(0, 4, 0) == Rgb { 77, 0, 0 }));
    EXPECT_TRUE((job.pixel(0, 5, 0) == kWhite));
}

TEST(XlImage, JpegBlocksArePainted)
{
    XlStream c;
    c.colorSpace(1).cursor(0, 0).beginImage(false, 2, 8, 16, 8, 16);
    c.readImage(0, 8, 2, writeJpeg(Bytes(64, 0), 8, 8, 1)).readImage(8, 8, 2, writeJpeg(Bytes(64, 255), 8, 8, 1));
    c.op(O::EndImage);
    XlJob job(PixelFormat::Gray8);
    job.run(onePage(8, 16, c));
    ASSERT_EQ(job.pageCount(), 1u) << job.sink.message();
    EXPECT_EQ(job.device.blackPixelCount(0), 64u);
}

TEST(XlImage, StencilsPaintTheBrushWhereTheyAreBlack)
{
    // As a PostScript image mask arrives: palette white, black; transparent source; the default operation.
    XlStream c;
    c.nullPen().rgbBrush(0, 0, 200).rectangle(0, 0, 8, 1).rgbBrush(200, 0, 0).ubyte(A::TxMode, 1);
    c.op(O::SetSourceTxMode).ubyte(A::ColorSpace, 1).ubyte(A::PaletteDepth, 2).bytes(A::PaletteData, { 255, 0 });
    c.op(O::SetColorSpace).cursor(0, 0).beginImage(true, 0, 8, 1, 8, 1).readImage(0, 1, 0, { 0x0F, 0, 0, 0 });
    c.op(O::EndImage);
    XlJob job(PixelFormat::Rgb24);
    job.run(onePage(8, 1, c));
    ASSERT_EQ(job.pageCount(), 1u) << job.sink.message();
    EXPECT_TRUE((job.pixel(0, 0, 0) == Rgb { 0, 0, 200 }));
    EXPECT_TRUE((job.pixel(0, 7, 0) == Rgb { 200, 0, 0 }));
}

TEST(XlImage, ATransparentSourceLeavesItsWhiteOutWithAnyOperation)
{
    for (const int transparent : { 0, 1 }) {
        XlStream c;
        c.nullPen().rgbBrush(0, 0, 200).rectangle(0, 0, 8, 1).ubyte(A::ROP3, 204).op(O::SetROP);
        c.ubyte(A::TxMode, transparent).op(O::SetSourceTxMode).ubyte(A::ColorSpace, 2).ubyte(A::PaletteDepth, 2);
        c.bytes(A::PaletteData, { 255, 255, 255, 10, 20, 30 }).op(O::SetColorSpace).cursor(0, 0);
        c.beginImage(true, 0, 8, 1, 8, 1).readImage(0, 1, 0, { 0x0F, 0, 0, 0 }).op(O::EndImage);
        XlJob job(PixelFormat::Rgb24);
        job.run(onePage(8, 1, c));
        ASSERT_EQ(job.pageCount(), 1u) << job.sink.message();
        EXPECT_TRUE((job.pixel(0, 0, 0) == (transparent ? Rgb { 0, 0, 200 } : kWhite)));
        EXPECT_TRUE((job.pixel(0, 7, 0) == Rgb { 10, 20, 30 }));
    }
}

TEST(XlImage, BandsOfOnePictureMeetWithoutSeams)
{
    XlStream s = XlStream::withHeader();
    s.beginSession(300).openDataSource().beginPage(8, 24);
    int y = 0;
    for (int band = 0; band < 9; ++band) {
        const int height = band % 2 == 0 ? 5 : 4;
        s.cursor(0, y).beginImage(false, 0, 8, 1, 24, height).readImage(0, 1, 0, { 0, 0, 0, 0 }).op(O::EndImage);
        y += height;
    }
    s.endPage().endSession();
    XlJob job;
    job.run(s);
    ASSERT_EQ(job.pageCount(), 1u);
    EXPECT_EQ(job.device.blackPixelCount(0), 8u * 14); // 41 units of 1/300 inch end between pixels 13 and 14
}

TEST(XlImage, WhatAnImageLacksIsAnError)
{
    const auto errorOf = [](const XlStream& c) { return draw(c, 8, 4); };
    const auto has = [](const std::string& text, const char* what) { return text.find(what) != std::string::npos; };
    EXPECT_TRUE(has(errorOf(XlStream().beginImage(false, 0, 8, 4, 8, 4)), "CurrentCursorUndefined"));
    EXPECT_TRUE(has(errorOf(XlStream().cursor(0, 0).beginImage(true, 0, 8, 4, 8, 4)), "MissingPalette"));
    XlStream mismatch;
    mismatch.ubyte(A::ColorSpace, 1).ubyte(A::PaletteDepth, 2).bytes(A::PaletteData, { 255, 0 }).op(O::SetColorSpace);
    mismatch.cursor(0, 0).beginImage(true, 2, 8, 4, 8, 4);
    EXPECT_TRUE(has(errorOf(mismatch), "ImagePaletteMismatch"));
    EXPECT_TRUE(has(errorOf(XlStream().cursor(0, 0).beginImage(false, 0, 0, 4, 8, 4)), "SourceWidth"));
    XlStream begun;
    begun.cursor(0, 0).beginImage(false, 0, 8, 4, 8, 4);
    EXPECT_TRUE(has(errorOf(XlStream().append(begun).readImage(4, 1, 0, kArrow)), "StartLine"));
    EXPECT_TRUE(has(errorOf(XlStream().append(begun).readImage(2, 3, 0, kArrow)), "BlockHeight"));
    EXPECT_TRUE(has(errorOf(XlStream().append(begun).readImage(0, 4, 0, { 1, 2 })), "MissingData"));
    EXPECT_TRUE(has(errorOf(XlStream().append(begun).readImage(0, 4, 2, { 1, 2 })), "IllegalAttributeCombination"));
    EXPECT_TRUE(has(errorOf(XlStream().append(begun).readImage(0, 4, 4, kArrow)), "CompressMode"));
}

TEST(XlImage, SurplusDataAreIgnored)
{
    XlStream c;
    Bytes more = kArrow;
    more.resize(100, 0x55);
    c.cursor(0, 0).beginImage(false, 0, 8, 4, 8, 4).readImage(0, 4, 0, more).data({ 1, 2, 3 }).op(O::EndImage);
    EXPECT_EQ(draw(c, 8, 4), kArrowArt);
}

TEST(XlImage, HugeImagesNeedNoMemoryButTheirRow)
{
    XlStream c;
    // Four thousand million pixels, of which little comes.
    c.cursor(0, 0).ubyte(A::ColorMapping, 0).ubyte(A::ColorDepth, 2).uint32(A::SourceWidth, 65535);
    c.uint32(A::SourceHeight, 65535).xy(A::DestinationSize, 8, 4).op(O::BeginImage);
    c.uint32(A::StartLine, 0).uint32(A::BlockHeight, 65535).ubyte(A::CompressMode, 0).op(O::ReadImage).data({ 1, 2 });
    EXPECT_NE(draw(c, 8, 4).find("MissingData"), std::string::npos);
    XlStream wide;
    wide.cursor(0, 0).ubyte(A::ColorMapping, 0).ubyte(A::ColorDepth, 2).uint32(A::SourceWidth, 0x7FFFFFFF);
    wide.uint32(A::SourceHeight, 1).xy(A::DestinationSize, 8, 4).op(O::BeginImage);
    XlJob job;
    EXPECT_EQ(job.run(onePage(8, 4, wide)), pclxl::Interpreter::End::Failed);
    EXPECT_EQ(job.interpreter.status(), RunStatus::LimitExceeded);
}

TEST(XlImage, ImagesOutsideThePageAreReadAll)
{
    XlStream c;
    c.cursor(30000, 30000).beginImage(false, 0, 8, 4, 8, 4).readImage(0, 4, 0, kArrow).op(O::EndImage);
    c.cursor(0, 0).beginImage(false, 0, 8, 4, 0, 4).readImage(0, 4, 0, kArrow).op(O::EndImage);
    EXPECT_EQ(draw(c, 2, 1), "..\n");
}

} // namespace
