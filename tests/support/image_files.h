#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillrip::test {

/// What the files below are filled with: byte `at` of row `y`.
std::uint8_t sampleAt(std::size_t at, int y);

struct PngForm {
    int width = 37;
    int height = 23;
    int colorType = 2; ///< as in the file: RGB
    int depth = 8;
    bool isInterlaced = false;
    double gamma = 0; ///< 0: the file names none
    bool hasTransparentColor = false;
    /// All zeros, and deflated; otherwise samples that are stored as they are, so that a part of the file has a part of
    /// the rows.
    bool isBlank = false;
    int comments = 0; ///< so many, of four million bytes each, that are deflated
};
std::vector<std::uint8_t> pngFile(const PngForm& form);

/// A GIF file of one picture on a screen; colour number n is (n, 255 - n, 7).
struct GifForm {
    int screenWidth = 37;
    int screenHeight = 23;
    int left = 0;
    int top = 0;
    int width = 37;
    int height = 23;
    bool isInterlaced = false;
    int transparent = -1; ///< number of the colour that is not drawn; -1: none
    int bits = 8; ///< of a colour's number
    bool isBlank = false; ///< all pixels have number 0; otherwise the samples' lowest bits
};
std::vector<std::uint8_t> gifFile(const GifForm& form);

/// Values of the fields as in the file (TIFF 6.0).
struct TiffForm {
    int width = 37;
    int height = 23;
    int bits = 8;
    int samples = 3;
    int photometric = 2; ///< RGB
    int compression = 1; ///< none
    int orientation = 1; ///< upright
    int planes = 1; ///< 1: together, 2: apart
    int rowsPerStrip = 5;
    int tileSide = 0; ///< 0: strips
    bool hasAlpha = false; ///< the last sample
    bool isBlank = false;
    std::vector<std::uint8_t> coded; ///< not empty: the only strip, as it is
};
std::vector<std::uint8_t> tiffFile(const TiffForm& form);

} // namespace quillrip::test
