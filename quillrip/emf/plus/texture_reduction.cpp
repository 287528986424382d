#include "quillrip/emf/plus/texture_reduction.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

namespace quillrip::emf::plus {

namespace {

constexpr std::size_t kChannels = 4;

/// Rows as they are halved: of each two of a level, one of the next.
class Reduction {
public:
    Reduction(int width, int height, int halvings)
        : m_pixels(std::make_shared<Pixels>())
    {
        for (; halvings > 0; --halvings) {
            width /= 2;
            height /= 2;
            m_levels.push_back({ width, {} });
        }
        m_pixels->format = PictureShape::Format::Rgba32;
        m_pixels->hasAlpha = true;
        m_pixels->width = width;
        m_pixels->height = height;
        m_pixels->stride = m_pixels->rowBytes();
        m_pixels->bytes.resize(m_pixels->stride * static_cast<std::size_t>(height));
    }

    /// The next row of the whole image.
    void add(const std::uint8_t* row) { add(row, 0); }
    std::shared_ptr<const Pixels> pixels() const { return m_pixels; }

private:
    struct Level {
        int width; ///< when it is halved: an odd last column is dropped, as is an odd last row
        std::vector<std::uint8_t> upper; ///< the first row of a pair, until the second comes
    };

    void add(const std::uint8_t* row, std::size_t at);

    std::shared_ptr<Pixels> m_pixels;
    int m_rows = 0; ///< in m_pixels
    std::vector<Level> m_levels;
};

/// Each pixel the mean of four; colours weigh as much as they show.
void halve(const std::uint8_t* upper, const std::uint8_t* lower, int width, std::uint8_t* to)
{
    for (int x = 0; x < width; ++x, upper += 2 * kChannels, lower += 2 * kChannels, to += kChannels) {
        std::array<unsigned, kChannels> sums {};
        for (const std::uint8_t* const at : { upper, upper + kChannels, lower, lower + kChannels }) {
            for (std::size_t channel = 0; channel < 3; ++channel)
                sums[channel] += unsigned { at[channel] } * at[3];
            sums[3] += at[3];
        }
        for (std::size_t channel = 0; channel < 3; ++channel)
            to[channel] = sums[3] == 0 ? std::uint8_t { 0 }
                                       : static_cast<std::uint8_t>((sums[channel] + sums[3] / 2) / sums[3]);
        to[3] = static_cast<std::uint8_t>((sums[3] + 2) / 4);
    }
}

void Reduction::add(const std::uint8_t* row, std::size_t at)
{
    if (at == m_levels.size()) {
        std::memcpy(m_pixels->row(m_rows++), row, m_pixels->rowBytes());
        return;
    }
    Level& level = m_levels[at];
    const std::size_t bytes = static_cast<std::size_t>(level.width) * kChannels;
    if (level.upper.empty()) {
        level.upper.assign(row, row + 2 * bytes);
        return;
    }
    // In the place of the upper row: a pixel is read before its half is written.
    halve(level.upper.data(), row, level.width, level.upper.data());
    add(level.upper.data(), at + 1);
    level.upper.clear();
}

} // namespace

std::shared_ptr<const Pixels> reducedPixels(OpenImage& image, int halvings, WorkMeter& work)
{
    if (halvings == 0 && image.pixels())
        return image.pixels();
    Reduction reduction(image.width(), image.height(), halvings);
    constexpr std::uint64_t unitsPerPixel = 8;
    for (int y = 0; y < image.height(); ++y) {
        if (!work.allows(Work::Images, static_cast<std::uint64_t>(image.width()) * unitsPerPixel))
            break;
        reduction.add(image.row(y));
    }
    return reduction.pixels();
}

} // namespace quillrip::emf::plus
