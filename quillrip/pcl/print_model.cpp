// Patterns, transparency, logical operations and rectangles.

#include "quillrip/pcl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::pcl {

namespace {

/// Quarter turns clockwise that a matrix makes of its axes.
int quarterTurnsOf(const Matrix& matrix)
{
    const Point x = matrix.applyVector({ 1, 0 });
    if (std::abs(x.x) >= std::abs(x.y))
        return x.x >= 0 ? 0 : 2;
    return x.y >= 0 ? 1 : 3;
}

std::shared_ptr<const PatternTile> whiteTile()
{
    auto tile = std::make_shared<PatternTile>();
    tile->width = 1;
    tile->height = 1;
    tile->pixels = { 0 };
    return tile;
}

} // namespace

bool Machine::patternExists(PatternChoice choice) const
{
    switch (choice.kind) {
    case PatternKind::Solid:
    case PatternKind::White:
        return true;
    case PatternKind::User:
        return m_patterns.find(choice.id) != nullptr;
    default:
        return builtInTile(choice.kind, choice.id) != nullptr;
    }
}

std::shared_ptr<const PatternTile> Machine::deviceTile(
    PatternChoice choice, int direction, const Matrix& toDevice, Resolution resolution) const
{
    if (choice.kind == PatternKind::White)
        return whiteTile();
    PatternTile tile;
    double tileX = 300;
    double tileY = 300;
    if (choice.kind == PatternKind::User) {
        const std::shared_ptr<const UserPattern> pattern = m_patterns.find(choice.id);
        if (!pattern)
            return nullptr;
        tile = pattern->tile(m_state.palettes.active());
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
        if (pixels > static_cast<double>(m_limits.patternBytes))
            return nullptr;
        tile = tile.scaled(factorX, factorY);
    }
    const int turns = quarterTurnsOf(toDevice);
    return std::make_shared<PatternTile>(turns ? tile.turned(turns) : std::move(tile));
}

PaintState Machine::paintState(PatternChoice choice)
{
    PaintState state;
    state.rop = m_state.rasterOperation;
    state.sourceTransparent = m_state.sourceTransparent;
    state.patternTransparent = m_state.patternTransparent;
    state.texture.color = shown(m_state.foreground);
    if (choice.kind == PatternKind::Solid)
        return state;
    const int direction = m_state.patternFollowsDirection ? m_state.direction : 0;
    const Matrix toDevice = unitsToDevice(direction);
    const Palette* palette = &m_state.palettes.active();
    TileCache& cache = m_tileCache;
    if (!cache.tile || !(cache.choice == choice) || cache.direction != direction
        || cache.revision != m_patterns.revision() || cache.palette != palette) {
        cache = { choice, direction, m_patterns.revision(), palette,
            deviceTile(choice, direction, toDevice, canvas().resolution) };
    }
    if (!cache.tile)
        return state;
    state.texture.tile = cache.tile;
    const Matrix sheet = unitsToDevice(0);
    const Point reference = sheet.apply(
        { static_cast<double>(m_state.patternReference.x), static_cast<double>(m_state.patternReference.y) });
    const int x = static_cast<int>(std::floor(std::clamp(reference.x, -1e6, 1e6) + 0.5 + 1e-6));
    const int y = static_cast<int>(std::floor(std::clamp(reference.y, -1e6, 1e6) + 0.5 + 1e-6));
    // The tile's first pixel stands at the reference point; turned, the tile lies on another side of it.
    const int turns = quarterTurnsOf(toDevice);
    state.texture.originX = turns == 1 || turns == 2 ? x - cache.tile->width : x;
    state.texture.originY = turns == 2 || turns == 3 ? y - cache.tile->height : y;
    return state;
}

void Machine::setPattern(const Command& command)
{
    const int kind = command.value.integer();
    if (kind < 0 || kind > 4)
        return;
    const PatternChoice choice { static_cast<PatternKind>(kind), m_state.patternId };
    if (patternExists(choice))
        m_state.pattern = choice;
}

void Machine::setPatternId(const Command& command)
{
    m_state.patternId = std::clamp(command.value.integer(), 0, 32767);
}

void Machine::downloadPattern(const Command& command)
{
    if (command.data.empty())
        return;
    const std::shared_ptr<const UserPattern> pattern = UserPattern::parse(command.data);
    if (!pattern) {
        warn("pcl.bad-pattern", "a user-defined pattern with an impossible header was skipped");
        return;
    }
    if (!m_patterns.put(m_state.patternId, pattern)) {
        damage("pcl.pattern-memory", "the job's patterns need more memory than the limit allows");
        fail(RunStatus::LimitExceeded);
    }
}

void Machine::controlPatterns(const Command& command)
{
    switch (command.value.integer()) {
    case 0:
        m_patterns.removeAll();
        break;
    case 1:
        m_patterns.removeTemporary();
        break;
    case 2:
        m_patterns.remove(m_state.patternId);
        break;
    case 4:
        m_patterns.setPermanent(m_state.patternId, false);
        break;
    case 5:
        m_patterns.setPermanent(m_state.patternId, true);
        break;
    default:
        break;
    }
    if (!patternExists(m_state.pattern))
        m_state.pattern = {};
}

void Machine::setPatternReference(const Command& command)
{
    const int mode = command.value.integer();
    if (mode != 0 && mode != 1)
        return;
    m_state.patternReference = m_state.page.toOrientation(m_cursor, m_state.direction);
    m_state.patternFollowsDirection = mode == 0;
}

void Machine::setSourceTransparency(const Command& command)
{
    const int mode = command.value.integer();
    if (mode == 0 || mode == 1)
        m_state.sourceTransparent = mode == 0;
}

void Machine::setPatternTransparency(const Command& command)
{
    const int mode = command.value.integer();
    if (mode == 0 || mode == 1)
        m_state.patternTransparent = mode == 0;
}

void Machine::setRasterOperation(const Command& command)
{
    const int code = command.value.integer();
    if (code >= 0 && code <= 255)
        m_state.rasterOperation = static_cast<std::uint8_t>(code);
}

void Machine::setPixelPlacement(const Command& command)
{
    const int mode = command.value.integer();
    if (mode == 0 || mode == 1)
        m_state.isGridCentred = mode == 1;
}

void Machine::setRectangleSize(const Command& command)
{
    if (command.value.number < 0)
        return;
    InternalUnits size = 0;
    const bool isDecipoints = command.terminator == 'H' || command.terminator == 'V';
    if (isDecipoints) {
        // A part of a dot counts as a whole one; the dots are those of the device, 1/300 inch where it is coarser.
        const Resolution resolution = canvas().resolution;
        const double perInch = std::max(300.0, command.terminator == 'H' ? resolution.x : resolution.y);
        const double dots = std::ceil(std::min(command.value.number, 32767.0) * perInch / 720 - 1e-6);
        size = inUnits(dots, static_cast<double>(kUnitsPerInch) / perInch);
    } else {
        size = inUnits(
            std::min(command.value.number, 32767.0), static_cast<double>(kUnitsPerInch) / m_state.unitsPerInch);
    }
    const bool isWidth = command.terminator == 'A' || command.terminator == 'H';
    (isWidth ? m_state.rectangleWidth : m_state.rectangleHeight) = size;
}

void Machine::fillRectangle(const Command& command)
{
    const int fill = command.value.integer();
    if (fill < 0 || fill > 5 || m_state.rectangleWidth <= 0 || m_state.rectangleHeight <= 0)
        return;
    const PatternChoice choice
        = fill == 5 ? m_state.pattern : PatternChoice { static_cast<PatternKind>(fill), m_state.patternId };
    if (!patternExists(choice))
        return;
    Painter* painter = painterForMark();
    if (!painter)
        return;
    const Position corner { m_cursor.x + m_state.rectangleWidth, m_cursor.y + m_state.rectangleHeight };
    PixelRect rect = deviceRect(m_cursor, corner, m_state.direction);
    // However coarse the device, a rule is seen.
    rect.right = std::max(rect.right, rect.left + 1);
    rect.bottom = std::max(rect.bottom, rect.top + 1);
    PaintState state = paintState(choice);
    if (fill == 1) {
        // A white rectangle erases, whatever the transparency modes.
        state.texture = {};
        state.texture.color = { 255, 255, 255 };
    }
    state.clip = logicalPageClip();
    painter->fillRect(rect, state);
}

} // namespace quillrip::pcl
