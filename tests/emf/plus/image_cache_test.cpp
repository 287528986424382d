// Images that are drawn many times, in parts, or reduced.

#include "quillrip/base/sanitizer.h"
#include "quillrip/emf/plus/image_cache.h"
#include "quillrip/emf/plus/texture_reduction.h"
#include "tests/emf/plus/plus_job.h"
#include "tests/support/image_files.h"
#include "tests/support/spare_heap.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace quillrip::emf::plus::test {
namespace {

using quillrip::test::pngFile;
using quillrip::test::PngForm;
using quillrip::test::SpareHeap;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kArgb32 = 0x0026200A;
constexpr std::uint32_t kIndexed1 = 0x00030101;

std::shared_ptr<const ImageObject> fileObject(const Bytes& file)
{
    auto object = std::make_shared<ImageObject>();
    object->kind = ImageObject::Kind::File;
    object->bytes = file;
    return object;
}

std::shared_ptr<ImageObject> pixelObject(int width, int height, std::uint32_t format = kArgb32)
{
    auto object = std::make_shared<ImageObject>();
    object->width = width;
    object->height = height;
    object->format = format;
    object->stride = width * 4;
    std::mt19937 random(3);
    object->bytes.resize(static_cast<std::size_t>(width * height) * 4);
    for (std::uint8_t& byte : object->bytes)
        byte = static_cast<std::uint8_t>(random());
    return object;
}

class EmfPlusImageCache : public testing::Test {
protected:
    OpenImage opened(const std::shared_ptr<const ImageObject>& object, std::size_t mostHeldBytes = 0,
        std::size_t recentBytes = OpenImage::kRecentBytes)
    {
        std::string problem;
        auto rows = openImage(*object, m_work, problem);
        EXPECT_TRUE(rows) << problem;
        return OpenImage(object, std::move(rows), mostHeldBytes, recentBytes);
    }
    std::uint64_t spent() const { return m_work.spent(Work::Decoding); }

    WorkMeter m_work;
};

Bytes rowOf(OpenImage& image, int y)
{
    const std::uint8_t* const row = image.row(y);
    return { row, row + static_cast<std::ptrdiff_t>(image.width()) * 4 };
}

/// By rows of the whole picture.
std::shared_ptr<Pixels> halved(const Pixels& from)
{
    auto to = std::make_shared<Pixels>(from);
    to->width = from.width / 2;
    to->height = from.height / 2;
    to->stride = to->rowBytes();
    to->bytes.assign(to->stride * static_cast<std::size_t>(to->height), 0);
    for (int y = 0; y < to->height; ++y) {
        for (int x = 0; x < to->width; ++x) {
            std::array<unsigned, 4> sums {};
            for (int i = 0; i < 4; ++i) {
                const std::uint8_t* const at = from.row(2 * y + i / 2) + std::ptrdiff_t { 2 * x + i % 2 } * 4;
                for (std::size_t channel = 0; channel < 3; ++channel)
                    sums[channel] += unsigned { at[channel] } * at[3];
                sums[3] += at[3];
            }
            std::uint8_t* const pixel = to->row(y) + std::ptrdiff_t { x } * 4;
            for (std::size_t channel = 0; channel < 3 && sums[3] > 0; ++channel)
                pixel[channel] = static_cast<std::uint8_t>((sums[channel] + sums[3] / 2) / sums[3]);
            pixel[3] = static_cast<std::uint8_t>((sums[3] + 2) / 4);
        }
    }
    return to;
}

TEST_F(EmfPlusImageCache, RowsAreTheSameWhetherTheyAreHeldOrNot)
{
    const auto object = pixelObject(13, 40);
    OpenImage held = opened(object, OpenImage::kMostHeldBytes);
    EXPECT_TRUE(held.pixels());
    for (const std::size_t recentRows : { 0, 1, 3, 40, 100 }) {
        SCOPED_TRACE(recentRows);
        OpenImage image = opened(object, 0, recentRows * 13 * 4);
        EXPECT_FALSE(image.pixels());
        for (const int y : { 0, 1, 2, 2, 1, 9, 10, 8, 9, 11, 39, 0, 38, 39, 39 })
            ASSERT_EQ(rowOf(image, y), rowOf(held, y)) << y;
    }
}

TEST_F(EmfPlusImageCache, AnImageInStripsOfItsSourceCostsOnePass)
{
    PngForm form;
    form.height = 200;
    const auto object = fileObject(pngFile(form));
    const std::uint64_t pass = std::uint64_t { 37 } * 200 * (kUnitsPerCodedPixel + 1);
    OpenImage image = opened(object, 0, 37 * 4 * 5);
    // Neighbours share two rows, as where their edge lies within a row.
    for (int top = 0; top < 200; top += 20) {
        for (int y = std::max(0, top - 2); y < top + 20; ++y)
            image.row(y);
    }
    EXPECT_EQ(spent(), pass);
    image.row(0);
    EXPECT_GT(spent(), pass) << "it begins anew";
}

TEST_F(EmfPlusImageCache, OpacityIsLookedUpOnce)
{
    const auto object = pixelObject(13, 40);
    for (std::size_t at = 3; at < object->bytes.size(); at += 4)
        object->bytes[at] = 255;
    OpenImage image = opened(object, 0, 0);
    EXPECT_TRUE(image.isOpaque());
    const std::uint64_t once = spent();
    EXPECT_GT(once, 0U);
    EXPECT_TRUE(image.isOpaque());
    EXPECT_EQ(spent(), once);
    object->bytes[object->bytes.size() - 1] = 254;
    EXPECT_FALSE(opened(object, 0, 0).isOpaque());
    EXPECT_FALSE(opened(object, OpenImage::kMostHeldBytes).isOpaque());
    // Where the format has no alpha, no pixel is looked at.
    const std::uint64_t before = spent();
    EXPECT_TRUE(opened(pixelObject(13, 40, 0x00022009), 0).isOpaque());
    EXPECT_EQ(spent(), before);
    // Rows that are not there are transparent.
    const auto shorter = pixelObject(13, 40, 0x00022009);
    shorter->bytes.pop_back();
    EXPECT_FALSE(opened(shorter, 0).isOpaque());
}

TEST_F(EmfPlusImageCache, HoldsSmallImagesAndOpensTheLastLargeOne)
{
    ImageCache cache(m_work);
    std::string problem;
    const auto smallObject = pixelObject(13, 40);
    const auto small = cache.open(smallObject, problem);
    const auto largeObject = pixelObject(1, 1);
    largeObject->width = largeObject->height = 3000;
    largeObject->stride = 12000;
    const auto other = std::make_shared<ImageObject>(*largeObject);
    const auto large = cache.open(largeObject, problem);
    EXPECT_FALSE(large->pixels());
    EXPECT_EQ(cache.open(smallObject, problem), small);
    EXPECT_EQ(cache.open(largeObject, problem), large);
    cache.open(other, problem);
    EXPECT_NE(cache.open(largeObject, problem), large);
    EXPECT_EQ(cache.open(smallObject, problem), small);
}

TEST_F(EmfPlusImageCache, TellsWhyAnImageCannotBeReadEachTime)
{
    ImageCache cache(m_work);
    const auto object = fileObject({ 'N', 'o', 'n', 'e' });
    for (int i = 0; i < 2; ++i) {
        std::string problem;
        EXPECT_FALSE(cache.open(object, problem));
        EXPECT_EQ(problem, "its file is of a kind that is not known");
    }
}

TEST_F(EmfPlusImageCache, ItsRoomIsBounded)
{
    ImageCache cache(m_work);
    std::string problem;
    constexpr int side = 1400; // 7.5 MiB as pixels, of a row that is there
    std::vector<std::shared_ptr<ImageObject>> objects;
    for (int i = 0; i < 6; ++i) {
        objects.push_back(pixelObject(1, 1));
        objects.back()->width = objects.back()->height = side;
        objects.back()->stride = side * 4;
    }
    // Two, and the one that comes.
    const SpareHeap bound(25U << 20);
    for (const auto& object : objects)
        EXPECT_TRUE(cache.open(object, problem)->pixels());
}

TEST_F(EmfPlusImageCache, TexturesAreHalvedWhileTheirRowsComeIn)
{
    for (const auto& [width, height] : { std::array { 64, 64 }, std::array { 37, 23 }, std::array { 15, 40 } }) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        const auto object = pixelObject(width, height);
        OpenImage held = opened(object, OpenImage::kMostHeldBytes);
        OpenImage rows = opened(object);
        EXPECT_EQ(reducedPixels(held, 0, m_work), held.pixels());
        std::shared_ptr<const Pixels> expected = held.pixels();
        for (int halvings = 0; halvings <= 3; ++halvings) {
            SCOPED_TRACE(halvings);
            for (OpenImage* image : { &held, &rows }) {
                const auto reduced = reducedPixels(*image, halvings, m_work);
                EXPECT_EQ(reduced->width, expected->width);
                EXPECT_EQ(reduced->height, expected->height);
                EXPECT_EQ(reduced->bytes, expected->bytes);
            }
            expected = halved(*expected);
        }
    }
}

TEST_F(EmfPlusImageCache, TexturesAreChargedEachTimeTheyAreMade)
{
    const auto object = pixelObject(16, 16);
    OpenImage held = opened(object, OpenImage::kMostHeldBytes);
    reducedPixels(held, 0, m_work);
    EXPECT_EQ(m_work.spent(Work::Images), 0U) << "it is shared";
    reducedPixels(held, 1, m_work);
    const std::uint64_t once = m_work.spent(Work::Images);
    EXPECT_GT(once, 16U * 16);
    reducedPixels(held, 1, m_work);
    EXPECT_EQ(m_work.spent(Work::Images), 2 * once);
}

TEST_F(EmfPlusImageCache, TexturesTakeTheRoomOfWhatIsLeft)
{
    constexpr int side = 3000; // 34 MiB
    auto object = std::make_shared<ImageObject>();
    object->width = object->height = side;
    object->format = kIndexed1;
    object->stride = side / 8;
    object->bytes = Fields().u32({ 0, 2, 0xFF102030, 0xFF102030 });
    object->bytes.resize(16 + std::size_t { side } * side / 8);
    OpenImage image = opened(object);
    const SpareHeap bound(OpenImage::kRecentBytes + (3U << 20));
    const auto reduced = reducedPixels(image, 2, m_work);
    EXPECT_EQ(reduced->width, side / 4);
    EXPECT_EQ(reduced->row(side / 4 - 1)[2], 0x30);
    if (!kIsWatchedBySanitizer) { // which has a heap of its own
        EXPECT_THROW(reducedPixels(image, 0, m_work), std::bad_alloc);
    }
}

TEST(EmfPlusImage, DamagedFilesAreDrawnAsFarAsTheyCame)
{
    PngForm form;
    form.height = 200;
    Bytes file = pngFile(form);
    file.resize(file.size() / 2);
    Records records = header();
    records.object(5, 0, Fields().u32({ kVersion, 1, 0, 0, 0, 0, 1 }).bytes(file));
    records.add(0x401A, 0, Fields().u32({ 0, 2 }).f32({ 0, 0, 37, 200, 0, 0, 37, 200 }));
    Sheet sheet(40, 210);
    sheet.play(records);
    EXPECT_TRUE(sheet.diagnostics().has("emfplus.image"));
    EXPECT_FALSE(sheet.isWhite(5, 50));
    EXPECT_TRUE(sheet.isWhite(5, 150));
}

} // namespace
} // namespace quillrip::emf::plus::test
