#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/pcl/palette.h"
#include "quillrip/raster/images/image_painter.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace quillrip::pcl {

/// How the transfers of a raster become rows of pixels: which planes a row has, how long each is, and what their bits
/// mean together.
class RasterLayout {
public:
    /// One transfer (ESC*b#V, or ESC*b#W for the last of a row).
    struct Transfer {
        std::size_t rowBytes = 0;
        int method = -1; ///< compression that the transfer always has; -1: as ESC*b#M says
    };

    /// Rows of `width` pixels in the active palette.
    static RasterLayout forPalette(const Palette& palette, int width, bool isMonochrome);
    /// Rows of ink components of their own resolutions (ESC*g#W), `width` pixels of the coarsest of them: drivers count
    /// source width and row offsets in those, or in coarser pixels where they say so (ESC*t#R behind it, dots per inch;
    /// 0: unsaid). Nothing for data that make no configuration.
    static std::optional<RasterLayout> forComponents(ByteView data, int width, double unitResolution = 0);
    /// The resolution that such data set: of the coarsest component, across and down.
    static std::optional<Resolution> resolutionOf(ByteView componentData, double unitResolution = 0);

    const std::vector<Transfer>& transfers() const { return m_transfers; }
    /// Rows of pixels that one set of transfers makes: more than 1 where components differ in vertical resolution.
    int rowsPerSet() const { return m_rowsPerSet; }
    /// Likewise across: pixels of a row for each pixel of the coarsest component.
    int columnsPerUnit() const { return m_columnsPerUnit; }
    /// Pixels of a row.
    int width() const { return m_width; }
    ImageFormat format() const { return m_format; }
    /// A row of zero bytes is white.
    bool zeroIsWhite() const { return m_zeroIsWhite; }

    using Planes = std::vector<std::vector<std::uint8_t>>;
    /// Row `subRow` of the present set, as rows of format() are. Mono rows are plane 0 itself.
    const std::uint8_t* compose(const Planes& planes, int subRow, std::vector<std::uint8_t>& pixels) const;

private:
    enum class Kind {
        Mono,
        IndexedByPlane,
        IndexedByPixel,
        DirectByPlane,
        DirectByPixel,
        Components, ///< ink components, see Component
        BlackAndColor, ///< plane 0 black, plane 1 red, green and blue by pixel
    };

    /// One ink: `planes` bits from several transfers give a level.
    struct Component {
        std::size_t firstTransfer = 0;
        int planes = 1;
        int levels = 2;
        int stepX = 1; ///< pixels of the row that one of the component's covers
        int stepY = 1;
    };

    void composeIndexed(const Planes& planes, std::uint8_t* out) const;
    void composePacked(const std::vector<std::uint8_t>& plane, std::uint8_t* out) const;
    void composeDirect(const std::vector<std::uint8_t>& plane, std::uint8_t* out) const;
    void composeComponents(const Planes& planes, int subRow, std::uint8_t* out) const;
    Rgb directColor(std::uint8_t first, std::uint8_t second, std::uint8_t third) const;
    bool addComponents(ByteReader& reader, int count, double unitResolution);
    bool addBlocks(ByteReader& reader);

    Kind m_kind = Kind::Mono;
    ImageFormat m_format = ImageFormat::Mono;
    int m_width = 0;
    int m_bits = 1;
    int m_rowsPerSet = 1;
    int m_columnsPerUnit = 1;
    bool m_zeroIsWhite = true;
    bool m_isMonochrome = false;
    std::vector<Transfer> m_transfers;
    std::vector<Component> m_components;
    std::vector<Rgb> m_colors;
    Palette m_palette;
    bool m_isSeparable = true;
};

} // namespace quillrip::pcl
