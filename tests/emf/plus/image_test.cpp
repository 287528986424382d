#include "quillrip/emf/plus/image_object.h"
#include "tests/emf/plus/plus_job.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::emf;
using namespace quillrip::emf::plus;
using namespace quillrip::emf::plus::test;

namespace {

constexpr std::uint32_t kArgb32 = 0x0026200A;

Fields bitmap(std::uint32_t width, std::uint32_t height, std::uint32_t stride, std::uint32_t format)
{
    return Fields().u32({ kVersion, 1, width, height, stride, format, 0 });
}

Fields imageFile(const std::vector<std::uint8_t>& file)
{
    return Fields().u32({ kVersion, 1, 0, 0, 0, 0, 1 }).bytes(file);
}

Pixels decoded(const ImageObject& image, std::string& problem)
{
    WorkMeter work;
    const auto rows = openImage(image, work, problem);
    return rows ? pixelsOf(*rows) : Pixels {};
}

/// The first pixel, or why there is none.
std::string firstPixel(const Fields& object)
{
    const auto image = readImage(object);
    if (!image)
        return "no image";
    std::string problem;
    const Pixels pixels = decoded(*image, problem);
    if (pixels.isNull())
        return problem.empty() ? "no reason" : problem;
    const std::uint8_t* at = pixels.row(0);
    return std::to_string(at[0]) + " " + std::to_string(at[1]) + " " + std::to_string(at[2]) + " "
        + std::to_string(at[3]);
}

/// A GIF of one transparent and one red pixel.
const std::vector<std::uint8_t> kGif { 'G', 'I', 'F', '8', '9', 'a', 2, 0, 1, 0, 0x80, 0, 0, 255, 0, 0, 0, 0, 255, 0x21,
    0xF9, 4, 1, 0, 0, 1, 0, 0x2C, 0, 0, 0, 0, 2, 0, 1, 0, 0, 2, 2, 0x0C, 0x0A, 0, 0x3B };

/// A TIFF of one grey pixel, uncompressed.
std::vector<std::uint8_t> tiff()
{
    Fields file;
    file.u8({ 'I', 'I', 42, 0 }).u32({ 8 }).u16({ 8 });
    const auto entry = [&file](unsigned tag, unsigned type, std::uint32_t value) {
        file.u16({ tag, type }).u32({ 1, value });
    };
    entry(256, 3, 1);
    entry(257, 3, 1);
    entry(258, 3, 8);
    entry(259, 3, 1);
    entry(262, 3, 1);
    entry(273, 4, 8 + 2 + 8 * 12 + 4);
    entry(278, 3, 1);
    entry(279, 4, 1);
    file.u32({ 0 }).u8({ 100 });
    return file;
}

} // namespace

TEST(EmfPlusImage, EveryPixelFormatGivesColours)
{
    EXPECT_EQ(firstPixel(bitmap(1, 1, 4, 0x00030101).u32({ 0, 2, 0xFF010203, 0x80040506 }).u8({ 0x80, 0, 0, 0 })),
        "4 5 6 128");
    EXPECT_EQ(firstPixel(bitmap(2, 1, 4, 0x00030402).u32({ 0, 2, 0xFF010203, 0xFF040506 }).u8({ 0x10, 0, 0, 0 })),
        "4 5 6 255");
    EXPECT_EQ(firstPixel(bitmap(1, 1, 4, 0x00030803).u32({ 0, 1, 0xFF010203 }).u8({ 0, 0, 0, 0 })), "1 2 3 255");
    EXPECT_EQ(firstPixel(bitmap(1, 1, 4, 0x00101004).u8({ 0x12, 0x34, 0, 0 })), "52 52 52 255");
    EXPECT_EQ(firstPixel(bitmap(1, 1, 4, 0x00021005).u16({ 31 << 10 | 16 << 5, 0 })), "255 132 0 255");
    EXPECT_EQ(firstPixel(bitmap(1, 1, 4, 0x00021006).u16({ 31 << 11 | 63 << 5, 0 })), "255 255 0 255");
    EXPECT_EQ(firstPixel(bitmap(1, 1, 4, 0x00061007).u16({ 31 << 10, 0 })), "255 0 0 0");
    EXPECT_EQ(firstPixel(bitmap(1, 1, 4, 0x00061007).u16({ 0x8000 | 31 << 10, 0 })), "255 0 0 255");
    EXPECT_EQ(firstPixel(bitmap(1, 1, 4, 0x00021808).u8({ 3, 2, 1, 0 })), "1 2 3 255");
    EXPECT_EQ(firstPixel(bitmap(1, 1, 4, 0x00022009).u8({ 3, 2, 1, 0 })), "1 2 3 255");
    EXPECT_EQ(firstPixel(bitmap(1, 1, 4, kArgb32).u8({ 3, 2, 1, 77 })), "1 2 3 77");
    EXPECT_EQ(firstPixel(bitmap(1, 1, 4, 0x000E200B).u8({ 0, 0, 0x40, 0x80 })), "128 0 0 128");
    EXPECT_EQ(firstPixel(bitmap(1, 1, 6, 0x0010300C).u16({ 0, 0x2000, 0x2000 })), "255 255 0 255");
    EXPECT_EQ(firstPixel(bitmap(1, 1, 8, 0x0034400D).u16({ 0, 0, 0x2000, 0x1000 })), "255 0 0 128");
    EXPECT_EQ(firstPixel(bitmap(1, 1, 8, 0x001A400E).u16({ 0, 0, 0x1000, 0x1000 })), "255 0 0 128");
}

TEST(EmfPlusImage, RowsMayRiseAndMayBeMissing)
{
    const auto image = readImage(bitmap(1, 3, 0xFFFFFFFC, kArgb32).u8({ 1, 1, 1, 255, 2, 2, 2, 255 }));
    ASSERT_TRUE(image);
    std::string problem;
    const Pixels pixels = decoded(*image, problem);
    ASSERT_EQ(pixels.height, 3);
    EXPECT_EQ(pixels.row(2)[0], 1);
    EXPECT_EQ(pixels.row(1)[0], 2);
    EXPECT_EQ(pixels.row(0)[3], 0);
}

TEST(EmfPlusImage, SizesThatCannotBeAreRefused)
{
    EXPECT_EQ(firstPixel(bitmap(0, 1, 4, kArgb32).u32({ 0 })), "its size cannot be");
    EXPECT_EQ(firstPixel(bitmap(0x80000000, 0x80000000, 4, kArgb32).u32({ 0 })), "its size cannot be");
    EXPECT_EQ(firstPixel(bitmap(65535, 65535, 0x40000, kArgb32).u32({ 0 })), "its size cannot be");
    EXPECT_EQ(firstPixel(bitmap(2, 1, 4, kArgb32).u32({ 0 })), "its rows are longer than the distance between them");
    EXPECT_EQ(firstPixel(bitmap(1, 1, 0x80000000, kArgb32).u32({ 0 })), "0 0 0 0");
    EXPECT_EQ(firstPixel(bitmap(1, 1, 4, 0x00030803).u32({ 0, 0xFFFFFFFF })), "its palette cannot be read");
    EXPECT_EQ(firstPixel(bitmap(1, 1, 4, 0x99).u32({ 0 })), "its pixel format is not known");
}

TEST(EmfPlusImage, FilesAreReadByTheirContent)
{
    EXPECT_EQ(firstPixel(imageFile(tiff())), "100 100 100 255");
    EXPECT_EQ(firstPixel(imageFile({ 'N', 'o', 'n', 'e' })), "its file is of a kind that is not known");
}

TEST(EmfPlusImage, GifPicturesMayBeTransparent)
{
    const auto image = readImage(imageFile(kGif));
    ASSERT_TRUE(image);
    std::string problem;
    const Pixels pixels = decoded(*image, problem);
    ASSERT_FALSE(pixels.isNull()) << problem;
    ASSERT_EQ(pixels.width, 2);
    const std::vector<std::uint8_t> row(pixels.row(0), pixels.row(0) + 8);
    EXPECT_TRUE(row == (std::vector<std::uint8_t> { 0, 0, 0, 0, 255, 0, 0, 255 })
        || row == (std::vector<std::uint8_t> { 255, 0, 0, 255, 0, 0, 0, 0 }));
}

TEST(EmfPlusImage, FilesThatEndTooSoonAreRefusedOrShort)
{
    for (const std::vector<std::uint8_t>& file : { kGif, tiff() }) {
        for (std::size_t size = 4; size < file.size(); ++size) {
            const auto image = readImage(imageFile({ file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size) }));
            ASSERT_TRUE(image);
            std::string problem;
            const Pixels pixels = decoded(*image, problem);
            EXPECT_EQ(pixels.isNull(), !problem.empty()) << size;
        }
    }
}

TEST(EmfPlusImage, TransparentPixelsLeaveThePage)
{
    Records records = header();
    records.object(5, 0, bitmap(2, 2, 8, kArgb32).u32({ 0xFFFF0000, 0x00123456, 0xFF00FF00, 0xFF0000FF }));
    records.add(0x4021, 5).add(0x401A, 0, Fields().u32({ 0, 2 }).f32({ 0, 0, 2, 2, 10, 10, 20, 20 }));
    Sheet sheet;
    sheet.play(records);
    EXPECT_EQ(sheet.pixel(10, 10), (Rgb { 255, 0, 0 }));
    EXPECT_EQ(sheet.pixel(19, 19), (Rgb { 255, 0, 0 }));
    EXPECT_TRUE(sheet.isWhite(20, 10));
    EXPECT_TRUE(sheet.isWhite(29, 19));
    EXPECT_EQ(sheet.pixel(29, 29), (Rgb { 0, 0, 255 }));
    EXPECT_EQ(sheet.markedCount(), 300U);
}

TEST(EmfPlusImage, PointsMirrorAndASourceIsAPart)
{
    Records records = header();
    records.object(5, 0, bitmap(2, 1, 8, kArgb32).u32({ 0xFFFF0000, 0xFF0000FF }));
    records.add(0x4021, 5);
    records.add(0x401B, 0, Fields().u32({ 0, 2 }).f32({ 0, 0, 2, 1 }).u32({ 3 }).f32({ 30, 0, 10, 0, 30, 10 }));
    records.add(0x401A, 0, Fields().u32({ 0, 2 }).f32({ 1, 0, 1, 1, 0, 20, 10, 10 }));
    Sheet sheet;
    sheet.play(records);
    EXPECT_EQ(sheet.pixel(10, 5), (Rgb { 0, 0, 255 }));
    EXPECT_EQ(sheet.pixel(29, 5), (Rgb { 255, 0, 0 }));
    EXPECT_EQ(sheet.pixel(0, 20), (Rgb { 0, 0, 255 }));
    EXPECT_EQ(sheet.pixel(9, 29), (Rgb { 0, 0, 255 }));
    EXPECT_TRUE(sheet.isWhite(10, 25));
}

TEST(EmfPlusImage, EnlargingIsSmoothByDefault)
{
    Records records = header();
    records.object(5, 0, bitmap(2, 1, 8, kArgb32).u32({ 0xFF000000, 0xFFFFFFFF }));
    records.add(0x401A, 0, Fields().u32({ 0, 2 }).f32({ 0, 0, 2, 1, 0, 0, 40, 10 }));
    Sheet sheet;
    sheet.play(records);
    EXPECT_EQ(sheet.pixel(2, 5), kBlack);
    EXPECT_NEAR(sheet.pixel(20, 5).red, 134, 8);
    EXPECT_GT(sheet.pixel(25, 5).red, sheet.pixel(15, 5).red);
}

TEST(EmfPlusImage, ImagesThatCannotBeReadAreNamed)
{
    Records records = header();
    records.object(5, 0, imageFile({ 'N', 'o', 'n', 'e' }));
    records.add(0x401A, 0, Fields().u32({ 0, 2 }).f32({ 0, 0, 2, 1, 0, 0, 40, 10 }));
    Sheet sheet;
    sheet.play(records);
    EXPECT_TRUE(sheet.diagnostics().has("emfplus.image"));
    EXPECT_EQ(sheet.markedCount(), 0U);
}
