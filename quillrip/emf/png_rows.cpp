// PNG files that lie in bitmaps and EMF+ images.

#include "quillrip/emf/image_rows.h"
#include "quillrip/emf/png_reader.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillrip::emf {

namespace {

constexpr const char* kDamagedPng = "its PNG file is damaged";

class PngRows : public SequentialRows {
public:
    PngRows(ByteView file, WorkMeter& work)
        : SequentialRows(work, kUnitsPerCodedPixel)
        , m_reader(file)
    {
    }

    bool begin() override
    {
        if (!m_reader.readHeader() || !m_reader.start())
            return false;
        m_shape = m_reader.shape();
        return true;
    }

private:
    bool next(std::uint8_t* to) override { return m_reader.readRow(to); }

    PngReader m_reader;
};

/// One of the seven pictures that an interlaced file has one after the other (PNG Specification, Adam7): every so many
/// columns of every so many rows.
struct Pass {
    int firstRow;
    int rowStep;
    int firstColumn;
    int columnStep;
    /// What a pixel stands for until later passes have come: this one and those to the right and below.
    int blockWidth;
    int blockHeight;

    int rows(int height) const { return (height - firstRow + rowStep - 1) / rowStep; }
    int columns(int width) const { return (width - firstColumn + columnStep - 1) / columnStep; }
};

/// The pixels of a pass in their places.
template <std::size_t Bytes>
void spread(const Pass& pass, int blockWidth, int width, const std::uint8_t* from, std::uint8_t* to)
{
    for (int x = pass.firstColumn; x < width; x += pass.columnStep, from += Bytes) {
        const int end = std::min(x + blockWidth, width);
        for (int column = x; column < end; ++column)
            std::memcpy(to + static_cast<std::size_t>(column) * Bytes, from, Bytes);
    }
}

constexpr std::size_t kPasses = 7;
constexpr std::array<Pass, kPasses> kAdam7 { {
    { 0, 8, 0, 8, 8, 8 },
    { 0, 8, 4, 8, 4, 8 },
    { 4, 8, 0, 4, 4, 4 },
    { 0, 4, 2, 4, 2, 4 },
    { 2, 4, 0, 2, 2, 2 },
    { 0, 2, 1, 2, 1, 2 },
    { 1, 2, 0, 1, 1, 1 },
} };

/// The rows of an interlaced file. Its last pass, half of the pixels, stands behind all others, so that no row is whole
/// before the end; but seven readers, one in each of the passes, meet in every row. A reader has to go through what
/// lies before its pass: altogether they decode the file twice, and hold no more of it than a row each.
///
/// Where a pass is damaged, those before it give a coarser picture.
class InterlacedPngRows : public ImageRows {
public:
    InterlacedPngRows(ByteView file, WorkMeter& work)
        : ImageRows(work, kUnitsPerCodedPixel)
        , m_file(file)
    {
    }

    /// False when the file is damaged.
    bool open()
    {
        PngReader reader(m_file);
        if (!reader.readHeader() || !reader.start())
            return false;
        m_shape = reader.shape();
        return true;
    }
    void row(int y, std::uint8_t* to) override;

private:
    /// How far a pass has been read.
    struct Progress {
        std::optional<PngReader> reader;
        std::vector<std::uint8_t> row; ///< the last that was whole
        std::vector<std::uint8_t> next;
        int rows = 0;
        bool hasEnded = false; ///< by damage, or because there is no more work
    };

    void advance(std::size_t pass, int rows);
    bool openPass(std::size_t pass);
    bool readRows(Progress& progress, std::size_t pass, int count);
    void paint(const Pass& pass, const Progress& progress, int y, std::uint8_t* to) const;

    ByteView m_file;
    std::array<Progress, kPasses> m_progress;
    int m_next = 0;
};

/// Rows of `pass` one by one, the last whole one stays in `progress`.
bool InterlacedPngRows::readRows(Progress& progress, std::size_t pass, int count)
{
    const auto columns = static_cast<std::uint64_t>(kAdam7[pass].columns(m_shape.width));
    for (int i = 0; i < count; ++i) {
        if (!mayMake(columns))
            return false;
        if (!progress.reader->readRow(progress.next.data())) {
            setDamaged(true);
            return false;
        }
        progress.row.swap(progress.next);
    }
    return true;
}

bool InterlacedPngRows::openPass(std::size_t pass)
{
    Progress& progress = m_progress[pass];
    progress.row.resize(m_shape.rowBytes());
    progress.next.resize(m_shape.rowBytes());
    progress.reader.emplace(m_file);
    if (!progress.reader->readHeader() || !progress.reader->start())
        return false;
    for (std::size_t before = 0; before < pass; ++before) {
        if (kAdam7[before].columns(m_shape.width) > 0
            && !readRows(progress, before, kAdam7[before].rows(m_shape.height)))
            return false;
    }
    return true;
}

void InterlacedPngRows::advance(std::size_t pass, int rows)
{
    Progress& progress = m_progress[pass];
    if (rows <= progress.rows || progress.hasEnded || kAdam7[pass].columns(m_shape.width) < 1)
        return;
    const bool isOpen = progress.reader || openPass(pass);
    for (; isOpen && progress.rows < rows; ++progress.rows) {
        if (!readRows(progress, pass, 1))
            break;
    }
    progress.hasEnded = progress.rows < rows;
}

void InterlacedPngRows::paint(const Pass& pass, const Progress& progress, int y, std::uint8_t* to) const
{
    const int last = pass.firstRow + (progress.rows - 1) * pass.rowStep;
    const bool isCoarse = isDamaged();
    if (progress.rows == 0 || y - last >= (isCoarse ? pass.blockHeight : 1))
        return;
    const int blockWidth = isCoarse ? pass.blockWidth : 1;
    if (m_shape.format == PictureShape::Format::Rgba32)
        spread<4>(pass, blockWidth, m_shape.width, progress.row.data(), to);
    else
        spread<3>(pass, blockWidth, m_shape.width, progress.row.data(), to);
}

void InterlacedPngRows::row(int y, std::uint8_t* to)
{
    if (y < m_next) {
        for (Progress& progress : m_progress) {
            progress.reader.reset();
            progress.rows = 0;
            progress.hasEnded = false;
        }
        setDamaged(false);
    }
    m_next = y + 1;
    bool isWhole = true;
    for (std::size_t pass = 0; pass < kPasses; ++pass) {
        advance(pass, kAdam7[pass].rows(y + 1));
        isWhole = isWhole && !m_progress[pass].hasEnded;
    }
    if (!isWhole)
        whiten(to);
    for (std::size_t pass = 0; pass < kPasses; ++pass)
        paint(kAdam7[pass], m_progress[pass], y, to);
}

} // namespace

bool isPngFile(ByteView file) { return file.size > 1 && file[0] == 0x89 && file[1] == 'P'; }

std::unique_ptr<ImageRows> openPng(ByteView file, std::uint64_t mostPixels, WorkMeter& work, std::string& problem)
{
    bool isInterlaced = false;
    {
        PngReader reader(file);
        if (!reader.readHeader()) {
            problem = kDamagedPng;
            return nullptr;
        }
        if (std::uint64_t { reader.width() } * reader.height() > mostPixels) {
            problem = "its PNG file is too large";
            return nullptr;
        }
        isInterlaced = reader.isInterlaced();
    }
    if (isInterlaced) {
        auto rows = std::make_unique<InterlacedPngRows>(file, work);
        if (rows->open())
            return rows;
    } else {
        auto rows = std::make_unique<PngRows>(file, work);
        if (rows->begin())
            return rows;
    }
    problem = kDamagedPng;
    return nullptr;
}

} // namespace quillrip::emf
