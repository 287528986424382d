#include "quillrip/base/paper.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <string>

namespace quillrip {
namespace {

constexpr int kLast = static_cast<int>(PaperName::Prc8);

TEST(Paper, TheTableStandsInTheOrderOfTheNames)
{
    std::set<std::string> names;
    for (int i = 0; i <= kLast; ++i) {
        const auto id = static_cast<PaperName>(i);
        const Paper& paper = paperOf(id);
        EXPECT_EQ(paper.id, id) << paper.name;
        EXPECT_TRUE(names.insert(paper.name).second) << paper.name;
    }
}

TEST(Paper, SheetsLieUprightAndTheirDotsFollowTheirSize)
{
    for (int i = 0; i <= kLast; ++i) {
        const Paper& paper = paperOf(static_cast<PaperName>(i));
        EXPECT_LE(paper.width.count, paper.length.count) << paper.name;
        EXPECT_LE(std::abs(paper.dotsWide.inches() - paper.width.inches()), 1 / kDotsPerInch) << paper.name;
        EXPECT_LE(std::abs(paper.dotsLong.inches() - paper.length.inches()), 1 / kDotsPerInch) << paper.name;
    }
}

TEST(Paper, LetterAndA4)
{
    const Paper& letter = paperOf(PaperName::Letter);
    EXPECT_DOUBLE_EQ(letter.width.count, 6120);
    EXPECT_DOUBLE_EQ(letter.length.count, 7920);
    EXPECT_FALSE(letter.isMetric);
    const Paper& a4 = paperOf(PaperName::A4);
    EXPECT_NEAR(a4.width.millimetres(), 210, 1e-9);
    EXPECT_EQ(a4.dotsWide.count, 2480);
    EXPECT_EQ(a4.dotsLong.count, 3507); // published, though 3507.9 would be nearer to 3508
    EXPECT_TRUE(a4.isMetric);
}

} // namespace
} // namespace quillrip
