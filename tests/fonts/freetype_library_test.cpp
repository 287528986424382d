#include "quillrip/base/sanitizer.h"
#include "quillrip/fonts/faces/font_file.h"
#include "quillrip/fonts/freetype_library.h"
#include "tests/support/spare_heap.h"

#include <gtest/gtest.h>

#include <new>

namespace quillrip::test {
namespace {

constexpr const char* kFont = "LiberationSerif-Regular";

class FreeTypeMemory : public testing::Test {
protected:
    void SetUp() override
    {
        if (kIsWatchedBySanitizer)
            GTEST_SKIP() << "sanitizers have a heap of their own";
    }

    /// How often memory was missing before there was enough.
    template <typename Action> static int refusals(Action action)
    {
        for (int count = 0;; ++count) {
            const SpareHeap bound(static_cast<std::uint64_t>(count) * 200);
            try {
                action();
                return count;
            } catch (const std::bad_alloc&) {
                EXPECT_LT(count, 10000);
            }
        }
    }
};

TEST_F(FreeTypeMemory, IsInTheAccount)
{
    const std::uint64_t before = HeapAccount::used();
    {
        const FreeTypeLibrary library;
        EXPECT_GT(HeapAccount::used(), before + 2000);
    }
    EXPECT_EQ(HeapAccount::used(), before);
}

TEST_F(FreeTypeMemory, IsMissedByNoLibraryThatIsNotWhole)
{
    EXPECT_GT(refusals([] { const FreeTypeLibrary library; }), 5);
}

TEST_F(FreeTypeMemory, IsNotTakenForABrokenFontWhenItIsMissing)
{
    const FontFile* font = nullptr;
    const int count = refusals([&] {
        FontFiles files;
        font = files.open(kFont);
        ASSERT_TRUE(font);
        Path path;
        EXPECT_TRUE(font->outline(font->glyphOfUnicode('g'), path));
    });
    EXPECT_GT(count, 20);
}

} // namespace
} // namespace quillrip::test
