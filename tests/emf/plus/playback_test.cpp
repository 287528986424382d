#include "quillrip/emf/plus/dual_choice.h"
#include "tests/emf/plus/plus_job.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::emf::plus;
using namespace quillrip::emf::plus::test;

namespace {

constexpr std::uint32_t kInk = 0xFF000000;
constexpr std::uint16_t kGetDc = 0x4004;
constexpr std::uint16_t kEndOfFile = 0x4002;

Records rectangle()
{
    Records records;
    return fillRect(records, kInk, 0, 0, 5, 5);
}

/// Records of a metafile: one of another kind, and comments.
std::vector<std::uint8_t> metafile(const std::vector<Records>& comments)
{
    Fields fields;
    fields.u32({ 0x21, 8 });
    for (const Records& records : comments) {
        const auto size = static_cast<std::uint32_t>(records.get().size());
        fields.u32({ 0x46, 16 + size, 4 + size, 0x2B464D45 }).bytes(records.get());
    }
    return fields;
}

Records oldPicture() { return Records().object(5, 2, Fields().u32({ kVersion, 2, 2, 4, 0 })); }

} // namespace

TEST(EmfPlusPlayback, OldPicturesLeaveADualFileToItsPlainHalf)
{
    EXPECT_TRUE(isPlainHalfFuller(metafile({ header(Header::Dual), oldPicture() })));
    EXPECT_FALSE(isPlainHalfFuller(metafile({ header(Header::Only), oldPicture() })));
    EXPECT_FALSE(isPlainHalfFuller(metafile({ header(Header::Dual), rectangle() })));
    EXPECT_FALSE(isPlainHalfFuller(metafile({ oldPicture() })));
    // One that comes in pieces too.
    Records pieces;
    pieces.add(0x4008, 0x8502, Fields().u32({ 5000, kVersion, 2, 1, 4980 }));
    EXPECT_TRUE(isPlainHalfFuller(metafile({ header(Header::Dual), pieces })));
    const std::vector<std::uint8_t> whole = metafile({ header(Header::Dual), oldPicture() });
    for (std::size_t size = 0; size < whole.size(); ++size)
        isPlainHalfFuller(ByteView(whole).sub(0, size));

    Sheet sheet;
    sheet.interpreter().standBack();
    sheet.play(header(Header::Dual)).play(rectangle(), false);
    EXPECT_TRUE(sheet.interpreter().letsRecordsThrough());
    EXPECT_EQ(sheet.markedCount(), 0U);
}

TEST(EmfPlusPlayback, WithoutAHeaderPlainRecordsDraw)
{
    Sheet sheet;
    EXPECT_EQ(sheet.interpreter().kind(), Interpreter::Kind::None);
    EXPECT_TRUE(sheet.interpreter().letsRecordsThrough());
    sheet.play(rectangle());
    EXPECT_EQ(sheet.markedCount(), 0U);
    EXPECT_TRUE(sheet.interpreter().letsRecordsThrough());
}

TEST(EmfPlusPlayback, AHeaderInTheMiddleOfAPageStartsNothing)
{
    Sheet sheet;
    Records records = header();
    fillRect(records, kInk, 0, 0, 5, 5);
    sheet.play(records, false);
    EXPECT_EQ(sheet.interpreter().kind(), Interpreter::Kind::None);
    EXPECT_EQ(sheet.markedCount(), 0U);
    EXPECT_TRUE(sheet.interpreter().letsRecordsThrough());
}

TEST(EmfPlusPlayback, OfADualFileTheRecordsOfEmfPlusDraw)
{
    Sheet sheet;
    sheet.play(header(Header::Dual)).play(rectangle(), false);
    EXPECT_EQ(sheet.interpreter().kind(), Interpreter::Kind::Dual);
    EXPECT_FALSE(sheet.interpreter().letsRecordsThrough());
    EXPECT_EQ(sheet.markedCount(), 25U);
}

TEST(EmfPlusPlayback, PlainRecordsDrawBetweenGetDcAndTheNextRecord)
{
    Sheet sheet;
    sheet.play(header());
    EXPECT_FALSE(sheet.interpreter().letsRecordsThrough());
    sheet.play(Records().add(kGetDc, 0), false);
    EXPECT_TRUE(sheet.interpreter().letsRecordsThrough());
    sheet.play(rectangle(), false);
    EXPECT_FALSE(sheet.interpreter().letsRecordsThrough());
}

TEST(EmfPlusPlayback, TheClipHoldsForPlainRecordsToo)
{
    Sheet sheet;
    sheet.play(header());
    EXPECT_FALSE(sheet.interpreter().clipForRecords());
    sheet.play(Records().add(0x4032, 0, Fields().f32({ 2, 3, 4, 5 })).add(kGetDc, 0), false);
    ASSERT_TRUE(sheet.interpreter().clipForRecords());
    EXPECT_EQ(sheet.interpreter().clipForRecords()->bounds(), (PixelRect { 2, 3, 6, 8 }));
}

TEST(EmfPlusPlayback, NothingIsPlayedBehindTheEndRecord)
{
    Sheet sheet;
    sheet.play(header().add(kEndOfFile, 0)).play(rectangle(), false);
    EXPECT_EQ(sheet.markedCount(), 0U);
}

TEST(EmfPlusPlayback, APastedPicturesOwnRecordsArePassedOver)
{
    Sheet sheet;
    Records pasted = header();
    fillRect(pasted, kInk, 0, 0, 5, 5);
    pasted.add(kEndOfFile, 0);
    fillRect(pasted, kInk, 10, 10, 2, 2);
    sheet.play(header()).play(pasted, false);
    EXPECT_EQ(sheet.marked(), (PixelRect { 10, 10, 12, 12 }));
}

TEST(EmfPlusPlayback, PlainRecordsGoOnToDrawWhereAPictureIsPastedAmongThem)
{
    Sheet sheet;
    sheet.play(header()).play(Records().add(kGetDc, 0), false);
    sheet.play(header(Header::Dual), false);
    EXPECT_TRUE(sheet.interpreter().letsRecordsThrough());
    sheet.play(rectangle().add(kEndOfFile, 0), false);
    EXPECT_TRUE(sheet.interpreter().letsRecordsThrough());
    sheet.play(rectangle(), false);
    EXPECT_FALSE(sheet.interpreter().letsRecordsThrough());
}

TEST(EmfPlusPlayback, DamageLetsADualFileDrawItsOtherHalf)
{
    Sheet sheet;
    sheet.play(header(Header::Dual).raw(Fields().u16({ 0x400A, 0 }).u32({ 4, 0 })));
    EXPECT_TRUE(sheet.diagnostics().has("emfplus.size"));
    EXPECT_TRUE(sheet.interpreter().letsRecordsThrough());

    Sheet marked;
    Records records = header(Header::Dual);
    fillRect(records, kInk, 0, 0, 5, 5);
    marked.play(records.raw(Fields().u16({ 0x400A, 0 }).u32({ 0xFFFFFFF0, 0 })));
    EXPECT_FALSE(marked.interpreter().letsRecordsThrough());

    Sheet only;
    only.play(header().raw(Fields().u16({ 0x400A, 0 }).u32({ 0, 0 })));
    EXPECT_FALSE(only.interpreter().letsRecordsThrough());
}

TEST(EmfPlusPlayback, UnknownAndShortRecordsAreNamedAndPassedOver)
{
    Sheet sheet;
    Records records = header().add(0x4099, 0).add(0x400A, kColor, Fields().u32({ kInk, 1000000 }));
    fillRect(records, kInk, 0, 0, 2, 2);
    sheet.play(records);
    EXPECT_TRUE(sheet.diagnostics().has("emfplus.unknown"));
    EXPECT_TRUE(sheet.diagnostics().has("emfplus.operands"));
    EXPECT_EQ(sheet.markedCount(), 4U);
}

TEST(EmfPlusPlayback, EveryRecordBearsHavingNoData)
{
    Records records = header();
    for (std::uint16_t number = 0x4003; number <= 0x403A; ++number)
        records.add(number, 0).add(number, 0xFFFF);
    Sheet sheet;
    sheet.play(records);
    EXPECT_EQ(sheet.markedCount(), 0U);
}

TEST(EmfPlusPlayback, PaintingTheSamePageForEverEnds)
{
    Records records = header();
    for (int i = 0; i < 3000; ++i)
        fillRect(records, 0x01000000, 0, 0, 4, 4);
    records.add(0x4038, 0,
        Fields()
            .u8({ 0xA4, 0x80, 0x3C, 0x63, 0x43, 0x18, 0x2B, 0x48, 0x9E, 0xF2, 0xBE, 0x28, 0x34, 0xC5, 0xFD, 0xD4 })
            .u32({ 0 }));
    EXPECT_TRUE(Sheet(4, 4).play(records).diagnostics().has("emfplus.effect"));
    WorkBudget little;
    little.page = 10'000;
    EXPECT_FALSE(Sheet(4, 4, PixelFormat::Rgb24, little).play(records).diagnostics().has("emfplus.effect"));
}

TEST(EmfPlusPlayback, MetafilesInImagesFillTheirParallelogram)
{
    Records records = header();
    records.object(5, 2, Fields().u32({ kVersion, 2, 3, 4 }).u8({ 1, 2, 3, 4 }));
    records.add(0x401B, 2, Fields().u32({ 0, 2 }).f32({ 0, 0, 100, 100 }).u32({ 3 }).f32({ 10, 20, 30, 20, 10, 60 }));
    Sheet sheet;
    sheet.play(records);
    ASSERT_EQ(sheet.metafiles().size(), 1U);
    EXPECT_EQ(sheet.metafiles()[0].bytes, (std::vector<std::uint8_t> { 1, 2, 3, 4 }));
    EXPECT_EQ(sheet.metafiles()[0].unitSquareToDevice.apply({ 1, 1 }), (Point { 30, 60 }));
}

TEST(EmfPlusPlayback, OldMetafilesAndEffectsAreNamed)
{
    Records records = header();
    records.object(5, 2, Fields().u32({ kVersion, 2, 1, 4 }).u8({ 1, 2, 3, 4 }));
    records.add(0x401A, 2, Fields().u32({ 0, 2 }).f32({ 0, 0, 1, 1, 0, 0, 5, 5 }));
    records.add(0x4038, 0,
        Fields()
            .u8({ 0xA4, 0x80, 0x3C, 0x63, 0x43, 0x18, 0x2B, 0x48, 0x9E, 0xF2, 0xBE, 0x28, 0x34, 0xC5, 0xFD, 0xD4 })
            .u32({ 0 }));
    Sheet sheet;
    sheet.play(records);
    EXPECT_TRUE(sheet.diagnostics().has("emfplus.old-metafile"));
    ASSERT_TRUE(sheet.diagnostics().has("emfplus.effect"));
    EXPECT_NE(sheet.diagnostics().diagnostics.back().message.find("blur"), std::string::npos);
}
