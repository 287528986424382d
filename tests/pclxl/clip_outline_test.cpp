#include "quillrip/pclxl/clip_outline.h"

#include "quillrip/raster/painter.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::pclxl;

namespace {

std::vector<std::pair<int, int>> pixelsOf(const ClipRegion& region)
{
    std::vector<std::pair<int, int>> pixels;
    const PixelRect b = region.bounds();
    for (int y = b.top; y < b.bottom; ++y) {
        if (region.isRect()) {
            for (int x = b.left; x < b.right; ++x)
                pixels.emplace_back(x, y);
        } else {
            for (const ClipRegion::Run* run = region.begin(y); run != region.end(y); ++run)
                for (int x = run->left; x < run->right; ++x)
                    pixels.emplace_back(x, y);
        }
    }
    return pixels;
}

Path ring()
{
    Path path;
    path.rectangle(2, 2, 20, 20);
    path.rectangle(6, 6, 12, 14);
    path.rectangle(8, 8, 10, 10);
    path.rectangle(20, 20, 24, 22); // touches the corner of the first
    return path;
}

TEST(XlClipOutline, GivesTheRegionBackByBothRules)
{
    const PixelRect page { 0, 0, 30, 30 };
    const auto region = ClipRegion::ofPath(ring(), FillRule::EvenOdd, page);
    const Path outline = outlineOfRegion(*region, 100000);
    for (const FillRule rule : { FillRule::EvenOdd, FillRule::NonZero })
        EXPECT_EQ(pixelsOf(*ClipRegion::ofPath(outline, rule, page)), pixelsOf(*region));
}

TEST(XlClipOutline, FollowsACurveWithoutInnerLines)
{
    Path circle;
    circle.arc({ 15, 15 }, 10, 10, 0, 6.283185307, true);
    circle.close();
    const auto region = ClipRegion::ofPath(circle, FillRule::NonZero, { 0, 0, 30, 30 });
    const Path outline = outlineOfRegion(*region, 100000);
    int subpaths = 0;
    for (const Path::Verb verb : outline.verbs())
        subpaths += verb == Path::Verb::Move;
    EXPECT_EQ(subpaths, 1);
    EXPECT_EQ(pixelsOf(*ClipRegion::ofPath(outline, FillRule::NonZero, { 0, 0, 30, 30 })), pixelsOf(*region));
}

} // namespace
