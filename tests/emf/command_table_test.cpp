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
