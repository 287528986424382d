#include "quillrip/raster/painter.h"
#include "tests/support/spare_heap.h"
#include "tests/support/text_art.h"

#include <gtest/gtest.h>

using namespace quillrip;
using test::textArt;

namespace {

std::string monoImage(const std::vector<std::string>& rows, const Matrix& matrix, int width, int height,
    PixelFormat format = PixelFormat::Bilevel, const PaintState& state = {})
{
    PageBitmap page(format, width, height, {});
    Painter painter(page);
    ImageGeometry geometry;
    geometry.width = static_cast<int>(rows[0].size());
    geometry.height = static_cast<int>(rows.size());
    geometry.imageToDevice = matrix;
    const auto image = painter.beginImage(geometry, state);
    if (!image)
        return "nothing";
    for (const std::string& row : rows) {
        std::vector<std::uint8_t> bytes((row.size() + 7) / 8);
        for (std::size_t x = 0; x < row.size(); ++x) {
            if (row[x] == '#')
                bytes[x / 8] = static_cast<std::uint8_t>(bytes[x / 8] | 0x80 >> (x % 8));
        }
        image->row(bytes.data());
    }
    image->finish();
    return textArt(page);
}

const std::vector<std::string> kSmall { "##.", "#..", "#.#" };

} // namespace

TEST(MonoImage, ScaleOneIsACopy)
{
    EXPECT_EQ(monoImage(kSmall, { 1, 0, 0, 1, 2, 1 }, 6, 5), "......\n..##..\n..#...\n..#.#.\n......\n");
}

TEST(MonoImage, WholeScaleMakesBlocks)
{
    EXPECT_EQ(monoImage(kSmall, { 2, 0, 0, 1, 0, 0 }, 6, 3), "####..\n##....\n##..##\n");
}

TEST(MonoImage, MirrorsAndQuarterTurnsAreExact)
{
    EXPECT_EQ(monoImage(kSmall, { -1, 0, 0, 1, 3, 0 }, 3, 3), ".##\n..#\n#.#\n");
    EXPECT_EQ(monoImage(kSmall, { 1, 0, 0, -1, 0, 3 }, 3, 3), "#.#\n#..\n##.\n");
    EXPECT_EQ(monoImage(kSmall, { 0, 1, -1, 0, 3, 0 }, 3, 3), "###\n..#\n#..\n");
    EXPECT_EQ(monoImage(kSmall, { 0, -1, 1, 0, 0, 3 }, 3, 3), "..#\n#..\n###\n");
}

TEST(MonoImage, FractionalScaleStartsBlocksAtRoundedPositions)
{
    // Columns begin at round(0), round(1.5), round(3), round(4.5).
    EXPECT_EQ(monoImage({ "#.#" }, { 1.5, 0, 0, 1, 0, 0 }, 6, 1), "##.##.\n");
    EXPECT_EQ(monoImage({ ".#." }, { 1.5, 0, 0, 1, 0, 0 }, 6, 1), "..#...\n");
}

TEST(MonoImage, CutByThePageOnAllSides)
{
    EXPECT_EQ(monoImage({ "####", "#..#", "#..#", "####" }, { 1, 0, 0, 1, -1, -1 }, 2, 2), "..\n..\n");
    EXPECT_EQ(monoImage({ "####", "#..#", "#..#", "####" }, { 2, 0, 0, 2, -5, -5 }, 4, 4), ".##.\n###.\n###.\n....\n");
}

TEST(MonoImage, OpaqueSourceWhitensItsBoxAndTransparentDoesNot)
{
    for (const bool isTransparent : { true, false }) {
        PageBitmap page(PixelFormat::Bilevel, 6, 3, {});
        Painter painter(page);
        painter.fillRect(page.bounds(), {});
        ImageGeometry geometry;
        geometry.width = 4;
        geometry.imageToDevice = Matrix::translation(1, 0);
        PaintState state;
        state.sourceTransparent = isTransparent;
        const auto image = painter.beginImage(geometry, state);
        const std::uint8_t row = 0x50;
        image->row(&row);
        image->blankRows(1);
        image->finish();
        EXPECT_EQ(textArt(page), isTransparent ? "######\n######\n######\n" : "#.#.##\n#....#\n######\n");
    }
}

TEST(MonoImage, RowsBeyondTheHeightAreIgnoredAndMissingOnesLeaveThePage)
{
    PageBitmap page(PixelFormat::Bilevel, 8, 4, {});
    Painter painter(page);
    ImageGeometry geometry;
    geometry.width = 8;
    geometry.height = 2;
    const std::uint8_t row = 0xFF;
    const auto image = painter.beginImage(geometry, {});
    for (int i = 0; i < 5; ++i)
        image->row(&row);
    image->finish();
    EXPECT_EQ(textArt(page), "########\n########\n........\n........\n");
}

TEST(MonoImage, AnyAngleCoversTheTurnedShape)
{
    // A black square turned by 45 degrees about the page's middle is a diamond.
    const double s = std::sqrt(0.5);
    const Matrix turned = Matrix::translation(-2, -2) * Matrix { s, s, -s, s, 0, 0 } * Matrix::translation(4, 4);
    EXPECT_EQ(monoImage({ "####", "####", "####", "####" }, turned, 8, 8),
        "........\n"
        "........\n"
        "...##...\n"
        "..####..\n"
        "..####..\n"
        "...##...\n"
        "........\n"
        "........\n");
}

TEST(MonoImage, ImageOutsideThePageIsNone) { EXPECT_EQ(monoImage(kSmall, { 1, 0, 0, 1, 50, 0 }, 6, 5), "nothing"); }

namespace {

/// Grey rows to the ink of a grey page.
std::vector<std::vector<int>> grayImage(const std::vector<std::vector<std::uint8_t>>& rows, const Matrix& matrix,
    bool smooth, int width, int height, bool isSourceTransparent = false)
{
    PageBitmap page(PixelFormat::Gray8, width, height, {});
    Painter painter(page);
    ImageGeometry geometry;
    geometry.format = ImageFormat::Gray8;
    geometry.width = static_cast<int>(rows[0].size());
    geometry.imageToDevice = matrix;
    geometry.smooth = smooth;
    PaintState state;
    state.sourceTransparent = isSourceTransparent;
    const auto image = painter.beginImage(geometry, state);
    for (const auto& row : rows)
        image->row(row.data());
    image->finish();
    std::vector<std::vector<int>> result;
    for (int y = 0; y < height; ++y)
        result.emplace_back(page.row(y), page.row(y) + width);
    return result;
}

} // namespace

TEST(GrayImage, ShrinkingAveragesOverTheArea)
{
    using Rows = std::vector<std::vector<int>>;
    EXPECT_EQ(grayImage({ { 255, 155, 0, 0 }, { 255, 155, 0, 0 } }, Matrix::scaling(0.5, 0.5), false, 2, 1),
        (Rows { { 50, 255 } }));
    // Three pixels on two: the middle one is shared.
    EXPECT_EQ(grayImage({ { 255, 105, 0 } }, Matrix::scaling(2.0 / 3, 1), false, 2, 1), (Rows { { 50, 220 } }));
}

TEST(GrayImage, WholeScaleMakesBlocksEvenWhenSmooth)
{
    using Rows = std::vector<std::vector<int>>;
    EXPECT_EQ(grayImage({ { 200, 100 } }, Matrix::scaling(2, 2), true, 4, 2),
        (Rows { { 55, 55, 155, 155 }, { 55, 55, 155, 155 } }));
}

TEST(GrayImage, WholeScalesAreSmoothWhereThatIsAskedFor)
{
    PageBitmap page(PixelFormat::Gray8, 4, 1, {});
    Painter painter(page);
    ImageGeometry geometry;
    geometry.format = ImageFormat::Gray8;
    geometry.width = 2;
    geometry.imageToDevice = Matrix::scaling(2, 1);
    geometry.smoothsBlocks = true;
    PaintState state;
    state.sourceTransparent = false;
    const auto image = painter.beginImage(geometry, state);
    const std::uint8_t row[2] = { 255, 155 };
    image->row(row);
    image->finish();
    EXPECT_EQ(std::vector<int>(page.row(0), page.row(0) + 4), (std::vector<int> { 0, 25, 75, 100 }));
}

TEST(GrayImage, SmoothEnlargingMixesNeighbours)
{
    const auto rows = grayImage({ { 255, 5 }, { 255, 5 } }, Matrix::scaling(2.5, 2.5), true, 5, 5);
    EXPECT_EQ(rows[0], (std::vector<int> { 0, 25, 125, 225, 250 }));
    EXPECT_EQ(rows[4], rows[0]);
}

TEST(GrayImage, TransparentWhiteLeavesItsShareOfThePage)
{
    PageBitmap page(PixelFormat::Gray8, 1, 1, {});
    Painter painter(page);
    painter.fillRect(page.bounds(), {});
    ImageGeometry geometry;
    geometry.format = ImageFormat::Gray8;
    geometry.width = 2;
    geometry.imageToDevice = Matrix::scaling(0.5, 1);
    const auto image = painter.beginImage(geometry, {});
    const std::uint8_t row[2] = { 255, 155 };
    image->row(row);
    image->finish();
    // Half the page's black stays, half becomes the source's 100.
    EXPECT_NEAR(page.row(0)[0], (255 + 100) / 2, 1);
}

TEST(MonoImage, ShrinkingOnGreyIsCoverage)
{
    PageBitmap page(PixelFormat::Gray8, 2, 1, {});
    Painter painter(page);
    ImageGeometry geometry;
    geometry.width = 8;
    geometry.imageToDevice = Matrix::scaling(0.25, 1);
    const auto image = painter.beginImage(geometry, {});
    const std::uint8_t row = 0x8E;
    image->row(&row);
    image->finish();
    EXPECT_EQ(page.row(0)[0], 64);
    EXPECT_EQ(page.row(0)[1], 191);
}

TEST(ColourImage, TonesOnBilevelHaveTheirShareOfDots)
{
    PageBitmap page(PixelFormat::Bilevel, 64, 64, {});
    Painter painter(page);
    ImageGeometry geometry;
    geometry.format = ImageFormat::Gray8;
    geometry.width = 64;
    const auto image = painter.beginImage(geometry, {});
    const std::vector<std::uint8_t> row(64, 192);
    for (int y = 0; y < 64; ++y)
        image->row(row.data());
    image->finish();
    EXPECT_NEAR(static_cast<double>(test::blackPixelCount(page)), 64 * 64 * 63 / 255.0, 17);
}

TEST(MonoImage, ShrinkingKeepsThinLines)
{
    EXPECT_EQ(
        monoImage({ "........", "#.......", "........", "........" }, { 0.5, 0, 0, 0.5, 0, 0 }, 4, 2), "#...\n....\n");
}

TEST(GrayImage, AveragesAreTheSameUpsideDown)
{
    using Ink = std::vector<std::vector<int>>;
    const std::vector<std::vector<std::uint8_t>> rows { { 0 }, { 100 }, { 200 }, { 50 } };
    EXPECT_EQ(grayImage(rows, { 1, 0, 0, 0.5, 0, 0 }, false, 1, 2), (Ink { { 205 }, { 130 } }));
    EXPECT_EQ(grayImage(rows, { 1, 0, 0, -0.5, 0, 2 }, false, 1, 2), (Ink { { 130 }, { 205 } }));
}

TEST(Images, ARowThatIsGivenOnceWithItsCountIsThatManyRows)
{
    constexpr int kWidth = 16;
    constexpr int kCounts[] = { 1, 7, 1, 30, 2 };
    const auto page = [&](ImageFormat format, PixelFormat pageFormat, const Matrix& matrix, bool isCounted) {
        PageBitmap bitmap(pageFormat, 60, 60, {});
        Painter painter(bitmap);
        ImageGeometry geometry;
        geometry.format = format;
        geometry.width = kWidth;
        geometry.imageToDevice = matrix;
        const auto image = painter.beginImage(geometry, {});
        std::vector<std::uint8_t> row(kWidth * 4);
        for (int i = 0; i < 5; ++i) {
            for (std::size_t at = 0; at < row.size(); ++at)
                row[at] = static_cast<std::uint8_t>(i == 2 ? 0 : 37 * at + 85 * static_cast<unsigned>(i));
            if (isCounted)
                image->rows(row.data(), kCounts[i]);
            else
                for (int count = kCounts[i]; count > 0; --count)
                    image->row(row.data());
        }
        image->finish();
        std::vector<Rgb> pixels;
        for (int y = 0; y < 60; ++y)
            for (int x = 0; x < 60; ++x)
                pixels.push_back(bitmap.pixel(x, y));
        return pixels;
    };
    const Matrix matrices[] = { { 1, 0, 0, 1, 3, 2 }, { 2.5, 0, 0, 1.75, 1, -9 }, { 0.5, 0, 0, 0.3, 4, 4 },
        { 3, 0, 0, -0.4, 0, 50 }, { -1, 0, 0, 2, 40, -20 }, { 0, 1.5, 0.25, 0, 5, 5 }, { 0.8, 0.6, -0.6, 0.8, 30, 5 } };
    for (const Matrix& matrix : matrices) {
        for (const ImageFormat format :
            { ImageFormat::Mono, ImageFormat::Gray8, ImageFormat::Rgb24, ImageFormat::Rgba32 }) {
            for (const PixelFormat pageFormat : { PixelFormat::Bilevel, PixelFormat::Gray8, PixelFormat::Rgb24 })
                EXPECT_EQ(page(format, pageFormat, matrix, true), page(format, pageFormat, matrix, false))
                    << "scale " << matrix.a << " " << matrix.d << ", format " << static_cast<int>(format);
        }
    }
}

TEST(WideImage, OfMillionsOfPixelsARowTakesMemoryForThePage)
{
    // Packed, a row of 22 million pixels has less than 3 MB.
    constexpr int width = 22'000'000;
    std::vector<std::uint8_t> row(width / 8, 0xF0);
    std::fill(row.begin() + width / 16, row.end(), std::uint8_t { 0xFF });
    for (const bool isTurned : { false, true }) {
        PageBitmap page(PixelFormat::Gray8, 100, 100, {});
        Painter painter(page);
        ImageGeometry geometry;
        geometry.width = width;
        geometry.height = 2;
        geometry.imageToDevice = Matrix::scaling(100.0 / width, 50);
        if (isTurned)
            geometry.imageToDevice = geometry.imageToDevice * Matrix::quarterTurns(1) * Matrix::translation(100, 0);
        const test::SpareHeap bound(1U << 20);
        const auto image = painter.beginImage(geometry, {});
        image->row(row.data());
        image->row(row.data());
        image->finish();
        for (const int at : { 0, 20, 49, 50, 99 })
            EXPECT_EQ(page.row(isTurned ? at : 30)[isTurned ? 30 : at], at < 50 ? 128 : 255) << at;
    }
}

TEST(WideImage, InPartsHasThePixelsOfTheWhole)
{
    // 200,000 grey pixels, shrunk by 20, against their means; and every twentieth of them.
    constexpr int width = 200'000;
    std::vector<std::uint8_t> row(width);
    for (std::size_t x = 0; x < row.size(); ++x)
        row[x] = static_cast<std::uint8_t>(x * x / 77);
    for (const bool drops : { false, true }) {
        PageBitmap page(PixelFormat::Gray8, width / 20, 1, {});
        Painter painter(page);
        ImageGeometry geometry;
        geometry.format = ImageFormat::Gray8;
        geometry.width = width;
        geometry.height = 1;
        geometry.imageToDevice = Matrix::scaling(1 / 20.0, 1);
        geometry.dropsPixels = drops;
        PaintState state;
        state.sourceTransparent = false;
        const auto image = painter.beginImage(geometry, state);
        image->row(row.data());
        image->finish();
        for (int x = 0; x < page.width(); ++x) {
            double mean = 0;
            for (std::size_t i = 0; i < 20; ++i)
                mean += row[static_cast<std::size_t>(x) * 20 + i] / 20.0;
            const double expected = drops ? row[static_cast<std::size_t>(x) * 20 + 9] : mean;
            ASSERT_NEAR(255 - page.row(0)[x], expected, drops ? 0 : 0.51) << x;
        }
    }
}
