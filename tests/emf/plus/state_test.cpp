#include "tests/emf/plus/plus_job.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::emf::plus;
using namespace quillrip::emf::plus::test;

namespace {

constexpr std::uint32_t kInk = 0xFF000000;
constexpr std::uint16_t kAppends = 0x2000;

/// What a rectangle becomes behind the records.
PixelRect drawn(Records records, double x, double y, double width, double height)
{
    fillRect(records, kInk, x, y, width, height);
    Sheet sheet(400, 400);
    return sheet.play(records).marked();
}

Fields numbers(std::initializer_list<double> values) { return Fields().f32(values); }

} // namespace

TEST(EmfPlusState, NewTransformsActFirstUnlessAppended)
{
    EXPECT_EQ(drawn(header().add(0x402D, 0, numbers({ 10, 0 })).add(0x402E, 0, numbers({ 2, 2 })), 5, 5, 1, 1),
        (PixelRect { 20, 10, 22, 12 }));
    EXPECT_EQ(drawn(header().add(0x402D, 0, numbers({ 10, 0 })).add(0x402E, kAppends, numbers({ 2, 2 })), 5, 5, 1, 1),
        (PixelRect { 30, 10, 32, 12 }));
}

TEST(EmfPlusState, RotationIsClockwiseAndExactInQuarters)
{
    EXPECT_EQ(drawn(header().add(0x402F, 0, numbers({ 90 })).add(0x402D, kAppends, numbers({ 50, 0 })), 10, 0, 20, 5),
        (PixelRect { 45, 10, 50, 30 }));
}

TEST(EmfPlusState, RestoreGoesBackBelowLaterSaves)
{
    const Fields one = Fields().u32({ 1 });
    Records records = header().add(0x4025, 0, one).add(0x402D, 0, numbers({ 10, 0 }));
    records.add(0x4025, 0, Fields().u32({ 2 })).add(0x402E, 0, numbers({ 2, 2 })).add(0x4026, 0, one);
    EXPECT_EQ(drawn(records, 1, 1, 3, 3), (PixelRect { 1, 1, 4, 4 }));
    // The second one is forgotten.
    records.add(0x402D, 0, numbers({ 7, 0 })).add(0x4026, 0, Fields().u32({ 2 }));
    EXPECT_EQ(drawn(records, 1, 1, 3, 3), (PixelRect { 8, 1, 11, 4 }));
}

TEST(EmfPlusState, PageUnitsHaveTheirLengths)
{
    EXPECT_EQ(drawn(header().add(0x4030, 4, numbers({ 1 })), 1, 1, 0.25, 0.1), (PixelRect { 300, 300, 375, 330 }));
    EXPECT_EQ(drawn(header().add(0x4030, 3, numbers({ 2 })), 12, 12, 12, 6), (PixelRect { 100, 100, 200, 150 }));
    EXPECT_EQ(drawn(header().add(0x4030, 6, numbers({ 1 })), 12.7, 0, 12.7, 25.4), (PixelRect { 150, 0, 300, 300 }));
    EXPECT_EQ(drawn(header().add(0x4030, 5, numbers({ 0.5 })), 100, 100, 100, 100), (PixelRect { 50, 50, 100, 100 }));
    // 1/100 inch on a printer.
    EXPECT_EQ(drawn(header().add(0x4030, 1, numbers({ 1 })), 10, 10, 10, 10), (PixelRect { 30, 30, 60, 60 }));
}

TEST(EmfPlusState, ContainersMapTheirSourceToTheirDestination)
{
    const Fields frame = numbers({ 50, 40, 100, 100, 10, 10, 20, 20 });
    Records records = header().add(0x402D, 0, numbers({ 100, 0 }));
    records.add(0x4027, 2, Fields(frame).u32({ 3 }));
    EXPECT_EQ(drawn(records, 10, 10, 10, 20), (PixelRect { 150, 40, 200, 140 }));
    records.add(0x402D, 0, numbers({ 10, 0 }));
    EXPECT_EQ(drawn(records, 10, 10, 10, 20), (PixelRect { 200, 40, 250, 140 }));
    records.add(0x4029, 0, Fields().u32({ 3 }));
    EXPECT_EQ(drawn(records, 0, 0, 10, 10), (PixelRect { 100, 0, 110, 10 }));
}

TEST(EmfPlusState, ContainersCountInTheirUnit)
{
    // 1 by 1 inch becomes 60 by 60 pixels.
    const Records records = header().add(0x4027, 4, Fields(numbers({ 20, 20, 60, 60, 0, 0, 1, 1 })).u32({ 0 }));
    EXPECT_EQ(drawn(records, 0, 0, 0.5, 1), (PixelRect { 20, 20, 50, 80 }));
}

TEST(EmfPlusState, AContainersClipStaysWithinTheOneAround)
{
    Records records = header().add(0x4032, 0, numbers({ 10, 10, 20, 20 })).add(0x4028, 0, Fields().u32({ 0 }));
    records.add(0x4032, 0, numbers({ 0, 0, 15, 100 }));
    EXPECT_EQ(drawn(records, 0, 0, 100, 100), (PixelRect { 10, 10, 15, 30 }));
    records.add(0x4031, 0);
    EXPECT_EQ(drawn(records, 0, 0, 100, 100), (PixelRect { 10, 10, 30, 30 }));
    records.add(0x4029, 0, Fields().u32({ 0 })).add(0x4031, 0);
    EXPECT_EQ(drawn(records, 0, 0, 100, 100), (PixelRect { 0, 0, 100, 100 }));
}

TEST(EmfPlusState, ClipsCombineInSixWays)
{
    const auto area = [](std::uint16_t mode) {
        Records records = header().add(0x4032, 0, numbers({ 0, 0, 10, 10 }));
        records.add(0x4032, static_cast<std::uint16_t>(mode << 8), numbers({ 5, 0, 10, 10 }));
        fillRect(records, kInk, 0, 0, 50, 50);
        Sheet sheet(60, 60);
        sheet.play(records);
        return sheet.markedCount();
    };
    EXPECT_EQ(area(0), 100U);
    EXPECT_EQ(area(1), 50U);
    EXPECT_EQ(area(2), 150U);
    EXPECT_EQ(area(3), 100U);
    EXPECT_EQ(area(4), 50U);
    EXPECT_EQ(area(5), 50U);
}

TEST(EmfPlusState, ClipsAreMovedByWorldUnits)
{
    Records records = header().add(0x4032, 0, numbers({ 5, 5, 10, 10 })).add(0x402E, 0, numbers({ 3, 2 }));
    records.add(0x4035, 0, numbers({ 10, 10 })).add(0x402B, 0);
    EXPECT_EQ(drawn(records, 0, 0, 100, 100), (PixelRect { 35, 25, 45, 35 }));
}

TEST(EmfPlusState, TransformsThatOutgrowAnyPageAreLeftOut)
{
    Records records = header();
    for (int i = 0; i < 100; ++i)
        records.add(0x402E, 0, numbers({ 1e6, 1e6 }));
    Sheet sheet;
    sheet.play(records);
    EXPECT_TRUE(sheet.diagnostics().has("emfplus.transform"));
}

TEST(EmfPlusState, MoreSavesThanAnyDrawingNeedsAreNotKept)
{
    Records records = header();
    for (std::uint32_t i = 0; i < 5000; ++i)
        records.add(0x4025, 0, Fields().u32({ i }));
    Sheet sheet;
    sheet.play(records);
    EXPECT_TRUE(sheet.diagnostics().has("emfplus.depth"));
}
