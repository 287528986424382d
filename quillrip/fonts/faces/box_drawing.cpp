#include "quillrip/fonts/faces/box_drawing.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace quillrip {

namespace {

/// What goes from the centre of the cell to each of its edges: 0 nothing, 1 a rule, 2 two rules.
struct Arms {
    char left, right, up, down;
};

/// U+2550 to U+256C, as "left right up down".
constexpr std::array<const char*, 29> kDoubleArms { "2200", "0022", "0201", "0102", "0202", "2001", "1002", "2002",
    "0210", "0120", "0220", "2010", "1020", "2020", "0211", "0122", "0222", "2011", "1022", "2022", "2201", "1102",
    "2202", "2210", "1120", "2220", "2211", "1122", "2222" };

bool armsOf(char32_t unicode, Arms& arms)
{
    const char* text = nullptr;
    switch (unicode) {
    case 0x2500:
        text = "1100";
        break;
    case 0x2502:
        text = "0011";
        break;
    case 0x250C:
        text = "0101";
        break;
    case 0x2510:
        text = "1001";
        break;
    case 0x2514:
        text = "0110";
        break;
    case 0x2518:
        text = "1010";
        break;
    case 0x251C:
        text = "0111";
        break;
    case 0x2524:
        text = "1011";
        break;
    case 0x252C:
        text = "1101";
        break;
    case 0x2534:
        text = "1110";
        break;
    case 0x253C:
        text = "1111";
        break;
    default:
        if (unicode < 0x2550 || unicode >= 0x2550 + kDoubleArms.size())
            return false;
        text = kDoubleArms[unicode - 0x2550];
    }
    const auto arm = [text](std::size_t i) { return static_cast<char>(text[i] - '0'); };
    arms = { arm(0), arm(1), arm(2), arm(3) };
    return true;
}

bool isBlock(char32_t unicode)
{
    return unicode == 0x2580 || unicode == 0x2584 || unicode == 0x2588 || unicode == 0x258C || unicode == 0x2590
        || (unicode >= 0x2591 && unicode <= 0x2593);
}

/// How far a rule of an arm goes past the cell's centre (negative: it stops before). `near` is the arm on the
/// rule's own side, `far` the one across, `opposite` the arm's continuation; `offset` is the distance of a double
/// rule's lines from the axis.
double reachOfOuterRule(char near, char far, char opposite, double offset)
{
    if (near == 2)
        return -offset;
    if (near == 1 || opposite != 0)
        return 0;
    return far == 2 ? offset : 0;
}

double reachOfSingleRule(char near, char far, char opposite, double offset)
{
    if (opposite != 0)
        return 0;
    if (near == 2 && far == 2)
        return -offset;
    return near == 2 || far == 2 ? offset : 0;
}

/// The rules of one arm in coordinates where it comes from minus infinity along x: `at` gives rectangles from
/// (start, y) to (end, y).
template <typename Rule> void armRules(char arm, char near, char far, char opposite, double offset, Rule rule)
{
    if (arm == 1) {
        rule(reachOfSingleRule(near, far, opposite, offset), 0.0);
    } else if (arm == 2) {
        rule(reachOfOuterRule(near, far, opposite, offset), offset);
        rule(reachOfOuterRule(far, near, opposite, offset), -offset);
    }
}

void rules(const Arms& arms, const GlyphCell& cell, double stroke, Path& path)
{
    const double half = stroke / 2;
    const double x0 = (cell.left + cell.right) / 2;
    const double y0 = (cell.bottom + cell.top) / 2;
    const double offset = stroke * 1.25;
    armRules(arms.left, arms.up, arms.down, arms.right, offset,
        [&](double reach, double y) { path.rectangle(cell.left, y0 + y - half, x0 + reach + half, y0 + y + half); });
    armRules(arms.right, arms.up, arms.down, arms.left, offset,
        [&](double reach, double y) { path.rectangle(x0 - reach - half, y0 + y - half, cell.right, y0 + y + half); });
    armRules(arms.up, arms.right, arms.left, arms.down, offset,
        [&](double reach, double x) { path.rectangle(x0 + x - half, y0 - reach - half, x0 + x + half, cell.top); });
    armRules(arms.down, arms.right, arms.left, arms.up, offset,
        [&](double reach, double x) { path.rectangle(x0 + x - half, cell.bottom, x0 + x + half, y0 + reach + half); });
}

/// A grid of small squares whose area is the share of ink; it continues over cell edges.
void shade(int eighths, const GlyphCell& cell, Path& path)
{
    constexpr int kColumns = 8;
    constexpr int kRows = 12;
    // Ordered so that each level keeps the squares of the one before.
    constexpr std::array<std::array<int, 4>, 2> kOrder { { { 0, 4, 2, 6 }, { 5, 1, 7, 3 } } };
    const double width = (cell.right - cell.left) / kColumns;
    const double height = (cell.top - cell.bottom) / kRows;
    for (int row = 0; row < kRows; ++row) {
        for (int column = 0; column < kColumns; ++column) {
            const int order = kOrder[static_cast<std::size_t>(row % 2)][static_cast<std::size_t>(column % 4)];
            if (order >= eighths)
                continue;
            const double left = cell.left + column * width;
            const double bottom = cell.bottom + row * height;
            path.rectangle(left, bottom, left + width, bottom + height);
        }
    }
}

} // namespace

bool isBoxDrawing(char32_t unicode)
{
    Arms arms;
    return isBlock(unicode) || armsOf(unicode, arms);
}

void boxDrawing(char32_t unicode, const GlyphCell& cell, double stroke, Path& path)
{
    const double x0 = (cell.left + cell.right) / 2;
    const double y0 = (cell.bottom + cell.top) / 2;
    Arms arms;
    if (armsOf(unicode, arms)) {
        rules(arms, cell, stroke, path);
        return;
    }
    switch (unicode) {
    case 0x2580:
        path.rectangle(cell.left, y0, cell.right, cell.top);
        break;
    case 0x2584:
        path.rectangle(cell.left, cell.bottom, cell.right, y0);
        break;
    case 0x2588:
        path.rectangle(cell.left, cell.bottom, cell.right, cell.top);
        break;
    case 0x258C:
        path.rectangle(cell.left, cell.bottom, x0, cell.top);
        break;
    case 0x2590:
        path.rectangle(x0, cell.bottom, cell.right, cell.top);
        break;
    case 0x2591:
        shade(2, cell, path);
        break;
    case 0x2592:
        shade(4, cell, path);
        break;
    case 0x2593:
        shade(6, cell, path);
        break;
    default:
        break;
    }
}

} // namespace quillrip
