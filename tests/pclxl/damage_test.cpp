#include "tests/pclxl/xl_job.h"
#include "tests/support/jpeg_writer.h"

#include <gtest/gtest.h>
#include <random>

using namespace quillrip;
using namespace quillrip::test;
using A = pclxl::Attribute;
using O = pclxl::Operator;
using Bytes = std::vector<std::uint8_t>;

namespace {

/// A small job that uses nearly everything.
XlStream sampleJob()
{
    XlStream c;
    c.op(O::PushGS).colorSpace(2).rgbBrush(1, 2, 3).grayPen(0).ubyte(A::PenWidth, 1).op(O::SetPenWidth);
    c.words(A::LineDashStyle, { 3, 1 }).uint16(A::DashOffset, 1).op(O::SetLineDash).rectangle(1, 1, 10, 10);
    c.box(A::BoundingBox, 2, 2, 20, 20).op(O::EllipsePath).ubyte(A::ClipRegion, 0).op(O::SetClipIntersect);
    c.cursor(1, 1).ubyte(A::NumberOfPoints, 3).ubyte(A::PointType, 3).op(O::BezierPath).pointData({ 5, 5, 9, 2, 3, 8 });
    c.op(O::PaintPath).op(O::NewPath).op(O::PopGS);
    c.colorSpace(1).cursor(0, 0).beginImage(false, 2, 8, 8, 16, 16);
    c.readImage(0, 4, 2, writeJpeg(Bytes(32, 90), 8, 4, 1)).readImage(4, 2, 1, { 250, 9, 247, 1 });
    c.readImage(6, 2, 3, { 4, 0, 0x40, 1, 2, 3, 0, 0 }).op(O::EndImage);
    c.ubyte(A::ColorMapping, 0).ubyte(A::ColorDepth, 0).uint16(A::SourceWidth, 2).uint16(A::SourceHeight, 2);
    c.xy(A::DestinationSize, 2, 2).sint16(A::PatternDefineID, 1).ubyte(A::PatternPersistence, 0);
    c.op(O::BeginRastPattern).uint16(A::StartLine, 0).uint16(A::BlockHeight, 2).ubyte(A::CompressMode, 0);
    c.op(O::ReadRastPattern).data({ 0x40, 0, 0, 0, 0x80, 0, 0, 0 }).op(O::EndRastPattern);
    c.sint16(A::PatternSelectID, 1).op(O::SetBrushSource).rectangle(0, 0, 9, 9);
    c.text(A::FontName, "F").ubyte(A::FontFormat, 0).op(O::BeginFontHeader).uint16(A::FontHeaderLength, 24);
    c.op(O::ReadFontHeader);
    c.data({ 0, 0, 0, 0, 254, 0, 0, 8, 'B', 'R', 0, 0, 0, 4, 0, 100, 0, 100, 255, 255, 0, 0, 0, 0 });
    c.op(O::EndFontHeader).text(A::FontName, "F").op(O::BeginChar).ubyte(A::CharCode, 1);
    c.uint16(A::CharDataSize, 11).op(O::ReadChar).data({ 0, 0, 0, 0, 0, 0, 0, 1, 0, 1, 0x80 }).op(O::EndChar);
    c.text(A::FontName, "F").ubyte(A::CharSize, 1).uint16(A::SymbolSet, 0).op(O::SetFont).cursor(3, 3);
    c.bytes(A::TextData, { 1, 1 }).bytes(A::XSpacingData, { 2, 2 }).op(O::Text);
    c.text(A::StreamName, "s").op(O::BeginStream).uint16(A::StreamDataLength, 1).op(O::ReadStream).data({ 0x85 });
    c.op(O::EndStream).text(A::StreamName, "s").op(O::ExecStream);
    return onePage(24, 24, c);
}

TEST(XlDamage, TheSampleIsWhole)
{
    XlJob job;
    job.run(sampleJob());
    EXPECT_EQ(job.interpreter.status(), RunStatus::Done) << job.sink.message();
    EXPECT_EQ(job.pageCount(), 1u);
}

TEST(XlDamage, AStreamCutAnywhereEndsQuietly)
{
    const Bytes whole = sampleJob().bytes();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        XlJob job(PixelFormat::Rgb24);
        EXPECT_EQ(job.run(cut), pclxl::Interpreter::End::InputEnded) << size;
        // The page is delivered whole or not at all; before EndSession nothing else can lack.
        const bool isWhole = size + 2 >= whole.size();
        EXPECT_EQ(job.pageCount(), isWhole ? 1u : 0u) << size;
        if (!isWhole && size > 80) {
            EXPECT_EQ(job.interpreter.status(), RunStatus::Damaged) << size;
        }
    }
}

TEST(XlDamage, ChangedBytesNeverHurt)
{
    const Bytes whole = sampleJob().bytes();
    std::mt19937 random(42);
    Limits limits;
    limits.pageBytes = 1 << 20;
    for (int round = 0; round < 1000; ++round) {
        Bytes changed = whole;
        const int changes = 1 + static_cast<int>(random() % 4);
        for (int i = 0; i < changes; ++i)
            changed[random() % changed.size()] = static_cast<std::uint8_t>(random());
        XlJob job(round % 2 ? PixelFormat::Rgb24 : PixelFormat::Bilevel, limits, {}, 30);
        job.run(changed);
        EXPECT_LE(job.pageCount(), 1u);
    }
}

TEST(XlDamage, NoiseIsRefused)
{
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        XlStream s = XlStream::withHeader();
        s.beginSession().openDataSource().beginPage(10, 10);
        Bytes noise(200);
        for (std::uint8_t& byte : noise)
            byte = static_cast<std::uint8_t>(random());
        s.raw(noise);
        XlJob job;
        job.run(s);
        EXPECT_EQ(job.pageCount() > 1, false);
    }
}

/// Every operator with every kind of value for every attribute it knows.
TEST(XlDamage, AbsurdValuesNeverHurt)
{
    std::mt19937 random(11);
    const float reals[] = { 0, -1, 1e12F, -1e12F, 1e-12F, 65535, 3e38F, -0.0F };
    const int words[] = { 0, 1, -1, 255, 256, 32767, -32768, 600 };
    for (int round = 0; round < 1000; ++round) {
        XlStream c;
        c.cursor(1, 1).op(O::PushGS);
        for (int operators = 0; operators < 6; ++operators) {
            const int tag = 0x41 + static_cast<int>(random() % 0x7F);
            // Ends would only end the test early.
            if (tag == 0x42 || tag == 0x44 || tag == 0x46)
                continue;
            for (const int id : { 2, 3, 8, 9, 43, 42, 44, 45, 66, 68, 69, 70, 74, 75, 76, 79, 83, 98, 99, 100, 101, 103,
                     104, 105, 107, 108, 109, 161, 162, 163, 164, 165, 166, 170 }) {
                const A name = static_cast<A>(id);
                switch (random() % 12) {
                case 0:
                    c.real(name, reals[random() % 8]);
                    break;
                case 1:
                    c.realXy(name, reals[random() % 8], reals[random() % 8]);
                    break;
                case 2:
                    c.xy(name, words[random() % 8], words[random() % 8]);
                    break;
                case 3:
                    c.box(name, words[random() % 8], words[random() % 8], words[random() % 8], words[random() % 8]);
                    break;
                case 4:
                    c.ubyte(name, static_cast<int>(random() % 3));
                    break;
                case 5:
                    c.reals(name, { reals[random() % 8], reals[random() % 8], reals[random() % 8] });
                    break;
                default:
                    break;
                }
            }
            c.op(static_cast<O>(tag));
        }
        c.rectangle(0, 0, 5, 5);
        XlJob job(PixelFormat::Gray8);
        job.run(onePage(20, 20, c));
        EXPECT_LE(job.pageCount(), 1u);
    }
}

/// The same, with the operands that each operator wants, so that the values reach the drawing.
TEST(XlDamage, AbsurdGeometryNeverHurts)
{
    std::mt19937 random(5);
    const float reals[] = { 0, -1, 1e12F, -1e12F, 1e-9F, 65535, 10.5F, 3, -20000, 1e6F };
    const auto real = [&] { return reals[random() % 10]; };
    for (int round = 0; round < 500; ++round) {
        XlStream c;
        c.grayBrush(0).grayPen(100).real(A::PenWidth, std::abs(real())).op(O::SetPenWidth);
        c.ubyte(A::LineCapStyle, static_cast<int>(random() % 4)).op(O::SetLineCap);
        c.ubyte(A::LineJoinStyle, static_cast<int>(random() % 4)).op(O::SetLineJoin);
        if (random() % 2)
            c.reals(A::LineDashStyle, { std::abs(real()), std::abs(real()) }).real(A::DashOffset, real());
        if (random() % 2)
            c.op(O::SetLineDash);
        else
            c.ubyte(A::SolidLine, 0).op(O::SetLineDash);
        c.realXy(A::Point, real(), real()).op(O::SetCursor);
        for (int i = 0; i < 3; ++i) {
            c.realXy(A::EndPoint, real(), real()).op(O::LinePath);
            c.realXy(A::ControlPoint1, real(), real()).realXy(A::ControlPoint2, real(), real());
            c.realXy(A::EndPoint, real(), real()).op(O::BezierRelPath);
        }
        if (random() % 3 == 0)
            c.ubyte(A::ClipRegion, static_cast<int>(random() % 2)).op(O::SetClipReplace);
        c.op(O::PaintPath).op(O::NewPath).realXy(A::Point, real(), real()).op(O::SetCursor);
        c.ubyte(A::ColorMapping, 0).ubyte(A::ColorDepth, static_cast<int>(random() % 3)).uint16(A::SourceWidth, 4);
        c.uint16(A::SourceHeight, 2).realXy(A::DestinationSize, std::abs(real()), std::abs(real())).op(O::BeginImage);
        c.readImage(0, 2, 0, { 1, 2, 3, 4, 5, 6, 7, 8 }).op(O::EndImage);
        XlJob job(round % 2 ? PixelFormat::Gray8 : PixelFormat::Bilevel);
        job.run(onePage(20, 20, c));
        EXPECT_LE(job.pageCount(), 1u);
    }
}

TEST(XlDamage, ArraysWithoutEndAreRefused)
{
    XlStream s = XlStream::withHeader();
    s.raw(std::string("\xCA\xC2\xFF\xFF\xFF\x7F", 6)).raw(std::string(5000, 'x'));
    XlJob job;
    job.run(s);
    EXPECT_TRUE(job.sink.has("pclxl.error.IllegalArraySize"));
}

TEST(XlDamage, DataLengthsBeyondTheInputEndTheJob)
{
    XlStream c;
    c.cursor(0, 0).beginImage(false, 0, 8, 4, 8, 4).uint16(A::StartLine, 0).uint16(A::BlockHeight, 4);
    c.ubyte(A::CompressMode, 1).op(O::ReadImage).raw(std::string("\xFA\xFF\xFF\xFF\xFF\x80\x80", 7));
    XlStream s = XlStream::withHeader();
    s.beginSession().openDataSource().beginPage(8, 8).append(c);
    XlJob job;
    EXPECT_EQ(job.run(s), pclxl::Interpreter::End::InputEnded);
    EXPECT_TRUE(job.sink.has("pclxl.error.PrematureEnd"));
}

} // namespace
