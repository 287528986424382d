#include "quillrip/emf/png_reader.h"

#include <array>
#include <csetjmp>
#include <cstring>

namespace quillrip::emf {

namespace {

void onPngError(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void onPngWarning(png_structp, png_const_charp) { }

/// Of the chunks that a reader may pass over, those that say what the colours are. Others, as comments, would be
/// unpacked and kept, and a few bytes can stand for megabytes.
void skipComments(png_structp png)
{
    constexpr int all = -1;
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, all);
    static constexpr std::array<png_byte, 20> colors { 'c', 'H', 'R', 'M', 0, 'g', 'A', 'M', 'A', 0, 'i', 'C', 'C', 'P',
        0, 's', 'R', 'G', 'B', 0 };
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_AS_DEFAULT, colors.data(), static_cast<int>(colors.size() / 5));
}

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
    skipComments(m_png);
    png_read_info(m_png, m_info);
    return true;
}

/// Of the colour profile, which the library keeps as it is unpacked, and a copy of it.
std::uint64_t PngReader::profileBytes() const
{
    png_charp name = nullptr;
    int compression = 0;
    png_bytep profile = nullptr;
    png_uint_32 bytes = 0;
    png_get_iCCP(m_png, m_info, &name, &compression, &profile, &bytes);
    return std::uint64_t { bytes } * 2;
}

bool PngReader::start()
{
    m_claim.emplace().add(readerBytes(width()) + profileBytes());
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
