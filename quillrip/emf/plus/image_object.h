#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/emf/image_rows.h"
#include "quillrip/emf/plus/colors.h"

#include <cstdint>
#include <memory>
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

/// The image's rows as Rgba32, not premultiplied; where the shape has no alpha, all of them are opaque. Null, with the
/// reason in `problem`, when it is none that can be read. What is not there is white, or transparent where the shape
/// has alpha and it is no PNG file. The image must outlive its rows.
std::unique_ptr<ImageRows> openImage(const ImageObject& image, WorkMeter& work, std::string& problem);

/// What lies beyond an image's edges ([MS-EMFPLUS] 2.2.1.5).
struct ImageAttributesObject {
    std::int32_t wrap = 0; ///< as WrapMode
    Rgba clampColor;
};
std::optional<ImageAttributesObject> readImageAttributes(ByteView object);

} // namespace quillrip::emf::plus
