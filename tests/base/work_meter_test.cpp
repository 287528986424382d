#include "quillrip/base/work_meter.h"

#include <gtest/gtest.h>

using namespace quillrip;

namespace {

WorkBudget budgetOf(std::uint64_t page, std::uint64_t job, std::uint64_t perPage)
{
    WorkBudget budget;
    budget.page = page;
    budget.job = job;
    budget.perPage = perPage;
    return budget;
}

} // namespace

TEST(WorkMeter, EveryPageHasItsOwnBudget)
{
    WorkMeter meter(budgetOf(100, 1000, 0));
    for (int page = 0; page < 5; ++page) {
        EXPECT_TRUE(meter.allows(Work::Shapes, 60));
        EXPECT_TRUE(meter.allows(Work::Pixels, 40));
        meter.pageEnded();
    }
    EXPECT_EQ(meter.reason(), "");
    EXPECT_TRUE(meter.allows(Work::Lines, 100));
    EXPECT_FALSE(meter.allows(Work::Lines, 1));
    EXPECT_TRUE(meter.isExhausted());
    EXPECT_EQ(meter.reason(), "page 6 asks for more drawing than any page needs, most of it for lines");
}

TEST(WorkMeter, AJobMayDoMoreWithEveryPage)
{
    WorkMeter meter(budgetOf(1000, 100, 50));
    meter.addInput(1000);
    EXPECT_TRUE(meter.allows(Work::Images, 100));
    meter.pageEnded();
    EXPECT_TRUE(meter.allows(Work::Images, 50));
    EXPECT_FALSE(meter.allows(Work::Images, 1));
    EXPECT_EQ(meter.reason(), "the job asks for more drawing than its pages need, most of it for images");
}

TEST(WorkMeter, PagesThatTheInputHasNoBytesForAddNothing)
{
    WorkBudget budget = budgetOf(1000, 100, 50);
    budget.bytesPerPage = 10;
    WorkMeter meter(budget);
    meter.addInput(19);
    for (int page = 0; page < 5; ++page)
        meter.pageEnded();
    EXPECT_TRUE(meter.allows(Work::Pixels, 150));
    EXPECT_FALSE(meter.allows(Work::Pixels, 1));
}

TEST(WorkMeter, StaysExhausted)
{
    WorkMeter meter(budgetOf(10, 100, 0));
    meter.charge(Work::Glyphs, 11);
    EXPECT_TRUE(meter.isExhausted());
    meter.pageEnded();
    EXPECT_FALSE(meter.allows(Work::Commands, 0));
    EXPECT_NE(meter.reason(), "");
}

TEST(WorkMeter, RecordingsCostTheirRunsAndTheirBytes)
{
    WorkMeter meter(budgetOf(40'000, 1'000'000, 0));
    EXPECT_TRUE(meter.allowsRecording(0));
    EXPECT_TRUE(meter.allowsRecording(0));
    EXPECT_FALSE(meter.allowsRecording(1000));
    EXPECT_GT(meter.spent(Work::Recordings), 40'000u);
    EXPECT_EQ(meter.spent(), meter.spent(Work::Recordings));
}

TEST(WorkMeter, ClocksStopWhatTheCountDoesNotSee)
{
    WorkBudget budget;
    budget.processorSeconds = -1;
    EXPECT_TRUE(WorkMeter(budget).isExhausted());
    budget = {};
    budget.wallSeconds = -1;
    EXPECT_TRUE(WorkMeter(budget).isExhausted());
    EXPECT_FALSE(WorkMeter().isExhausted());
}
