// Every file is decoded by the library alone, too, which then has all coefficients in memory.

#include "quillrip/base/jpeg_reader.h"
#include "quillrip/base/sanitizer.h"
#include "tests/support/jpeg_writer.h"
#include "tests/support/spare_heap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csetjmp>
#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include <jerror.h>

namespace quillrip::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// Hands a file out in pieces.
class Pieces : public JpegSource {
public:
    explicit Pieces(Bytes file, std::size_t pieceBytes = SIZE_MAX)
        : m_file(std::move(file))
        , m_pieceBytes(pieceBytes)
    {
    }
    ByteView next() override
    {
        const ByteView piece = ByteView(m_file).sub(m_at, m_pieceBytes);
        m_at += piece.size;
        return piece;
    }

private:
    Bytes m_file;
    std::size_t m_pieceBytes;
    std::size_t m_at = 0;
};

struct Form {
    int width = 0;
    int height = 0;
    int components = 3;
    int horizontalStep = 1; ///< of the first component's samples for one of the others
    int verticalStep = 1;
    unsigned restartInterval = 0;
    int quality = 90;
    const std::vector<jpeg_scan_info>* scans = nullptr; ///< null: the library's own for progressive files
};

std::string nameOf(const Form& form)
{
    return std::to_string(form.width) + " x " + std::to_string(form.height) + ", " + std::to_string(form.components)
        + " components, steps " + std::to_string(form.horizontalStep) + " and " + std::to_string(form.verticalStep)
        + ", restart " + std::to_string(form.restartInterval) + ", quality " + std::to_string(form.quality)
        + (form.scans ? ", " + std::to_string(form.scans->size()) + " scans" : "");
}

/// Something with edges, slopes and noise.
Bytes fileOf(const Form& form)
{
    Bytes pixels;
    unsigned noise = 1;
    for (int y = 0; y < form.height; ++y) {
        for (int x = 0; x < form.width; ++x) {
            for (int c = 0; c < form.components; ++c) {
                noise = noise * 1664525 + 1013904223;
                const int edge = (x / 13 + y / 9 + c) % 3 == 0 ? 90 : 0;
                pixels.push_back(static_cast<std::uint8_t>((x * 3 + y * (c + 1)) % 120 + edge + (noise >> 28)));
            }
        }
    }
    const J_COLOR_SPACE space = form.components == 1 ? JCS_GRAYSCALE : form.components == 3 ? JCS_RGB : JCS_CMYK;
    return writeJpeg(pixels, form.width, form.height, form.components, space, [&](jpeg_compress_struct& info) {
        jpeg_set_quality(&info, form.quality, TRUE);
        info.restart_interval = form.restartInterval;
        info.comp_info[0].h_samp_factor = form.horizontalStep;
        info.comp_info[0].v_samp_factor = form.verticalStep;
        if (form.scans) {
            info.scan_info = form.scans->data();
            info.num_scans = static_cast<int>(form.scans->size());
        } else {
            jpeg_simple_progression(&info);
        }
    });
}

struct Rows {
    std::vector<Bytes> rows;
    bool isWhole = false;

    bool operator==(const Rows& other) const { return rows == other.rows && isWhole == other.isWhole; }
};

Rows readAll(JpegReader& reader)
{
    Rows result;
    if (!reader.readHeader() || !reader.start())
        return result;
    const jpeg_decompress_struct& info = reader.info();
    while (info.output_scanline < info.output_height) {
        Bytes row(std::size_t { info.output_width } * static_cast<std::size_t>(info.output_components));
        if (!reader.readRow(row.data()))
            return result;
        result.rows.push_back(row);
    }
    result.isWhole = true;
    return result;
}

Rows rowsOf(const Bytes& file, std::size_t plainBytes, std::size_t pieceBytes = SIZE_MAX)
{
    Pieces source(file, pieceBytes);
    WorkMeter work;
    JpegReader reader(source, work, plainBytes);
    return readAll(reader);
}

struct Library {
    jpeg_decompress_struct info {};
    jpeg_error_mgr errors {};
    std::jmp_buf escape {};
    Rows rows;

    ~Library() { jpeg_destroy_decompress(&info); }
};

void decode(Library& library, const Bytes& file)
{
    jpeg_decompress_struct& info = library.info;
    if (setjmp(library.escape) != 0)
        return;
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, file.data(), file.size());
    jpeg_read_header(&info, TRUE);
    jpeg_start_decompress(&info);
    while (info.output_scanline < info.output_height) {
        library.rows.rows.emplace_back(
            std::size_t { info.output_width } * static_cast<std::size_t>(info.output_components));
        JSAMPROW line = library.rows.rows.back().data();
        jpeg_read_scanlines(&info, &line, 1);
    }
    library.rows.isWhole = true;
}

/// By the library as it is.
Rows rowsByTheLibrary(const Bytes& file)
{
    Library library;
    library.info.err = jpeg_std_error(&library.errors);
    library.info.client_data = &library;
    library.errors.error_exit
        = [](j_common_ptr info) { std::longjmp(static_cast<Library*>(info->client_data)->escape, 1); };
    library.errors.emit_message = [](j_common_ptr, int) {};
    decode(library, file);
    return library.rows;
}

void expectTheLibrarysRows(const Bytes& file)
{
    const Rows expected = rowsByTheLibrary(file);
    for (const std::size_t plainBytes : { std::size_t { 0 }, std::size_t { 5000 }, PlainRowAllowance::kDefault }) {
        const Rows rows = rowsOf(file, plainBytes);
        EXPECT_EQ(rows.isWhole, expected.isWhole);
        EXPECT_TRUE(rows == expected) << "with " << plainBytes << " bytes of plain rows";
    }
}

jpeg_scan_info scan(std::vector<int> components, int first, int last, int highBit, int lowBit)
{
    jpeg_scan_info info {};
    info.comps_in_scan = static_cast<int>(components.size());
    std::copy(components.begin(), components.end(), info.component_index);
    info.Ss = first;
    info.Se = last;
    info.Ah = highBit;
    info.Al = lowBit;
    return info;
}

/// Ways in which three components can be cut into scans.
const std::vector<std::vector<jpeg_scan_info>>& scripts()
{
    static const std::vector<std::vector<jpeg_scan_info>> s_scripts {
        // Not progressive, each component by itself.
        { scan({ 0 }, 0, 63, 0, 0), scan({ 2 }, 0, 63, 0, 0), scan({ 1 }, 0, 63, 0, 0) },
        // Frequencies one after the other, no bits.
        { scan({ 0, 1, 2 }, 0, 0, 0, 0), scan({ 0 }, 1, 1, 0, 0), scan({ 1 }, 1, 63, 0, 0), scan({ 2 }, 1, 63, 0, 0),
            scan({ 0 }, 2, 40, 0, 0), scan({ 0 }, 41, 63, 0, 0) },
        // Bit after bit.
        { scan({ 0, 1, 2 }, 0, 0, 0, 3), scan({ 0 }, 1, 63, 0, 3), scan({ 0, 1, 2 }, 0, 0, 3, 2),
            scan({ 1 }, 1, 63, 0, 1), scan({ 2 }, 1, 63, 0, 1), scan({ 0 }, 1, 63, 3, 2), scan({ 0 }, 1, 63, 2, 1),
            scan({ 0, 1, 2 }, 0, 0, 2, 1), scan({ 0 }, 1, 63, 1, 0), scan({ 1 }, 1, 63, 1, 0), scan({ 2 }, 1, 63, 1, 0),
            scan({ 0, 1, 2 }, 0, 0, 1, 0) },
    };
    return s_scripts;
}

TEST(JpegReader, GivesTheLibrarysRows)
{
    for (const int components : { 1, 3, 4 }) {
        for (const auto& [width, height] : { std::pair(1, 1), { 8, 8 }, { 37, 23 }, { 200, 131 }, { 131, 200 } }) {
            for (const auto& [across, down] : { std::pair(1, 1), { 2, 2 }, { 2, 1 }, { 1, 2 }, { 4, 1 } }) {
                for (const unsigned restartInterval : { 0, 3 }) {
                    Form form { width, height, components, across, down, restartInterval };
                    SCOPED_TRACE(nameOf(form));
                    expectTheLibrarysRows(fileOf(form));
                }
            }
        }
    }
}

TEST(JpegReader, ReadsScansInAnyOrder)
{
    for (const auto& script : scripts()) {
        for (const auto& [across, down] : { std::pair(1, 1), { 2, 2 }, { 2, 1 } }) {
            for (const int quality : { 20, 75, 100 }) {
                Form form { 150, 90, 3, across, down, 0, quality, &script };
                SCOPED_TRACE(nameOf(form));
                expectTheLibrarysRows(fileOf(form));
            }
        }
    }
}

TEST(JpegReader, GivesTheLibrarysRowsOfAFileThatIsCutOff)
{
    std::vector<Form> forms { { 150, 90, 3, 2, 2 }, { 150, 90, 1 }, { 150, 90, 3, 1, 1, 5 } };
    for (const auto& script : scripts())
        forms.push_back({ 150, 90, 3, 2, 1, 0, 90, &script });
    // Of one, two, three lines of MCUs, where smoothing has few neighbours.
    for (const int height : { 7, 9, 17, 25, 33 })
        for (const int step : { 1, 2 })
            forms.push_back({ 50, height, 3, step, step });
    for (const Form& form : forms) {
        const Bytes file = fileOf(form);
        for (std::size_t at = 150; at < file.size(); at += std::max<std::size_t>(file.size() / 40, 7)) {
            SCOPED_TRACE(nameOf(form) + ", cut at " + std::to_string(at) + " of " + std::to_string(file.size()));
            expectTheLibrarysRows(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(at)));
        }
    }
}

TEST(JpegReader, GivesTheLibrarysRowsOfADamagedFile)
{
    const Bytes file = fileOf({ 150, 90, 3, 2, 2 });
    for (std::size_t at = 20; at < file.size(); at += file.size() / 200) {
        Bytes damaged = file;
        damaged[at] = static_cast<std::uint8_t>(damaged[at] ^ 0x41U);
        SCOPED_TRACE(at);
        expectTheLibrarysRows(damaged);
    }
}

TEST(JpegReader, TakesAFileInPieces)
{
    const Bytes file = fileOf({ 150, 90, 3, 2, 2 });
    const Rows expected = rowsByTheLibrary(file);
    ASSERT_TRUE(expected.isWhole);
    for (const std::size_t pieceBytes : { 1, 2, 100, 1000 })
        EXPECT_TRUE(rowsOf(file, 0, pieceBytes) == expected) << pieceBytes;
}

TEST(JpegReader, NeedsMemoryForWhatTheFileHas)
{
    constexpr int side = 4000; // 46 MiB of coefficients
    const Bytes file = writeJpeg(Bytes(std::size_t { side } * side, 255), side, side, 1, JCS_GRAYSCALE,
        [](jpeg_compress_struct& info) { jpeg_simple_progression(&info); });
    Pieces source(file);
    WorkMeter work;
    const SpareHeap bound(PlainRowAllowance::kDefault + (1U << 20));
    JpegReader reader(source, work);
    ASSERT_TRUE(reader.readHeader());
    ASSERT_TRUE(reader.start());
    Bytes row(side);
    for (int y = 0; y < side; ++y)
        ASSERT_TRUE(reader.readRow(row.data()));
    EXPECT_EQ(row[side - 1], 255);
}

TEST(JpegReader, EntersRowsThatTheLibraryTakes)
{
    constexpr int width = 30000;
    Pieces source(writeJpeg(Bytes(std::size_t { 3 } * width), width, 1, 3));
    WorkMeter work;
    const std::uint64_t before = HeapAccount::used();
    {
        JpegReader reader(source, work);
        ASSERT_TRUE(reader.readHeader());
        ASSERT_TRUE(reader.start());
        EXPECT_GT(HeapAccount::used(), before + std::uint64_t { 3 } * 8 * width);
    }
    EXPECT_EQ(HeapAccount::used(), before);
}

TEST(JpegReader, TellsOfMissingMemory)
{
    if (kIsWatchedBySanitizer)
        GTEST_SKIP() << "sanitizers have a heap of their own";
    const Bytes file = fileOf({ 300, 300, 3, 1, 1, 0, 100 });
    const std::uint64_t before = HeapAccount::used();
    int refused = 0;
    for (std::uint64_t spare = 0;; spare += 5000) {
        Pieces source(file);
        WorkMeter work;
        const SpareHeap bound(spare);
        JpegReader reader(source, work, 0);
        try {
            ASSERT_TRUE(reader.readHeader());
            ASSERT_TRUE(reader.start());
            break;
        } catch (const std::bad_alloc&) {
            ++refused;
        }
    }
    EXPECT_GT(refused, 10);
    EXPECT_LE(HeapAccount::used(), before + 1000);
}

TEST(JpegReader, TellsOfMemoryThatTheLibraryDoesNotGet)
{
    Pieces source(fileOf({ 30, 30, 3 }));
    WorkMeter work;
    JpegReader reader(source, work);
    ASSERT_TRUE(reader.readHeader());
    reader.info().mem->alloc_small = [](j_common_ptr info, int, std::size_t) -> void* {
        ERREXIT1(info, JERR_OUT_OF_MEMORY, 0);
        return nullptr;
    };
    EXPECT_THROW(reader.start(), std::bad_alloc);
}

TEST(JpegReader, PassesExceptionsOfItsSourceOn)
{
    class Broken : public JpegSource {
    public:
        ByteView next() override { throw std::runtime_error("no more"); }
    };
    Broken source;
    WorkMeter work;
    JpegReader reader(source, work);
    EXPECT_THROW(reader.readHeader(), std::runtime_error);
}

/// A file of three components with so many scans that have nothing.
Bytes emptyScans(int side, int scans)
{
    Bytes file { 0xFF, 0xD8, 0xFF, 0xDB, 0, 67, 0 };
    file.insert(file.end(), 64, 1);
    const auto high = static_cast<std::uint8_t>(side >> 8);
    const auto low = static_cast<std::uint8_t>(side);
    const Bytes frame { 0xFF, 0xC2, 0, 17, 8, high, low, high, low, 3, 1, 0x11, 0, 2, 0x11, 0, 3, 0x11, 0 };
    file.insert(file.end(), frame.begin(), frame.end());
    const Bytes tables { 0xFF, 0xC4, 0, 20, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0 };
    file.insert(file.end(), tables.begin(), tables.end());
    for (; scans > 0; --scans) {
        const Bytes scan { 0xFF, 0xDA, 0, 12, 3, 1, 0, 2, 0, 3, 0, 0, 0, 0 };
        file.insert(file.end(), scan.begin(), scan.end());
    }
    file.insert(file.end(), { 0xFF, 0xD9 });
    return file;
}

TEST(JpegReader, ChargesEveryPassOverThePicture)
{
    const auto spentOn = [](int scans) {
        Pieces source(emptyScans(400, scans));
        WorkMeter work;
        JpegReader reader(source, work);
        EXPECT_TRUE(reader.readHeader());
        EXPECT_TRUE(reader.start());
        return work.spent(Work::Decoding);
    };
    constexpr std::uint64_t blocks = std::uint64_t { 3 } * 50 * 50;
    EXPECT_GT(spentOn(1), 10 * blocks);
    EXPECT_GT(spentOn(11), spentOn(1) + 10 * 10 * blocks);
}

TEST(JpegReader, ChargesTheBytesOfScans)
{
    Pieces source(fileOf({ 80, 80, 1, 1, 1, 0, 100 }), 100);
    WorkMeter work;
    JpegReader reader(source, work);
    ASSERT_TRUE(reader.readHeader());
    ASSERT_TRUE(reader.start());
    EXPECT_GT(work.spent(Work::Decoding), 20 * fileOf({ 80, 80, 1, 1, 1, 0, 100 }).size());
}

TEST(JpegReader, EndsWhereTheWorkIsTooMuch)
{
    WorkBudget budget;
    budget.page = 50'000'000;
    WorkMeter work(budget);
    Pieces source(emptyScans(65500, 200));
    JpegReader reader(source, work);
    ASSERT_TRUE(reader.readHeader());
    EXPECT_FALSE(reader.start());
    EXPECT_TRUE(work.isExhausted());
    EXPECT_LT(work.spent(), 2 * budget.page);
}

TEST(JpegReader, ChargesRows)
{
    Pieces source(fileOf({ 400, 20, 3 }));
    WorkMeter work;
    JpegReader reader(source, work);
    ASSERT_TRUE(reader.readHeader());
    ASSERT_TRUE(reader.start());
    const std::uint64_t before = work.spent(Work::Decoding);
    Bytes row(1200);
    ASSERT_TRUE(reader.readRow(row.data()));
    EXPECT_GE(work.spent(Work::Decoding), before + 4 * 400);
}

} // namespace
} // namespace quillrip::test
