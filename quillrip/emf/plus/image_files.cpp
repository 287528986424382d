#include "quillrip/emf/plus/image_files.h"

#include "quillrip/base/heap_account.h"
#include "quillrip/emf/plus/pixel_formats.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include <gif_lib.h>
#include <tiffio.h>

namespace quillrip::emf::plus {

namespace {

bool startsWith(ByteView file, const char* signature, std::size_t length)
{
    return file.size >= length && std::memcmp(file.data, signature, length) == 0;
}

Pixels transparentPixels(int width, int height)
{
    Pixels pixels;
    pixels.format = Pixels::Format::Rgba32;
    pixels.width = width;
    pixels.height = height;
    pixels.hasAlpha = true;
    pixels.stride = static_cast<std::size_t>(width) * 4;
    pixels.bytes.assign(pixels.stride * static_cast<std::size_t>(height), 0);
    return pixels;
}

bool isDecodable(std::int64_t width, std::int64_t height)
{
    return width > 0 && height > 0 && width <= 65535 && height <= 65535
        && static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) <= kMostImagePixels;
}

/// GIF and TIFF files are read out of memory by the libraries' own callbacks.
struct MemoryFile {
    ByteView bytes;
    std::size_t at = 0;

    std::size_t read(void* to, std::size_t count)
    {
        const ByteView part = bytes.sub(at, count);
        if (!part.empty())
            std::memcpy(to, part.data, part.size);
        at += part.size;
        return part.size;
    }
};

int readGif(GifFileType* gif, GifByteType* to, int count)
{
    return static_cast<int>(static_cast<MemoryFile*>(gif->UserData)->read(to, static_cast<std::size_t>(count)));
}

struct GifCloser {
    void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
};
using Gif = std::unique_ptr<GifFileType, GifCloser>;

/// Goes on to the first picture; the number of its transparent colour stands in an extension before it, or is -1.
bool findPicture(GifFileType* gif, int& transparent)
{
    transparent = -1;
    for (;;) {
        GifRecordType type = UNDEFINED_RECORD_TYPE;
        if (DGifGetRecordType(gif, &type) == GIF_ERROR || type == TERMINATE_RECORD_TYPE)
            return false;
        if (type == IMAGE_DESC_RECORD_TYPE)
            return DGifGetImageDesc(gif) == GIF_OK;
        if (type != EXTENSION_RECORD_TYPE)
            continue;
        int code = 0;
        GifByteType* block = nullptr;
        if (DGifGetExtension(gif, &code, &block) == GIF_ERROR)
            return false;
        while (block) {
            if (code == GRAPHICS_EXT_FUNC_CODE && block[0] >= 4 && block[1] & 1)
                transparent = block[4];
            if (DGifGetExtensionNext(gif, &block) == GIF_ERROR)
                return false;
        }
    }
}

/// Interlaced pictures hold every eighth row first, then those between.
std::vector<int> rowOrder(int height, bool isInterlaced)
{
    std::vector<int> rows;
    if (!isInterlaced) {
        for (int y = 0; y < height; ++y)
            rows.push_back(y);
        return rows;
    }
    constexpr int passes[4][2] = { { 0, 8 }, { 4, 8 }, { 2, 4 }, { 1, 2 } };
    for (const auto& pass : passes) {
        for (int y = pass[0]; y < height; y += pass[1])
            rows.push_back(y);
    }
    return rows;
}

Pixels decodeGif(ByteView file, std::string& problem)
{
    MemoryFile memory { file };
    int error = 0;
    const Gif gif(DGifOpen(&memory, readGif, &error));
    int transparent = -1;
    problem = "its GIF file cannot be read";
    if (!gif || !findPicture(gif.get(), transparent))
        return {};
    const GifImageDesc& picture = gif->Image;
    const ColorMapObject* colors = picture.ColorMap ? picture.ColorMap : gif->SColorMap;
    if (!colors || !isDecodable(gif->SWidth, gif->SHeight) || !isDecodable(picture.Width, picture.Height))
        return {};
    problem.clear();
    expectPixels(static_cast<std::uint64_t>(gif->SWidth), static_cast<std::uint64_t>(gif->SHeight));
    Pixels pixels = transparentPixels(gif->SWidth, gif->SHeight);
    std::vector<GifByteType> line(static_cast<std::size_t>(picture.Width));
    for (const int y : rowOrder(picture.Height, picture.Interlace)) {
        if (DGifGetLine(gif.get(), line.data(), picture.Width) == GIF_ERROR)
            break;
        const int top = picture.Top + y;
        if (top < 0 || top >= pixels.height)
            continue;
        for (int x = 0; x < picture.Width; ++x) {
            const int left = picture.Left + x;
            const int index = line[static_cast<std::size_t>(x)];
            if (left < 0 || left >= pixels.width || index == transparent || index >= colors->ColorCount)
                continue;
            const GifColorType& color = colors->Colors[index];
            std::uint8_t* to = pixels.row(top) + static_cast<std::size_t>(left) * 4;
            to[0] = color.Red;
            to[1] = color.Green;
            to[2] = color.Blue;
            to[3] = 255;
        }
    }
    return pixels;
}

tmsize_t readTiff(thandle_t handle, void* to, tmsize_t count)
{
    return static_cast<tmsize_t>(static_cast<MemoryFile*>(handle)->read(to, static_cast<std::size_t>(count)));
}

tmsize_t writeTiff(thandle_t, void*, tmsize_t) { return 0; }

toff_t seekTiff(thandle_t handle, toff_t offset, int whence)
{
    MemoryFile& file = *static_cast<MemoryFile*>(handle);
    const toff_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.at : file.bytes.size;
    const toff_t target = base + offset;
    if (target > std::numeric_limits<std::uint32_t>::max())
        return static_cast<toff_t>(-1);
    file.at = static_cast<std::size_t>(target);
    return target;
}

int closeTiff(thandle_t) { return 0; }

toff_t sizeOfTiff(thandle_t handle) { return static_cast<MemoryFile*>(handle)->bytes.size; }

struct TiffCloser {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using Tiff = std::unique_ptr<TIFF, TiffCloser>;

/// What the library takes to decode a piece: a strip or a tile, of each of the planes that make up a pixel.
std::uint64_t pieceBytes(TIFF* tiff)
{
    constexpr std::uint16_t mostPlanes = 4;
    std::uint16_t arrangement = PLANARCONFIG_CONTIG;
    std::uint16_t planes = 1;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &arrangement);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &planes);
    const tmsize_t bytes = TIFFIsTiled(tiff) ? TIFFTileSize(tiff) : TIFFStripSize(tiff);
    return static_cast<std::uint64_t>(std::max<tmsize_t>(bytes, 0))
        * (arrangement == PLANARCONFIG_SEPARATE ? std::min(planes, mostPlanes) : 1U);
}

Pixels decodeTiff(ByteView file, std::string& problem)
{
    MemoryFile memory { file };
    // The library would write its complaints to the console.
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    const Tiff tiff(
        TIFFClientOpen("image", "rm", &memory, readTiff, writeTiff, seekTiff, closeTiff, sizeOfTiff, nullptr, nullptr));
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    problem = "its TIFF file cannot be read";
    if (!tiff || !TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width)
        || !TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height) || !isDecodable(width, height))
        return {};
    const std::uint64_t piece = pieceBytes(tiff.get());
    expectPixels(width, height, piece);
    HeapClaim claim;
    claim.add(piece);
    std::vector<std::uint32_t> raster(static_cast<std::size_t>(width) * height);
    if (!TIFFReadRGBAImageOriented(tiff.get(), width, height, raster.data(), ORIENTATION_TOPLEFT, 1))
        return {};
    problem.clear();
    Pixels pixels = transparentPixels(static_cast<int>(width), static_cast<int>(height));
    for (std::size_t i = 0; i < raster.size(); ++i) {
        const unsigned alpha = TIFFGetA(raster[i]);
        const auto straight = [alpha](unsigned value) {
            return static_cast<std::uint8_t>(alpha == 0 ? 0 : std::min(255U, (value * 255 + alpha / 2) / alpha));
        };
        std::uint8_t* to = pixels.bytes.data() + i * 4;
        to[0] = straight(TIFFGetR(raster[i]));
        to[1] = straight(TIFFGetG(raster[i]));
        to[2] = straight(TIFFGetB(raster[i]));
        to[3] = static_cast<std::uint8_t>(alpha);
    }
    return pixels;
}

/// Decoders that know no alpha give three bytes a pixel, or one bit.
Pixels withAlpha(Pixels&& decoded)
{
    if (decoded.isNull() || decoded.format == Pixels::Format::Rgba32) {
        if (!decoded.isNull() && !decoded.hasAlpha) {
            for (std::size_t i = 3; i < decoded.bytes.size(); i += 4)
                decoded.bytes[i] = 255;
        }
        return std::move(decoded);
    }
    Pixels pixels = transparentPixels(decoded.width, decoded.height);
    for (int y = 0; y < decoded.height; ++y) {
        std::uint8_t* to = pixels.row(y);
        for (int x = 0; x < decoded.width; ++x, to += 4) {
            const Rgb color = decoded.color(x, y);
            to[0] = color.red;
            to[1] = color.green;
            to[2] = color.blue;
            to[3] = 255;
        }
    }
    return pixels;
}

} // namespace

Pixels decodeImageFile(ByteView file, std::string& problem)
{
    if (startsWith(file, "\x89PNG", 4))
        return withAlpha(decodePng(file, kMostImagePixels, problem));
    if (startsWith(file, "\xFF\xD8", 2))
        return withAlpha(decodeJpeg(file, kMostImagePixels, problem));
    if (startsWith(file, "GIF8", 4))
        return decodeGif(file, problem);
    if (startsWith(file, "II*\0", 4) || startsWith(file, "MM\0*", 4))
        return decodeTiff(file, problem);
    if (startsWith(file, "BM", 2))
        return withAlpha(decodeBitmapFile(file, problem));
    problem = "its file is of a kind that is not known";
    return {};
}

} // namespace quillrip::emf::plus
