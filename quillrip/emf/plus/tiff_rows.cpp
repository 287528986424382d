// TIFF files of EMF+ images, read by libtiff.

#include "quillrip/base/heap_account.h"
#include "quillrip/emf/plus/image_files.h"
#include "quillrip/emf/plus/memory_file.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <tiffio.h>

namespace quillrip::emf::plus {

namespace {

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

/// The library reads a mapped file in its place. Tiles that are not compressed it reads in no other way.
int mapTiff(thandle_t handle, void** base, toff_t* size)
{
    const ByteView bytes = static_cast<MemoryFile*>(handle)->bytes;
    *base = const_cast<std::uint8_t*>(bytes.data);
    *size = bytes.size;
    return 1;
}

void unmapTiff(thandle_t, void*, toff_t) { }

struct TiffCloser {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};

/// What the library takes for the first directory, of which it keeps every field: together they can have far more bytes
/// than the file, where they share them (TIFF 6.0, Image File Directory).
std::uint64_t directoryBytes(ByteView file)
{
    const bool isBigEndian = !file.empty() && file[0] == 'M';
    const auto number = [&](std::size_t at, std::size_t bytes) {
        const ByteView part = file.sub(at, bytes);
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < part.size; ++i)
            value = value << 8 | part[isBigEndian ? i : part.size - 1 - i];
        return value;
    };
    constexpr std::array<std::uint64_t, 14> typeBytes { 0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4 };
    constexpr std::size_t fieldBytes = 12;
    const auto start = static_cast<std::size_t>(number(4, 4));
    const std::uint64_t fields = number(start, 2);
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < fields; ++i) {
        const std::size_t at = start + 2 + i * fieldBytes;
        const std::uint64_t type = number(at + 2, 2);
        const std::uint64_t bytes = type < typeBytes.size() ? typeBytes[type] * number(at + 4, 4) : 0;
        // A field that is longer than the file is not read.
        sum += bytes <= file.size ? bytes : 0;
    }
    // Places and lengths of strips take up to eight bytes in memory for two in the file.
    return sum * 4;
}

/// The codings that GDI+, which puts the files there, can read. Others take memory as they please.
bool hasKnownCoding(TIFF* tiff)
{
    constexpr std::array<std::uint16_t, 10> known { COMPRESSION_NONE, COMPRESSION_CCITTRLE, COMPRESSION_CCITTFAX3,
        COMPRESSION_CCITTFAX4, COMPRESSION_LZW, COMPRESSION_OJPEG, COMPRESSION_JPEG, COMPRESSION_ADOBE_DEFLATE,
        COMPRESSION_PACKBITS, COMPRESSION_DEFLATE };
    std::uint16_t coding = COMPRESSION_NONE;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &coding);
    return std::find(known.begin(), known.end(), coding) != known.end();
}

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

/// Whether a JPEG file comes in several scans (ITU-T Recommendation T.81): progressive, or its components one by one.
bool hasSeveralScans(ByteView jpeg)
{
    enum : std::uint8_t {
        kBaseline = 0xC0,
        kExtended = 0xC1,
        kTables = 0xC4,
        kArithmetic = 0xCC,
        kLastFrame = 0xCF,
        kRestart = 0xD0,
        kStart = 0xD8,
        kScan = 0xDA
    };
    // Strips may share their bytes, so that looking at all of each could take for ever.
    constexpr int mostSteps = 4096;
    int components = 0;
    int steps = 0;
    for (std::size_t at = 0; at + 10 <= jpeg.size; ++steps) {
        if (steps == mostSteps)
            return true;
        const std::uint8_t marker = jpeg[at + 1];
        // What is no marker is passed over, as the library does.
        if (jpeg[at] != 0xFF || marker == 0 || marker == 0xFF) {
            ++at;
        } else if (marker >= kRestart && marker <= kStart) {
            at += 2;
        } else if (marker == kScan) {
            return jpeg[at + 4] < components;
        } else {
            if (marker >= kBaseline && marker <= kLastFrame && marker != kTables && marker != kArithmetic) {
                if (marker > kExtended)
                    return true;
                components = jpeg[at + 9];
            }
            at += 2 + (std::size_t { jpeg[at + 2] } << 8 | jpeg[at + 3]);
        }
    }
    return false;
}

/// What libjpeg keeps besides, of pieces in several scans: a coefficient of two bytes for each sample.
std::uint64_t coefficientBytes(TIFF* tiff, ByteView file)
{
    std::uint16_t coding = COMPRESSION_NONE;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &coding);
    if (coding != COMPRESSION_JPEG)
        return 0;
    const std::uint32_t pieces = TIFFIsTiled(tiff) ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff);
    for (std::uint32_t piece = 0; piece < pieces; ++piece) {
        const auto at = static_cast<std::size_t>(TIFFGetStrileOffset(tiff, piece));
        if (hasSeveralScans(file.sub(at, static_cast<std::size_t>(TIFFGetStrileByteCount(tiff, piece)))))
            return 2 * pieceBytes(tiff);
    }
    return 0;
}

/// Rows of a strip or a tile: where pieces begin, decoding can.
std::uint64_t pieceRows(TIFF* tiff, int height)
{
    std::uint32_t rows = 0;
    TIFFGetFieldDefaulted(tiff, TIFFIsTiled(tiff) ? TIFFTAG_TILELENGTH : TIFFTAG_ROWSPERSTRIP, &rows);
    return std::clamp<std::uint64_t>(rows, 1, static_cast<std::uint64_t>(height));
}

/// Whether the row that is stored first lies at the foot (TIFF 6.0, Orientation).
bool isUpsideDown(TIFF* tiff)
{
    std::uint16_t orientation = ORIENTATION_TOPLEFT;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_ORIENTATION, &orientation);
    return orientation == ORIENTATION_BOTLEFT || orientation == ORIENTATION_BOTRIGHT
        || orientation == ORIENTATION_LEFTBOT || orientation == ORIENTATION_RIGHTBOT;
}

void straighten(const std::uint32_t* from, int width, std::uint8_t* to)
{
    for (int x = 0; x < width; ++x, ++from, to += 4) {
        const unsigned alpha = TIFFGetA(*from);
        const auto straight = [alpha](unsigned value) {
            return static_cast<std::uint8_t>(alpha == 0 ? 0 : std::min(255U, (value * 255 + alpha / 2) / alpha));
        };
        to[0] = straight(TIFFGetR(*from));
        to[1] = straight(TIFFGetG(*from));
        to[2] = straight(TIFFGetB(*from));
        to[3] = static_cast<std::uint8_t>(alpha);
    }
}

/// The library converts whatever a file holds to pixels by the strip or the tile. They are made in bands of whole
/// pieces; where a piece is larger than a band, each of its bands costs all of the piece that lies before.
class TiffRows : public ImageRows {
public:
    TiffRows(ByteView file, WorkMeter& work)
        : ImageRows(work, kUnitsPerCodedPixel)
        , m_file { file }
    {
    }
    ~TiffRows() override
    {
        if (m_hasImage)
            TIFFRGBAImageEnd(&m_image);
    }

    bool open(std::size_t bandBytes);
    void row(int y, std::uint8_t* to) override;

private:
    std::uint64_t storedRow(int y) const
    {
        return static_cast<std::uint64_t>(m_isUpsideDown ? m_shape.height - 1 - y : y);
    }
    /// A pixel that does not come.
    std::uint32_t blank() const { return m_shape.hasAlpha ? 0 : UINT32_MAX; }
    void readBand(std::uint64_t row);

    MemoryFile m_file;
    HeapClaim m_claim;
    std::unique_ptr<TIFF, TiffCloser> m_tiff;
    TIFFRGBAImage m_image {};
    bool m_hasImage = false;
    bool m_isUpsideDown = false;
    std::uint64_t m_costOfPixel = 1; ///< times that of one of four bytes
    std::uint64_t m_pieceRows = 1;
    std::uint64_t m_bandRows = 1;
    std::vector<std::uint32_t> m_band;
    std::uint64_t m_first = 0; ///< of the band's rows, as they are stored
    std::uint64_t m_count = 0;
};

bool TiffRows::open(std::size_t bandBytes)
{
    // The library would write its complaints to the console.
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    m_claim.add(directoryBytes(m_file.bytes));
    m_tiff.reset(TIFFClientOpen(
        "image", "r", &m_file, readTiff, writeTiff, seekTiff, closeTiff, sizeOfTiff, mapTiff, unmapTiff));
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    if (!m_tiff || !TIFFGetField(m_tiff.get(), TIFFTAG_IMAGEWIDTH, &width)
        || !TIFFGetField(m_tiff.get(), TIFFTAG_IMAGELENGTH, &height) || !isDrawableSize(width, height)
        || !hasKnownCoding(m_tiff.get()))
        return false;
    const std::uint64_t piece = pieceBytes(m_tiff.get());
    const std::uint64_t coefficients = coefficientBytes(m_tiff.get(), m_file.bytes);
    m_claim.add(piece + coefficients);
    constexpr int stopsAtErrors = 1;
    char message[1024];
    m_hasImage
        = TIFFRGBAImageOK(m_tiff.get(), message) && TIFFRGBAImageBegin(&m_image, m_tiff.get(), stopsAtErrors, message);
    if (!m_hasImage)
        return false;
    m_image.req_orientation = ORIENTATION_TOPLEFT;
    m_isUpsideDown = isUpsideDown(m_tiff.get());
    m_shape.format = PictureShape::Format::Rgba32;
    m_shape.hasAlpha = m_image.alpha != 0;
    m_shape.width = static_cast<int>(width);
    m_shape.height = static_cast<int>(height);
    constexpr std::uint64_t mostScans = 100; // that libtiff allows
    m_costOfPixel = std::max<std::uint64_t>(1, std::uint64_t { m_image.samplesperpixel } * m_image.bitspersample / 32)
        * (coefficients > 0 ? mostScans : 1);
    m_pieceRows = pieceRows(m_tiff.get(), m_shape.height);
    // Within a piece, a band begins where rows that share their colours do (at most four).
    constexpr std::uint64_t mostSubsampled = 4;
    const std::uint64_t fitting = std::max<std::uint64_t>(bandBytes, piece) / m_shape.rowBytes();
    m_bandRows = fitting >= m_pieceRows ? fitting / m_pieceRows * m_pieceRows
                                        : std::max(fitting / mostSubsampled, std::uint64_t { 1 }) * mostSubsampled;
    readBand(storedRow(0));
    return !isDamaged()
        || std::any_of(m_band.begin(), m_band.end(), [this](std::uint32_t pixel) { return pixel != blank(); });
}

/// The band that a row, counted as they are stored, is in.
void TiffRows::readBand(std::uint64_t row)
{
    const auto height = static_cast<std::uint64_t>(m_shape.height);
    const auto width = static_cast<std::uint64_t>(m_shape.width);
    const std::uint64_t piece = row - row % m_pieceRows;
    const bool isWithinPiece = m_bandRows < m_pieceRows;
    m_first = isWithinPiece ? row - (row - piece) % m_bandRows : row - row % m_bandRows;
    m_count = std::min(m_bandRows, (isWithinPiece ? std::min(piece + m_pieceRows, height) : height) - m_first);
    m_band.assign(width * m_count, blank());
    if (!mayMake(width * (m_first % m_pieceRows + m_count) * m_costOfPixel))
        return;
    m_image.row_offset = static_cast<int>(m_first);
    if (!TIFFRGBAImageGet(
            &m_image, m_band.data(), static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(m_count)))
        setDamaged(true);
}

void TiffRows::row(int y, std::uint8_t* to)
{
    const std::uint64_t stored = storedRow(y);
    if (stored < m_first || stored >= m_first + m_count)
        readBand(stored);
    // The library turns what it is asked for upright.
    const std::uint64_t inBand = m_isUpsideDown ? m_first + m_count - 1 - stored : stored - m_first;
    straighten(m_band.data() + inBand * static_cast<std::uint64_t>(m_shape.width), m_shape.width, to);
}

} // namespace

std::unique_ptr<ImageRows> openTiff(ByteView file, WorkMeter& work, std::string& problem, std::size_t bandBytes)
{
    auto rows = std::make_unique<TiffRows>(file, work);
    if (rows->open(bandBytes))
        return rows;
    problem = "its TIFF file cannot be read";
    return nullptr;
}

} // namespace quillrip::emf::plus
