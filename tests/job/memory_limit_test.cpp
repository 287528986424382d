// Conversions that meet the limit of memory at any place. Linked with the counted heap, as quillrip itself is.

#include "quillrip/base/heap_account.h"
#include "quillrip/base/sanitizer.h"
#include "quillrip/job/conversion.h"
#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace quillrip {
namespace {

constexpr std::uint64_t kMegabyte = std::uint64_t { 1 } << 20;

class Nobody final : public DiagnosticSink, public ConversionObserver {
public:
    void report(const Diagnostic&) override { }
};

/// Conversions of one sample into a folder of its own.
class Conversion {
public:
    Conversion(const std::string& sample, const std::string& image)
        : m_folder(std::filesystem::temp_directory_path() / ("quillrip-memory-" + sample))
    {
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directory(m_folder);
        m_options.inputPath = std::string(QUILLRIP_SAMPLES) + "/" + sample;
        m_options.document.path = (m_folder / image).string();
        m_options.document.type = fileTypeOfPath(image).value();
        m_options.page.resolution = { 60, 60 };
    }
    ~Conversion() { std::filesystem::remove_all(m_folder); }

    ConversionResult run(std::uint64_t bytes)
    {
        m_options.limits.memory = { HeapAccount::used() + bytes, 0, 0 };
        m_options.limits.work = std::make_shared<WorkMeter>();
        Nobody nobody;
        return convert(m_options, nobody, nobody);
    }

    /// Contents of all files, hidden ones too, in the order of their names.
    std::vector<std::string> files() const
    {
        std::vector<std::string> paths;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder))
            paths.push_back(entry.path().string());
        std::sort(paths.begin(), paths.end());
        for (std::string& path : paths) {
            const std::string name = path;
            path = test::readFile(name);
            std::filesystem::remove(name);
        }
        return paths;
    }

private:
    std::filesystem::path m_folder;
    ConversionOptions m_options;
};

class MemoryLimit : public testing::Test {
protected:
    void SetUp() override
    {
        if (kIsWatchedBySanitizer)
            GTEST_SKIP() << "sanitizers have a heap of their own";
    }
};

TEST_F(MemoryLimit, CountsWhatNewGivesOutAndDeleteTakesBack)
{
    const std::uint64_t before = HeapAccount::used();
    auto bytes = std::make_unique<std::vector<char>>(kMegabyte);
    EXPECT_GE(HeapAccount::used(), before + kMegabyte);
    EXPECT_LT(HeapAccount::used(), before + kMegabyte + kMegabyte / 16);
    bytes.reset();
    EXPECT_EQ(HeapAccount::used(), before);
}

TEST_F(MemoryLimit, NewThrowsAboveIt)
{
    const HeapBound bound({ HeapAccount::used() + kMegabyte, 0, 0 });
    EXPECT_THROW(std::vector<char>(2 * kMegabyte), std::bad_alloc);
    EXPECT_EQ(std::vector<char>(kMegabyte / 2).size(), kMegabyte / 2);
    EXPECT_EQ(new (std::nothrow) char[2 * kMegabyte], nullptr);
}

/// Wherever memory ends, the conversion ends too, says so and leaves nothing; with a little more it is whole.
TEST_F(MemoryLimit, EndsAConversionWhereverItIsMet)
{
    const std::vector<std::pair<std::string, std::string>> conversions { { "typefaces.pcl", "a.png" },
        { "lineart.pcl", "a.tif" }, { "picture.pxl", "a.jpg" }, { "chart.pxl", "a.bmp" }, { "invoice.spl", "a.pcx" },
        { "travel.spl", "a.png" } };
    for (const auto& [sample, image] : conversions) {
        Conversion conversion(sample, image);
        ASSERT_EQ(conversion.run(64 * kMegabyte).status, ConversionStatus::Done) << sample;
        const std::vector<std::string> whole = conversion.files();
        constexpr std::uint64_t step = 20'000;
        int stopped = 0;
        int wholeInARow = 0;
        for (std::uint64_t bytes = 0; wholeInARow < 3; bytes += step) {
            ASSERT_LT(bytes, 32 * kMegabyte) << sample;
            const ConversionResult result = conversion.run(bytes);
            if (result.status == ConversionStatus::Done) {
                ++wholeInARow;
                EXPECT_EQ(conversion.files(), whole) << sample << " with " << bytes;
                continue;
            }
            ++stopped;
            wholeInARow = 0;
            EXPECT_EQ(result.status, ConversionStatus::LimitExceeded) << sample << " with " << bytes;
            EXPECT_NE(result.reason.find("of memory besides its pages"), std::string::npos)
                << sample << " with " << bytes << ": " << result.reason;
            EXPECT_TRUE(conversion.files().empty()) << sample << " with " << bytes;
        }
        EXPECT_GT(stopped, 10) << sample;
    }
}

} // namespace
} // namespace quillrip
