#include "quillrip/pclxl/clip_outline.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace quillrip::pclxl {

namespace {

/// A corner of the outline, and the two corners that it is joined with: one along its row, one along its column.
struct Corner {
    int x;
    int y;
    std::size_t across;
    std::size_t along;
    bool hasInkBelow; ///< right below and behind the corner
    bool isUsed = false;
};

constexpr std::size_t kNoCorner = SIZE_MAX;

std::vector<int> edgesOfRow(const ClipRegion& region, int y)
{
    std::vector<int> edges;
    if (y < region.bounds().top || y >= region.bounds().bottom)
        return edges;
    for (const ClipRegion::Run* run = region.begin(y); run != region.end(y); ++run) {
        edges.push_back(run->left);
        edges.push_back(run->right);
    }
    return edges;
}

} // namespace

Path outlineOfRegion(const ClipRegion& region, std::size_t maxPoints)
{
    std::vector<Corner> corners;
    // Between two rows an edge of the outline runs wherever one row has ink and the other has not: between every two
    // positions at which exactly one of the rows changes.
    std::map<int, std::size_t> openColumns; // column edge: the corner from which it runs down
    std::vector<int> above;
    for (int y = region.bounds().top; y <= region.bounds().bottom && corners.size() < maxPoints; ++y) {
        const std::vector<int> below = edgesOfRow(region, y);
        std::vector<int> changes;
        std::set_symmetric_difference(
            above.begin(), above.end(), below.begin(), below.end(), std::back_inserter(changes));
        for (std::size_t i = 0; i < changes.size(); ++i) {
            const std::size_t self = corners.size();
            const auto edgesTill = std::upper_bound(below.begin(), below.end(), changes[i]) - below.begin();
            corners.push_back({ changes[i], y, i % 2 == 0 ? self + 1 : self - 1, kNoCorner, edgesTill % 2 != 0 });
            const auto open = openColumns.find(changes[i]);
            if (open == openColumns.end()) {
                openColumns.emplace(changes[i], self);
            } else {
                corners[self].along = open->second;
                corners[open->second].along = self;
                openColumns.erase(open);
            }
        }
        above = below;
    }

    Path path;
    for (std::size_t first = 0; first < corners.size(); ++first) {
        if (corners[first].isUsed)
            continue;
        std::size_t at = first;
        // Clockwise round ink, counter-clockwise round holes. The first corner of a polygon is its top left one.
        bool goesAcross = corners[first].hasInkBelow;
        bool isStart = true;
        while (at != kNoCorner && at < corners.size() && !corners[at].isUsed) {
            Corner& corner = corners[at];
            corner.isUsed = true;
            const Point p { static_cast<double>(corner.x), static_cast<double>(corner.y) };
            if (isStart)
                path.moveTo(p);
            else
                path.lineTo(p);
            isStart = false;
            at = goesAcross ? corner.across : corner.along;
            goesAcross = !goesAcross;
        }
        path.close();
    }
    return path;
}

} // namespace quillrip::pclxl
