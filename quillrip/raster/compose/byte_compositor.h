#pragma once

#include "quillrip/raster/compose/compositor.h"

namespace quillrip {

/// The print model on pages of one or three bytes a pixel. Coverage mixes the operation's result with the page.
template <int Channels> class ByteCompositor final : public Compositor {
public:
    ByteCompositor(PageBitmap& page, const PaintState& state, std::shared_ptr<const DeviceTexture> texture);

private:
    void inkRun(int y, int left, int right) override;
    void whiteRun(int y, int left, int right) override;
    void bitsRun(int y, int left, int right, const BitRow& bits, std::ptrdiff_t shift) override;
    void coverageRun(int y, int left, int right, const std::uint8_t* coverage, bool whiteElsewhere) override;
    void colorsRun(int y, int left, int right, const std::uint8_t* ink, const std::uint8_t* coverage) override;

    /// The whole model for any source: `source` has `Channels` bytes a pixel, or one pixel for all when `isConstant`.
    void combine(int y, int left, int right, const std::uint8_t* source, bool isConstant, const std::uint8_t* coverage);

    std::uint8_t* pixelAt(int y, int x) { return m_page.row(y) + static_cast<std::ptrdiff_t>(x) * Channels; }

    /// A black source with a solid texture stores this ink, whatever the page holds.
    bool m_inkIsStored = false;
    Ink m_storedInk {};
    /// A colour source goes to the page as it is, except where it is transparent.
    bool m_sourceIsCopied = false;
};

} // namespace quillrip
