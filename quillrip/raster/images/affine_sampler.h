#pragma once

#include "quillrip/base/page_bitmap.h"
#include "quillrip/raster/images/image_painter.h"
#include "quillrip/raster/images/row_window.h"

#include <array>
#include <cstdint>

namespace quillrip {

/// What device pixels show of an image at any angle: the mean of samples, evenly spread over the pixel.
class AffineSampler {
public:
    /// The matrix of `image` must be invertible, and the inverse finite.
    AffineSampler(const ImageGeometry& image, PixelFormat page, bool isSourceTransparent);

    /// Takes the pixel's centre only: of huge reductions, so that a pixel needs a row or two at a time.
    void takeCentresOnly();

    const Matrix& toSource() const { return m_toSource; }
    /// Samples of a device pixel.
    int samples() const { return m_samples * m_samples; }
    /// Ink bytes of a pixel.
    int inkChannels() const { return m_inkChannels; }
    /// How many source rows must have come before the device pixel (x, y) can be known. It rises with x, or falls.
    double rowsNeeded(int x, int y) const;
    /// From the first source row that a device pixel needs to the last, at most.
    double rowsAcrossPixel() const;

    /// The device pixels left <= x < right of row y: their ink, and how much of the pixel the image takes. `rows` has
    /// what the pixels need, and ends where the image does for those that would need more.
    void sample(const RowWindow& rows, int y, int left, int right, std::uint8_t* ink, std::uint8_t* coverage) const;

private:
    static constexpr int kMostSamples = 8; ///< across a device pixel

    template <typename Pixels, bool isLinear>
    void sampleSpan(const RowWindow& rows, int y, int left, int right, std::uint8_t* ink, std::uint8_t* coverage) const;
    template <bool isLinear>
    void sampleFormat(
        const RowWindow& rows, int y, int left, int right, std::uint8_t* ink, std::uint8_t* coverage) const;
    void setSamples(int samples);
    void mix(const float* sums, int inside, int withInk, std::uint8_t* ink, std::uint8_t& coverage) const;

    ImageFormat m_format;
    int m_width; ///< source pixels
    Matrix m_toSource;
    bool m_isBilevelPage;
    bool m_isSourceTransparent;
    bool m_isLinear; ///< between source pixels
    int m_inkChannels;
    int m_samples = 1; ///< across
    std::array<double, kMostSamples> m_offsets {}; ///< of the samples, in device pixels
};

} // namespace quillrip
