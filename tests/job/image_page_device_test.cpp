#include "quillrip/job/image_page_device.h"

#include "tests/job/collecting_sink.h"

#include <gtest/gtest.h>

namespace quillrip {
namespace {

/// The height of the image of a Letter sheet that may be three inches longer, with a mark in the row `markedRow` of 10
/// rows to the inch.
int imageHeight(PageSettings settings, int markedRow)
{
    settings.resolution = { 10, 10 };
    test::CollectingSink sink;
    ImagePageDevice device(sink, settings, {});
    SheetRequest sheet;
    sheet.spareHeight = 3 * 720;
    PageCanvas canvas;
    EXPECT_EQ(device.beginPage(sheet, canvas), RunStatus::Done);
    canvas.painter->fillRect({ 0, markedRow, 5, markedRow + 1 }, {});
    EXPECT_EQ(device.endPage(), RunStatus::Done);
    return sink.pages.at(0).height();
}

TEST(ImagePageDevice, SpareHeightStaysWhereItIsMarked)
{
    EXPECT_EQ(imageHeight({}, 109), 110);
    EXPECT_EQ(imageHeight({}, 110), 140);
}

TEST(ImagePageDevice, AnImageOfGivenSizeHasNoSpareHeight)
{
    PageSettings settings;
    settings.height = 220;
    EXPECT_EQ(imageHeight(settings, 219), 220);
    EXPECT_EQ(imageHeight(settings, 225), 220);
}

} // namespace
} // namespace quillrip
