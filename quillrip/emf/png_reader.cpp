#include "quillrip/emf/png_reader.h"

#include <csetjmp>
#include <cstring>

namespace quillrip::emf {

namespace {

void onPngError(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void onPngWarning(png_structp, png_const_charp) { }

/// What libpng takes: its structures and zlib's window, and two rows of up to four channels of 16 bits.
std::uint64_t readerBytes(std::uint32_t width)
{
    constexpr std::uint64_t structures = std::uint64_t { 64 } << 10;
    constexpr std::uint64_t mostPixelBytes = 8;
    return structures + 2 * mostPixelBytes * width;
}

} // namespace

void PngReader::give(png_structp png, png_bytep to, std::size_t count)
{
    auto& reader = *static_cast<PngReader*>(png_get_io_ptr(png));
    if (count > reader.m_file.size - reader.m_at)
        png_error(png, "the file ends");
    std::memcpy(to, reader.m_file.data + reader.m_at, count);
    reader.m_at += count;
}

bool PngReader::readHeader()
{
    png_destroy_read_struct(&m_png, &m_info, nullptr);
    m_claim.reset();
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

bool PngReader::start()
{
    m_claim.emplace().add(readerBytes(width()));
    return startRows();
}

bool PngReader::startRows()
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
    m_shape.width = static_cast<int>(width());
    m_shape.height = static_cast<int>(height());
    return png_get_rowbytes(m_png, m_info) == m_shape.rowBytes();
}

bool PngReader::readRow(std::uint8_t* to)
{
    if (setjmp(png_jmpbuf(m_png)) != 0)
        return false;
    png_read_row(m_png, to, nullptr);
    return true;
}

} // namespace quillrip::emf
