#pragma once

#include "quillrip/raster/compose/compositor.h"

#include <cstdint>
#include <memory>

namespace quillrip {

/// The print model on packed pixels, 64 at a time. Tones are screened before the raster operation, as a monochrome
/// printer does, so operations act on dots.
class BilevelCompositor final : public Compositor {
public:
    BilevelCompositor(
        PageBitmap& page, const PaintState& state, std::shared_ptr<const DeviceTexture> texture, WorkMeter& work);

private:
    void inkRun(int y, int left, int right) override;
    void whiteRun(int y, int left, int right) override;
    void bitsRun(int y, int left, int right, const BitRow& bits, std::ptrdiff_t shift) override;
    void coverageRun(int y, int left, int right, const std::uint8_t* coverage, bool whiteElsewhere) override;
    void maskRun(int y, int left, const MaskRows& rows) override;
    void colorsRun(int y, int left, int right, const std::uint8_t* ink, const std::uint8_t* coverage) override;

    void blendedRun(int y, int left, int right, const std::uint8_t* ink, const std::uint8_t* alpha) override;
    /// Sets or clears the pixels under the mask's bits.
    template <bool Sets> void paintMask(int y, int left, const MaskRows& rows);
    template <bool Sets> void paintMaskInBlock(std::uint8_t* firstRow, int left, const MaskRows& rows) const;
    /// `shares` are coverage or alpha, or null.
    void tonesRun(int y, int left, int right, const std::uint8_t* ink, const std::uint8_t* shares, bool isAlpha);

    /// Calls paint(address, first column of the word, mask of the columns wanted) for every word of the row.
    template <typename Paint> void eachWord(int y, int left, int right, Paint paint)
    {
        const int first = left >> 6;
        const int last = (right - 1) >> 6;
        std::uint8_t* at = m_page.row(y) + static_cast<std::ptrdiff_t>(first) * 8;
        std::uint64_t wanted = bitsFrom(static_cast<unsigned>(left & 63));
        for (int word = first; word <= last; ++word, at += 8) {
            if (word == last)
                wanted &= bitsUpTo(static_cast<unsigned>((right - 1) & 63) + 1);
            paint(at, word, wanted);
            wanted = kAllBits;
        }
    }

    /// The print model for 64 pixels: source bits, and which pixels are to change at all.
    void combine(std::uint8_t* at, int y, int word, std::uint64_t source, std::uint64_t sourceNotWhite,
        std::uint64_t wanted) const;
    /// The same with a texture that all of the page's pixels there take, or none.
    void combineWith(const DeviceTexture::Words& texture, std::uint8_t* at, std::uint64_t source,
        std::uint64_t sourceNotWhite, std::uint64_t wanted) const;

    const bool m_isMixed; ///< some of the page may show through what is painted
    /// With a source all black and a texture all ink or none, what happens to each bit of the page.
    enum class Effect {
        Varies, ///< by the texture
        Nothing,
        Clear,
        Set,
        Invert,
    };
    Effect m_inkEffect = Effect::Varies;
};

} // namespace quillrip
