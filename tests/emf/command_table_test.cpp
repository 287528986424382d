#include "quillrip/emf/command_table.h"

#include "tests/emf/emf_bench.h"

#include <gtest/gtest.h>

namespace quillrip::test {
namespace {

using emf::Command;
using emf::findCommand;

TEST(EmfCommandTable, EveryPublishedRecordHasAHandlerOrAReason)
{
    // These numbers were never given to a record.
    const std::uint32_t unused[] { 0x45, 0x75 };
    for (std::uint32_t number = emf::kFirstRecord; number <= emf::kLastRecord; ++number) {
        const bool isUnused = std::find(std::begin(unused), std::end(unused), number) != std::end(unused);
        const Command* const command = findCommand(number);
        ASSERT_EQ(command == nullptr, isUnused) << number;
        if (isUnused)
            continue;
        EXPECT_EQ(command->number, number);
        EXPECT_NE(command->handler == nullptr, command->whyIgnored == nullptr) << command->name;
        EXPECT_GE(command->smallestSize, 8u) << command->name;
    }
    EXPECT_EQ(findCommand(0), nullptr);
    EXPECT_EQ(findCommand(emf::kLastRecord + 1), nullptr);
}

TEST(EmfCommandTable, RecordsOfAnySizeAndContentsAreSurvived)
{
    for (std::uint32_t number = emf::kFirstRecord; number <= emf::kLastRecord; ++number) {
        for (const std::size_t size : { 0, 4, 16, 40, 72, 100, 140, 400 }) {
            for (const int fill : { 0x00, 0x01, 0x7F, 0x80, 0xFF }) {
                const Bytes job = metafile(record(number, {}, Bytes(size, static_cast<std::uint8_t>(fill))) + nullPen()
                        + blackBrush() + record(0x24, { 0, 0, 0, 0, 0, 0, 1 }) + rectangle(0, 0, 5, 5),
                    { 60, 60, 6, 6, 6000, 6000, 600, 600, true, 4 });
                const Played played(job, PixelFormat::Gray8, 72);
                EXPECT_LE(played.pages(), 1u);
            }
        }
    }
}

TEST(EmfCommandTable, SavedPathsDoNotPileUp)
{
    Bytes job = record(0x3B);
    for (int i = 0; i < 2000; ++i)
        job = job + record(0x2A, { 0, 0, i, i });
    Bytes saves;
    for (int i = 0; i < 5000; ++i)
        saves = saves + record(0x21);
    const Played played(metafile(
        job + saves + record(0x22, { -5000 }) + record(0x3C) + nullPen() + blackBrush() + boundedRecord(0x3E, {})));
    ASSERT_EQ(played.pages(), 1u);
    EXPECT_FALSE(played.report.hasDamage());
}

TEST(EmfCommandTable, APageThatIsPaintedOverForEverIsCut)
{
    Bytes job = blackBrush() + nullPen();
    for (int i = 0; i < 1100; ++i)
        job = job + rectangle(0, 0, 40, 40);
    Limits limits;
    WorkBudget budget;
    budget.page = 100000;
    limits.work = std::make_shared<WorkMeter>(budget);
    const Played played(
        metafile(job, { 40, 40, 4, 4, 3387, 3387, 338, 338, true, 4 }), PixelFormat::Rgb24, 300, limits);
    EXPECT_EQ(played.status, RunStatus::LimitExceeded);
    EXPECT_TRUE(played.report.has("emf.work"));
}

TEST(EmfCommandTable, PatternsHaveAnEnd)
{
    // A bitmap of runs that claims far more pixels than it has bytes.
    const Bytes header = bitmapHeader(8192, 8192, 8, 1, words({ 0, 0xFF }));
    const Bytes brush = record(0x5E, { 1, 0, 32, 48, 80, 4 }, header + Bytes { 0, 1, 0, 1 });
    const Played played(metafile(brush + record(0x25, { 1 })));
    EXPECT_TRUE(played.report.has("emf.pattern-size"));
}

TEST(EmfCommandTable, SizesThatCannotBeEndThePage)
{
    for (const std::int64_t size : { 0, 4, 9, 0x7FFFFFF0 }) {
        const Bytes bad = words({ 0x15, size, 0 });
        const Played played(metafile(nullPen() + blackBrush() + rectangle(10, 10, 20, 20) + bad));
        ASSERT_EQ(played.pages(), 1u);
        EXPECT_EQ(played.ink(), "10,10,19,19");
        EXPECT_TRUE(played.report.hasDamage());
    }
}

} // namespace
} // namespace quillrip::test
