#include "quillrip/image/document_writer.h"

#include "tests/image/sample_pages.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace quillrip;
using namespace quillrip::test;
namespace fs = std::filesystem;

namespace {

/// Runs the function in a process of its own: true when it returned true. For what cannot be taken back, such as
/// limits and users.
bool holdsInAnotherProcess(const std::function<bool()>& claim)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(claim() ? 0 : 1);
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool hasUnnamedFiles(const ScratchFolder& scratch)
{
    const int descriptor = open(scratch.folder().c_str(), O_TMPFILE | O_RDWR, 0600);
    if (descriptor >= 0)
        close(descriptor);
    return descriptor >= 0;
}

const char* const kAllExtensions[] = { ".bmp", ".pcx", ".png", ".jpg", ".tif" };

} // namespace

TEST(DocumentWriter, NothingIsSeenBeforeCommit)
{
    for (const char* extension : kAllExtensions) {
        const ScratchFolder scratch;
        const auto writer = DocumentWriter::create(optionsFor(scratch.path(std::string { "out" } + extension)));
        ASSERT_TRUE(writer) << writer.reason();
        for (int i = 0; i < 6; ++i)
            ASSERT_TRUE(writer->addPage(makePage(PixelFormat::Gray8, 100, 100, Content::Text)));
        EXPECT_FALSE(fs::exists(scratch.path(std::string { "out" } + extension)));
        if (hasUnnamedFiles(scratch)) {
            EXPECT_EQ(scratch.entryCount(), 0u);
        }
        ASSERT_TRUE(writer->commit()) << writer->reason();
        EXPECT_EQ(writer->pageCount(), 6);
        EXPECT_EQ(scratch.entryCount(), std::string { extension } == ".tif" ? 1u : 6u);
    }
}

TEST(DocumentWriter, WithoutCommitFormerFilesStay)
{
    for (const char* extension : kAllExtensions) {
        const ScratchFolder scratch;
        const auto options = optionsFor(scratch.path(std::string { "out" } + extension));
        writeTextFile(options.path, "former");
        {
            const auto writer = DocumentWriter::create(options);
            ASSERT_TRUE(writer) << writer.reason();
            for (int i = 0; i < 3; ++i)
                ASSERT_TRUE(writer->addPage(makePage(PixelFormat::Rgb24, 300, 300, Content::Text)));
        }
        EXPECT_EQ(readTextFile(options.path), "former");
        EXPECT_EQ(scratch.entryCount(), 1u);
    }
}

TEST(DocumentWriter, AKilledProcessLeavesNothing)
{
    const ScratchFolder scratch;
    if (!hasUnnamedFiles(scratch))
        GTEST_SKIP() << "no unnamed files here";
    for (const char* extension : kAllExtensions) {
        const auto options = optionsFor(scratch.path(std::string { "out" } + extension));
        int ready[2];
        ASSERT_EQ(pipe(ready), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            const auto writer = DocumentWriter::create(options);
            for (int i = 0; writer && i < 5; ++i)
                if (!writer->addPage(makePage(PixelFormat::Gray8, 1000, 500, Content::Noise)))
                    _exit(1);
            const char done = 1;
            if (writer && write(ready[1], &done, 1) == 1)
                pause();
            _exit(1);
        }
        close(ready[1]);
        char done = 0;
        EXPECT_EQ(read(ready[0], &done, 1), 1);
        close(ready[0]);
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(scratch.entryCount(), 0u) << extension;
    }
}

TEST(DocumentWriter, AFullDiskIsReportedAndLeavesNothing)
{
    for (const char* extension : kAllExtensions) {
        const ScratchFolder scratch;
        const auto options = optionsFor(scratch.path(std::string { "out" } + extension));
        writeTextFile(options.path, "former");
        EXPECT_TRUE(holdsInAnotherProcess([&] {
            // The nearest that a test can come to a full disk: files that may not grow.
            signal(SIGXFSZ, SIG_IGN);
            const rlimit limit { 100000, 100000 };
            setrlimit(RLIMIT_FSIZE, &limit);
            const auto writer = DocumentWriter::create(options);
            bool isGood = static_cast<bool>(writer);
            for (int i = 0; isGood && i < 5; ++i)
                isGood = writer->addPage(makePage(PixelFormat::Rgb24, 500, 500, Content::Noise));
            const bool committed = writer->commit();
            return !committed && writer->reason().find("cannot be written") == 0
                && writer->reason().find("File too large") != std::string::npos
                && !writer->addPage(makePage(PixelFormat::Rgb24, 5, 5, Content::Noise));
        })) << extension;
        EXPECT_EQ(readTextFile(options.path), "former");
        EXPECT_EQ(scratch.entryCount(), 1u);
    }
}

TEST(DocumentWriter, MissingFolderFailsAtOnce)
{
    const ScratchFolder scratch;
    for (const char* extension : kAllExtensions) {
        const std::string path = scratch.path(std::string { "missing/out" } + extension);
        const auto writer = DocumentWriter::create(optionsFor(path));
        EXPECT_FALSE(writer);
        EXPECT_EQ(writer.reason(), "cannot be written: No such file or directory");
    }
}

TEST(DocumentWriter, ProtectedFoldersAndFilesAreRefused)
{
    const ScratchFolder scratch;
    fs::permissions(scratch.folder(), fs::perms { 0755 });
    fs::create_directory(scratch.path("shared"));
    fs::permissions(scratch.path("shared"), fs::perms { 0777 });
    writeTextFile(scratch.path("shared/mine.png"), "mine");
    fs::permissions(scratch.path("shared/mine.png"), fs::perms { 0444 });
    EXPECT_TRUE(holdsInAnotherProcess([&] {
        // The superuser is refused nothing.
        if (geteuid() == 0 && setuid(65534) != 0)
            return false;
        const auto writer = DocumentWriter::create(optionsFor(scratch.path("shared/mine.png")));
        return !writer && writer.reason().find("Permission denied") != std::string::npos
            && (geteuid() != 65534 || !DocumentWriter::create(optionsFor(scratch.path("out.png"))))
            && DocumentWriter::create(optionsFor(scratch.path("shared/new.png")));
    }));
}

TEST(DocumentWriter, ADocumentWithoutPagesLeavesFormerFiles)
{
    for (const char* extension : kAllExtensions) {
        const ScratchFolder scratch;
        const auto options = optionsFor(scratch.path(std::string { "out" } + extension));
        writeTextFile(options.path, "former");
        EXPECT_TRUE(write(options, {}));
        EXPECT_EQ(readTextFile(options.path), "former");
        EXPECT_EQ(scratch.entryCount(), 1u);
    }
}

TEST(DocumentWriter, PagesGetTheirNumbersInTheirNames)
{
    const ScratchFolder scratch;
    const PageBitmap page = makePage(PixelFormat::Bilevel, 30, 30, Content::Text);
    ASSERT_TRUE(write(optionsFor(scratch.path("a.b.PNG")), { &page, &page, &page }));
    EXPECT_TRUE(fs::exists(scratch.path("a.b.PNG")));
    EXPECT_TRUE(fs::exists(scratch.path("a.b_p0002.PNG")));
    EXPECT_TRUE(fs::exists(scratch.path("a.b_p0003.PNG")));
    EXPECT_EQ(scratch.entryCount(), 3u);
}

TEST(DocumentWriter, MorePagesThanAProcessMayOpenFiles)
{
    const ScratchFolder scratch;
    const auto options = optionsFor(scratch.path("out.pcx"));
    EXPECT_TRUE(holdsInAnotherProcess([&] {
        const rlimit limit { 256, 256 };
        setrlimit(RLIMIT_NOFILE, &limit);
        const auto writer = DocumentWriter::create(options);
        for (int i = 1; i <= 400; ++i)
            if (!writer->addPage(makePage(PixelFormat::Bilevel, i, 10, Content::Text)))
                return false;
        return writer->commit();
    }));
    EXPECT_EQ(scratch.entryCount(), 400u);
    for (const int page : { 1, 199, 200, 201, 202, 399, 400 }) {
        const auto images = decodeFile(pagePath(options, page));
        ASSERT_EQ(images.size(), 1u);
        EXPECT_TRUE(shows(images[0], makePage(PixelFormat::Bilevel, page, 10, Content::Text))) << page;
    }
}

TEST(DocumentWriter, AFailureAtOnePageLeavesNoneOfThem)
{
    const ScratchFolder scratch;
    const auto options = optionsFor(scratch.path("out.bmp"));
    writeTextFile(options.path, "former");
    fs::create_directory(pagePath(options, 3));
    const PageBitmap page = makePage(PixelFormat::Gray8, 30, 30, Content::Text);
    const auto result = write(options, { &page, &page, &page, &page });
    EXPECT_FALSE(result);
    EXPECT_EQ(std::string { result.message() }, pagePath(options, 3) + ": cannot be written: it is a folder");
    EXPECT_EQ(readTextFile(options.path), "former");
    EXPECT_EQ(scratch.entryCount(), 2u);
}

TEST(DocumentWriter, SizesBeyondTheFormatAreRefusedByName)
{
    const ScratchFolder scratch;
    for (const auto& [extension, longest] : { std::pair { ".pcx", 65535 }, std::pair { ".jpg", 65500 } }) {
        const auto options = optionsFor(scratch.path(std::string { "out" } + extension));
        for (const bool isWide : { false, true }) {
            const auto sized = [&](int side) {
                return makePage(PixelFormat::Bilevel, isWide ? side : 3, isWide ? 3 : side, Content::Solid);
            };
            const PageBitmap fits = sized(longest);
            ASSERT_TRUE(write(options, { &fits }));
            const auto images = decodeFile(options.path);
            ASSERT_EQ(images.size(), 1u);
            EXPECT_EQ(images[0].width, fits.width());
            EXPECT_EQ(images[0].height, fits.height());
            const PageBitmap tooLarge = sized(longest + 1);
            const auto result = write(options, { &tooLarge });
            EXPECT_FALSE(result);
            EXPECT_NE(std::string { result.message() }.find(std::to_string(longest)), std::string::npos);
        }
    }
}

TEST(DocumentWriter, PagesWiderThanOldLimitsRoundTrip)
{
    const ScratchFolder scratch;
    for (const auto& [extension, compression] : { std::pair { ".png", TiffCompression::None },
             std::pair { ".bmp", TiffCompression::None }, std::pair { ".tif", TiffCompression::CcittG4 },
             std::pair { ".tif", TiffCompression::CcittG3OneD }, std::pair { ".tif", TiffCompression::Deflate } }) {
        const auto options = optionsFor(scratch.path(std::string { "out" } + extension), compression);
        const PageBitmap page = makePage(PixelFormat::Bilevel, 150001, 7, Content::Text);
        ASSERT_TRUE(write(options, { &page }));
        const auto images = decodeFile(options.path);
        ASSERT_EQ(images.size(), 1u);
        EXPECT_TRUE(shows(images[0], page));
    }
}

TEST(DocumentWriter, CcittWithGreyOrColourPagesIsRefused)
{
    const ScratchFolder scratch;
    const PageBitmap page = makePage(PixelFormat::Gray8, 30, 30, Content::Text);
    const auto result = write(optionsFor(scratch.path("out.tif"), TiffCompression::CcittG4), { &page });
    EXPECT_FALSE(result);
    EXPECT_EQ(std::string { result.message() },
        reasonAgainst(optionsFor("a.tif", TiffCompression::CcittG4), PixelFormat::Gray8));
    EXPECT_EQ(scratch.entryCount(), 0u);
}

TEST(DocumentWriter, APageWithoutPixelsIsRefused)
{
    const ScratchFolder scratch;
    const auto writer = DocumentWriter::create(optionsFor(scratch.path("out.png")));
    ASSERT_TRUE(writer);
    EXPECT_FALSE(writer->addPage(PageBitmap {}));
    EXPECT_NE(writer->reason(), "");
    EXPECT_FALSE(writer->commit());
}
