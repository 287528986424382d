#include "quillrip/base/heap_account.h"

#include <gtest/gtest.h>

#include <new>

namespace quillrip {
namespace {

constexpr std::uint64_t kMegabyte = std::uint64_t { 1 } << 20;
const MemoryBudget kBudget { 10 * kMegabyte, 4, 8 * kMegabyte };

/// Claimed, so far as the bound goes. Gives all back.
std::uint64_t roomFor(std::uint64_t most)
{
    std::uint64_t room = 0;
    while (room < most && HeapAccount::take(kMegabyte))
        room += kMegabyte;
    HeapAccount::giveBack(room);
    return room / kMegabyte;
}

/// Megabytes that there are, up to 100, besides what the program has in use.
std::uint64_t room() { return roomFor(100 * kMegabyte); }

MemoryBudget besidesWhatIsUsed(MemoryBudget budget)
{
    budget.bytes += HeapAccount::used();
    return budget;
}

TEST(HeapAccount, HasNoBoundBeforeItIsOpenedAndAfterItIsClosed)
{
    EXPECT_EQ(room(), 100u);
    {
        const HeapBound bound(besidesWhatIsUsed(kBudget));
        EXPECT_EQ(room(), 10u);
    }
    EXPECT_EQ(room(), 100u);
}

TEST(HeapAccount, GrowsWithTheInputUpToItsShare)
{
    const HeapBound bound(besidesWhatIsUsed(kBudget));
    HeapAccount::addInput(kMegabyte / 2);
    HeapAccount::addInput(kMegabyte / 2);
    EXPECT_EQ(room(), 14u);
    HeapAccount::addInput(kMegabyte);
    EXPECT_EQ(room(), 18u);
    HeapAccount::addInput(UINT64_MAX / 4);
    EXPECT_EQ(room(), 18u);
}

TEST(HeapAccount, ABudgetOfBytesAloneGrowsByNothing)
{
    const HeapBound bound(besidesWhatIsUsed({ 10 * kMegabyte, 0, 0 }));
    HeapAccount::addInput(100 * kMegabyte);
    EXPECT_EQ(room(), 10u);
}

TEST(HeapAccount, EveryJobBeginsAnew)
{
    {
        const HeapBound bound(besidesWhatIsUsed(kBudget));
        HeapAccount::addInput(100 * kMegabyte);
    }
    const HeapBound bound(besidesWhatIsUsed(kBudget));
    EXPECT_EQ(room(), 10u);
}

TEST(HeapAccount, AClaimIsEnteredForItsLife)
{
    const HeapBound bound(besidesWhatIsUsed(kBudget));
    {
        HeapClaim claim;
        claim.add(4 * kMegabyte);
        claim.add(3 * kMegabyte);
        EXPECT_EQ(room(), 3u);
        EXPECT_THROW(claim.add(4 * kMegabyte), std::bad_alloc);
        EXPECT_EQ(room(), 3u) << "what was refused is not entered";
    }
    EXPECT_EQ(room(), 10u);
}

TEST(HeapAccount, TellsItsBoundFromTheMachines)
{
    const HeapBound bound(kBudget);
    EXPECT_EQ(HeapAccount::reason(), "there is not enough memory");
    HeapAccount::addInput(kMegabyte);
    EXPECT_FALSE(HeapAccount::take(100 * kMegabyte));
    EXPECT_EQ(HeapAccount::reason(), "the job needs more than 14 MiB of memory besides its pages");
}

} // namespace
} // namespace quillrip
