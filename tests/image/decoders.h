#pragma once

#include "quillrip/base/page_bitmap.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quillrip::test {

/// An image read back from a file, as the colours that it shows.
struct DecodedImage {
    int width = 0;
    int height = 0;
    int bitsPerPixel = 0; ///< in the file
    double xDotsPerInch = 0;
    double yDotsPerInch = 0;
    std::vector<Rgb> pixels;

    Rgb pixel(int x, int y) const
    {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
};

/// All images of a file, by its extension; none when it cannot be read. BMP and PCX are read by readers of the
/// tests' own, the others by their libraries.
std::vector<DecodedImage> decodeFile(const std::string& path);

std::vector<std::uint8_t> readFile(const std::string& path);
std::uint32_t u16LittleEndian(const std::vector<std::uint8_t>& bytes, std::size_t at);
std::uint32_t u32LittleEndian(const std::vector<std::uint8_t>& bytes, std::size_t at);

} // namespace quillrip::test
