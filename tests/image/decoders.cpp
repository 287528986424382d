#include "tests/image/decoders.h"

#include "quillrip/image/document_options.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>

#include <jpeglib.h>
#include <png.h>
#include <tiffio.h>

namespace quillrip::test {

namespace {

Rgb grey(std::uint8_t value) { return { value, value, value }; }

bool bitAt(const std::uint8_t* row, int x) { return (row[x / 8] >> (7 - x % 8) & 1) != 0; }

DecodedImage emptyImage(std::uint32_t width, std::uint32_t height, int bitsPerPixel)
{
    DecodedImage image;
    image.width = static_cast<int>(width);
    image.height = static_cast<int>(height);
    image.bitsPerPixel = bitsPerPixel;
    image.pixels.resize(std::size_t { width } * height);
    return image;
}

std::vector<DecodedImage> decodeBmp(const std::string& path)
{
    const std::vector<std::uint8_t> bytes = readFile(path);
    if (bytes.size() < 54 || bytes[0] != 'B' || bytes[1] != 'M' || u32LittleEndian(bytes, 2) != bytes.size()
        || u32LittleEndian(bytes, 14) != 40 || u16LittleEndian(bytes, 26) != 1 || u32LittleEndian(bytes, 30) != 0)
        return {};
    const int bits = static_cast<int>(u16LittleEndian(bytes, 28));
    DecodedImage image = emptyImage(u32LittleEndian(bytes, 18), u32LittleEndian(bytes, 22), bits);
    image.xDotsPerInch = u32LittleEndian(bytes, 38) * 0.0254;
    image.yDotsPerInch = u32LittleEndian(bytes, 42) * 0.0254;
    const std::size_t offset = u32LittleEndian(bytes, 10);
    const std::size_t stride = (static_cast<std::size_t>(image.width * bits) + 31) / 32 * 4;
    if (bytes.size() != offset + stride * static_cast<std::size_t>(image.height)
        || u32LittleEndian(bytes, 34) != bytes.size() - offset)
        return {};
    const std::uint8_t* palette = bytes.data() + 54;
    const auto colour = [&](std::size_t index) {
        return Rgb { palette[4 * index + 2], palette[4 * index + 1], palette[4 * index] };
    };
    for (int y = 0; y < image.height; ++y) {
        const std::uint8_t* row = bytes.data() + offset + stride * static_cast<std::size_t>(image.height - 1 - y);
        for (int x = 0; x < image.width; ++x) {
            Rgb& pixel = image.pixels[static_cast<std::size_t>(y * image.width + x)];
            if (bits == 24)
                pixel = { row[3 * x + 2], row[3 * x + 1], row[3 * x] };
            else
                pixel = colour(bits == 1 ? bitAt(row, x) : row[x]);
        }
    }
    return { image };
}

/// Expands one plane of one row; false when a run goes beyond the row's end.
bool decodePcxRow(const std::vector<std::uint8_t>& bytes, std::size_t& at, std::vector<std::uint8_t>& row)
{
    std::size_t x = 0;
    while (x < row.size() && at < bytes.size()) {
        std::size_t count = 1;
        if (bytes[at] >= 0xC0)
            count = bytes[at++] & 0x3F;
        if (at >= bytes.size() || count > row.size() - x)
            return false;
        while (count-- > 0)
            row[x++] = bytes[at];
        ++at;
    }
    return x == row.size();
}

std::vector<DecodedImage> decodePcx(const std::string& path)
{
    const std::vector<std::uint8_t> bytes = readFile(path);
    if (bytes.size() < 128 || bytes[0] != 0x0A || bytes[1] != 5 || bytes[2] != 1)
        return {};
    const int planes = bytes[65];
    const int bits = bytes[3] * planes;
    DecodedImage image = emptyImage(u16LittleEndian(bytes, 8) + 1, u16LittleEndian(bytes, 10) + 1, bits);
    image.xDotsPerInch = u16LittleEndian(bytes, 12);
    image.yDotsPerInch = u16LittleEndian(bytes, 14);
    const std::size_t planeBytes = u16LittleEndian(bytes, 66);
    if (planeBytes % 2 != 0)
        return {};
    std::size_t at = 128;
    const std::uint8_t* palette = bytes.data() + 16;
    if (bits == 8) {
        palette = bytes.data() + bytes.size() - 768;
        if (*(palette - 1) != 0x0C)
            return {};
    }
    std::vector<std::vector<std::uint8_t>> rows(
        static_cast<std::size_t>(planes), std::vector<std::uint8_t>(planeBytes));
    for (int y = 0; y < image.height; ++y) {
        for (auto& row : rows)
            if (!decodePcxRow(bytes, at, row))
                return {};
        for (int x = 0; x < image.width; ++x) {
            const auto column = static_cast<std::size_t>(x);
            const std::size_t index = bits == 1 ? bitAt(rows[0].data(), x) : rows[0][column];
            image.pixels[static_cast<std::size_t>(y * image.width + x)] = planes == 3
                ? Rgb { rows[0][column], rows[1][column], rows[2][column] }
                : Rgb { palette[3 * index], palette[3 * index + 1], palette[3 * index + 2] };
        }
    }
    if (at != bytes.size() - (bits == 8 ? 769 : 0))
        return {};
    return { image };
}

std::vector<DecodedImage> decodePng(const std::string& path)
{
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr)
        return {};
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    static DecodedImage image;
    static std::vector<png_byte> row;
    bool isGood = false;
    if (setjmp(png_jmpbuf(png)) == 0) { // NOLINT
        png_set_benign_errors(png, 0);
        png_init_io(png, file);
        png_read_info(png, info);
        const int bits = png_get_bit_depth(png, info) * png_get_channels(png, info);
        image = emptyImage(png_get_image_width(png, info), png_get_image_height(png, info), bits);
        image.xDotsPerInch = png_get_x_pixels_per_meter(png, info) * 0.0254;
        image.yDotsPerInch = png_get_y_pixels_per_meter(png, info) * 0.0254;
        row.resize(png_get_rowbytes(png, info));
        for (int y = 0; y < image.height; ++y) {
            png_read_row(png, row.data(), nullptr);
            for (int x = 0; x < image.width; ++x) {
                const auto at = static_cast<std::size_t>(x);
                image.pixels[static_cast<std::size_t>(y * image.width + x)] = bits == 24
                    ? Rgb { row[3 * at], row[3 * at + 1], row[3 * at + 2] }
                    : grey(bits == 8               ? row[at]
                            : bitAt(row.data(), x) ? 255
                                                   : 0);
            }
        }
        png_read_end(png, nullptr);
        isGood = true;
    }
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(file);
    return isGood ? std::vector<DecodedImage> { image } : std::vector<DecodedImage> {};
}

std::vector<DecodedImage> decodeJpeg(const std::string& path)
{
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr)
        return {};
    jpeg_decompress_struct library {};
    jpeg_error_mgr errors {};
    library.err = jpeg_std_error(&errors); // ends the test program when the file is damaged
    jpeg_create_decompress(&library);
    jpeg_stdio_src(&library, file);
    jpeg_read_header(&library, TRUE);
    jpeg_start_decompress(&library);
    const int channels = library.output_components;
    DecodedImage image = emptyImage(library.output_width, library.output_height, 8 * channels);
    image.xDotsPerInch = library.density_unit == 1 ? library.X_density : 0;
    image.yDotsPerInch = library.density_unit == 1 ? library.Y_density : 0;
    std::vector<JSAMPLE> row(library.output_width * static_cast<unsigned>(channels));
    for (int y = 0; y < image.height; ++y) {
        JSAMPROW rows = row.data();
        jpeg_read_scanlines(&library, &rows, 1);
        for (int x = 0; x < image.width; ++x) {
            const auto at = static_cast<std::size_t>(x);
            image.pixels[static_cast<std::size_t>(y * image.width + x)]
                = channels == 3 ? Rgb { row[3 * at], row[3 * at + 1], row[3 * at + 2] } : grey(row[at]);
        }
    }
    jpeg_finish_decompress(&library);
    jpeg_destroy_decompress(&library);
    std::fclose(file);
    return errors.num_warnings == 0 ? std::vector<DecodedImage> { image } : std::vector<DecodedImage> {};
}

std::vector<DecodedImage> decodeTiff(const std::string& path)
{
    const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff { TIFFOpen(path.c_str(), "r"), &TIFFClose };
    std::vector<DecodedImage> images;
    if (!tiff)
        return images;
    do {
        std::uint32_t width = 0;
        std::uint32_t height = 0;
        std::uint16_t sampleBits = 0;
        std::uint16_t samples = 0;
        std::uint16_t photometric = 0;
        float xResolution = 0;
        float yResolution = 0;
        TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width);
        TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height);
        TIFFGetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, &sampleBits);
        TIFFGetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, &samples);
        TIFFGetField(tiff.get(), TIFFTAG_PHOTOMETRIC, &photometric);
        TIFFGetField(tiff.get(), TIFFTAG_XRESOLUTION, &xResolution);
        TIFFGetField(tiff.get(), TIFFTAG_YRESOLUTION, &yResolution);
        DecodedImage image = emptyImage(width, height, sampleBits * samples);
        image.xDotsPerInch = static_cast<double>(xResolution);
        image.yDotsPerInch = static_cast<double>(yResolution);
        std::vector<std::uint8_t> row(static_cast<std::size_t>(TIFFScanlineSize(tiff.get())));
        for (int y = 0; y < image.height; ++y) {
            if (TIFFReadScanline(tiff.get(), row.data(), static_cast<std::uint32_t>(y), 0) != 1)
                return {};
            for (int x = 0; x < image.width; ++x) {
                const auto at = static_cast<std::size_t>(x);
                const bool isLight = bitAt(row.data(), x) == (photometric == PHOTOMETRIC_MINISBLACK);
                image.pixels[static_cast<std::size_t>(y * image.width + x)] = samples == 3
                    ? Rgb { row[3 * at], row[3 * at + 1], row[3 * at + 2] }
                    : grey(sampleBits == 8 ? row[at]
                            : isLight      ? 255
                                           : 0);
            }
        }
        images.push_back(std::move(image));
    } while (TIFFReadDirectory(tiff.get()) == 1);
    return images;
}

} // namespace

std::vector<std::uint8_t> readFile(const std::string& path)
{
    std::ifstream in { path, std::ios::binary };
    return { std::istreambuf_iterator<char> { in }, std::istreambuf_iterator<char> {} };
}

std::uint32_t u16LittleEndian(const std::vector<std::uint8_t>& bytes, std::size_t at)
{
    return bytes.at(at) | static_cast<std::uint32_t>(bytes.at(at + 1)) << 8;
}

std::uint32_t u32LittleEndian(const std::vector<std::uint8_t>& bytes, std::size_t at)
{
    return u16LittleEndian(bytes, at) | u16LittleEndian(bytes, at + 2) << 16;
}

std::vector<DecodedImage> decodeFile(const std::string& path)
{
    switch (*fileTypeOfPath(path)) {
    case FileType::Bmp:
        return decodeBmp(path);
    case FileType::Png:
        return decodePng(path);
    case FileType::Jpeg:
        return decodeJpeg(path);
    case FileType::Pcx:
        return decodePcx(path);
    case FileType::Tiff:
        break;
    }
    return decodeTiff(path);
}

} // namespace quillrip::test
