#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/emf/dib.h"
#include "quillrip/emf/plus/colors.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillrip::emf::plus {

/// An image as it came ([MS-EMFPLUS] 2.2.1.4). It is decoded when it is drawn: jobs define more images than fit into
/// memory at once, and some that they never draw.
struct ImageObject {
    enum class Kind : std::uint8_t {
        Pixels, ///< rows in one of the pixel formats
        File, ///< an image file: PNG, JPEG, GIF, TIFF, BMP
        Metafile, ///< EMF, with or without EMF+
        OldMetafile, ///< of the 16-bit kind, which is not drawn
    };

    Kind kind = Kind::Pixels;
    std::int32_t width = 0; ///< Pixels only, as the three below
    std::int32_t height = 0;
    std::int32_t stride = 0; ///< bytes from row to row; negative: from the bottom up
    std::uint32_t format = 0; ///< [MS-EMFPLUS] 2.1.1.25, PixelFormat
    std::vector<std::uint8_t> bytes; ///< the palette, if the format has one, and rows; or the file
};

/// Nothing when the bytes hold no image.
std::optional<ImageObject> readImage(ByteView object);

/// The image's pixels as Rgba32, not premultiplied. Null pixels, with the reason in `problem`, when it is none that can
/// be read. Rows that are not there are transparent.
Pixels decodeImage(const ImageObject& image, std::string& problem);

/// What lies beyond an image's edges ([MS-EMFPLUS] 2.2.1.5).
struct ImageAttributesObject {
    std::int32_t wrap = 0; ///< as WrapMode
    Rgba clampColor;
};
std::optional<ImageAttributesObject> readImageAttributes(ByteView object);

} // namespace quillrip::emf::plus
