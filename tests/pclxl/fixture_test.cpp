#include "tests/pclxl/xl_job.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

using namespace quillrip;
using namespace quillrip::test;

namespace {

/// The stream of a driver's job: from its header line on, up to the exit behind it.
std::vector<std::uint8_t> streamOf(const std::string& name)
{
    std::ifstream file(std::string(PRISMO_TEST_DATA) + '/' + name, std::ios::binary);
    const std::string all((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const std::size_t start = all.find(") HP-PCL XL;");
    return start == std::string::npos
        ? std::vector<std::uint8_t>()
        : std::vector<std::uint8_t>(all.begin() + static_cast<std::ptrdiff_t>(start), all.end());
}

TEST(XlFixture, ADriversColourJobIsDrawnWhole)
{
    XlJob job(PixelFormat::Rgb24);
    EXPECT_EQ(job.run(streamOf("driver_colour_600.pxl")), pclxl::Interpreter::End::UniversalExit);
    ASSERT_EQ(job.pageCount(), 2u) << job.sink.message();
    EXPECT_TRUE(job.sink.diagnostics.empty());
    // 72 points are 100 pixels; the square stands at (1, 4.94) inches from the upper left corner.
    EXPECT_TRUE((job.pixel(0, 150, 350) == Rgb { 204, 51, 25 }));
    EXPECT_TRUE((job.pixel(0, 280, 270) == Rgb { 0, 0, 0 })); // first sample of the picture
    EXPECT_TRUE((job.pixel(0, 400, 270) == Rgb { 192, 192, 192 })); // fourth
    EXPECT_TRUE((job.pixel(0, 200, 655) == Rgb { 51, 102, 179 }));
    EXPECT_TRUE((job.pixel(1, 150, 350) == Rgb { 255, 255, 255 }));
}

TEST(XlFixture, ADriversMonochromeJobIsDrawnWhole)
{
    XlJob job(PixelFormat::Gray8);
    EXPECT_EQ(job.run(streamOf("driver_mono_300.pxl")), pclxl::Interpreter::End::UniversalExit);
    ASSERT_EQ(job.pageCount(), 2u) << job.sink.message();
    EXPECT_EQ(job.device.pages()[0].height(), 1169); // A4
    EXPECT_TRUE(job.sink.diagnostics.empty());
}

TEST(XlFixture, APicturesJobHasItsDotsInPlace)
{
    XlJob job;
    EXPECT_EQ(job.run(streamOf("raster_100.pxl")), pclxl::Interpreter::End::UniversalExit);
    ASSERT_EQ(job.pageCount(), 1u) << job.sink.message();
    EXPECT_EQ(job.device.blackPixelCount(0), 400u);
    const std::string dots = job.device.textArt(0, { 99, 199, 105, 202 });
    EXPECT_TRUE(dots == "......\n.#.#.#\n..#.#.\n" || dots == "......\n..#.#.\n.#.#.#\n") << dots;
}

} // namespace
