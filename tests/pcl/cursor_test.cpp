#include "tests/pcl/printer.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;

namespace {

const std::string kMark = e("*c10a10b0P");

/// The logical place, in dots, of the mark that a job makes.
std::pair<int, int> place(const std::string& job)
{
    const Printed printed = print(kStart + job + kMark);
    if (printed.pages.empty())
        return { -1, -1 };
    const PixelRect ink = printed.ink();
    return { ink.left - kLeft, ink.top };
}

using Place = std::pair<int, int>;

} // namespace

TEST(PclCursor, AbsolutePositionsInAllUnits)
{
    EXPECT_EQ(place(at(400, 500)), Place(400, 500));
    EXPECT_EQ(place(e("&a720h1440V")), Place(300, 600));
    EXPECT_EQ(place(e("&a10c20R")), Place(300, 1038)); // row 20: 20.75 lines of 50 dots
    EXPECT_EQ(place(e("&u600D") + at(400, 500)), Place(200, 250));
}

TEST(PclCursor, SignedValuesAreRelative)
{
    EXPECT_EQ(place(at(400, 500) + e("*p+50x-100Y")), Place(450, 400));
    EXPECT_EQ(place(at(400, 500) + e("&a+1c-2R")), Place(430, 400));
    EXPECT_EQ(place(at(400, 500) + e("&a-72h+72V")), Place(370, 530));
}

TEST(PclCursor, VerticalPlacesCountFromTheTopMargin)
{
    EXPECT_EQ(place(e("&l6E") + at(0, 0)), Place(0, 300));
    EXPECT_EQ(place(e("&l6E") + at(0, 0) + e("*p-100Y")), Place(0, 200));
    EXPECT_EQ(place(e("&l6E") + at(0, 0) + e("*p-1000Y")), Place(0, 0)); // held at the page's edge
}

TEST(PclCursor, MovesAreHeldOnTheLogicalPage)
{
    EXPECT_EQ(place(at(32000, 32000) + e("*p-100x-100Y")), Place(2300, 3200));
    EXPECT_EQ(place(at(10, 10) + e("*p-500x-500Y")), Place(0, 0));
}

TEST(PclCursor, StackKeepsPlacesInTheOrderOfPushing)
{
    const std::string push = e("&f0S");
    const std::string pop = e("&f1S");
    EXPECT_EQ(place(at(100, 200) + push + at(300, 400) + push + at(0, 0) + pop), Place(300, 400));
    EXPECT_EQ(place(at(100, 200) + push + at(300, 400) + push + at(0, 0) + pop + pop), Place(100, 200));
    EXPECT_EQ(place(at(100, 200) + pop), Place(100, 200));
    // A push of one direction is popped at the same place on the sheet in another.
    EXPECT_EQ(place(at(100, 200) + push + e("&a90P") + at(0, 0) + pop + e("&a0P")), Place(100, 200));
}

TEST(PclCursor, StackIsTwentyDeep)
{
    std::string job;
    for (int i = 1; i <= 25; ++i)
        job += at(10 * i, 100) + e("&f0S");
    EXPECT_EQ(place(job + at(0, 0) + e("&f1S")), Place(200, 100));
}

TEST(PclCursor, LineTerminationModes)
{
    const std::string start = at(600, 500);
    EXPECT_EQ(place(start + "\r"), Place(0, 500));
    EXPECT_EQ(place(start + "\n"), Place(600, 550));
    EXPECT_EQ(place(start + e("&k1G") + "\r"), Place(0, 550));
    EXPECT_EQ(place(start + e("&k2G") + "\n"), Place(0, 550));
    EXPECT_EQ(place(start + e("&k2G") + "\r"), Place(0, 500));
    EXPECT_EQ(place(start + e("&k3G") + "\r"), Place(0, 550));
}

TEST(PclCursor, FormFeedKeepsTheColumn)
{
    const Printed printed = print(kStart + at(600, 500) + "\f" + kMark);
    EXPECT_EQ(printed.ink(1), (PixelRect { 675, 38, 685, 48 }));
    const Printed returned = print(kStart + e("&k2G") + at(600, 500) + "\f" + kMark);
    EXPECT_EQ(returned.ink(1).left, 75);
}

TEST(PclCursor, HalfLineFeedAndLineSpacing)
{
    EXPECT_EQ(place(at(0, 500) + e("=")), Place(0, 525));
    EXPECT_EQ(place(at(0, 500) + e("&l12C") + "\n"), Place(0, 575));
    EXPECT_EQ(place(at(0, 500) + e("&l8D") + "\n"), Place(0, 538));
    EXPECT_EQ(place(at(0, 500) + e("&l5D") + "\n"), Place(0, 550)); // no such spacing
}

TEST(PclCursor, SpacesTabsAndBackspacesMoveByColumns)
{
    EXPECT_EQ(place(at(300, 500) + "   "), Place(390, 500));
    EXPECT_EQ(place(at(300, 500) + "   \b"), Place(360, 500));
    EXPECT_EQ(place(at(300, 500) + "\t"), Place(480, 500));
    EXPECT_EQ(place(at(300, 500) + e("&k24H") + "  "), Place(420, 500));
    EXPECT_EQ(place(at(300, 500) + e("&k6H") + "\t"), Place(360, 500));
}

TEST(PclCursor, LeftMarginHoldsReturnsAndBackspaces)
{
    EXPECT_EQ(place(e("&a10L") + at(600, 500) + "\r"), Place(300, 500));
    EXPECT_EQ(place(e("&a10L") + at(310, 500) + " \b\b\b"), Place(300, 500));
    EXPECT_EQ(place(at(0, 500) + e("&a10L")), Place(300, 500));
    EXPECT_EQ(place(e("&a10L") + e("9") + at(600, 500) + "\r"), Place(0, 500));
    EXPECT_EQ(place(e("&a200L") + at(600, 500) + "\r"), Place(0, 500)); // beyond the right margin: ignored
}

TEST(PclCursor, RightMarginStopsText)
{
    // Columns 0 to 9: the tenth space reaches the margin, further ones do not move.
    EXPECT_EQ(place(e("&a9M") + at(0, 500) + std::string(15, ' ')), Place(300, 500));
    EXPECT_EQ(place(e("&a9M") + e("&s0C") + at(0, 500) + std::string(15, ' ')), Place(150, 550));
    EXPECT_EQ(place(e("&s0C") + at(0, 500) + std::string(81, ' ')), Place(30, 550));
}

TEST(PclCursor, SixtyLinesFitOnALetterPage)
{
    std::string lines;
    for (int i = 0; i < 59; ++i)
        lines += "\r\n";
    EXPECT_EQ(print(e("E") + lines + kMark).pages.size(), 1u);
    EXPECT_EQ(print(e("E") + kMark + lines + "\r\n" + kMark).pages.size(), 2u);
}

TEST(PclCursor, PerforationSkipOffRunsToTheEndOfThePage)
{
    std::string lines;
    for (int i = 0; i < 61; ++i)
        lines += "\r\n";
    EXPECT_EQ(print(e("E") + e("&l0L") + kMark + lines + kMark).pages.size(), 1u);
    EXPECT_EQ(print(e("E") + e("&l0L") + kMark + lines + "\n\n\n" + kMark).pages.size(), 2u);
}

TEST(PclCursor, TextLengthMovesTheBottomMargin)
{
    EXPECT_EQ(print(e("E") + e("&l2F") + kMark + "\r\n\r\n" + kMark).pages.size(), 2u);
    EXPECT_EQ(print(e("E") + e("&l90F") + kMark + "\r\n\r\n" + kMark).pages.size(), 1u); // too long: ignored
}
