// Images at any angle, against a reference that holds the image whole and asks for one pixel after the other.

#include "quillrip/raster/compose/compositor.h"
#include "quillrip/raster/images/aligned_image.h"
#include "quillrip/raster/images/image_source.h"
#include "quillrip/raster/painter.h"
#include "tests/support/spare_heap.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>

using namespace quillrip;

namespace {

constexpr double kTurn = 6.283185307179586;

std::size_t rowBytes(const ImageGeometry& image)
{
    const auto width = static_cast<std::size_t>(image.width);
    switch (image.format) {
    case ImageFormat::Mono:
        return (width + 7) / 8;
    case ImageFormat::Gray8:
        return width;
    case ImageFormat::Rgb24:
        return width * 3;
    case ImageFormat::Rgba32:
        break;
    }
    return width * 4;
}

Matrix turnedBy(double angle) { return { std::cos(angle), std::sin(angle), -std::sin(angle), std::cos(angle), 0, 0 }; }

/// A whole image, and how its pixels are mixed.
class WholeImage {
public:
    WholeImage(const ImageGeometry& image, PixelFormat page)
        : m_image(image)
        , m_isBilevelPage(page == PixelFormat::Bilevel)
        , m_isLinear((image.smooth || image.smoothsBlocks) && !m_isBilevelPage)
        , m_inkChannels(image.format != ImageFormat::Mono && page == PixelFormat::Rgb24 ? 3 : 1)
        , m_channels(m_inkChannels + (image.format == ImageFormat::Rgba32 ? 1 : 0))
    {
    }

    void add(const std::uint8_t* pixels)
    {
        std::vector<std::uint8_t> row(static_cast<std::size_t>(m_image.width * m_channels));
        if (pixels)
            convertRow(pixels, m_image.format, m_image.width, m_inkChannels, row.data());
        if (pixels && m_image.format == ImageFormat::Rgba32)
            interleaveAlpha(row.data(), m_image.width, m_inkChannels, pixels + 3, 4);
        m_rows.push_back(row);
    }

    void paint(Compositor& compositor) const
    {
        const Matrix toSource = m_image.imageToDevice.inverted();
        const double reach = std::max(std::hypot(toSource.a, toSource.b), std::hypot(toSource.c, toSource.d));
        const int fewest = m_isBilevelPage || m_image.dropsPixels ? 1 : 2;
        const int most = m_image.dropsPixels ? 1 : 8;
        const int samples = std::clamp(static_cast<int>(std::ceil(std::min(reach, 8.0))), fewest, most);
        const PixelRect& bounds = compositor.bounds();
        for (int y = bounds.top; y < bounds.bottom; ++y) {
            for (int x = bounds.left; x < bounds.right; ++x)
                paintPixel(x, y, samples, toSource, compositor);
        }
    }

private:
    void paintPixel(int x, int y, int samples, const Matrix& toSource, Compositor& compositor) const
    {
        float sums[4] = {};
        int inside = 0;
        int withInk = 0;
        for (int i = 0; i < samples * samples; ++i) {
            const Point at = toSource.apply({ x + (i % samples + 0.5) / samples, y + (i / samples + 0.5) / samples });
            if (at.x < 0 || at.y < 0 || at.x >= m_image.width || at.y >= static_cast<double>(m_rows.size()))
                continue;
            ++inside;
            withInk += addSample(at, sums) ? 1 : 0;
        }
        const int all = samples * samples;
        std::uint8_t ink[3] = {};
        if (m_image.format == ImageFormat::Mono) {
            ink[0] = m_isBilevelPage ? (sums[0] > 0 ? 255 : 0)
                                     : static_cast<std::uint8_t>(sums[0] / static_cast<float>(all) + 0.5F);
            if (compositor.isSourceTransparent())
                compositor.coverage(y, x, ink, 1, false);
            else if (inside * 2 >= all || sums[0] > 0)
                compositor.coverage(y, x, ink, 1, true);
            return;
        }
        if (m_image.format == ImageFormat::Rgba32) {
            const float alpha = sums[m_inkChannels];
            const auto opacity = static_cast<std::uint8_t>(alpha / static_cast<float>(all) + 0.5F);
            for (int channel = 0; channel < m_inkChannels && alpha > 0; ++channel)
                ink[channel] = static_cast<std::uint8_t>(std::min(sums[channel] * (255 / alpha) + 0.5F, 255.0F));
            if (opacity > 0)
                compositor.blended(y, x, ink, &opacity, 1);
            return;
        }
        const int share = compositor.isSourceTransparent() ? withInk : inside;
        const auto coverage = static_cast<std::uint8_t>((share * 255 + all / 2) / all);
        for (int channel = 0; channel < m_inkChannels && share > 0; ++channel)
            ink[channel] = static_cast<std::uint8_t>(sums[channel] / static_cast<float>(share) + 0.5F);
        if (coverage > 0)
            compositor.colors(y, x, ink, &coverage, 1);
    }

    bool addSample(Point at, float* sums) const
    {
        if (!m_isLinear)
            return addPixel(static_cast<int>(at.x), static_cast<int>(at.y), 1, sums);
        const double left = std::floor(at.x - 0.5);
        const double top = std::floor(at.y - 0.5);
        const auto x = static_cast<float>(at.x - 0.5 - left);
        const auto y = static_cast<float>(at.y - 0.5 - top);
        bool isInk = false;
        for (int i = 0; i < 4; ++i) {
            const float weight = (i % 2 == 0 ? 1 - x : x) * (i / 2 == 0 ? 1 - y : y);
            isInk |= addPixel(static_cast<int>(left) + i % 2, static_cast<int>(top) + i / 2, weight, sums);
        }
        return isInk;
    }

    bool addPixel(int x, int y, float weight, float* sums) const
    {
        const auto column = static_cast<std::size_t>(std::clamp(x, 0, m_image.width - 1));
        const auto row = static_cast<std::size_t>(std::clamp(y, 0, static_cast<int>(m_rows.size()) - 1));
        bool isInk = false;
        for (int channel = 0; channel < m_channels; ++channel) {
            const std::uint8_t ink
                = m_rows[row][column * static_cast<std::size_t>(m_channels) + static_cast<std::size_t>(channel)];
            sums[channel] += weight * static_cast<float>(ink);
            isInk |= ink != 0 && weight > 0;
        }
        return isInk;
    }

    ImageGeometry m_image;
    bool m_isBilevelPage;
    bool m_isLinear;
    int m_inkChannels;
    int m_channels;
    std::vector<std::vector<std::uint8_t>> m_rows;
};

struct Job {
    PixelFormat page = PixelFormat::Rgb24;
    int pageWidth = 1;
    int pageHeight = 1;
    ImageGeometry image;
    PaintState state;
    std::vector<std::uint8_t> pixels;
    std::vector<int> rows; ///< 1: a row of `pixels`; below 0: blank ones
};

Job randomJob(std::mt19937& random)
{
    const auto chance = [&](unsigned oneIn) { return random() % oneIn == 0; };
    const auto number
        = [&](int low, int high) { return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1)); };
    const auto real
        = [&](double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); };
    Job job;
    job.page = static_cast<PixelFormat>(number(0, 2));
    job.pageWidth = number(1, 60);
    job.pageHeight = number(1, 60);
    ImageGeometry& image = job.image;
    image.format = static_cast<ImageFormat>(number(0, 3));
    image.width = number(1, chance(4) ? 1500 : 60);
    const int rows = number(1, chance(4) ? 1500 : 60);
    image.height = chance(3) ? -1 : chance(3) ? rows + number(1, 9) : rows;
    image.smooth = chance(2);
    image.smoothsBlocks = chance(4);
    image.dropsPixels = image.format != ImageFormat::Mono && chance(4);

    const auto factor = [&] { return chance(3) ? 1 : std::exp(real(-3, 3)); };
    const double across = factor();
    Matrix matrix = Matrix::scaling(chance(4) ? -across : across, chance(2) ? across : factor());
    if (chance(4))
        matrix = matrix * Matrix { 1, real(-2, 2), real(-2, 2), 1, 0, 0 };
    // Straight ones are among them.
    const double angle = chance(3) ? kTurn / 4 * number(0, 3) + (chance(2) ? 0 : real(-0.05, 0.05)) : real(0, kTurn);
    matrix = matrix * turnedBy(angle);
    const Point middle = matrix.apply({ image.width * real(0, 1), rows * real(0, 1) });
    image.imageToDevice
        = matrix * Matrix::translation(real(0, job.pageWidth) - middle.x, real(0, job.pageHeight) - middle.y);

    PaintState& state = job.state;
    state.rop = chance(3) ? static_cast<std::uint8_t>(random()) : chance(2) ? 252 : 0xCC;
    state.sourceTransparent = chance(2) && image.format != ImageFormat::Rgba32;
    state.opacity = chance(4) ? static_cast<std::uint8_t>(number(1, 255)) : 255;
    state.texture.color = { static_cast<std::uint8_t>(random()), 90, 200 };
    if (chance(4)) {
        Path clip;
        for (int i = 0; i < 3; ++i)
            i == 0 ? clip.moveTo({ real(0, 60), real(0, 60) }) : clip.lineTo({ real(0, 60), real(0, 60) });
        clip.close();
        state.clip = ClipRegion::ofPath(clip, FillRule::NonZero, { 0, 0, job.pageWidth, job.pageHeight });
    }
    const bool isSparse = chance(2);
    job.pixels.resize(rowBytes(image) * static_cast<std::size_t>(rows));
    for (std::uint8_t& byte : job.pixels)
        byte = isSparse && !chance(6) ? 255 : static_cast<std::uint8_t>(random());
    for (int left = rows; left > 0;) {
        job.rows.push_back(chance(20) ? -number(1, chance(4) ? rows : 4) : 1);
        left -= std::abs(job.rows.back());
    }
    return job;
}

/// A page that was marked before.
PageBitmap pageOf(const Job& job)
{
    PageBitmap page(job.page, job.pageWidth, job.pageHeight, {});
    PaintState state;
    state.texture.color = { 30, 160, 90 };
    Painter(page).fillRect({ 0, 0, job.pageWidth / 2, job.pageHeight }, state);
    return page;
}

template <typename AddRow, typename AddBlank> void feed(const Job& job, AddRow addRow, AddBlank addBlank)
{
    const std::size_t bytes = rowBytes(job.image);
    const std::size_t rows = job.pixels.size() / bytes;
    std::size_t at = 0;
    for (const int count : job.rows) {
        if (count < 0)
            addBlank(-count);
        else
            addRow(job.pixels.data() + at % rows * bytes);
        at += static_cast<std::size_t>(std::abs(count));
    }
}

} // namespace

TEST(TurnedImage, HasThePixelsOfTheImageAsAWhole)
{
    std::mt19937 random(11);
    int painted = 0;
    for (int round = 0; round < 1500; ++round) {
        const Job job = randomJob(random);
        WorkMeter work;
        const auto texture = std::make_shared<DeviceTexture>(job.state.texture, job.page);
        PageBitmap page = pageOf(job);
        auto compositor = Compositor::create(page, job.state, texture, work);
        if (compositor->bounds().empty() || !job.image.imageToDevice.isInvertible())
            continue;
        const auto image = makeAffineImage(job.image, std::move(compositor), 1 + round % 7);
        feed(
            job, [&](const std::uint8_t* row) { image->row(row); }, [&](int count) { image->blankRows(count); });
        image->finish();

        PageBitmap expected = pageOf(job);
        WholeImage whole(job.image, job.page);
        int left = job.image.height < 0 ? INT32_MAX : job.image.height;
        feed(
            job, [&](const std::uint8_t* row) { left-- > 0 ? whole.add(row) : void(); },
            [&](int count) {
                for (; count > 0 && left > 0; --count, --left)
                    whole.add(nullptr);
            });
        whole.paint(*Compositor::create(expected, job.state, texture, work));
        for (int y = 0; y < job.pageHeight; ++y) {
            for (std::size_t i = 0; i < page.rowBytes(); ++i) {
                ASSERT_EQ(int { page.row(y)[i] }, int { expected.row(y)[i] })
                    << "round " << round << ", row " << y << ", byte " << i;
            }
        }
        ++painted;
    }
    EXPECT_GT(painted, 1000);
}

namespace {

/// Paints an image of grey 100 that many rows make, in so many bytes.
void paintWithin(std::uint64_t bytes, PageBitmap& page, const ImageGeometry& image, int rows)
{
    Painter painter(page);
    const std::vector<std::uint8_t> row(rowBytes(image), 100);
    const test::SpareHeap bound(bytes);
    PaintState state;
    state.sourceTransparent = false;
    const auto painted = painter.beginImage(image, state);
    for (int y = 0; y < rows; ++y)
        painted->row(row.data());
    painted->finish();
}

} // namespace

TEST(TurnedImage, OfAnyHeightIsHeldInPartOnly)
{
    // 180 MB on a hundredth of their length and width.
    PageBitmap page(PixelFormat::Rgb24, 150, 150, {});
    ImageGeometry image;
    image.format = ImageFormat::Rgb24;
    image.width = 6000;
    image.imageToDevice
        = Matrix::translation(-3000, -5000) * Matrix::scaling(0.01, 0.01) * turnedBy(1) * Matrix::translation(75, 75);
    for (const int height : { 10000, -1 }) {
        image.height = height;
        paintWithin(8U << 20, page, image, 10000);
        EXPECT_EQ(page.row(75)[225], 155);
    }
}

TEST(TurnedImage, LargerThanItsPlaceOnThePageCostsBoundedMemory)
{
    // 120 MB in three pixels: more rows lie below a pixel than are held.
    PageBitmap page(PixelFormat::Rgb24, 5, 5, {});
    ImageGeometry image;
    image.format = ImageFormat::Rgb24;
    image.width = 40000;
    image.height = 1000;
    image.imageToDevice = Matrix::translation(-20000, -500) * Matrix::scaling(3 / 40000.0, 3 / 1000.0) * turnedBy(0.4)
        * Matrix::translation(2.5, 2.5);
    paintWithin(24U << 20, page, image, 1000);
    EXPECT_EQ(page.row(2)[6], 155);
}

TEST(TurnedImage, ThatIsBlankForLongTakesNoMemoryForIt)
{
    PageBitmap page(PixelFormat::Gray8, 40, 40, {});
    Painter painter(page);
    painter.fillRect(page.bounds(), {});
    ImageGeometry image;
    image.format = ImageFormat::Gray8;
    image.width = 1000;
    image.imageToDevice = Matrix::scaling(0.02, 1e-8) * turnedBy(0.4) * Matrix::translation(20, 5);
    PaintState state;
    state.sourceTransparent = false;
    const std::vector<std::uint8_t> row(1000, 100);
    const test::SpareHeap bound(24U << 20);
    const auto painted = painter.beginImage(image, state);
    painted->row(row.data());
    painted->blankRows(1'000'000'000);
    for (int y = 0; y < 1000; ++y)
        painted->row(row.data());
    painted->blankRows(INT32_MAX);
    painted->finish();
    EXPECT_EQ(page.row(12)[25], 0);
}
