#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/page_bitmap.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace quillrip::emf {

/// What a picture's rows are made of. Rows count from the top, the first pixel is on the left.
struct PictureShape {
    enum class Format : std::uint8_t {
        Mono, ///< packed, first pixel in the highest bit; a set bit takes table[1], a clear one table[0]
        Rgb24, ///< three bytes a pixel: red, green, blue
        Rgba32, ///< four bytes a pixel: red, green, blue, alpha; not premultiplied unless its owner knows better
    };

    Format format = Format::Rgb24;
    int width = 0;
    int height = 0;
    std::array<Rgb, 2> table {}; ///< Mono only
    bool isBottomUp = false; ///< how the rows were stored: some records count source rows from there
    bool hasAlpha
        = false; ///< Rgba32: the fourth byte was meant as opacity (a mask names it, or the image file says so)

    std::size_t rowBytes() const
    {
        const auto pixels = static_cast<std::size_t>(width);
        return format == Format::Mono ? (pixels + 7) / 8 : format == Format::Rgb24 ? pixels * 3 : pixels * 4;
    }
    /// Whatever the format: of a row, the pixel `x`.
    Rgb color(const std::uint8_t* row, int x) const;
};

/// Pixels of a picture.
struct Pixels : PictureShape {
    std::size_t stride = 0; ///< bytes from row to row
    std::vector<std::uint8_t> bytes;

    bool isNull() const { return bytes.empty(); }
    const std::uint8_t* row(int y) const { return bytes.data() + static_cast<std::size_t>(y) * stride; }
    std::uint8_t* row(int y) { return bytes.data() + static_cast<std::size_t>(y) * stride; }
    /// Whatever the format; `x` and `y` inside the picture.
    Rgb color(int x, int y) const { return PictureShape::color(row(y), x); }
    /// The picture as Rgb24; itself when it is that.
    Pixels toRgb() &&;
};

/// What a DIB's colour table holds (the usage field of records).
enum class ColorUsage : std::uint32_t {
    Rgb = 0, ///< colours
    PaletteEntries = 1, ///< numbers of two bytes into the selected palette
    PaletteIndices = 2, ///< none: pixels are numbers into the selected palette
};

/// What a DIB takes from the device context.
struct DibContext {
    ColorUsage usage = ColorUsage::Rgb;
    const std::vector<Rgb>* palette = nullptr; ///< null: none is selected
    /// Colours of bits 0 and 1 where there is no table (usage PaletteIndices of one bit).
    std::array<Rgb, 2> monoColors { Rgb { 0, 0, 0 }, Rgb { 255, 255, 255 } };
    /// Rows that the bits hold, where that is less than the header says (SETDIBITSTODEVICE); -1: all.
    int storedRows = -1;
};

/// Decodes a device-independent bitmap: `header` with its colour table, and `bits`. All depths of 1 to 32 bits, bit
/// fields, RLE4 and RLE8, JPEG and PNG inside. Null pixels, with the reason in `problem`, when it cannot be read or is
/// above a limit; rows that the bits do not reach are white, and `problem` says so.
Pixels decodeDib(ByteView header, ByteView bits, const DibContext& context, std::string& problem);

/// A bitmap file as a whole (`BM`, then a DIB). Null pixels with a reason when it is none.
Pixels decodeBitmapFile(ByteView file, std::string& problem);

/// Image files that lie in DIBs and in EMF+ images. Grey and indexed ones come as Rgb24, transparent ones as Rgba32.
/// `mostPixels` bounds width times height. Null pixels with a reason when the file cannot be read.
Pixels decodePng(ByteView file, std::uint64_t mostPixels, std::string& problem);
Pixels decodeJpeg(ByteView file, std::uint64_t mostPixels, std::string& problem);
bool isPngFile(ByteView file);
/// Either, of what a DIB may have.
Pixels decodeImageFile(ByteView file, std::string& problem);

/// Tells the heap's account of a picture whose pixels, decoded, have nothing to do with the bytes that they come from.
/// `otherBytes` are taken besides.
void expectPixels(std::uint64_t width, std::uint64_t height, std::uint64_t otherBytes = 0);

} // namespace quillrip::emf
