#include "quillrip/stream/pjl_environment.h"

#include <gtest/gtest.h>

namespace quillrip::stream {
namespace {

TEST(PjlEnvironment, PaperNamesBecomePageSizes)
{
    PjlEnvironment variables;
    variables.set("", "PAPER", "a4");
    EXPECT_EQ(variables.paperCode, 26);
    variables.set("", "PAPER", "NO SUCH PAPER");
    EXPECT_EQ(variables.paperCode, 26);
    variables.set("", "PAPER", "CUSTOM");
    EXPECT_EQ(variables.paperCode, 101);
    EXPECT_NEAR(paperSizeOfCode(26)->height, 8418.9, 0.1);
    EXPECT_DOUBLE_EQ(paperSizeOfCode(2)->width, 6120);
    variables.set("", "PAPER", "COM9");
    EXPECT_EQ(variables.paperCode, 89);
    variables.set("", "PAPER", "C6");
    EXPECT_EQ(variables.paperCode, 92);
    variables.set("", "PAPER", "LEGAL13");
    EXPECT_DOUBLE_EQ(paperSizeOfCode(*variables.paperCode)->height, 9360);
    variables.set("", "PAPER", "B6");
    EXPECT_NEAR(paperSizeOfCode(*variables.paperCode)->height, 5159, 1); // 182 mm
}

TEST(PjlEnvironment, ValuesOutsideTheirRangeAreIgnored)
{
    PjlEnvironment variables;
    variables.set("", "FORMLINES", "4");
    EXPECT_FALSE(variables.formLines);
    variables.set("", "FORMLINES", "66");
    EXPECT_EQ(variables.formLines, 66);
    variables.set("", "FORMLINES", "200");
    EXPECT_EQ(variables.formLines, 66);
    variables.set("", "RESOLUTION", "0");
    EXPECT_FALSE(variables.resolution);
    variables.set("", "RAS1200MODE", "TRUE");
    EXPECT_TRUE(variables.hasFineRaster);
    variables.set("", "RAS1200MODE", "FALSE");
    EXPECT_FALSE(variables.hasFineRaster);
    variables.set("", "RAS1200MODE", "ON");
    EXPECT_TRUE(variables.hasFineRaster);
    variables.set("", "RAS1200MODE", "OFF");
    EXPECT_FALSE(variables.hasFineRaster);
    variables.set("", "RESOLUTION", "600");
    EXPECT_EQ(variables.resolution, 600);
    variables.set("", "ORIENTATION", "UPSIDE");
    EXPECT_FALSE(variables.orientation);
    variables.set("PCL", "PITCH", "0.1");
    EXPECT_FALSE(variables.pitch);
}

TEST(PjlEnvironment, PclParametersNeedTheirLanguage)
{
    PjlEnvironment variables;
    variables.set("POSTSCRIPT", "SYMSET", "PC8");
    EXPECT_FALSE(variables.symbolSet);
    variables.set("PCL", "SYMSET", "PC8");
    EXPECT_EQ(variables.symbolSet, 10 * 32 + 'U' - 64);
    variables.set("PCL", "PITCH", "16.67");
    EXPECT_DOUBLE_EQ(*variables.pitch, 16.67);
    variables.set("PCL", "PTSIZE", "8.25");
    EXPECT_DOUBLE_EQ(*variables.pointSize, 8.25);
}

TEST(PjlEnvironment, GrayscaleIsAskedForInSeveralWays)
{
    PjlEnvironment variables;
    variables.set("", "RENDERMODE", "GRAYSCALE");
    EXPECT_TRUE(variables.isGray);
    variables.set("", "RENDERMODE", "COLOR");
    EXPECT_FALSE(variables.isGray);
}

} // namespace
} // namespace quillrip::stream
