#include "quillrip/hpgl/inks.h"

#include "quillrip/base/color.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace quillrip::hpgl {

namespace {

/// Patterns are made of dots of this size, or of whole numbers of device pixels near it.
constexpr double kPatternDpi = 300;
constexpr int kShadingCell = 16;
constexpr int kShadingSteps = kShadingCell * kShadingCell;

/// The order in which the cells of a square of 16 x 16 get ink: ever halving the gaps, so that any number of them is
/// spread evenly.
int shadingThreshold(int x, int y)
{
    int threshold = 0;
    for (int bit = 0; bit < 4; ++bit) {
        const int a = x >> bit & 1;
        const int b = y >> bit & 1;
        threshold = threshold * 4 + ((a ^ b) * 2 + b);
    }
    return threshold;
}

/// Quarter turns that take +x to +y.
int quarterTurnsOf(const Matrix& matrix)
{
    if (std::abs(matrix.a) >= std::abs(matrix.b))
        return matrix.a >= 0 ? 0 : 2;
    return matrix.b >= 0 ? 1 : 3;
}

Rgb mixedWithWhite(Rgb color, double share)
{
    const auto mix = [&](std::uint8_t c) { return static_cast<std::uint8_t>(std::lround(255 - (255 - c) * share)); };
    return { mix(color.red), mix(color.green), mix(color.blue) };
}

} // namespace

void Inks::useDefaults()
{
    m_fill = FillType {};
    m_screened = ScreenedVectors {};
    m_rasterFills = {};
    m_anchor = {};
    m_isTransparent = true;
}

void Inks::freezeHatching()
{
    for (Hatching* hatching : { &m_fill.parallel, &m_fill.cross }) {
        if (hatching->unit != Hatching::Unit::UserUnits)
            continue;
        hatching->spacing *= m_coordinates.userUnit();
        hatching->unit = Hatching::Unit::PlotterUnits;
    }
}

std::optional<PenInk> Inks::ofPen(int pen) const
{
    if (pen < 0)
        return std::nullopt;
    PenInk ink;
    ink.color = m_palette.color(pen);
    ink.isTransparent = m_isTransparent;
    if (ink.color == kWhite && m_isTransparent)
        return std::nullopt;
    return ink;
}

std::optional<PenInk> Inks::ofLines()
{
    switch (m_screened.kind) {
    case FillKind::Shading:
        return shading(m_screened.shading);
    case FillKind::RasterFill:
        return rasterFill(m_screened.rasterFill, m_screened.usesCurrentPen);
    case FillKind::HatchPattern:
        return storedPattern(AreaPattern::CrossHatch, m_screened.hatchPattern);
    case FillKind::UserPattern:
        return storedPattern(AreaPattern::User, m_screened.userPattern);
    default:
        return ofSelectedPen();
    }
}

std::optional<PenInk> Inks::ofAreas()
{
    switch (m_fill.kind) {
    case FillKind::Shading:
        return shading(m_fill.shading);
    case FillKind::RasterFill:
        return rasterFill(m_fill.rasterFill, true);
    case FillKind::HatchPattern:
        return storedPattern(AreaPattern::CrossHatch, m_fill.hatchPattern);
    case FillKind::UserPattern:
        return storedPattern(AreaPattern::User, m_fill.userPattern);
    default:
        return ofSelectedPen();
    }
}

void Inks::usePatternAnchor(PenInk& ink) const
{
    ink.isArea = true;
    ink.isTransparent = m_isTransparent;
    ink.anchor = m_coordinates.toPage(m_anchor);
}

/// Shading by percent of ink: the level as it is asked for, in dots that are spread evenly. An opaque tint on a page
/// that holds tones needs no dots.
std::optional<PenInk> Inks::shading(double percent)
{
    std::optional<PenInk> ink = ofSelectedPen();
    if (!ink || percent >= 100)
        return ink;
    ink->isArea = true;
    const int level = static_cast<int>(std::lround(percent / 100 * kShadingSteps));
    const PageCanvas canvas = m_host.previewCanvas();
    const bool isPlain = m_host.rasterOperation() == kDefaultRasterOperation;
    if (level <= 0) {
        if (m_isTransparent)
            return std::nullopt;
        ink->color = kWhite;
        return ink;
    }
    if (canvas.format != PixelFormat::Bilevel && !m_isTransparent && isPlain) {
        ink->color = mixedWithWhite(ink->color, percent / 100);
        return ink;
    }
    ink->tile = shadingTile(level, canvas.resolution);
    usePatternAnchor(*ink);
    return ink;
}

std::shared_ptr<const PatternTile> Inks::shadingTile(int level, Resolution resolution)
{
    std::shared_ptr<const PatternTile>& tile = m_shadings[level];
    if (!tile) {
        PatternTile cell;
        cell.width = cell.height = kShadingCell;
        for (int y = 0; y < kShadingCell; ++y) {
            for (int x = 0; x < kShadingCell; ++x)
                cell.pixels.push_back(shadingThreshold(x, y) < level ? 1 : 0);
        }
        // Whole numbers of pixels, or the tone would change.
        const double dotX = std::max(1.0, std::floor(resolution.x / kPatternDpi));
        const double dotY = std::max(1.0, std::floor(resolution.y / kPatternDpi));
        tile = std::make_shared<const PatternTile>(cell.scaled(dotX, dotY));
    }
    return tile;
}

std::optional<PenInk> Inks::rasterFill(int index, bool usesCurrentPen) const
{
    const RasterFill& fill = m_rasterFills.at(static_cast<std::size_t>(index));
    if (fill.pens.empty() || !m_pens.hasPen())
        return ofSelectedPen();
    PatternTile tile;
    tile.width = fill.width;
    tile.height = fill.height;
    tile.isColor = *std::max_element(fill.pens.begin(), fill.pens.end()) > 1;
    for (const std::uint16_t pen : fill.pens) {
        if (!tile.isColor) {
            tile.pixels.push_back(static_cast<std::uint8_t>(pen));
            continue;
        }
        const Rgb color = m_palette.color(pen);
        for (const std::uint8_t primary : { color.red, color.green, color.blue })
            tile.pixels.push_back(primary);
    }
    const PageCanvas canvas = m_host.previewCanvas();
    // Rows run along the plotter's x axis, so they turn with it: counter-clockwise for RO, and as the page in its
    // image.
    const int turns
        = m_coordinates.frame().quarterTurns - m_coordinates.quarterTurns() + quarterTurnsOf(canvas.pageToDevice);
    const bool isAcross = quarterTurnsOf(canvas.pageToDevice) & 1;
    const double dotX = (isAcross ? canvas.resolution.y : canvas.resolution.x) / kPatternDpi;
    const double dotY = (isAcross ? canvas.resolution.x : canvas.resolution.y) / kPatternDpi;
    PenInk ink;
    ink.color = m_palette.color(usesCurrentPen ? m_pens.selected() : 1);
    ink.tile = std::make_shared<const PatternTile>(tile.turned(turns & 3).scaled(dotX, dotY));
    charge(*ink.tile);
    usePatternAnchor(ink);
    return ink;
}

/// A pattern of the host's stores; solid when there is none of that number.
std::optional<PenInk> Inks::storedPattern(AreaPattern kind, int id) const
{
    if (!m_pens.hasPen())
        return std::nullopt;
    std::optional<PenInk> ink = ofSelectedPen();
    const auto tile = m_host.areaPattern(kind, id, m_host.previewCanvas());
    if (!tile || tile->width < 1 || tile->height < 1)
        return ink;
    if (!ink) {
        ink = PenInk {};
        ink->color = m_palette.color(m_pens.selected());
    }
    charge(*tile);
    ink->tile = tile;
    usePatternAnchor(*ink);
    return ink;
}

/// Tiles are made anew for every mark, and marks may be smaller by far.
void Inks::charge(const PatternTile& tile) const
{
    constexpr std::uint64_t kUnitsPerByte = 4;
    m_work.charge(Work::Pixels, kUnitsPerByte * tile.pixels.size());
}

} // namespace quillrip::hpgl
