#include "tests/job/collecting_sink.h"

#include "quillrip/job/document_renderer.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace quillrip {
namespace {

using test::inkCount;
using test::runBytes;

// Two Letter pages with a black square inch in the corner at the top left, then an A5 page with a red one.
const std::string kDocument = "%!PS-Adobe-3.0\n"
                              "<< /PageSize [612 792] >> setpagedevice\n"
                              "0 720 72 72 rectfill showpage\n"
                              "0 720 72 72 rectfill showpage\n"
                              "<< /PageSize [420 595] >> setpagedevice\n"
                              "1 0 0 setrgbcolor 0 523 72 72 rectfill showpage\n";

/// The programs of this system and a document for one of them.
class DocumentJob : public testing::Test {
protected:
    void SetUp() override
    {
        m_programs = DocumentPrograms::onPath();
        if (!m_programs.find(m_language))
            GTEST_SKIP() << (isXps() ? "mutool" : "gs") << " is not on PATH";
        // The pages of kDocument, as Ghostscript's XPS device writes them.
        m_document = isXps() ? test::readFile(PRISMO_TEST_DATA "/pages.xps") : kDocument;
    }
    explicit DocumentJob(DocumentLanguage language)
        : m_language(language)
    {
    }
    bool isXps() const { return m_language == DocumentLanguage::Xps; }

    DocumentLanguage m_language;
    DocumentPrograms m_programs;
    std::string m_document;
};

class GhostscriptJob : public DocumentJob {
protected:
    GhostscriptJob()
        : DocumentJob(DocumentLanguage::PostScript)
    {
    }
};

class XpsJob : public DocumentJob {
protected:
    XpsJob()
        : DocumentJob(DocumentLanguage::Xps)
    {
    }
};

class JobOfEachProgram : public DocumentJob, public testing::WithParamInterface<DocumentLanguage> {
protected:
    JobOfEachProgram()
        : DocumentJob(GetParam())
    {
    }
};

INSTANTIATE_TEST_SUITE_P(OfThisSystem, JobOfEachProgram,
    testing::Values(DocumentLanguage::PostScript, DocumentLanguage::Xps),
    [](const auto& one) { return one.param == DocumentLanguage::Xps ? "Xps" : "PostScript"; });

TEST_P(JobOfEachProgram, PagesComeInTheirOwnSizesAndColours)
{
    for (const double down : { 72, 36 }) {
        PageSettings settings;
        settings.resolution = { 72, down };
        const test::Run run = runBytes(m_document, settings, m_programs);
        EXPECT_EQ(run.result.status, ConversionStatus::Done) << run.result.reason;
        ASSERT_EQ(run.sink.pages.size(), 3u);
        EXPECT_EQ(run.sink.pages[0].width(), 612);
        EXPECT_EQ(run.sink.pages[0].height(), 11 * down);
        EXPECT_EQ(run.sink.pages[0].resolution().y, down);
        EXPECT_EQ(run.sink.pages[2].width(), 420);
        EXPECT_EQ(run.sink.pages[0].pixel(36, static_cast<int>(down / 2)), kBlack);
        EXPECT_EQ(inkCount(run.sink.pages[0]), 72 * down);
        EXPECT_EQ(run.sink.pages[2].pixel(36, static_cast<int>(down / 2)), (Rgb { 255, 0, 0 }));
    }
}

TEST_P(JobOfEachProgram, EveryPageGetsTheGivenPixels)
{
    for (const PixelFormat format : { PixelFormat::Bilevel, PixelFormat::Gray8, PixelFormat::Rgb24 }) {
        PageSettings settings;
        settings.format = format;
        settings.width = 153;
        settings.height = 99;
        const test::Run run = runBytes(m_document, settings, m_programs);
        EXPECT_EQ(run.result.status, ConversionStatus::Done) << run.result.reason;
        ASSERT_EQ(run.sink.pages.size(), 3u);
        for (const PageBitmap& page : run.sink.pages) {
            EXPECT_EQ(page.format(), format);
            EXPECT_EQ(page.width(), 153);
            EXPECT_EQ(page.height(), 99);
        }
        EXPECT_EQ(inkCount(run.sink.pages[1], { 0, 0, 18, 9 }), 18 * 9);
        EXPECT_EQ(inkCount(run.sink.pages[1], { 19, 10, 153, 99 }), 0);
    }
}

TEST_F(GhostscriptJob, FaxesAreCentredAndLieOnTheShortEdge)
{
    PageSettings settings;
    settings.fax = FaxMode::Normal;
    const test::Run run
        = runBytes(kDocument + "<< /PageSize [792 612] >> setpagedevice 0 setgray 0 540 72 72 rectfill showpage\n",
            settings, m_programs);
    EXPECT_EQ(run.result.status, ConversionStatus::Done) << run.result.reason;
    ASSERT_EQ(run.sink.pages.size(), 4u);
    for (const PageBitmap& page : run.sink.pages)
        EXPECT_EQ(page.width(), 1728);
    EXPECT_EQ(run.sink.pages[0].height(), 1078);
    EXPECT_EQ(inkCount(run.sink.pages[0], { 0, 0, 201, 98 }), 201 * 98);
    EXPECT_EQ(inkCount(run.sink.pages[0]), 201 * 98);
    EXPECT_GT(inkCount(run.sink.pages[2], { 269, 0, 270 + 204, 98 }), 0);
    // The top left corner of a landscape page lies at the bottom left as the sheet is fed.
    EXPECT_EQ(run.sink.pages[3].height(), 1078);
    EXPECT_EQ(inkCount(run.sink.pages[3], { 0, 980, 201, 1078 }), 201 * 98);
    EXPECT_NEAR(inkCount(run.sink.pages[3]), 201 * 98, 98);
}

TEST_F(GhostscriptJob, BrokenPostScriptIsDamageAfterItsWholePages)
{
    const test::Run run = runBytes(kDocument + "this-is-no-operator\n", {}, m_programs);
    EXPECT_EQ(run.result.status, ConversionStatus::Damaged);
    EXPECT_EQ(run.result.pages, 3);
    EXPECT_NE(run.result.reason.find("3 pages kept"), std::string::npos) << run.result.reason;
    EXPECT_NE(run.result.reason.find("undefined"), std::string::npos) << run.result.reason;
}

TEST_F(GhostscriptJob, JobsCannotReadOrWriteFiles)
{
    const test::Run reads = runBytes("%!PS\n(/etc/hostname) (r) file pop showpage\n", {}, m_programs);
    EXPECT_EQ(reads.result.status, ConversionStatus::Damaged);
    EXPECT_NE(reads.result.reason.find("invalidfileaccess"), std::string::npos) << reads.result.reason;
    const test::Run writes = runBytes("%!PS\n(/tmp/quillrip-was-here) (w) file closefile showpage\n", {}, m_programs);
    EXPECT_NE(writes.result.reason.find("invalidfileaccess"), std::string::npos) << writes.result.reason;
}

TEST_F(GhostscriptJob, WhatAJobPrintsByItselfIsNoPage)
{
    PageSettings settings;
    settings.resolution = { 20, 20 };
    settings.width = 100;
    const test::Run run = runBytes(
        "%!PS\n(P5 1 1 255 noise) = (page-1 1 1) = flush 10 10 30 30 rectfill showpage\n", settings, m_programs);
    EXPECT_EQ(run.result.status, ConversionStatus::Done) << run.result.reason;
    ASSERT_EQ(run.sink.pages.size(), 1u);
    EXPECT_EQ(run.sink.pages[0].width(), 100);
}

TEST_F(GhostscriptJob, LimitsHoldForItsPages)
{
    Limits limits;
    limits.pageBytes = 100000;
    EXPECT_EQ(runBytes(kDocument, {}, m_programs, limits).result.status, ConversionStatus::LimitExceeded);
    limits = {};
    limits.pages = 2;
    PageSettings small;
    small.resolution = { 10, 10 };
    EXPECT_EQ(runBytes(kDocument, small, m_programs, limits).result.status, ConversionStatus::LimitExceeded);
    EXPECT_EQ(runBytes(kDocument, small, m_programs, {}, 1).result.status, ConversionStatus::OutputFailed);
}

/// A folder with one program in it.
class ProgramFolder {
public:
    ProgramFolder()
    {
        std::string path = (std::filesystem::temp_directory_path() / "quillrip-test-XXXXXX").string();
        if (::mkdtemp(path.data()))
            m_path = path;
    }
    ~ProgramFolder() { std::filesystem::remove_all(m_path); }
    ProgramFolder(const ProgramFolder&) = delete;
    ProgramFolder& operator=(const ProgramFolder&) = delete;

    void link(const std::string& name, const std::string& target) const
    {
        std::filesystem::create_symlink(target, m_path + "/" + name);
    }
    void script(const std::string& name, const std::string& text) const
    {
        std::ofstream(m_path + "/" + name) << "#!/bin/sh\n" << text;
        std::filesystem::permissions(m_path + "/" + name, std::filesystem::perms::owner_all);
    }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

TEST_F(XpsJob, FaxesAreCentred)
{
    PageSettings settings;
    settings.fax = FaxMode::Normal;
    const test::Run run = runBytes(m_document, settings, m_programs);
    EXPECT_EQ(run.result.status, ConversionStatus::Done) << run.result.reason;
    ASSERT_EQ(run.sink.pages.size(), 3u);
    EXPECT_EQ(run.sink.pages[0].width(), 1728);
    EXPECT_EQ(run.sink.pages[0].height(), 1078);
    EXPECT_EQ(inkCount(run.sink.pages[0], { 0, 0, 201, 98 }), 201 * 98);
    EXPECT_GT(inkCount(run.sink.pages[2], { 269, 0, 270 + 204, 98 }), 0);
}

TEST_F(XpsJob, ItsNameAndTheJobLanguageAroundItAreSeenThrough)
{
    PageSettings small;
    small.resolution = { 20, 20 };
    const test::Run run
        = runBytes("\x1B%-12345X@PJL ENTER LANGUAGE=XPS\r\n" + m_document + "\x1B%-12345X", small, m_programs);
    EXPECT_EQ(run.result.status, ConversionStatus::Done) << run.result.reason;
    EXPECT_EQ(run.result.pages, 3);
}

TEST_F(XpsJob, ACutDocumentIsDamage)
{
    const test::Run run = runBytes(m_document.substr(0, m_document.size() / 2), {}, m_programs);
    EXPECT_EQ(run.result.status, ConversionStatus::Damaged);
    EXPECT_NE(run.result.reason.find("MuPDF cannot draw"), std::string::npos) << run.result.reason;
    EXPECT_EQ(run.result.reason.find("warning"), std::string::npos) << run.result.reason;
}

TEST_F(XpsJob, MuPdfTakesPdfWhereGhostscriptIsMissing)
{
    const ProgramFolder folder;
    folder.link("mutool", m_programs.find(DocumentLanguage::Xps)->path);
    const DocumentPrograms programs = DocumentPrograms::inFolders(folder.path());
    EXPECT_FALSE(programs.find(DocumentLanguage::PostScript));
    PageSettings settings;
    settings.resolution = { 72, 72 };
    const test::Run run = runBytes("%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
                                   "2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
                                   "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 100 50]/Contents 4 0 R>>endobj\n"
                                   "4 0 obj<</Length 14>>stream\n0 40 10 10 re f\nendstream endobj\n"
                                   "trailer<</Root 1 0 R/Size 5>>\n%%EOF\n",
        settings, programs);
    ASSERT_EQ(run.sink.pages.size(), 1u) << run.result.reason;
    EXPECT_EQ(run.sink.pages[0].width(), 100);
    EXPECT_EQ(run.sink.pages[0].height(), 50);
    EXPECT_EQ(inkCount(run.sink.pages[0]), 100);
    EXPECT_EQ(inkCount(run.sink.pages[0], { 0, 0, 10, 10 }), 100);
}

// A program that tells of five pages, of two sizes by turns, and draws them only when it is asked for all of a size.
const char kAlternating[] = R"(
case "$*" in
*nullpage*)
    mark=$(printf %s "$*" | sed -n 's/.*(\(page-[0-9]*\) ).*/\1/p')
    for size in "72 72" "144 72" "72 72" "144 72" "72 72"; do echo "$mark $size"; done ;;
*-sPageList=1,3,5*) for page in 1 3 5; do printf 'P6 1 1 255\n%s00' $page; done ;;
*-sPageList=2,4*) for page in 2 4; do printf 'P6 1 1 255\n%s00' $page; done ;;
*) echo "asked for $*" >&2; exit 1 ;;
esac
)";

TEST(DocumentPages, OfAlternatingSizesAreDrawnByOneProgramForEachSizeInTheirOrder)
{
    const ProgramFolder folder;
    folder.script("gs", kAlternating);
    PageSettings settings;
    settings.width = 1;
    const test::Run run = runBytes("%!PS\n", settings, DocumentPrograms::inFolders(folder.path()));
    EXPECT_EQ(run.result.status, ConversionStatus::Done) << run.result.reason;
    ASSERT_EQ(run.sink.pages.size(), 5u);
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_EQ(run.sink.pages[i].pixel(0, 0).red, '1' + static_cast<int>(i));
}

// More sizes than programs may wait side by side; each is asked for once, for both of its pages.
const char kManySizes[] = R"(
list=$(printf %s "$*" | sed -n 's/.*-sPageList=\([0-9,]*\).*/\1/p')
case "$*" in
*nullpage*)
    mark=$(printf %s "$*" | sed -n 's/.*(\(page-[0-9]*\) ).*/\1/p')
    for page in 1 2 3 4 5 6 7 8 9 10 11 12 1 2 3 4 5 6 7 8 9 10 11 12; do echo "$mark $((page * 72)) 72"; done ;;
*) case "$list" in
    *,*) for page in $(echo $list | tr , ' '); do printf "P6 1 1 255\n\\$(printf %03o $((page + 64)))00"; done ;;
    *) echo "asked again" >&2; exit 1 ;;
    esac ;;
esac
)";

TEST(DocumentPages, OfManySizesAreDrawnByOneProgramForEachSizeToo)
{
    const ProgramFolder folder;
    folder.script("gs", kManySizes);
    PageSettings settings;
    settings.width = 1;
    const test::Run run = runBytes("%!PS\n", settings, DocumentPrograms::inFolders(folder.path()));
    EXPECT_EQ(run.result.status, ConversionStatus::Done) << run.result.reason;
    ASSERT_EQ(run.sink.pages.size(), 24u);
    for (std::size_t i = 0; i < 24; ++i)
        EXPECT_EQ(run.sink.pages[i].pixel(0, 0).red, 65 + static_cast<int>(i));
}

TEST(DocumentPages, AProgramThatEndsBeforeTheLastPageIsDamage)
{
    const ProgramFolder folder;
    std::string script = kAlternating;
    script.replace(script.find("for page in 2 4"), 15, "for page in 2");
    folder.script("gs", script);
    PageSettings settings;
    settings.width = 1;
    const test::Run run = runBytes("%!PS\n", settings, DocumentPrograms::inFolders(folder.path()));
    EXPECT_EQ(run.result.status, ConversionStatus::Damaged);
    EXPECT_EQ(run.result.pages, 3);
}

TEST(DocumentPages, AProgramThatCannotBeLoadedIsALimitOfTheSystem)
{
    const ProgramFolder folder;
    folder.script("gs", "");
    std::ofstream(folder.path() + "/gs") << "no program";
    EXPECT_EQ(runBytes("%!PS\n", {}, DocumentPrograms::inFolders(folder.path())).result.status,
        ConversionStatus::LimitExceeded);
}

TEST(DocumentPrograms, OnlyAbsoluteFoldersCount)
{
    const ProgramFolder folder;
    folder.script("gs", "");
    EXPECT_TRUE(DocumentPrograms::inFolders("/nonexistent:" + folder.path()).find(DocumentLanguage::Pdf));
    EXPECT_FALSE(DocumentPrograms::inFolders("." + folder.path()).find(DocumentLanguage::Pdf));
    EXPECT_FALSE(DocumentPrograms::inFolders("").find(DocumentLanguage::Pdf));
}

TEST(DocumentPrograms, WhatIsMissingIsSaidWithItsPackage)
{
    const auto reasonFor = [](const std::string& job) {
        const test::Run run = runBytes(job);
        EXPECT_EQ(run.result.status, ConversionStatus::BadInput);
        return run.result.reason;
    };
    const auto mentions
        = [](const std::string& text, const std::string& word) { return text.find(word) != std::string::npos; };
    const std::string postScript = reasonFor(kDocument);
    EXPECT_TRUE(mentions(postScript, "PostScript") && mentions(postScript, "package ghostscript")) << postScript;
    EXPECT_FALSE(mentions(postScript, "mupdf")) << postScript;
    const std::string pdf = reasonFor("%PDF-1.4\n");
    EXPECT_TRUE(mentions(pdf, "PDF") && mentions(pdf, "ghostscript") && mentions(pdf, "mupdf-tools")) << pdf;
    const std::string xps = reasonFor(test::readFile(PRISMO_TEST_DATA "/pages.xps"));
    EXPECT_TRUE(mentions(xps, "XPS") && mentions(xps, "mupdf-tools") && mentions(xps, "install")) << xps;
}

} // namespace
} // namespace quillrip
