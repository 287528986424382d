// Jobs of a few bytes, or of some megabytes, that ask for far more memory than any page needs: what each may have is
// its page, the budget of memory, and what the program itself and its libraries take.

#include "quillrip/base/heap_account.h"
#include "quillrip/base/sanitizer.h"
#include "tests/cli/program.h"
#include "tests/emf/plus/plus_records.h"
#include "tests/pclxl/stream_builder.h"
#include "tests/support/image_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace quillrip::test {
namespace {

using A = pclxl::Attribute;
using O = pclxl::Operator;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint64_t kMegabyte = std::uint64_t { 1 } << 20;
/// The program, its libraries, stacks, and freed memory that the allocator keeps.
constexpr std::uint64_t kProgramBytes = 28 * kMegabyte;
/// Letter at 100 dpi in colour, which all of these jobs are drawn at.
constexpr std::uint64_t kPageBytes = std::uint64_t { 850 } * 1100 * 3;

class Memory : public testing::Test {
protected:
    void SetUp() override
    {
        if (kIsWatchedBySanitizer)
            GTEST_SKIP() << "sanitizers have a heap of their own";
    }

    Outcome convert(const std::string& job, const std::vector<std::string>& options = {})
    {
        m_inputBytes = job.size();
        std::filesystem::remove(m_folder.path("a.png"));
        std::vector<std::string> words { "-r", "100x100", "-o", m_folder.path("a.png"), "-i",
            m_folder.file("job", job) };
        words.insert(words.end(), options.begin(), options.end());
        return runQuillrip(words);
    }

    /// Ended with the limit's message, within it, and left nothing.
    void expectStopped(const std::string& job)
    {
        const Outcome outcome = convert(job);
        EXPECT_EQ(outcome.exitCode, 5) << outcome.errors;
        EXPECT_NE(outcome.errors.find("of memory besides its pages"), std::string::npos) << outcome.errors;
        EXPECT_EQ(m_folder.names(), std::vector<std::string> { "job" });
        expectWithin(outcome);
    }

    void expectWithin(const Outcome& outcome) const
    {
        const MemoryBudget budget;
        const std::uint64_t most = budget.bytes + m_inputBytes * budget.perInputByte + kPageBytes + kProgramBytes;
        EXPECT_LE(outcome.peakBytes / kMegabyte, most / kMegabyte);
    }

    TemporaryFolder m_folder;
    std::uint64_t m_inputBytes = 0;
};

std::string wrapped(const XlStream& contents)
{
    XlStream stream = XlStream::withHeader();
    stream.beginSession().openDataSource().beginPage(850, 1100).append(contents).endPage().endSession();
    const Bytes& bytes = stream.bytes();
    return std::string("\x1b%-12345X@PJL ENTER LANGUAGE=PCLXL\r\n") + std::string(bytes.begin(), bytes.end())
        + "\x1b%-12345X";
}

/// The headers of a progressive JPEG file up to its first scan, which has nothing but zeros.
Bytes progressiveJpeg(int side)
{
    Bytes file { 0xFF, 0xD8, 0xFF, 0xDB, 0, 67, 0 };
    file.insert(file.end(), 64, 1);
    const auto high = static_cast<std::uint8_t>(side >> 8);
    const auto low = static_cast<std::uint8_t>(side);
    const Bytes frame { 0xFF, 0xC2, 0, 17, 8, high, low, high, low, 3, 1, 0x11, 0, 2, 0x11, 0, 3, 0x11, 0 };
    file.insert(file.end(), frame.begin(), frame.end());
    file.insert(file.end(), { 0xFF, 0xC4, 0, 20, 0, 1 });
    file.insert(file.end(), 16, 0);
    file.insert(file.end(), { 0xFF, 0xDA, 0, 12, 3, 1, 0, 2, 0, 3, 0, 0, 0, 0 });
    file.insert(file.end(), 100, 0);
    file.insert(file.end(), { 0xFF, 0xD9 });
    return file;
}

XlStream jpegImage(int side)
{
    constexpr int jpeg = 2;
    XlStream stream;
    stream.colorSpace(2).cursor(0, 0).beginImage(false, 2, side, side, 400, 400);
    stream.readImage(0, side, jpeg, progressiveJpeg(side)).op(O::EndImage);
    return stream;
}

/// A path of so many short lines, each of two bytes.
XlStream longPath(int lines)
{
    constexpr int signedBytes = 1;
    constexpr int mostLines = 60000;
    XlStream stream;
    stream.op(O::NewPath).cursor(100, 100);
    for (int done = 0; done < lines; done += mostLines) {
        Bytes deltas;
        for (int i = 0; i < std::min(lines - done, mostLines); ++i) {
            deltas.push_back(static_cast<std::uint8_t>(i % 7 - 3));
            deltas.push_back(static_cast<std::uint8_t>(i % 5 - 2));
        }
        stream.uint16(A::NumberOfPoints, std::min(lines - done, mostLines)).ubyte(A::PointType, signedBytes);
        stream.op(O::LineRelPath).data(deltas, true);
    }
    return stream;
}

/// Records of a metafile for a picture of Letter's size.
class Metafile {
public:
    Metafile& record(std::uint32_t type, Bytes fields)
    {
        fields.resize((fields.size() + 3) / 4 * 4);
        word(type);
        word(static_cast<std::uint32_t>(8 + fields.size()));
        m_records.insert(m_records.end(), fields.begin(), fields.end());
        ++m_count;
        return *this;
    }

    /// A picture over all of the page (EMR_STRETCHDIBITS). `compression` as in BITMAPINFOHEADER.
    Metafile& picture(int side, int bits, std::uint32_t compression, const Bytes& contents)
    {
        constexpr std::uint32_t headerAt = 80;
        const auto size = static_cast<std::uint32_t>(side);
        const std::uint32_t tableBytes = bits == 8 ? 256 * 4 : 0;
        const std::uint32_t headerBytes = 40 + tableBytes;
        const auto contentBytes = static_cast<std::uint32_t>(contents.size());
        Bytes fields = words({ 0, 0, 849, 1099, 0, 0, 0, 0, size, size, headerAt, headerBytes, headerAt + headerBytes,
            contentBytes, 0, 0xCC0020, 850, 1100 });
        const Bytes header = words(
            { 40, size, size, static_cast<std::uint32_t>(bits) << 16 | 1, compression, contentBytes, 0, 0, 0, 0 });
        fields.insert(fields.end(), header.begin(), header.end());
        fields.resize(fields.size() + tableBytes);
        fields.insert(fields.end(), contents.begin(), contents.end());
        return record(81, fields);
    }

    /// A brush with a picture for its pattern (EMR_CREATEDIBPATTERNBRUSHPT).
    Metafile& patternBrush(int side, std::uint32_t compression, const Bytes& contents)
    {
        constexpr std::uint32_t headerAt = 32;
        constexpr std::uint32_t headerBytes = 40;
        const auto size = static_cast<std::uint32_t>(side);
        const auto contentBytes = static_cast<std::uint32_t>(contents.size());
        Bytes fields = words({ 1, 0, headerAt, headerBytes, headerAt + headerBytes, contentBytes });
        const Bytes header = words({ headerBytes, size, size, 1, compression, contentBytes, 0, 0, 0, 0 });
        fields.insert(fields.end(), header.begin(), header.end());
        fields.insert(fields.end(), contents.begin(), contents.end());
        return record(94, fields);
    }

    /// A comment of EMF+ records.
    Metafile& plus(const emf::plus::test::Records& records)
    {
        constexpr std::uint32_t signature = 0x2B464D45;
        Bytes fields = words({ 4 + static_cast<std::uint32_t>(records.get().size()), signature });
        fields.insert(fields.end(), records.get().begin(), records.get().end());
        return record(70, fields);
    }

    std::string bytes() const
    {
        Metafile whole;
        const std::uint32_t size = 108 + static_cast<std::uint32_t>(m_records.size()) + 20;
        whole.record(1,
            words({ 0, 0, 849, 1099, 0, 0, 21590, 27940, 0x464D4520, 0x10000, size, m_count + 2, 1, 0, 0, 0, 850, 1100,
                216, 279, 0, 0, 0, 216000, 279000 }));
        whole.m_records.insert(whole.m_records.end(), m_records.begin(), m_records.end());
        whole.record(14, words({ 0, 16, 20 }));
        return { whole.m_records.begin(), whole.m_records.end() };
    }

private:
    static Bytes words(const std::vector<std::uint32_t>& values)
    {
        Bytes bytes;
        for (const std::uint32_t value : values)
            for (int shift = 0; shift < 32; shift += 8)
                bytes.push_back(static_cast<std::uint8_t>(value >> shift));
        return bytes;
    }
    void word(std::uint32_t value)
    {
        const Bytes bytes = words({ value });
        m_records.insert(m_records.end(), bytes.begin(), bytes.end());
    }

    Bytes m_records;
    std::uint32_t m_count = 0;
};

/// EMF+ that draws an object's image over all of the page.
std::string plusImage(int side, const emf::plus::test::Fields& object)
{
    using emf::plus::test::Fields;
    constexpr std::uint8_t image = 5;
    emf::plus::test::Records records = emf::plus::test::header();
    records.object(image, 0, object);
    records.add(0x401A, 0, Fields().u32({ 0, 2 }).f32({ 0, 0, double(side), double(side), 0, 0, 850, 1100 }));
    return Metafile().plus(records).bytes();
}

emf::plus::test::Fields imageFile(const Bytes& file)
{
    return emf::plus::test::Fields().u32({ emf::plus::test::kVersion, 1, 0, 0, 0, 0, 1 }).bytes(file);
}

/// White squares, of which 6,000 x 6,000 pixels take some kilobytes: 137 MiB as Rgba32.
constexpr int kLargeSide = 6000;

Bytes largePng(bool isInterlaced)
{
    PngForm form;
    form.width = form.height = kLargeSide;
    form.colorType = 0;
    form.depth = 1;
    form.isInterlaced = isInterlaced;
    form.isBlank = true;
    return pngFile(form);
}

std::string repeated(const std::string& text, int count)
{
    std::string whole;
    while (count-- > 0)
        whole += text;
    return whole;
}

TEST_F(Memory, StopsPolygonsOfEndlesslyManyVertices)
{
    // 36,000 chords for each circle, in the polygon buffer.
    expectStopped("IN;SP1;PU5000,1000;PM0;PD;" + repeated("AA5000,5000,360,.01;", 2000) + "PM2;EP;PG;");
    expectStopped("IN;SP1;PU5000,1000;PM0;PD;" + repeated("AA5000,5000,360,0.5;", 10000) + "PM2;FP;PG;");
}

TEST_F(Memory, StopsPathsThatAreSavedAThousandTimes)
{
    XlStream stream = longPath(100000);
    for (int i = 0; i < 900; ++i)
        stream.op(O::PushGS).lineTo(5, 5);
    expectStopped(wrapped(stream));
}

TEST_F(Memory, StopsPathsOfMillionsOfPointsWhenTheyAreFilled)
{
    expectStopped(wrapped(longPath(4'000'000).op(O::PaintPath)));
}

TEST_F(Memory, HoldsOfProgressiveJpegFilesWhatIsNotZero)
{
    constexpr int side = 12000; // 824 MiB of coefficients
    const Outcome outcome = convert(wrapped(jpegImage(side)));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    expectWithin(outcome);
    constexpr std::uint32_t jpeg = 4;
    constexpr int sideInMetafile = 11000;
    const Outcome metafile
        = convert(Metafile().picture(sideInMetafile, 0, jpeg, progressiveJpeg(sideInMetafile)).bytes());
    EXPECT_EQ(metafile.exitCode, 0) << metafile.errors;
    expectWithin(metafile);
}

TEST_F(Memory, HoldsNoPictureThatIsDrawnRowByRow)
{
    constexpr std::uint32_t runs = 1;
    constexpr int side = 8000;
    const Outcome outcome = convert(Metafile().picture(side, 8, runs, Bytes(200, 0xFF)).bytes());
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    expectWithin(outcome);
    // Two rows of a bitmap that would have half a gigabyte.
    constexpr int sideOfWords = 11500;
    const Outcome words
        = convert(Metafile().picture(sideOfWords, 32, 0, Bytes(std::size_t { sideOfWords } * 4 * 2)).bytes());
    EXPECT_EQ(words.exitCode, 0) << words.errors;
    expectWithin(words);
}

TEST_F(Memory, HoldsNoInterlacedPicture)
{
    constexpr std::uint32_t png = 5;
    const Outcome outcome = convert(Metafile().picture(kLargeSide, 0, png, largePng(true)).bytes());
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    expectWithin(outcome);
}

TEST_F(Memory, LeavesOutPatternsThatAreTooLargeBeforeTheyAreDecoded)
{
    constexpr std::uint32_t png = 5;
    const Outcome outcome = convert(Metafile().patternBrush(kLargeSide, png, largePng(false)).bytes());
    EXPECT_NE(outcome.errors.find("pattern of a brush too large"), std::string::npos) << outcome.errors;
    EXPECT_EQ(outcome.exitCode, 0);
    expectWithin(outcome);
}

TEST_F(Memory, HoldsNoImageOfEmfPlus)
{
    using emf::plus::test::Fields;
    GifForm gif;
    gif.screenWidth = gif.screenHeight = gif.width = gif.height = kLargeSide;
    gif.isBlank = true;
    TiffForm tiff;
    tiff.width = tiff.height = kLargeSide;
    tiff.bits = tiff.samples = 1;
    tiff.photometric = 1;
    tiff.rowsPerStrip = 64;
    tiff.compression = 8; // Deflate
    tiff.isBlank = true;
    const auto side = static_cast<std::uint32_t>(kLargeSide);
    constexpr std::uint32_t indexed1 = 0x00030101;
    // Of which two rows came.
    Fields pixels = Fields().u32({ emf::plus::test::kVersion, 1, side, side, side / 8, indexed1, 0 });
    pixels.u32({ 0, 2, 0xFF000000, 0xFFFFFFFF }).bytes(Bytes(side / 8 * 2));
    const std::vector<Fields> objects { imageFile(largePng(false)), imageFile(largePng(true)), imageFile(gifFile(gif)),
        imageFile(tiffFile(tiff)), pixels };
    for (std::size_t i = 0; i < objects.size(); ++i) {
        SCOPED_TRACE(i);
        const Outcome outcome = convert(plusImage(kLargeSide, objects[i]));
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        EXPECT_EQ(outcome.errors, "");
        expectWithin(outcome);
    }
}

TEST_F(Memory, UnpacksNoCommentsOfImageFiles)
{
    PngForm form;
    form.comments = 40; // 153 MiB in 160 KB
    const Outcome outcome = convert(plusImage(form.width, imageFile(pngFile(form))));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_EQ(outcome.errors, "");
    expectWithin(outcome);
}

TEST_F(Memory, StopsImageFilesWhoseFieldsShareTheirBytes)
{
    // A directory of a TIFF file: a field for each number there is, all of them the same bytes.
    constexpr std::uint32_t fields = 4000;
    constexpr std::uint32_t shared = 40000;
    constexpr std::uint32_t directory = 8;
    emf::plus::test::Fields file;
    file.u8({ 'I', 'I', 42, 0 }).u32({ directory }).u16({ fields });
    const auto field = [&file](unsigned tag, unsigned type, std::uint32_t count, std::uint32_t value) {
        file.u16({ tag, type }).u32({ count, value });
    };
    constexpr unsigned number = 4;
    constexpr unsigned anything = 7;
    constexpr unsigned firstNote = 40000;
    field(256, number, 1, 1);
    field(257, number, 1, 1);
    field(262, number, 1, 1);
    field(273, number, 1, 0);
    field(279, number, 1, 1);
    for (std::uint32_t i = 5; i < fields; ++i)
        field(firstNote + i, anything, shared, directory);
    expectStopped(plusImage(1, imageFile(file)));
}

TEST_F(Memory, HoldsOfATextureWhatThePageShows)
{
    using emf::plus::test::Fields;
    constexpr std::uint8_t brush = 1;
    constexpr std::uint32_t texture = 2;
    constexpr std::uint32_t hasTransform = 2;
    const auto page = [](double scale) {
        emf::plus::test::Records records = emf::plus::test::header();
        records.object(brush, 0,
            Fields()
                .u32({ emf::plus::test::kVersion, texture, hasTransform, 0 })
                .f32({ scale, 0, 0, scale, 0, 0 })
                .bytes(imageFile(largePng(false))));
        records.add(0x400A, 0, Fields().u32({ 0, 1 }).f32({ 0, 0, 850, 1100 }));
        return Metafile().plus(records).bytes();
    };
    const Outcome reduced = convert(page(0.1));
    EXPECT_EQ(reduced.exitCode, 0) << reduced.errors;
    EXPECT_EQ(reduced.errors, "");
    expectWithin(reduced);
    expectStopped(page(1));
}

TEST_F(Memory, BoundsRowsWiderThanAnyPage)
{
    constexpr int deltaRow = 3;
    for (const std::uint32_t width : { 1'300'000u, 22'000'000u, 400'000'000u }) {
        XlStream stream;
        stream.colorSpace(2).cursor(0, 0);
        stream.ubyte(A::ColorMapping, 0).ubyte(A::ColorDepth, 2).uint32(A::SourceWidth, width);
        stream.uint16(A::SourceHeight, 10).xy(A::DestinationSize, 400, 400).op(O::BeginImage);
        stream.readImage(0, 10, deltaRow, Bytes(20)).op(O::EndImage);
        const Outcome outcome = convert(wrapped(stream));
        EXPECT_TRUE(outcome.exitCode == 0 || outcome.exitCode == 4 || outcome.exitCode == 5) << outcome.exitCode;
        expectWithin(outcome);
    }
}

TEST_F(Memory, KeepsWhatALongJobBringsInProportion)
{
    std::string macros = "\x1B"
                         "E";
    for (int id = 0; id < 100; ++id) {
        const std::string number = std::to_string(id);
        macros += "\x1B&f" + number + "Y\x1B&f0X" + std::string(60000, ' ') + "\x1B&f1X";
    }
    const Outcome outcome = convert(macros + "\x1B*t75R\x1B*r1A\x1B*b1W\xFF\x1B*rB\f");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    expectWithin(outcome);
}

TEST_F(Memory, IsLimitedByTheCommandLine)
{
    const std::string job = wrapped(longPath(50'000).op(O::PaintPath));
    EXPECT_EQ(convert(job).exitCode, 0);
    const Outcome stopped = convert(job, { "-limit-memory", "16" });
    EXPECT_EQ(stopped.exitCode, 5);
    EXPECT_NE(stopped.errors.find("needs more than 16 MiB of memory besides its pages"), std::string::npos)
        << stopped.errors;
    const std::string larger = wrapped(longPath(300'000).op(O::PaintPath));
    EXPECT_EQ(convert(larger).exitCode, 5);
    EXPECT_EQ(convert(larger, { "-limit-memory", "1000" }).exitCode, 0);
}

TEST_F(Memory, LargePagesTakeTurns)
{
    // Letter of 289 MiB each, all black.
    const std::string page = "\x1B&l2A\x1B*p0x0Y\x1B*c5000a6600b0P\f";
    const Outcome outcome = convert(repeated(page, 2), { "-r", "1800x1800", "-b", "8" });
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    constexpr std::uint64_t pageBytes = std::uint64_t { 15300 } * 19800;
    EXPECT_GE(outcome.peakBytes, pageBytes * 3 / 4);
    EXPECT_LE(outcome.peakBytes / kMegabyte, (pageBytes + MemoryBudget().bytes + kProgramBytes) / kMegabyte);
}

} // namespace
} // namespace quillrip::test
