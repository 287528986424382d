#include "quillrip/pcl/pattern_cache.h"

#include "quillrip/pcl/page.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quillrip::pcl {

namespace {

std::shared_ptr<const PatternTile> whiteTile()
{
    auto tile = std::make_shared<PatternTile>();
    tile->width = 1;
    tile->height = 1;
    tile->pixels = { 0 };
    return tile;
}

} // namespace

int quarterTurnsOf(const Matrix& matrix)
{
    const Point x = matrix.applyVector({ 1, 0 });
    if (std::abs(x.x) >= std::abs(x.y))
        return x.x >= 0 ? 0 : 2;
    return x.y >= 0 ? 1 : 3;
}

PatternCache::PatternCache(const Limits& limits)
    : m_limitBytes(limits.patternBytes)
    , m_store(limits.patternBytes)
{
}

bool PatternCache::exists(PatternChoice choice) const
{
    switch (choice.kind) {
    case PatternKind::Solid:
    case PatternKind::White:
        return true;
    case PatternKind::User:
        return m_store.find(choice.id) != nullptr;
    default:
        return builtInTile(choice.kind, choice.id) != nullptr;
    }
}

std::shared_ptr<const PatternTile> PatternCache::makeTile(
    PatternChoice choice, const Palette& palette, int direction, const Matrix& toDevice, Resolution resolution) const
{
    if (choice.kind == PatternKind::White)
        return whiteTile();
    PatternTile tile;
    double tileX = 300;
    double tileY = 300;
    if (choice.kind == PatternKind::User) {
        const std::shared_ptr<const UserPattern> pattern = m_store.find(choice.id);
        if (!pattern)
            return nullptr;
        tile = pattern->tile(palette);
        tileX = pattern->resolutionX;
        tileY = pattern->resolutionY;
    } else if (const std::shared_ptr<const PatternTile> builtIn = builtInTile(choice.kind, choice.id)) {
        tile = *builtIn;
    } else {
        return nullptr;
    }
    // Resolution runs along page space's axes; a direction across them exchanges the two.
    const bool isAcross = direction & 1;
    double factorX = (isAcross ? resolution.y : resolution.x) / tileX;
    double factorY = (isAcross ? resolution.x : resolution.y) / tileY;
    if (choice.kind != PatternKind::User) {
        // Shades and hatches are even only in whole dots, and lose their lines when they shrink.
        factorX = std::max(1.0, std::round(factorX));
        factorY = std::max(1.0, std::round(factorY));
    }
    if (factorX != 1 || factorY != 1) {
        const double pixels = tile.width * factorX * tile.height * factorY;
        if (pixels > static_cast<double>(m_limitBytes))
            return nullptr;
        tile = tile.scaled(factorX, factorY);
    }
    const int turns = quarterTurnsOf(toDevice);
    return std::make_shared<PatternTile>(turns ? tile.turned(turns) : std::move(tile));
}

const std::shared_ptr<const PatternTile>& PatternCache::tile(
    PatternChoice choice, const Palette& palette, int direction, const Page& page)
{
    // The page's orientation turns tiles as well.
    const Matrix toDevice = page.unitsToDevice(direction);
    const int turns = quarterTurnsOf(toDevice);
    const bool isKnown = m_last.tile && m_last.choice == choice && m_last.direction == direction
        && m_last.turns == turns && m_last.revision == m_store.revision() && m_last.palette == &palette;
    if (!isKnown) {
        m_last = { choice, direction, turns, m_store.revision(), &palette,
            makeTile(choice, palette, direction, toDevice, page.canvas().resolution) };
    }
    return m_last.tile;
}

} // namespace quillrip::pcl
