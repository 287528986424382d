#include "tests/pclxl/xl_job.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;
using pclxl::ByteOrder;
using A = pclxl::Attribute;
using O = pclxl::Operator;

namespace {

XlStream define(const std::string& name, const XlStream& contents)
{
    XlStream s;
    s.text(A::StreamName, name).op(O::BeginStream);
    // In two pieces, as long streams come.
    const std::vector<std::uint8_t>& all = contents.bytes();
    const auto middle = all.begin() + static_cast<std::ptrdiff_t>(all.size() / 2);
    for (const auto& piece :
        { std::vector<std::uint8_t>(all.begin(), middle), std::vector<std::uint8_t>(middle, all.end()) })
        s.uint32(A::StreamDataLength, static_cast<std::uint32_t>(piece.size())).op(O::ReadStream).data(piece);
    return s.op(O::EndStream);
}

XlStream& exec(XlStream& s, const std::string& name) { return s.text(A::StreamName, name).op(O::ExecStream); }

XlStream dot() { return XlStream().rectangle(0, 0, 1, 1).xy(A::PageOrigin, 2, 0).op(O::SetPageOrigin); }

TEST(XlUserStream, RunsAsIfItStoodThere)
{
    XlStream c = define("dot", dot());
    c.nullPen();
    exec(exec(c, "dot"), "dot").rectangle(0, 0, 2, 1);
    XlJob job;
    job.run(onePage(7, 1, c));
    ASSERT_EQ(job.pageCount(), 1u) << job.sink.message();
    EXPECT_EQ(job.art(0, 7, 1), "#.#.##.\n"); // the graphics state is shared
}

TEST(XlUserStream, MayHaveItsOwnHeaderAndByteOrder)
{
    XlStream inner = XlStream::withHeader(ByteOrder::BigEndian);
    inner.cursor(0, 0).ubyte(A::NumberOfPoints, 2).ubyte(A::PointType, 3).op(O::LinePath);
    inner.append(XlStream(ByteOrder::BigEndian).pointData({ 4, 0, 4, 4 })).op(O::PaintPath);
    XlStream c = define("big", inner);
    c.nullPen();
    exec(c, "big").rectangle(0, 3, 1, 4);
    XlJob job;
    job.run(onePage(4, 4, c));
    ASSERT_EQ(job.pageCount(), 1u) << job.sink.message();
    EXPECT_TRUE((job.pixel(0, 3, 1) == Rgb {}));
    EXPECT_TRUE((job.pixel(0, 0, 3) == Rgb {}));
}

TEST(XlUserStream, LivesTillTheEndOfTheJobOrItsRemoval)
{
    XlStream s = XlStream::withHeader();
    s.beginSession().openDataSource().append(define("dot", dot())).endSession();
    s.beginSession().openDataSource().beginPage(4, 1).nullPen();
    exec(s, "dot").endPage().text(A::StreamName, "dot").op(O::RemoveStream).beginPage(4, 1);
    exec(s, "dot").endPage();
    XlJob job;
    job.run(s);
    EXPECT_EQ(job.pageCount(), 1u);
    EXPECT_EQ(job.art(0, 4, 1), "#...\n");
    EXPECT_TRUE(job.sink.has("pclxl.error.StreamUndefined"));
}

TEST(XlUserStream, CallsOthersButNotItself)
{
    XlStream outer;
    exec(exec(outer, "dot"), "dot");
    XlStream c = define("dot", dot());
    c.append(define("outer", outer)).nullPen();
    exec(c, "outer");
    XlJob job;
    job.run(onePage(4, 1, c));
    EXPECT_EQ(job.art(0, 4, 1), "#.#.\n");

    XlStream a;
    exec(a, "b");
    XlStream b;
    exec(b, "a");
    XlStream circle = define("a", a);
    circle.append(define("b", b));
    exec(circle, "a");
    XlJob endless;
    endless.run(onePage(4, 1, circle));
    EXPECT_TRUE(endless.sink.has("pclxl.error.StreamAlreadyRunning"));
}

TEST(XlUserStream, NestingIsLimited)
{
    XlStream c;
    for (int i = 0; i < 100; ++i) {
        XlStream inner;
        exec(inner, "s" + std::to_string(i + 1));
        c.append(define("s" + std::to_string(i), inner));
    }
    exec(c, "s0");
    XlJob job;
    job.run(onePage(4, 1, c));
    EXPECT_TRUE(job.sink.has("pclxl.error.StreamNestingFull"));
}

TEST(XlUserStream, StreamsThatMultiplyEndTheJob)
{
    XlStream c;
    for (int i = 0; i < 30; ++i) {
        XlStream inner;
        if (i < 29)
            exec(exec(exec(inner, "s" + std::to_string(i + 1)), "s" + std::to_string(i + 1)), "s29");
        c.append(define("s" + std::to_string(i), inner));
    }
    exec(c, "s0");
    Limits limits;
    limits.work = std::make_shared<WorkMeter>(WorkBudget { 50'000'000 });
    XlJob job(PixelFormat::Bilevel, limits);
    EXPECT_EQ(job.run(onePage(4, 1, c)), pclxl::Interpreter::End::Failed);
    EXPECT_EQ(job.interpreter.status(), RunStatus::LimitExceeded);
}

TEST(XlUserStream, StreamsThatPaintThePageWithoutEndAreStopped)
{
    XlStream fill;
    XlStream fills;
    XlStream many;
    for (int i = 0; i < 20; ++i) {
        fill.rectangle(0, 0, 100, 100);
        exec(fills, "fill");
        exec(many, "fills");
    }
    XlStream c = define("fill", fill);
    c.append(define("fills", fills)).append(define("many", many));
    exec(c, "many");
    Limits limits;
    limits.work = std::make_shared<WorkMeter>(WorkBudget { 20'000'000 });
    XlJob job(PixelFormat::Bilevel, limits);
    EXPECT_EQ(job.run(onePage(100, 100, c)), pclxl::Interpreter::End::Failed);
    EXPECT_EQ(job.interpreter.status(), RunStatus::LimitExceeded);
}

TEST(XlUserStream, OnePageRunsABoundedNumberOfBytes)
{
    XlStream comments;
    comments.raw(std::string(600, ' '));
    XlStream page;
    exec(page, "comments");
    Limits limits;
    limits.work = std::make_shared<WorkMeter>(WorkBudget { 40'000 });
    XlStream s = XlStream::withHeader();
    s.beginSession().openDataSource().append(define("comments", comments));
    s.beginPage(4, 1).append(page).endPage().beginPage(4, 1).append(page).endPage();
    s.beginPage(4, 1).append(page).append(page).endPage();
    XlJob job(PixelFormat::Bilevel, limits);
    EXPECT_EQ(job.run(s), pclxl::Interpreter::End::Failed);
    EXPECT_EQ(job.pageCount(), 2u);
    EXPECT_EQ(job.interpreter.status(), RunStatus::LimitExceeded);
}

TEST(XlUserStream, MemoryIsLimited)
{
    Limits limits;
    limits.macroBytes = 1000;
    XlStream big;
    big.raw(std::string(600, ' '));
    XlStream c = define("a", big);
    c.append(define("a", big)); // replaces the first
    XlJob job(PixelFormat::Bilevel, limits);
    job.run(onePage(4, 1, c));
    EXPECT_TRUE(job.sink.has("pclxl.error.InsufficientMemory")); // both exist while the second comes
    limits.macroBytes = 1300;
    XlJob enough(PixelFormat::Bilevel, limits);
    enough.run(onePage(4, 1, c));
    EXPECT_EQ(enough.pageCount(), 1u);
}

TEST(XlUserStream, ErrorsInsideNameTheirOwnOperator)
{
    XlStream c = define("bad", XlStream().ubyte(A::FillMode, 9).op(O::SetFillMode));
    exec(c, "bad");
    XlJob job;
    job.run(onePage(4, 1, c));
    EXPECT_NE(job.sink.message().find("operator SetFillMode, attribute FillMode"), std::string::npos);
}

TEST(XlUserStream, CannotEndSessionsOrLeaveDefinitionsOpen)
{
    for (const XlStream& inner : { XlStream().op(O::EndSession), XlStream().beginSession(), XlStream().universalExit(),
             XlStream().cursor(0, 0).beginImage(false, 0, 8, 4, 8, 4), XlStream().raw("\xC1") }) {
        XlStream c = define("bad", inner);
        exec(c, "bad");
        XlJob job;
        job.run(onePage(4, 1, c));
        EXPECT_EQ(job.interpreter.status(), RunStatus::Damaged);
    }
}

} // namespace
