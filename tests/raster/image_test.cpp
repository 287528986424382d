#include "quillrip/raster/painter.h"
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

TEST(MonoImage, ShrinkingKeepsThinLines)
{
    EXPECT_EQ(
        monoImage({ "........", "#.......", "........", "........" }, { 0.5, 0, 0, 0.5, 0, 0 }, 4, 2), "#...\n....\n");
}
