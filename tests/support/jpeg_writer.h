#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

extern "C" {
#include <jpeglib.h>
}

namespace quillrip::test {

/// A whole JPEG stream; `adjust` changes what the library would do by itself.
template <typename Adjust>
std::vector<std::uint8_t> writeJpeg(const std::vector<std::uint8_t>& pixels, int width, int height, int components,
    J_COLOR_SPACE colorSpace, Adjust adjust)
{
    jpeg_compress_struct info {};
    jpeg_error_mgr errors {};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &memory, &size);
    info.image_width = static_cast<JDIMENSION>(width);
    info.image_height = static_cast<JDIMENSION>(height);
    info.input_components = components;
    info.in_color_space = colorSpace;
    jpeg_set_defaults(&info);
    adjust(info);
    jpeg_start_compress(&info, TRUE);
    for (int y = 0; y < height; ++y) {
        JSAMPROW row = const_cast<JSAMPROW>(pixels.data()) + static_cast<std::ptrdiff_t>(y) * width * components;
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    const std::vector<std::uint8_t> result(memory, memory + size);
    std::free(memory);
    return result;
}

/// A whole JFIF stream of gray (1) or RGB (3) pixels.
inline std::vector<std::uint8_t> writeJpeg(
    const std::vector<std::uint8_t>& pixels, int width, int height, int components)
{
    return writeJpeg(pixels, width, height, components, components == 1 ? JCS_GRAYSCALE : JCS_RGB,
        [](jpeg_compress_struct& info) { jpeg_set_quality(&info, 95, TRUE); });
}

} // namespace quillrip::test
