#pragma once

#include "quillrip/raster/compose/compositor.h"

#include <array>
#include <cstdint>
#include <memory>

namespace quillrip {

/// The print model on pages of one or three bytes a pixel. Coverage and opacity mix the operation's result with the
/// page.
template <int Channels> class ByteCompositor final : public Compositor {
public:
    ByteCompositor(
        PageBitmap& page, const PaintState& state, std::shared_ptr<const DeviceTexture> texture, WorkMeter& work);

private:
    /// What a source of one colour does to the bytes of a row, with a solid texture: page = (page & keep) ^ flip. The
    /// bytes stand for 16 pixels, so that they are handled many at a time.
    struct Stencil {
        static constexpr std::size_t kBytes = std::size_t { 16 } * Channels;
        std::array<std::uint8_t, kBytes> keep {};
        std::array<std::uint8_t, kBytes> flip {};
        bool isStored = false; ///< keep is 0: the page does not matter
        bool isNothing = true; ///< the page stays as it is

        Stencil() = default;
        Stencil(const RasterOperation& operation, std::uint8_t source, const Ink& texture);
        void apply(std::uint8_t* at, std::size_t pixels) const;
        /// Mixed with the page by a share of 0 to 255.
        void mix(std::uint8_t* at, std::size_t pixels, unsigned share) const;
    };

    void inkRun(int y, int left, int right) override;
    void whiteRun(int y, int left, int right) override;
    void bitsRun(int y, int left, int right, const BitRow& bits, std::ptrdiff_t shift) override;
    void coverageRun(int y, int left, int right, const std::uint8_t* coverage, bool whiteElsewhere) override;
    void maskRun(int y, int left, const MaskRows& rows) override;
    void colorsRun(int y, int left, int right, const std::uint8_t* ink, const std::uint8_t* coverage) override;

    void blendedRun(int y, int left, int right, const std::uint8_t* ink, const std::uint8_t* alpha) override
    {
        combine(y, left, right, ink, 0, alpha);
    }

    /// A source that is all ink (255) or all white (0).
    void plainRun(int y, int left, int right, std::uint8_t source, const Stencil& stencil);
    /// The whole model for any source: `source` has `Channels` bytes a pixel, or is null for one that is all `plain`.
    void combine(
        int y, int left, int right, const std::uint8_t* source, std::uint8_t plain, const std::uint8_t* coverage);
    /// The same where nothing is mixed with the page and no pixel of the source decides what changes.
    void combineOpaque(int y, int left, int right, const std::uint8_t* source, std::uint8_t plain);
    /// Whether the white of the texture's tile leaves the page as it is under such a source.
    bool tileDecides(const std::uint8_t* source, std::uint8_t plain) const
    {
        return m_patternTransparent && !m_texture.isSolid() && (source || plain != 0);
    }
    /// Replaces pixels by `result` where `changes` has 255, by their shares unless those are null.
    static void store(std::uint8_t* at, const std::uint8_t* result, const std::uint8_t* changes,
        const std::uint8_t* shares, int count);

    std::uint8_t* pixelAt(int y, int x) { return m_page.row(y) + static_cast<std::ptrdiff_t>(x) * Channels; }

    Stencil m_inkStencil; ///< nothing unless the texture is solid
    Stencil m_whiteStencil;
    /// A colour source goes to the page as it is, except where it is transparent.
    bool m_sourceIsCopied = false;
};

} // namespace quillrip
