#include "tests/support/image_files.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

#include <gif_lib.h>
#include <png.h>
#include <tiffio.h>

namespace quillrip::test {

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes rowOf(std::size_t size, int y, bool isBlank)
{
    Bytes row(size);
    for (std::size_t at = 0; at < size && !isBlank; ++at)
        row[at] = sampleAt(at, y);
    return row;
}

void setColors(png_structp png, png_infop info, const PngForm& form)
{
    const int count = 1 << std::min(form.depth, 8);
    std::vector<png_color> palette;
    Bytes opacities;
    for (int i = 0; i < count; ++i) {
        const auto at = static_cast<std::size_t>(i);
        palette.push_back({ sampleAt(at, 0), sampleAt(at + 1, 0), sampleAt(at + 2, 0) });
        opacities.push_back(sampleAt(at + 3, 0));
    }
    if (form.colorType == PNG_COLOR_TYPE_PALETTE)
        png_set_PLTE(png, info, palette.data(), count);
    png_color_16 transparent {};
    if (form.hasTransparentColor)
        png_set_tRNS(png, info, opacities.data(), count, &transparent);
}

void setComment(png_structp png, png_infop info)
{
    std::string key = "Comment";
    std::string comment(4'000'000, ' ');
    png_text text {};
    text.compression = PNG_TEXT_COMPRESSION_zTXt;
    text.key = key.data();
    text.text = comment.data();
    text.text_length = comment.size();
    png_set_text(png, info, &text, 1);
}

/// The chunk that setComment() made, so often altogether.
void repeatComment(Bytes& file, int count)
{
    const std::string name = "zTXt";
    const auto found = std::search(file.begin(), file.end(), name.begin(), name.end());
    if (found == file.end())
        return;
    constexpr std::ptrdiff_t field = 4; // length, name and checksum
    const auto start = found - field;
    const auto bytes = (start[1] << 16 | start[2] << 8 | start[3]) + 3 * field;
    const Bytes chunk(start, start + bytes);
    auto at = start - file.begin();
    for (; count > 1; --count)
        file.insert(file.begin() + at, chunk.begin(), chunk.end());
}

/// A file that libtiff writes.
struct Growing {
    Bytes bytes;
    std::size_t at = 0;
};

tmsize_t readGrowing(thandle_t handle, void* to, tmsize_t count)
{
    Growing& file = *static_cast<Growing*>(handle);
    const std::size_t there = std::min(static_cast<std::size_t>(count), file.bytes.size() - file.at);
    std::memcpy(to, file.bytes.data() + file.at, there);
    file.at += there;
    return static_cast<tmsize_t>(there);
}

tmsize_t writeGrowing(thandle_t handle, void* from, tmsize_t count)
{
    Growing& file = *static_cast<Growing*>(handle);
    file.bytes.resize(std::max(file.bytes.size(), file.at + static_cast<std::size_t>(count)));
    std::memcpy(file.bytes.data() + file.at, from, static_cast<std::size_t>(count));
    file.at += static_cast<std::size_t>(count);
    return count;
}

toff_t seekGrowing(thandle_t handle, toff_t offset, int whence)
{
    Growing& file = *static_cast<Growing*>(handle);
    const toff_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.at : file.bytes.size();
    file.at = static_cast<std::size_t>(base + offset);
    file.bytes.resize(std::max(file.bytes.size(), file.at));
    return file.at;
}

int closeGrowing(thandle_t) { return 0; }
toff_t sizeOfGrowing(thandle_t handle) { return static_cast<Growing*>(handle)->bytes.size(); }

void writeStrips(TIFF* tiff, const TiffForm& form)
{
    const auto size = static_cast<std::size_t>(TIFFScanlineSize(tiff));
    const int planes = form.planes == PLANARCONFIG_SEPARATE ? form.samples : 1;
    for (int plane = 0; plane < planes; ++plane) {
        for (int y = 0; y < form.height; ++y) {
            Bytes row = rowOf(size, y + plane, form.isBlank);
            TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y), static_cast<std::uint16_t>(plane));
        }
    }
}

void writeTiles(TIFF* tiff, const TiffForm& form)
{
    const auto size = static_cast<std::size_t>(TIFFTileSize(tiff));
    for (std::uint32_t tile = 0; tile < TIFFNumberOfTiles(tiff); ++tile) {
        Bytes pixels = rowOf(size, static_cast<int>(tile), form.isBlank);
        TIFFWriteEncodedTile(tiff, tile, pixels.data(), static_cast<tmsize_t>(size));
    }
}

} // namespace

std::uint8_t sampleAt(std::size_t at, int y)
{
    const std::size_t place = at + static_cast<std::size_t>(y) * 31;
    return static_cast<std::uint8_t>(place * place / 7 + place * 13);
}

Bytes pngFile(const PngForm& form)
{
    Bytes file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &file,
        [](png_structp writer, png_bytep bytes, std::size_t count) {
            Bytes& to = *static_cast<Bytes*>(png_get_io_ptr(writer));
            to.insert(to.end(), bytes, bytes + count);
        },
        nullptr);
    png_set_compression_level(png, form.isBlank ? 1 : 0);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
    png_set_IHDR(png, info, static_cast<png_uint_32>(form.width), static_cast<png_uint_32>(form.height), form.depth,
        form.colorType, form.isInterlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, 0, 0);
    if (form.gamma > 0)
        png_set_gAMA(png, info, form.gamma);
    setColors(png, info, form);
    if (form.comments > 0)
        setComment(png, info);
    png_write_info(png, info);
    const std::size_t rowBytes = png_get_rowbytes(png, info);
    const int passes = png_set_interlace_handling(png);
    for (int pass = 0; pass < passes; ++pass) {
        for (int y = 0; y < form.height; ++y)
            png_write_row(png, rowOf(rowBytes, y, form.isBlank).data());
    }
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    repeatComment(file, form.comments);
    return file;
}

Bytes gifFile(const GifForm& form)
{
    Bytes file;
    int error = 0;
    const auto write = [](GifFileType* gif, const GifByteType* bytes, int count) {
        Bytes& to = *static_cast<Bytes*>(gif->UserData);
        to.insert(to.end(), bytes, bytes + count);
        return count;
    };
    GifFileType* const gif = EGifOpen(&file, write, &error);
    std::vector<GifColorType> colors;
    for (int i = 0; i < 1 << form.bits; ++i)
        colors.push_back({ static_cast<GifByteType>(i), static_cast<GifByteType>(255 - i), 7 });
    ColorMapObject* const map = GifMakeMapObject(1 << form.bits, colors.data());
    EGifPutScreenDesc(gif, form.screenWidth, form.screenHeight, form.bits, 0, map);
    if (form.transparent >= 0) {
        const std::array<GifByteType, 4> control { 1, 0, 0, static_cast<GifByteType>(form.transparent) };
        EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, static_cast<int>(control.size()), control.data());
    }
    EGifPutImageDesc(gif, form.left, form.top, form.width, form.height, form.isInterlaced, nullptr);
    std::vector<std::array<int, 2>> passes { { 0, 1 } };
    if (form.isInterlaced)
        passes = { { 0, 8 }, { 4, 8 }, { 2, 4 }, { 1, 2 } };
    for (const auto& [first, step] : passes) {
        for (int y = first; y < form.height; y += step) {
            Bytes row = rowOf(static_cast<std::size_t>(form.width), y, form.isBlank);
            for (std::uint8_t& number : row)
                number = static_cast<std::uint8_t>(number & ((1 << form.bits) - 1));
            EGifPutLine(gif, row.data(), form.width);
        }
    }
    EGifCloseFile(gif, &error);
    GifFreeMapObject(map);
    return file;
}

Bytes tiffFile(const TiffForm& form)
{
    Growing file;
    TIFF* const tiff = TIFFClientOpen(
        "image", "w", &file, readGrowing, writeGrowing, seekGrowing, closeGrowing, sizeOfGrowing, nullptr, nullptr);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, form.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, form.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, form.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, form.samples);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, form.photometric);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, form.compression);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, form.orientation);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, form.planes);
    if (form.hasAlpha) {
        std::uint16_t kind = EXTRASAMPLE_UNASSALPHA;
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
    }
    if (form.photometric == PHOTOMETRIC_PALETTE) {
        std::vector<std::uint16_t> colors(std::size_t { 1 } << form.bits);
        for (std::size_t i = 0; i < colors.size(); ++i)
            colors[i] = static_cast<std::uint16_t>(i * 257);
        TIFFSetField(tiff, TIFFTAG_COLORMAP, colors.data(), colors.data(), colors.data());
    }
    if (!form.coded.empty()) {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, form.height);
        Bytes strip = form.coded;
        TIFFWriteRawStrip(tiff, 0, strip.data(), static_cast<tmsize_t>(strip.size()));
    } else if (form.tileSide > 0) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, form.tileSide);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, form.tileSide);
        writeTiles(tiff, form);
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, form.rowsPerStrip);
        writeStrips(tiff, form);
    }
    TIFFClose(tiff);
    return file.bytes;
}

} // namespace quillrip::test
