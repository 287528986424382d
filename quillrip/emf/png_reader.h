#pragma once

#include "quillrip/base/heap_account.h"
#include "quillrip/emf/dib.h"

#include <cstddef>
#include <cstdint>
#include <optional>

#include <png.h>

namespace quillrip::emf {

/// Reads one PNG file by libpng, from its beginning on, as Rgb24 or Rgba32. The file's bytes must outlive it.
class PngReader {
public:
    explicit PngReader(ByteView file)
        : m_file(file)
    {
    }
    ~PngReader() { png_destroy_read_struct(&m_png, &m_info, nullptr); }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;

    /// Up to the first row's data; what it may have and what is in it. False when the file is damaged.
    bool readHeader();
    std::uint32_t width() const { return png_get_image_width(m_png, m_info); }
    std::uint32_t height() const { return png_get_image_height(m_png, m_info); }
    bool isInterlaced() const { return png_get_interlace_type(m_png, m_info) != PNG_INTERLACE_NONE; }

    /// Behind readHeader(): to the first row. Throws std::bad_alloc where the account has no room for the library's
    /// rows. False when the file is damaged; so with readRow().
    bool start();
    /// What its rows are, from start() on.
    const PictureShape& shape() const { return m_shape; }
    /// The row that follows; of an interlaced file that of the pass, which has as many pixels as the pass has columns.
    bool readRow(std::uint8_t* to);

private:
    static void give(png_structp png, png_bytep to, std::size_t count);
    std::uint64_t profileBytes() const;
    bool startRows();

    ByteView m_file;
    std::size_t m_at = 0;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
    std::optional<HeapClaim> m_claim;
    PictureShape m_shape;
};

} // namespace quillrip::emf
