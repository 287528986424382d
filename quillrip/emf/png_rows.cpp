// PNG files that lie in bitmaps, read by libpng.

#include "quillrip/emf/image_rows.h"

#include <csetjmp>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include <png.h>

namespace quillrip::emf {

namespace {

void onPngError(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void onPngWarning(png_structp, png_const_charp) { }

class PngRows : public ImageRows {
public:
    explicit PngRows(ByteView file)
        : m_file(file)
    {
    }
    ~PngRows() override { png_destroy_read_struct(&m_png, &m_info, nullptr); }

    /// Up to the first row's data; what it may have and what is in it. False when the file is damaged.
    bool readHeader();
    std::uint64_t pixels() const
    {
        return std::uint64_t { png_get_image_width(m_png, m_info) } * png_get_image_height(m_png, m_info);
    }
    bool isInterlaced() const { return png_get_interlace_type(m_png, m_info) != PNG_INTERLACE_NONE; }
    bool begin() override { return readHeader() && start(); }
    bool next(std::uint8_t* to) override;

private:
    static void give(png_structp png, png_bytep to, std::size_t count);
    bool start();

    ByteView m_file;
    std::size_t m_at = 0;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
};

void PngRows::give(png_structp png, png_bytep to, std::size_t count)
{
    auto& rows = *static_cast<PngRows*>(png_get_io_ptr(png));
    if (count > rows.m_file.size - rows.m_at)
        png_error(png, "the file ends");
    std::memcpy(to, rows.m_file.data + rows.m_at, count);
    rows.m_at += count;
}

bool PngRows::readHeader()
{
    png_destroy_read_struct(&m_png, &m_info, nullptr);
    m_at = 0;
    m_png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, onPngError, onPngWarning);
    m_info = m_png ? png_create_info_struct(m_png) : nullptr;
    if (!m_info || setjmp(png_jmpbuf(m_png)) != 0)
        return false;
    png_set_read_fn(m_png, this, give);
    png_set_benign_errors(m_png, 1);
    png_read_info(m_png, m_info);
    return true;
}

bool PngRows::start()
{
    if (setjmp(png_jmpbuf(m_png)) != 0)
        return false;
    // What the library's own reader of whole pictures does: eight bits in the gamma of sRGB, which is taken to be that
    // of files that name none unless they have 16 bits.
    png_set_expand(m_png);
    png_set_gray_to_rgb(m_png);
    const bool is16Bit = png_get_bit_depth(m_png, m_info) == 16;
    png_set_alpha_mode_fixed(m_png, PNG_ALPHA_PNG, is16Bit ? PNG_GAMMA_LINEAR : PNG_DEFAULT_sRGB);
    png_set_scale_16(m_png);
    png_set_alpha_mode_fixed(m_png, PNG_ALPHA_PNG, PNG_DEFAULT_sRGB);
    png_read_update_info(m_png, m_info);
    m_shape.hasAlpha = (png_get_color_type(m_png, m_info) & PNG_COLOR_MASK_ALPHA) != 0;
    m_shape.format = m_shape.hasAlpha ? PictureShape::Format::Rgba32 : PictureShape::Format::Rgb24;
    m_shape.width = static_cast<int>(png_get_image_width(m_png, m_info));
    m_shape.height = static_cast<int>(png_get_image_height(m_png, m_info));
    return png_get_rowbytes(m_png, m_info) == m_shape.rowBytes();
}

bool PngRows::next(std::uint8_t* to)
{
    if (setjmp(png_jmpbuf(m_png)) != 0)
        return false;
    png_read_row(m_png, to, nullptr);
    return true;
}

} // namespace

bool isPngFile(ByteView file) { return file.size > 1 && file[0] == 0x89 && file[1] == 'P'; }

std::unique_ptr<ImageRows> openPng(ByteView file, std::uint64_t mostPixels, std::string& problem)
{
    auto rows = std::make_unique<PngRows>(file);
    const bool hasHeader = rows->readHeader();
    if (hasHeader && rows->pixels() > mostPixels) {
        problem = "its PNG file is too large";
        return nullptr;
    }
    if (hasHeader && rows->isInterlaced())
        return nullptr;
    if (hasHeader && rows->begin())
        return rows;
    problem = "its PNG file is damaged";
    return nullptr;
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
