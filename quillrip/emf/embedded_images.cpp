// JPEG and PNG files that lie in bitmaps, read by the well-known libraries.

#include "quillrip/emf/dib.h"

#include "quillrip/base/heap_account.h"
#include "quillrip/base/jpeg_coefficients.h"

#include <csetjmp>
#include <cstdint>
#include <cstring>
#include <string>

#include <png.h>

namespace quillrip::emf {

namespace {

constexpr int kMostScans = 200;

/// The library's error handler may not return, so it jumps; what it jumps over is plain data or lies outside.
struct JpegErrors {
    jpeg_error_mgr base;
    std::jmp_buf escape;
};

void onJpegError(j_common_ptr info) { std::longjmp(reinterpret_cast<JpegErrors*>(info->err)->escape, 1); }
void onJpegMessage(j_common_ptr, int) { }
void onJpegOutput(j_common_ptr) { }
/// Each scan of a progressive file passes over the whole picture.
void onJpegProgress(j_common_ptr info)
{
    if (reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > kMostScans)
        onJpegError(info);
}

struct JpegReader {
    jpeg_decompress_struct info {};
    JpegErrors errors {};
    jpeg_progress_mgr progress {};
    HeapClaim coefficients;

    JpegReader()
    {
        info.err = jpeg_std_error(&errors.base);
        errors.base.error_exit = onJpegError;
        errors.base.emit_message = onJpegMessage;
        errors.base.output_message = onJpegOutput;
        progress.progress_monitor = onJpegProgress;
    }
    ~JpegReader() { jpeg_destroy_decompress(&info); }
};

/// False after an error; what was read until then stays.
bool readJpeg(JpegReader& reader, ByteView file, std::uint64_t mostPixels, Pixels& pixels, bool& isCmyk)
{
    jpeg_decompress_struct& info = reader.info;
    if (setjmp(reader.errors.escape) != 0)
        return false;
    jpeg_create_decompress(&info);
    info.progress = &reader.progress;
    jpeg_mem_src(&info, file.data, static_cast<unsigned long>(file.size));
    jpeg_read_header(&info, TRUE);
    isCmyk = info.num_components == 4;
    info.out_color_space = isCmyk ? JCS_CMYK : JCS_RGB;
    if (std::uint64_t { info.image_width } * info.image_height > mostPixels)
        return false;
    const std::uint64_t coefficients = coefficientBytes(info);
    expectPixels(info.image_width, info.image_height, coefficients);
    reader.coefficients.add(coefficients);
    jpeg_start_decompress(&info);
    pixels.format = isCmyk ? Pixels::Format::Rgba32 : Pixels::Format::Rgb24;
    pixels.width = static_cast<int>(info.output_width);
    pixels.height = static_cast<int>(info.output_height);
    pixels.stride = std::size_t { info.output_width } * (isCmyk ? 4 : 3);
    pixels.bytes.assign(pixels.stride * info.output_height, 0xFF);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = pixels.row(static_cast<int>(info.output_scanline));
        jpeg_read_scanlines(&info, &row, 1);
    }
    return true;
}

/// Four channels as the usual writer stores them: inverted.
void blackToRgb(Pixels& pixels)
{
    for (std::size_t at = 0; at + 3 < pixels.bytes.size(); at += 4) {
        for (std::size_t i = 0; i < 3; ++i)
            pixels.bytes[at + i] = static_cast<std::uint8_t>(pixels.bytes[at + i] * pixels.bytes[at + 3] / 255);
        pixels.bytes[at + 3] = 255;
    }
}

} // namespace

void expectPixels(std::uint64_t width, std::uint64_t height, std::uint64_t otherBytes)
{
    // Four bytes a pixel, and as many in the form that it is decoded to at first.
    HeapAccount::expectPicture(width * height * 8 + otherBytes);
}

Pixels decodeJpeg(ByteView file, std::uint64_t mostPixels, std::string& problem)
{
    problem.clear();
    JpegReader reader;
    Pixels pixels;
    bool isCmyk = false;
    const bool isWhole = readJpeg(reader, file, mostPixels, pixels, isCmyk);
    if (!isWhole)
        problem = "its JPEG file is damaged";
    if (isCmyk) {
        blackToRgb(pixels);
        return std::move(pixels).toRgb();
    }
    return pixels;
}

Pixels decodePng(ByteView file, std::uint64_t mostPixels, std::string& problem)
{
    problem = "its PNG file is damaged";
    png_image image {};
    image.version = PNG_IMAGE_VERSION;
    Pixels pixels;
    if (!png_image_begin_read_from_memory(&image, file.data, file.size))
        return pixels;
    if (std::uint64_t { image.width } * image.height > mostPixels) {
        png_image_free(&image);
        problem = "its PNG file is too large";
        return pixels;
    }
    expectPixels(image.width, image.height);
    const bool hasAlpha = (image.format & PNG_FORMAT_FLAG_ALPHA) != 0;
    image.format = hasAlpha ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
    pixels.format = hasAlpha ? Pixels::Format::Rgba32 : Pixels::Format::Rgb24;
    pixels.hasAlpha = hasAlpha;
    pixels.width = static_cast<int>(image.width);
    pixels.height = static_cast<int>(image.height);
    pixels.stride = std::size_t { image.width } * (hasAlpha ? 4 : 3);
    pixels.bytes.assign(pixels.stride * image.height, 0xFF);
    if (!png_image_finish_read(&image, nullptr, pixels.bytes.data(), static_cast<png_int_32>(pixels.stride), nullptr))
        return {};
    problem.clear();
    return pixels;
}

} // namespace quillrip::emf
