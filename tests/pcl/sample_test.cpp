#include "tests/pcl/printer.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

using namespace quillrip;
using namespace quillrip::test;

namespace {

std::string sample(const std::string& name)
{
    std::ifstream file { std::string(PRISMO_TEST_DATA) + "/" + name, std::ios::binary };
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

/// Rows of text on a page: runs of pixel rows that hold ink.
int textRows(const PageBitmap& page)
{
    int rows = 0;
    bool wasInk = false;
    for (int y = 0; y < page.height(); ++y) {
        const bool isInk = !page.extent(y).empty();
        rows += isInk && !wasInk;
        wasInk = isInk;
    }
    return rows;
}

} // namespace

TEST(PclSamples, PlainListingFillsOnePageFromItsFirstLine)
{
    const std::string job = sample("daybook.prn");
    ASSERT_FALSE(job.empty());
    const Printed printed = print(job);
    ASSERT_EQ(printed.pages.size(), 1u);
    // 48 lines hold ink; descenders of one and capitals of the next never meet at six lines to the inch.
    EXPECT_EQ(textRows(printed.pages[0]) / 2 * 2, 48);
    EXPECT_NEAR(printed.ink().top, 188 - 28, 8);
    EXPECT_GE(printed.ink().left, 75);
    EXPECT_TRUE(printed.diagnostics.empty() || printed.warnedOf("fonts.missing-face"));
}

TEST(PclSamples, TypefacesStandOnTheirLines)
{
    const Printed printed = print(sample("typefaces.pcl"));
    ASSERT_EQ(printed.pages.size(), 1u);
    EXPECT_NEAR(printed.ink().left, 275, 6);
    EXPECT_NEAR(printed.ink().top, 380 - 30, 8);
}
