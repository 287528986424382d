#include "quillrip/base/replay_meter.h"

#include <gtest/gtest.h>

using namespace quillrip;

namespace {

Limits fewLimits()
{
    Limits limits;
    limits.macroExecutions = 5;
    limits.macroBytes = 100;
    limits.macroCoats = 2;
    return limits;
}

void paintOnce(PageBitmap& page)
{
    for (int y = 0; y < page.height(); ++y)
        page.touch(y, 0, page.width());
}

} // namespace

TEST(ReplayMeter, ExecutionsOfAJobAreCounted)
{
    ReplayMeter meter(fewLimits());
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(meter.enter(1, nullptr));
        meter.leave(nullptr);
        meter.pageEnded();
    }
    EXPECT_FALSE(meter.enter(1, nullptr));
}

TEST(ReplayMeter, BytesAreCountedForOnePage)
{
    ReplayMeter meter(fewLimits());
    EXPECT_TRUE(meter.enter(60, nullptr));
    EXPECT_FALSE(meter.enter(60, nullptr));
    meter.leave(nullptr);
    meter.leave(nullptr);
    meter.pageEnded();
    EXPECT_TRUE(meter.enter(60, nullptr));
}

TEST(ReplayMeter, OnlyWhatRecordingsPaintIsCounted)
{
    ReplayMeter meter(fewLimits());
    PageBitmap page(PixelFormat::Bilevel, 10, 10, {});
    for (int i = 0; i < 5; ++i)
        paintOnce(page);
    EXPECT_TRUE(meter.enter(1, &page));
    paintOnce(page);
    EXPECT_TRUE(meter.enter(1, &page)); // within the first
    paintOnce(page);
    EXPECT_TRUE(meter.mayGoOn(&page));
    meter.leave(&page);
    meter.leave(&page);
    EXPECT_FALSE(meter.isRunning());
    paintOnce(page);
    EXPECT_TRUE(meter.enter(1, &page));
    EXPECT_TRUE(meter.mayGoOn(&page));
    page.touch(3, 4, 5);
    EXPECT_FALSE(meter.mayGoOn(&page));
}

TEST(ReplayMeter, APageThatEndsWithinARecordingTakesItsPaintAlong)
{
    ReplayMeter meter(fewLimits());
    PageBitmap first(PixelFormat::Bilevel, 10, 10, {});
    paintOnce(first);
    EXPECT_TRUE(meter.enter(1, &first));
    paintOnce(first);
    paintOnce(first);
    meter.pageEnded();
    PageBitmap second(PixelFormat::Bilevel, 10, 10, {});
    EXPECT_TRUE(meter.mayGoOn(nullptr));
    paintOnce(second);
    paintOnce(second);
    EXPECT_TRUE(meter.mayGoOn(&second));
    paintOnce(second);
    EXPECT_FALSE(meter.mayGoOn(&second));
}
