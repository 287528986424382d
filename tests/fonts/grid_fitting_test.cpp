#include "font_test_helpers.h"
#include "quillrip/fonts/font_library.h"
#include "quillrip/fonts/pixels/grid_fitting.h"

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <vector>

using namespace quillrip;

namespace {

Path rectangles(const std::vector<std::array<double, 4>>& sides)
{
    Path path;
    for (const auto& [left, bottom, right, top] : sides)
        path.rectangle(left, bottom, right, top);
    return path;
}

std::vector<double> xs(const Path& path)
{
    std::set<double> values;
    for (const Point& p : path.points())
        values.insert(p.x);
    return { values.begin(), values.end() };
}

std::vector<double> ys(const Path& path)
{
    std::set<double> values;
    for (const Point& p : path.points())
        values.insert(p.y);
    return { values.begin(), values.end() };
}

/// Widths of the runs of ink in one row.
std::vector<int> runs(const GlyphMask& mask, int y)
{
    std::vector<int> widths;
    int run = 0;
    for (int x = 0; x <= mask.width; ++x) {
        if (x < mask.width && hasInk(mask, x, y)) {
            ++run;
        } else if (run > 0) {
            widths.push_back(run);
            run = 0;
        }
    }
    return widths;
}

int lastRow(const GlyphMask& mask) { return mask.top + mask.height; }

std::shared_ptr<const Typeface> face(const FontLibrary& library, const std::string& name)
{
    for (const auto& candidate : library.builtInFaces()) {
        if (candidate->traits().name == name)
            return candidate;
    }
    return nullptr;
}

} // namespace

TEST(GridFitting, NearlyEqualStemsBecomeEqualAndWhole)
{
    FittingGuide guide;
    guide.em = 40;
    guide.stem = 3.4;
    const Path fitted
        = fittedToGrid(rectangles({ { 2.3, 0, 5.6, 20 }, { 12.4, 0, 16.2, 20 }, { 22.7, 0, 25.6, 20 } }), guide);
    EXPECT_EQ(xs(fitted), (std::vector<double> { 2, 5, 13, 16, 23, 26 }));
}

TEST(GridFitting, HairlinesKeepAPixelAndGapsStayOpen)
{
    FittingGuide guide;
    guide.em = 10;
    guide.stem = 0.6;
    const Path fitted = fittedToGrid(rectangles({ { 1.0, 0, 1.6, 5 }, { 2.3, 0, 2.9, 5 } }), guide);
    EXPECT_EQ(xs(fitted), (std::vector<double> { 1, 2, 3, 4 }));
}

TEST(GridFitting, LettersStandOnTheirLines)
{
    FittingGuide guide;
    guide.em = 40;
    guide.bar = 3;
    guide.zones = { { 0, -0.5 }, { 18.6, 19.1 } };
    // A flat letter and a round one: both end on whole rows, the same ones.
    EXPECT_EQ(ys(fittedToRows(rectangles({ { 0, 0, 4, 18.6 } }), guide)), (std::vector<double> { 0, 19 }));
    const Path round = fittedToRows(rectangles({ { 0, -0.5, 12, 2.4 }, { 0, 16.2, 12, 19.1 } }), guide);
    EXPECT_EQ(ys(round), (std::vector<double> { 0, 3, 16, 19 }));
    // Coverage keeps the places along the line.
    EXPECT_EQ(xs(fittedToRows(rectangles({ { 0.3, 0, 4.1, 18.6 } }), guide)), (std::vector<double> { 0.3, 4.1 }));
}

TEST(GridFitting, AnOutlineWithoutStrokesStaysAsItIs)
{
    Path path;
    path.moveTo({ 0.3, 0.2 });
    path.lineTo({ 7.1, 12.4 });
    path.lineTo({ 9.9, 3.3 });
    path.close();
    FittingGuide guide;
    guide.em = 40;
    const Path fitted = fittedToGrid(path, guide);
    EXPECT_EQ(fitted.points(), path.points());
}

TEST(GridFitting, StemsOfAFaceAreEvenAtEverySize)
{
    const FontLibrary library;
    for (const char* name : { "Arial", "CG Times", "Univers Medium", "Courier", "Letter Gothic" }) {
        const auto f = face(library, name);
        for (const double em : { 25.0, 33.3, 41.7, 50.0, 62.5 }) {
            std::set<int> widths;
            for (const char letter : { 'm', 'n', 'u', 'i', 'l', 'h' }) {
                GlyphMask mask;
                ASSERT_TRUE(f->rasterise(f->glyph(static_cast<unsigned char>(letter)), Matrix { em, 0, 0, -em, 0, 0 },
                    GlyphMask::Depth::Bits, {}, mask));
                // A row through the stems, a quarter of the em above the baseline.
                for (const int width : runs(mask, -mask.top - static_cast<int>(em / 4)))
                    widths.insert(width);
            }
            EXPECT_EQ(widths.size(), 1u) << name << ' ' << em;
        }
    }
}

TEST(GridFitting, LettersOfAFaceEndOnTheSameRow)
{
    const FontLibrary library;
    for (const char* name : { "Arial", "CG Times", "Univers Bold", "Courier" }) {
        const auto f = face(library, name);
        // At larger sizes round letters reach a row further, as they should.
        for (const double em : { 16.7, 25.0, 33.3, 41.7 }) {
            for (const char letter : { 'a', 'e', 'o', 'n', 'x', 'H', 'O', 'l' }) {
                GlyphMask mask;
                ASSERT_TRUE(f->rasterise(f->glyph(static_cast<unsigned char>(letter)), Matrix { em, 0, 0, -em, 0, 0 },
                    GlyphMask::Depth::Bits, {}, mask));
                EXPECT_EQ(lastRow(mask), 0) << name << ' ' << letter << ' ' << em;
            }
        }
    }
}
