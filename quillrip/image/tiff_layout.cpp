#include "quillrip/image/tiff_layout.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>

namespace quillrip {

namespace {

constexpr std::uint32_t kFaxWidth = 1728;
/// Small enough for readers that load whole strips, large enough for LZW and deflate to learn something.
constexpr std::size_t kStripBytes = std::size_t { 128 } << 10;

int keepMessage(TIFF*, void* client, const char* module, const char* format, std::va_list arguments)
{
    auto& message = *static_cast<std::string*>(client);
    if (message.empty()) {
        std::array<char, 400> text {};
        std::vsnprintf(text.data(), text.size(), format, arguments);
        message = module != nullptr ? std::string { module } + ": " + text.data() : std::string { text.data() };
    }
    return 1;
}

int ignoreWarning(TIFF*, void*, const char*, const char*, std::va_list) { return 1; }

int doNotClose(thandle_t) { return 0; }

} // namespace

TiffLayout::TiffLayout(const PageBitmap& page, const DocumentOptions& options)
    : format(page.format())
    , width(static_cast<std::uint32_t>(page.width()))
    , height(static_cast<std::uint32_t>(page.height()))
    , resolution(page.resolution())
{
    switch (options.fax ? TiffCompression::CcittG3OneD : options.compression) {
    case TiffCompression::None:
        break;
    case TiffCompression::PackBits:
        compression = COMPRESSION_PACKBITS;
        break;
    case TiffCompression::LzwPredictor:
        // Differences of neighbours are defined for whole bytes only.
        predictor = format == PixelFormat::Bilevel ? PREDICTOR_NONE : PREDICTOR_HORIZONTAL;
        [[fallthrough]];
    case TiffCompression::Lzw:
        compression = COMPRESSION_LZW;
        break;
    case TiffCompression::CcittG3OneD:
        compression = COMPRESSION_CCITTFAX3;
        group3Options = GROUP3OPT_FILLBITS;
        break;
    case TiffCompression::CcittG3TwoD:
        compression = COMPRESSION_CCITTFAX3;
        group3Options = GROUP3OPT_FILLBITS | GROUP3OPT_2DENCODING;
        break;
    case TiffCompression::CcittG4:
        compression = COMPRESSION_CCITTFAX4;
        break;
    case TiffCompression::Deflate:
        compression = COMPRESSION_ADOBE_DEFLATE;
        predictor = format == PixelFormat::Bilevel ? PREDICTOR_NONE : PREDICTOR_HORIZONTAL;
        break;
    }
    if (options.fax) {
        width = kFaxWidth;
        fillOrder = FILLORDER_LSB2MSB; // as fax hardware sends it
    }
    // One strip a page is what fax readers expect, and each G4 strip starts from nothing.
    rowsPerStrip = isCcitt()
        ? height
        : std::clamp(static_cast<std::uint32_t>(std::min<std::size_t>(kStripBytes / rowBytes(), height)), 1u, height);
}

std::size_t TiffLayout::rowBytes() const
{
    return (std::size_t { width } * static_cast<std::size_t>(bitsPerPixel(format)) + 7) / 8;
}

bool TiffLayout::describe(TIFF* tiff, std::uint32_t rows) const
{
    const bool isColour = format == PixelFormat::Rgb24;
    const bool isBilevel = format == PixelFormat::Bilevel;
    // Numbers pass through variable arguments here, so their types matter. The compression comes first because the
    // tags of its own exist only then.
    bool isGood = TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width) == 1
        && TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, rows) == 1
        && TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, isBilevel ? 1 : 8) == 1
        && TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, isColour ? 3 : 1) == 1
        && TIFFSetField(tiff, TIFFTAG_COMPRESSION, int { compression }) == 1
        && TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC,
               isColour        ? PHOTOMETRIC_RGB
                   : isBilevel ? PHOTOMETRIC_MINISWHITE
                               : PHOTOMETRIC_MINISBLACK)
            == 1
        && TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) == 1
        && TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == 1
        && TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, std::min(rowsPerStrip, rows)) == 1
        && TIFFSetField(tiff, TIFFTAG_XRESOLUTION, resolution.x) == 1
        && TIFFSetField(tiff, TIFFTAG_YRESOLUTION, resolution.y) == 1
        && TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH) == 1;
    if (isBilevel)
        isGood = isGood && TIFFSetField(tiff, TIFFTAG_FILLORDER, int { fillOrder }) == 1;
    if (compression == COMPRESSION_CCITTFAX3)
        isGood = isGood && TIFFSetField(tiff, TIFFTAG_GROUP3OPTIONS, group3Options) == 1;
    if (compression == COMPRESSION_CCITTFAX4)
        isGood = isGood && TIFFSetField(tiff, TIFFTAG_GROUP4OPTIONS, 0) == 1;
    if (hasPredictor())
        isGood = isGood && TIFFSetField(tiff, TIFFTAG_PREDICTOR, int { predictor }) == 1;
    return isGood;
}

namespace {

TiffHandle openTiff(const char* mode, const TiffCallbacks& callbacks, std::string& message)
{
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options { TIFFOpenOptionsAlloc(),
        &TIFFOpenOptionsFree };
    if (!options)
        return nullptr;
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), keepMessage, &message);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), ignoreWarning, nullptr);
    return TiffHandle { TIFFClientOpenExt("TIFF", mode, callbacks.client, callbacks.read, callbacks.write,
        callbacks.seek, doNotClose, callbacks.size, nullptr, nullptr, options.get()) };
}

} // namespace

TiffHandle openTiffForWriting(const TiffCallbacks& callbacks, std::string& message)
{
    return openTiff("wl", callbacks, message);
}

TiffHandle openTiffForAppending(const TiffCallbacks& callbacks, std::string& message)
{
    return openTiff("a", callbacks, message);
}

} // namespace quillrip
