#include "quillrip/image/document_options.h"

#include <gtest/gtest.h>

using namespace quillrip;

TEST(DocumentOptions, TypeFollowsTheExtensionInAnyCase)
{
    EXPECT_EQ(fileTypeOfPath("a.bmp"), FileType::Bmp);
    EXPECT_EQ(fileTypeOfPath("/x.y/a.b.PNG"), FileType::Png);
    EXPECT_EQ(fileTypeOfPath("a.Jpg"), FileType::Jpeg);
    EXPECT_EQ(fileTypeOfPath("a.JPEG"), FileType::Jpeg);
    EXPECT_EQ(fileTypeOfPath("a.pcx"), FileType::Pcx);
    EXPECT_EQ(fileTypeOfPath("a.tif"), FileType::Tiff);
    EXPECT_EQ(fileTypeOfPath("a.TIFF"), FileType::Tiff);
}

TEST(DocumentOptions, OtherNamesHaveNoType)
{
    for (const char* path : { "", "a", "png", "a.gif", "a.png.", "a.pn", "x.png/a", "a.tifff" })
        EXPECT_FALSE(fileTypeOfPath(path)) << path;
}

TEST(DocumentOptions, FurtherPagesGetFourDigitsBeforeTheExtension)
{
    DocumentOptions options;
    options.path = "/out.d/job.2024.png";
    options.type = FileType::Png;
    EXPECT_EQ(pagePath(options, 1), "/out.d/job.2024.png");
    EXPECT_EQ(pagePath(options, 2), "/out.d/job.2024_p0002.png");
    EXPECT_EQ(pagePath(options, 999), "/out.d/job.2024_p0999.png");
    EXPECT_EQ(pagePath(options, 12345), "/out.d/job.2024_p12345.png");
}

TEST(DocumentOptions, TiffKeepsAllPagesInOneFile)
{
    DocumentOptions options;
    options.path = "job.TIF";
    options.type = FileType::Tiff;
    EXPECT_EQ(pagePath(options, 7), "job.TIF");
}

TEST(DocumentOptions, CcittAndFaxTakeBilevelPagesOnly)
{
    DocumentOptions options;
    options.type = FileType::Tiff;
    for (const auto compression :
        { TiffCompression::CcittG3OneD, TiffCompression::CcittG3TwoD, TiffCompression::CcittG4 }) {
        options.compression = compression;
        EXPECT_EQ(reasonAgainst(options, PixelFormat::Bilevel), "");
        EXPECT_NE(reasonAgainst(options, PixelFormat::Gray8), "");
        EXPECT_NE(reasonAgainst(options, PixelFormat::Rgb24), "");
    }
    options.compression = TiffCompression::LzwPredictor;
    EXPECT_EQ(reasonAgainst(options, PixelFormat::Rgb24), "");
    options.fax = true;
    EXPECT_EQ(reasonAgainst(options, PixelFormat::Bilevel), "");
    EXPECT_NE(reasonAgainst(options, PixelFormat::Rgb24), "");
    options.type = FileType::Bmp;
    options.compression = TiffCompression::CcittG4;
    EXPECT_EQ(reasonAgainst(options, PixelFormat::Rgb24), "");
}
