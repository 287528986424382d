#include "quillrip/stream/pjl_line.h"

#include <gtest/gtest.h>

namespace quillrip::stream {
namespace {

TEST(PjlLine, BlanksRoundTheEqualsSignMeanNothing)
{
    const PjlLine line = parsePjlLine(" enter  Language = PCLXL");
    EXPECT_EQ(line.command, "ENTER");
    EXPECT_EQ(line.option("LANGUAGE"), "PCLXL");
    EXPECT_EQ(parsePjlLine(" ENTER LANGUAGE=PCL").option("LANGUAGE"), "PCL");
}

TEST(PjlLine, ModifiersAreKeptApart)
{
    const PjlLine line = parsePjlLine(" SET LPARM:PCL SYMSET=PC8");
    EXPECT_EQ(line.modifier("LPARM"), "PCL");
    EXPECT_EQ(line.option("SYMSET"), "PC8");
    const PjlLine data = parsePjlLine(R"( FSDOWNLOAD FORMAT:BINARY SIZE=22 NAME="0:\pcl\macros\logo")");
    EXPECT_EQ(data.modifier("FORMAT"), "BINARY");
    EXPECT_EQ(data.option("SIZE"), "22");
    EXPECT_EQ(data.option("NAME"), R"(0:\pcl\macros\logo)");
}

TEST(PjlLine, QuotesInsideOfStringsStay)
{
    EXPECT_EQ(parsePjlLine(R"( SET JOBATTR="JobAcct7="t"")").option("JOBATTR"), R"(JobAcct7="t")");
    const PjlLine job = parsePjlLine(R"( JOB NAME="my job" START=2 DISPLAY="a b")");
    EXPECT_EQ(job.option("NAME"), "my job");
    EXPECT_EQ(job.option("START"), "2");
    EXPECT_EQ(job.option("DISPLAY"), "a b");
}

TEST(PjlLine, CommentsAndEmptyLinesHaveNoOptions)
{
    EXPECT_EQ(parsePjlLine("").command, "");
    const PjlLine comment = parsePjlLine(R"( COMMENT="LANGUAGE=PCL" START=2)");
    EXPECT_EQ(comment.command, "COMMENT");
    EXPECT_TRUE(comment.options.empty());
}

TEST(PjlLine, NumbersAreReadWholeOrNotAtAll)
{
    EXPECT_EQ(parseWholeNumber("0022"), 22u);
    EXPECT_FALSE(parseWholeNumber("22x"));
    EXPECT_FALSE(parseWholeNumber("-1"));
    EXPECT_FALSE(parseWholeNumber("99999999999999999999"));
    EXPECT_EQ(parseDecimal("12."), 12.0);
    EXPECT_EQ(parseDecimal("-0.5"), -0.5);
    EXPECT_FALSE(parseDecimal("1.2.3"));
    EXPECT_FALSE(parseDecimal("."));
}

} // namespace
} // namespace quillrip::stream
