// JFIF, baseline DCT.
//
// Three choices: no subsampling of colour, since thin coloured lines and text on a page would get grey borders;
// the standard Huffman tables, since tables made for the page need all its coefficients in memory (six times the
// pixels) for a few per cent; and one level of loss for all pages.
//
// A page is cut into bands that different threads compress, each as an image of its own. Their data can be joined: a
// restart marker (ITU-T Recommendation T.81, B.2.1) stands between them, at which a decoder starts anew, and the header
// of the first band gets the height of the page.

#include "quillrip/image/file_encoder.h"
#include "quillrip/image/light_rows.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include <jerror.h>
#include <jpeglib.h>

namespace quillrip {

namespace {

constexpr std::size_t kOutputStep = std::size_t { 256 } << 10;

/// What the library calls back; its error function must not return to it.
struct Compressor {
    jpeg_compress_struct library {};
    jpeg_error_mgr errors {};
    jpeg_destination_mgr destination {};
    std::jmp_buf failure {};
    std::array<char, JMSG_LENGTH_MAX> message {};
    std::vector<std::uint8_t>* out = nullptr;
    std::size_t used = 0; ///< of `out`, before the library's present step
    bool isOutOfMemory = false;
};

Compressor& compressorOf(j_common_ptr library) { return *static_cast<Compressor*>(library->client_data); }
Compressor& compressorOf(j_compress_ptr library) { return *static_cast<Compressor*>(library->client_data); }

void failWithMessage(j_common_ptr library)
{
    Compressor& compressor = compressorOf(library);
    compressor.isOutOfMemory = compressor.isOutOfMemory || compressor.errors.msg_code == JERR_OUT_OF_MEMORY;
    compressor.errors.format_message(library, compressor.message.data());
    std::longjmp(compressor.failure, 1); // NOLINT
}

void ignoreMessage(j_common_ptr) { }

/// False when there is no memory for it: an exception must not cross the library.
bool growOutput(Compressor& compressor)
{
    try {
        compressor.out->resize(compressor.used + kOutputStep);
    } catch (const std::bad_alloc&) {
        compressor.isOutOfMemory = true;
        return false;
    }
    compressor.destination.next_output_byte = &(*compressor.out)[compressor.used];
    compressor.destination.free_in_buffer = kOutputStep;
    return true;
}

void startOutput(j_compress_ptr library)
{
    if (!growOutput(compressorOf(library)))
        compressorOf(library).errors.error_exit(reinterpret_cast<j_common_ptr>(library));
}

boolean continueOutput(j_compress_ptr library)
{
    compressorOf(library).used += kOutputStep;
    startOutput(library);
    return TRUE;
}

void finishOutput(j_compress_ptr library)
{
    Compressor& compressor = compressorOf(library);
    compressor.out->resize(compressor.used + kOutputStep - compressor.destination.free_in_buffer);
}

class JpegEncoder final : public FileEncoder {
public:
    JpegEncoder(PageBitmap&& bitmap, PageTarget target, int quality)
        : FileEncoder(std::move(bitmap), std::move(target))
        , m_quality(std::clamp(quality, 1, 100))
        , m_blocksAcross((page().width() + kBlock - 1) / kBlock)
    {
        const auto rows = static_cast<int>(std::min<std::size_t>(
            RowBands::kUsualBytes / page().rowBytes() / kBlock, static_cast<std::size_t>(page().height())));
        m_bandHeight = std::clamp(rows, 1, kLongestRestart / m_blocksAcross) * kBlock;
    }

    int pieceCount() const override { return (page().height() - 1) / m_bandHeight + 1; }

    std::string encode(int piece, EncodedPiece& encoded) const override
    {
        std::vector<std::uint8_t> row(page().rowBytes() * (page().format() == PixelFormat::Bilevel ? 8 : 1));
        encoded.bytes.clear();
        Compressor compressor;
        compressor.out = &encoded.bytes;
        const int top = piece * m_bandHeight;
        const int bottom = std::min(page().height() - top, m_bandHeight) + top;
        const bool isGood = compress(compressor, top, bottom, row.data());
        if (compressor.isOutOfMemory)
            throw std::bad_alloc {};
        if (!isGood)
            return std::string { "JPEG: " } + compressor.message.data();
        return makePart(piece, encoded.bytes) ? std::string {} : std::string { "JPEG: the data has no start" };
    }

protected:
    RowRange rowsFrom(int piece) const override { return { piece * m_bandHeight, page().height() }; }

private:
    static constexpr int kBlock = 8; ///< pixels across and down that are coded together
    static constexpr int kLongestRestart = 65535; ///< blocks from one restart marker to the next

    /// Makes a whole image of a band the page's part that it stands for. False when it is not what we know.
    bool makePart(int piece, std::vector<std::uint8_t>& bytes) const
    {
        constexpr std::uint8_t startOfFrame = 0xC0;
        constexpr std::uint8_t startOfScan = 0xDA;
        constexpr std::uint8_t firstRestart = 0xD0;
        constexpr std::size_t restarts = 8;
        constexpr std::size_t heightInFrame = 5; // behind the marker, the segment's length and the precision
        // Segments follow each other up to the data: a marker of two bytes, a length that counts its own two.
        std::size_t at = 2;
        bool isData = false;
        while (!isData) {
            if (at + heightInFrame + 2 > bytes.size() || bytes[at] != 0xFF)
                return false;
            if (bytes[at + 1] == startOfFrame) {
                bytes[at + heightInFrame] = static_cast<std::uint8_t>(page().height() >> 8);
                bytes[at + heightInFrame + 1] = static_cast<std::uint8_t>(page().height());
            }
            isData = bytes[at + 1] == startOfScan;
            at += 2 + (std::size_t { bytes[at + 2] } << 8 | bytes[at + 3]);
        }
        if (at + 2 > bytes.size())
            return false;
        // What is not the last band ends with a restart marker where its own image ended.
        if (piece + 1 < pieceCount())
            bytes.back() = static_cast<std::uint8_t>(firstRestart + static_cast<std::size_t>(piece) % restarts);
        if (piece > 0)
            bytes.erase(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
        return true;
    }

    /// Nothing with a destructor lives in here: errors jump back to its start.
    bool compress(Compressor& compressor, int top, int bottom, std::uint8_t* row) const
    {
        jpeg_compress_struct& library = compressor.library;
        library.err = jpeg_std_error(&compressor.errors);
        compressor.errors.error_exit = failWithMessage;
        compressor.errors.output_message = ignoreMessage;
        library.client_data = &compressor;
        if (setjmp(compressor.failure) != 0) { // NOLINT
            jpeg_destroy_compress(&library);
            return false;
        }
        jpeg_create_compress(&library);
        library.client_data = &compressor;
        compressor.destination.init_destination = startOutput;
        compressor.destination.empty_output_buffer = continueOutput;
        compressor.destination.term_destination = finishOutput;
        library.dest = &compressor.destination;
        const bool isColour = page().format() == PixelFormat::Rgb24;
        library.image_width = static_cast<JDIMENSION>(page().width());
        library.image_height = static_cast<JDIMENSION>(bottom - top);
        library.input_components = isColour ? 3 : 1;
        library.in_color_space = isColour ? JCS_RGB : JCS_GRAYSCALE;
        jpeg_set_defaults(&library);
        jpeg_set_quality(&library, m_quality, TRUE);
        library.comp_info[0].h_samp_factor = 1;
        library.comp_info[0].v_samp_factor = 1;
        library.density_unit = 1;
        library.X_density = dotsPerInch(page().resolution().x);
        library.Y_density = dotsPerInch(page().resolution().y);
        if (pieceCount() > 1)
            library.restart_interval = static_cast<unsigned>(m_bandHeight / kBlock * m_blocksAcross);
        jpeg_start_compress(&library, TRUE);
        for (int y = top; y < bottom; ++y) {
            if (page().format() == PixelFormat::Bilevel)
                lightRowAsGray(page(), y, row);
            else
                lightRow(page(), y, row);
            jpeg_write_scanlines(&library, &row, 1);
        }
        jpeg_finish_compress(&library);
        jpeg_destroy_compress(&library);
        return true;
    }

    static UINT16 dotsPerInch(double value) { return static_cast<UINT16>(std::clamp(std::lround(value), 1L, 65535L)); }

    int m_quality;
    int m_blocksAcross;
    int m_bandHeight; ///< rows of pixels, whole blocks
};

} // namespace

std::unique_ptr<PageEncoder> makeJpegEncoder(PageBitmap&& page, PageTarget target, int quality, std::string& reason)
{
    if (page.width() > JPEG_MAX_DIMENSION || page.height() > JPEG_MAX_DIMENSION) {
        reason = "the page has " + std::to_string(page.width()) + " x " + std::to_string(page.height())
            + " pixels; JPEG files hold at most " + std::to_string(JPEG_MAX_DIMENSION) + " each way";
        return nullptr;
    }
    return std::make_unique<JpegEncoder>(std::move(page), std::move(target), quality);
}

} // namespace quillrip
