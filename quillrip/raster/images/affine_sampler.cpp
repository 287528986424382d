#include "quillrip/raster/images/affine_sampler.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace quillrip {

namespace {

/// A row of packed pixels.
struct BitPixels {
    static constexpr std::size_t kChannels = 1;
    static unsigned ink(const std::uint8_t* row, std::size_t column, std::size_t)
    {
        return (row[column / 8] & 0x80 >> (column % 8)) != 0 ? 255 : 0;
    }
};

template <std::size_t Channels> struct BytePixels {
    static constexpr std::size_t kChannels = Channels;
    static unsigned ink(const std::uint8_t* row, std::size_t column, std::size_t channel)
    {
        return row[column * Channels + channel];
    }
};

/// The samples of one device pixel.
template <typename Pixels, bool isLinear> class Samples {
public:
    Samples(const RowWindow& rows, int width)
        : m_rows(rows)
        , m_width(width)
        , m_endRow(static_cast<double>(rows.end()))
        , m_lastRow(rows.end() - 1)
        , m_lastColumn(rows.columns() - 1)
    {
    }

    bool isInside(Point at) const { return at.x >= 0 && at.y >= 0 && at.x < m_width && at.y < m_endRow; }

    void add(Point at)
    {
        ++inside;
        if constexpr (!isLinear) {
            withInk += addPixel(m_rows.row(static_cast<std::int64_t>(at.y)), static_cast<std::int64_t>(at.x), 1u);
        } else {
            const double left = std::floor(at.x - 0.5);
            const double top = std::floor(at.y - 0.5);
            const auto partX = static_cast<float>(at.x - 0.5 - left);
            const auto partY = static_cast<float>(at.y - 0.5 - top);
            const auto x = static_cast<std::int64_t>(left);
            const auto y = static_cast<std::int64_t>(top);
            const std::uint8_t* const above = m_rows.row(std::max<std::int64_t>(y, 0));
            const std::uint8_t* const below = m_rows.row(std::min(y + 1, m_lastRow));
            bool isInk = addPixel(above, x, (1 - partX) * (1 - partY));
            isInk = addPixel(above, x + 1, partX * (1 - partY)) || isInk;
            isInk = addPixel(below, x, (1 - partX) * partY) || isInk;
            withInk += addPixel(below, x + 1, partX * partY) || isInk;
        }
    }

    int inside = 0;
    int withInk = 0;
    std::conditional_t<isLinear, float, unsigned> sums[Pixels::kChannels] = {};

private:
    /// False if the pixel is white.
    template <typename Weight> bool addPixel(const std::uint8_t* row, std::int64_t x, Weight weight)
    {
        const std::int64_t inside = std::clamp<std::int64_t>(x, 0, std::int64_t { m_width } - 1) - m_rows.firstColumn();
        const auto column = static_cast<std::size_t>(std::clamp<std::int64_t>(inside, 0, m_lastColumn));
        unsigned any = 0;
        for (std::size_t channel = 0; channel < Pixels::kChannels; ++channel) {
            const unsigned value = Pixels::ink(row, column, channel);
            sums[channel] += weight * static_cast<Weight>(value);
            any |= value;
        }
        return any != 0 && weight > 0;
    }

    const RowWindow& m_rows;
    int m_width;
    double m_endRow;
    std::int64_t m_lastRow;
    std::int64_t m_lastColumn;
};

} // namespace

AffineSampler::AffineSampler(const ImageGeometry& image, PixelFormat page, bool isSourceTransparent)
    : m_format(image.format)
    , m_width(image.width)
    , m_toSource(image.imageToDevice.inverted())
    , m_isBilevelPage(page == PixelFormat::Bilevel)
    , m_isSourceTransparent(isSourceTransparent)
    , m_isLinear((image.smooth || image.smoothsBlocks) && !m_isBilevelPage)
    , m_inkChannels(image.format != ImageFormat::Mono && page == PixelFormat::Rgb24 ? 3 : 1)
{
    const Matrix& m = m_toSource;
    const double reach = std::max(std::hypot(m.a, m.b), std::hypot(m.c, m.d));
    const int fewest = m_isBilevelPage || image.dropsPixels ? 1 : 2;
    const int most = image.dropsPixels ? 1 : kMostSamples;
    setSamples(std::clamp(static_cast<int>(std::ceil(std::min(1.0 * most, reach))), fewest, most));
}

void AffineSampler::takeCentresOnly() { setSamples(1); }

void AffineSampler::setSamples(int samples)
{
    m_samples = samples;
    for (int i = 0; i < samples; ++i)
        m_offsets[static_cast<std::size_t>(i)] = (i + 0.5) / samples;
}

double AffineSampler::rowsNeeded(int x, int y) const
{
    const double last = m_offsets[static_cast<std::size_t>(m_samples - 1)];
    const double row
        = m_toSource
              .apply({ x + (m_toSource.b > 0 ? last : m_offsets[0]), y + (m_toSource.d > 0 ? last : m_offsets[0]) })
              .y;
    return m_isLinear ? std::floor(row - 0.5) + 2 : std::floor(row) + 1;
}

double AffineSampler::rowsAcrossPixel() const
{
    const double apart = static_cast<double>(m_samples - 1) / m_samples;
    return (std::abs(m_toSource.b) + std::abs(m_toSource.d)) * apart + (m_isLinear ? 2 : 1);
}

void AffineSampler::sample(
    const RowWindow& rows, int y, int left, int right, std::uint8_t* ink, std::uint8_t* coverage) const
{
    if (m_isLinear)
        sampleFormat<true>(rows, y, left, right, ink, coverage);
    else
        sampleFormat<false>(rows, y, left, right, ink, coverage);
}

template <bool isLinear>
void AffineSampler::sampleFormat(
    const RowWindow& rows, int y, int left, int right, std::uint8_t* ink, std::uint8_t* coverage) const
{
    if (m_format == ImageFormat::Mono)
        return sampleSpan<BitPixels, isLinear>(rows, y, left, right, ink, coverage);
    switch (RowWindow::channels(m_format, m_inkChannels)) {
    case 1:
        return sampleSpan<BytePixels<1>, isLinear>(rows, y, left, right, ink, coverage);
    case 2:
        return sampleSpan<BytePixels<2>, isLinear>(rows, y, left, right, ink, coverage);
    case 3:
        return sampleSpan<BytePixels<3>, isLinear>(rows, y, left, right, ink, coverage);
    default:
        return sampleSpan<BytePixels<4>, isLinear>(rows, y, left, right, ink, coverage);
    }
}

template <typename Pixels, bool isLinear>
void AffineSampler::sampleSpan(
    const RowWindow& rows, int y, int left, int right, std::uint8_t* ink, std::uint8_t* coverage) const
{
    const Matrix& m = m_toSource;
    double downX[kMostSamples];
    double downY[kMostSamples];
    for (int j = 0; j < m_samples; ++j) {
        const double down = y + m_offsets[static_cast<std::size_t>(j)];
        downX[j] = m.c * down;
        downY[j] = m.d * down;
    }
    for (int x = left; x < right; ++x, ++coverage, ink += m_inkChannels) {
        double acrossX[kMostSamples];
        double acrossY[kMostSamples];
        for (int i = 0; i < m_samples; ++i) {
            const double across = x + m_offsets[static_cast<std::size_t>(i)];
            acrossX[i] = m.a * across;
            acrossY[i] = m.b * across;
        }
        Samples<Pixels, isLinear> samples(rows, m_width);
        for (int j = 0; j < m_samples; ++j) {
            for (int i = 0; i < m_samples; ++i) {
                const Point at { acrossX[i] + downX[j] + m.e, acrossY[i] + downY[j] + m.f };
                if (samples.isInside(at))
                    samples.add(at);
            }
        }
        float sums[4] = {};
        for (std::size_t channel = 0; channel < Pixels::kChannels; ++channel)
            sums[channel] = static_cast<float>(samples.sums[channel]);
        mix(sums, samples.inside, samples.withInk, ink, *coverage);
    }
}

void AffineSampler::mix(const float* sums, int inside, int withInk, std::uint8_t* ink, std::uint8_t& coverage) const
{
    const auto byteOf = [](float value) { return static_cast<std::uint8_t>(value + 0.5F); };
    const int samples = this->samples();
    if (m_format == ImageFormat::Mono) {
        // Ink over the whole pixel; on a bilevel page any ink counts, so that thin lines stay.
        ink[0] = m_isBilevelPage ? (sums[0] > 0 ? 255 : 0) : byteOf(sums[0] / static_cast<float>(samples));
        coverage = inside * 2 >= samples || sums[0] > 0 ? 255 : 0;
        return;
    }
    if (m_format == ImageFormat::Rgba32) {
        const float alpha = sums[m_inkChannels];
        const float whole = alpha > 0 ? 255 / alpha : 0;
        coverage = byteOf(alpha / static_cast<float>(samples));
        for (int channel = 0; channel < m_inkChannels; ++channel)
            ink[channel] = static_cast<std::uint8_t>(std::min(sums[channel] * whole + 0.5F, 255.0F));
        return;
    }
    const int share = m_isSourceTransparent ? withInk : inside;
    coverage = static_cast<std::uint8_t>((share * 255 + samples / 2) / samples);
    for (int channel = 0; channel < m_inkChannels; ++channel) {
        const float sum = sums[m_format == ImageFormat::Gray8 ? 0 : channel];
        ink[channel] = share == 0 ? 0 : byteOf(sum / static_cast<float>(share));
    }
}

} // namespace quillrip
