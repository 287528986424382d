#include "tests/pclxl/xl_job.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;
using pclxl::ByteOrder;
using End = pclxl::Interpreter::End;
using A = pclxl::Attribute;
using O = pclxl::Operator;

namespace {

XlStream emptyPage()
{
    XlStream s = XlStream::withHeader();
    s.beginSession().openDataSource().beginPage(8, 8).endPage().endSession();
    return s;
}

TEST(XlSession, EndsAtTheUniversalExit)
{
    XlStream s = emptyPage();
    s.universalExit().raw("@PJL EOJ");
    MemoryInputStream input { ByteView(s.bytes()) };
    XlJob job;
    EXPECT_EQ(job.interpreter.run(input), End::UniversalExit);
    EXPECT_EQ(input.peek(), 0x1B);
    EXPECT_EQ(job.interpreter.status(), RunStatus::Done);
    EXPECT_EQ(job.pageCount(), 1u);
    EXPECT_TRUE(job.sink.diagnostics.empty());
}

TEST(XlSession, EndsWithTheInput)
{
    XlJob job;
    EXPECT_EQ(job.run(emptyPage()), End::InputEnded);
    EXPECT_EQ(job.interpreter.status(), RunStatus::Done);
}

TEST(XlSession, SeveralSessionsFollowEachOther)
{
    XlStream s = emptyPage();
    s.beginSession(50).openDataSource().beginPage(8, 8).grayBrush(0).nullPen().rectangle(0, 0, 2, 2).endPage();
    s.endSession().append(emptyPage()); // the last with a header of its own
    XlJob job;
    EXPECT_EQ(job.run(s), End::InputEnded);
    EXPECT_EQ(job.pageCount(), 3u);
    EXPECT_EQ(job.device.blackPixelCount(1), 16u); // 2 units of 1/50 inch are 4 pixels
}

TEST(XlSession, AStreamWithoutItsHeaderIsUnderstood)
{
    for (const ByteOrder order : { ByteOrder::LittleEndian, ByteOrder::BigEndian }) {
        XlStream s(order);
        s.beginSession().openDataSource().beginPage(8, 8).endPage().endSession();
        XlJob job;
        job.run(s);
        EXPECT_EQ(job.pageCount(), 1u);
    }
}

TEST(XlSession, BothByteOrdersDrawTheSame)
{
    std::string art[2];
    for (const ByteOrder order : { ByteOrder::LittleEndian, ByteOrder::BigEndian }) {
        XlStream c(order);
        c.grayBrush(0).nullPen().rectangle(1, 1, 4, 3).cursor(0, 4).op(O::NewPath);
        c.ubyte(A::NumberOfPoints, 3).ubyte(A::PointType, 3).op(O::LinePath).pointData({ 8, 4, 8, 8, 4, 8 });
        c.op(O::PaintPath).cursor(5, 0).beginImage(false, 0, 8, 2, 8, 2);
        c.readImage(0, 2, 3,
            order == ByteOrder::LittleEndian ? std::vector<std::uint8_t> { 2, 0, 0, 0xA0, 0, 0 }
                                             : std::vector<std::uint8_t> { 0, 2, 0, 0xA0, 0, 0 });
        c.op(O::EndImage);
        XlJob job;
        job.run(onePage(16, 8, c, order));
        ASSERT_EQ(job.pageCount(), 1u) << job.sink.message();
        art[order == ByteOrder::BigEndian] = job.art(0, 16, 8);
    }
    EXPECT_EQ(art[0], art[1]);
    EXPECT_NE(art[0].find('#'), std::string::npos);
}

TEST(XlSession, AnErrorNamesSubsystemOperatorAttributeAndPosition)
{
    XlStream c;
    c.cursor(0, 0).ubyte(A::ROP3, 252).op(O::SetROP).ubyte(A::FillMode, 7).op(O::SetFillMode);
    XlJob job;
    job.run(onePage(8, 8, c));
    EXPECT_EQ(job.interpreter.status(), RunStatus::Damaged);
    EXPECT_EQ(job.sink.message(),
        "PCL XL error IllegalAttributeValue, subsystem PAINT, operator SetFillMode, "
        "attribute FillMode, position 6");
    EXPECT_TRUE(job.sink.has("pclxl.error.IllegalAttributeValue"));
}

TEST(XlSession, AnErrorKeepsThePagesBeforeAndDropsItsOwn)
{
    XlStream s = XlStream::withHeader();
    s.beginSession().openDataSource().beginPage(8, 8).endPage().beginPage(8, 8).op(O::SetROP).endPage();
    s.beginPage(8, 8).endPage().endSession().universalExit();
    XlJob job;
    EXPECT_EQ(job.run(s), End::UniversalExit);
    EXPECT_EQ(job.interpreter.status(), RunStatus::Damaged);
    EXPECT_EQ(job.pageCount(), 1u);
}

TEST(XlSession, TheStreamAfterABrokenOneIsRun)
{
    XlStream broken = XlStream::withHeader();
    broken.beginSession().op(O::EndPage).raw(std::string("\xE8\xFF\x00", 3)).raw("noise").universalExit();
    MemoryInputStream input { ByteView(broken.bytes()) };
    XlJob job;
    EXPECT_EQ(job.interpreter.run(input), End::UniversalExit);
    EXPECT_EQ(input.peek(), 0x1B);
    EXPECT_EQ(job.run(emptyPage()), End::InputEnded);
    EXPECT_EQ(job.pageCount(), 1u);
    EXPECT_EQ(job.interpreter.status(), RunStatus::Damaged);
}

TEST(XlSession, DataAfterAnErrorCannotPoseAsTheExit)
{
    XlStream s = XlStream::withHeader();
    s.beginSession().op(O::EndPage);
    s.op(O::ReadImage).data({ 0x1B, '%', '-', '1', '2', '3', '4', '5', 'X', 1 }).universalExit();
    MemoryInputStream input { ByteView(s.bytes()) };
    XlJob job;
    job.interpreter.run(input);
    EXPECT_EQ(input.offset(), s.size() - 9);
}

TEST(XlSession, OperatorsOutOfPlaceAreErrors)
{
    const auto errorOf = [](const XlStream& s) {
        XlJob job;
        job.run(s);
        return job.sink.has("pclxl.error.IllegalOperatorSequence");
    };
    XlStream page = XlStream::withHeader();
    page.beginPage(8, 8);
    EXPECT_TRUE(errorOf(page));
    XlStream paint = XlStream::withHeader();
    paint.beginSession().op(O::PaintPath);
    EXPECT_TRUE(errorOf(paint));
    XlStream read;
    read.readImage(0, 1, 0, { 1 });
    EXPECT_TRUE(errorOf(onePage(8, 8, read)));
    XlStream within;
    within.cursor(0, 0).beginImage(false, 0, 8, 8, 8, 8).op(O::NewPath);
    EXPECT_TRUE(errorOf(onePage(8, 8, within)));
    XlStream twice = XlStream::withHeader();
    twice.beginSession().beginSession();
    EXPECT_TRUE(errorOf(twice));
}

TEST(XlSession, WhatIsNotKnownIsReportedAndIgnored)
{
    XlStream c;
    for (int i = 0; i < 3; ++i)
        c.ubyte(A::PenWidth, 1).op(O::NewPath).raw(std::string("\x4D\x90")).data({ 1, 2, 3 });
    XlJob job;
    job.run(onePage(8, 8, c));
    EXPECT_EQ(job.pageCount(), 1u);
    EXPECT_EQ(job.interpreter.status(), RunStatus::Done);
    EXPECT_TRUE(job.sink.has("pclxl.attribute"));
    EXPECT_TRUE(job.sink.has("pclxl.unknown-operator"));
    EXPECT_TRUE(job.sink.has("pclxl.extra-data"));
    for (const Diagnostic& diagnostic : job.sink.diagnostics)
        EXPECT_EQ(diagnostic.severity, Severity::Warning) << diagnostic.message;
}

TEST(XlSession, CommentsAndQueriesHaveNoEffect)
{
    XlStream c;
    c.text(A::CommentData, "hello").op(O::Comment).words(A::CommentData, { 1, 2 }).op(O::EchoComment);
    c.text(A::QueryKey, "x").op(O::Query).op(O::Diagnostic3).ubyte(A::ColorTreatment, 1).op(O::SetColorTreatment);
    c.ubyte(A::AllObjectTypes, 1).op(O::SetNeutralAxis).ubyte(A::AllObjectTypes, 1).op(O::SetAdaptiveHalftoning);
    c.ubyte(A::AllObjectTypes, 1).op(O::SetColorTrapping).ubyte(A::DeviceMatrix, 0).op(O::SetHalftoneMethod);
    c.xy(A::DitherMatrixSize, 2, 2).ubyte(A::DitherMatrixDataType, 0).ubyte(A::DitherMatrixDepth, 2);
    c.op(O::SetHalftoneMethod).data({ 0, 1, 2, 3 });
    XlJob job;
    job.run(onePage(8, 8, c));
    EXPECT_EQ(job.pageCount(), 1u) << job.sink.message();
}

TEST(XlSession, VendorPayloadIsPassedOver)
{
    XlStream c;
    c.uint32(A::VUExtension, 0x68704000).uint32(A::VUDataLength, 10).op(O::VendorUnique);
    c.raw("\x1b%-12345XA").grayBrush(0).nullPen().rectangle(0, 0, 2, 2);
    XlJob job;
    job.run(onePage(8, 8, c));
    ASSERT_EQ(job.pageCount(), 1u);
    EXPECT_EQ(job.device.blackPixelCount(0), 4u);
    EXPECT_TRUE(job.sink.has("pclxl.vendor-unique"));
}

TEST(XlSession, AMissingEndSessionIsAWarningAndAMissingEndPageDamage)
{
    XlStream s = XlStream::withHeader();
    s.beginSession().openDataSource().beginPage(8, 8).endPage();
    XlJob job;
    job.run(s);
    EXPECT_EQ(job.interpreter.status(), RunStatus::Done);
    EXPECT_TRUE(job.sink.has("pclxl.session-not-ended"));
    s.beginPage(8, 8).universalExit();
    XlJob cut;
    EXPECT_EQ(cut.run(s), End::UniversalExit);
    EXPECT_EQ(cut.interpreter.status(), RunStatus::Damaged);
    EXPECT_EQ(cut.pageCount(), 1u);
}

TEST(XlSession, APageThatTheDeviceRefusesEndsTheJob)
{
    XlJob job;
    job.device.refuseAfter(1);
    XlStream s = emptyPage();
    s.append(emptyPage()).append(emptyPage());
    EXPECT_EQ(job.run(s), End::Failed);
    EXPECT_EQ(job.interpreter.status(), RunStatus::LimitExceeded);
    EXPECT_EQ(job.pageCount(), 1u);
}

} // namespace
