// What areas are filled with, and how marks combine with the page.

#include "quillrip/hpgl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::hpgl {

namespace {

constexpr Rgb kWhite { 255, 255, 255 };
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

void Machine::fillType()
{
    FillType& fill = m_state.fill;
    if (m_operands.empty()) {
        fill = FillType {};
        return;
    }
    const int type = clampedInteger(0);
    const bool hasOption = operandCount() >= 2;
    const double option = operand(1);
    switch (type) {
    case 1:
    case 2:
        break;
    case 3:
    case 4: {
        Hatching& hatching = type == 3 ? fill.parallel : fill.cross;
        if (hasOption && option < 0)
            return;
        if (hasOption && option == 0) {
            hatching.spacing = Hatching {}.spacing;
            hatching.unit = Hatching::Unit::DiagonalPercent;
        } else if (hasOption) {
            hatching.spacing = option;
            hatching.unit
                = m_state.scaling.kind == Scaling::Kind::Off ? Hatching::Unit::PlotterUnits : Hatching::Unit::UserUnits;
        }
        if (operandCount() >= 3)
            hatching.angle = std::fmod(clampedReal(2), 360.0);
        break;
    }
    case 10:
        if (hasOption && (option < 0 || option > 100))
            return;
        if (hasOption)
            fill.shading = option;
        break;
    case 11:
        if (hasOption && (option < 1 || option > 8))
            return;
        if (hasOption)
            fill.rasterFill = clampedInteger(1);
        break;
    case 21:
        if (hasOption && (option < 1 || option > 6))
            return;
        if (hasOption)
            fill.hatchPattern = clampedInteger(1);
        break;
    case 22:
        if (hasOption && option < 0)
            return;
        if (hasOption)
            fill.userPattern = clampedInteger(1);
        break;
    default:
        return;
    }
    fill.type = type;
}

void Machine::rasterFill()
{
    if (m_operands.empty()) {
        m_state.rasterFills = {};
        return;
    }
    const int index = clampedInteger(0);
    if (index < 1 || index > 8)
        return;
    RasterFill& fill = m_state.rasterFills[static_cast<std::size_t>(index)];
    if (operandCount() < 3) {
        if (operandCount() == 1)
            fill = RasterFill {};
        return;
    }
    const int width = clampedInteger(1);
    const int height = clampedInteger(2);
    if (width < 1 || width > 255 || height < 1 || height > 255)
        return;
    fill.width = width;
    fill.height = height;
    fill.pens.assign(static_cast<std::size_t>(width * height), 0);
    for (std::size_t i = 0; i < fill.pens.size() && i + 3 < operandCount(); ++i)
        fill.pens[i] = static_cast<std::uint16_t>(std::max(0, clampedInteger(i + 3)));
}

void Machine::anchorCorner()
{
    if (m_operands.empty())
        m_state.anchor = {};
    else if (operandCount() >= 2)
        m_state.anchor = m_userToPlotter.apply({ operand(0), operand(1) });
}

void Machine::transparencyMode()
{
    const int mode = clampedInteger(0, 1);
    if (mode == 0 || mode == 1)
        m_state.isTransparent = mode == 1;
}

void Machine::mergeControl()
{
    const int mode = clampedInteger(0, 0);
    if (mode != 0 && mode != 1)
        return;
    int operation = kDefaultRasterOperation;
    constexpr int kMerge = 168; // destination AND (texture OR source)
    if (mode == 1)
        operation = clampedInteger(1, kMerge);
    if (operation < 0 || operation > 255)
        operation = kDefaultRasterOperation;
    m_host.setRasterOperation(static_cast<std::uint8_t>(operation));
}

void Machine::pixelPlacement()
{
    const int mode = clampedInteger(0, 0);
    if (mode == 0 || mode == 1)
        m_host.setGridCentred(mode == 1);
}

/// What FT stands for; hatch lines (types 3 and 4) are drawn with the line's ink instead.
std::optional<Ink> Machine::fillInk()
{
    const FillType& fill = m_state.fill;
    switch (fill.type) {
    case 10:
        return shadingInk(fill.shading);
    case 11:
        return rasterInk(fill.rasterFill, true);
    case 21:
        return storedPatternInk(AreaPattern::CrossHatch, fill.hatchPattern);
    case 22:
        return storedPatternInk(AreaPattern::User, fill.userPattern);
    default:
        return penInk(m_state.selectedPen);
    }
}

void Machine::usePatternAnchor(Ink& ink) const
{
    ink.isArea = true;
    ink.isTransparent = m_state.isTransparent;
    ink.anchor = m_plotterToPage.apply(m_state.anchor);
}

/// Shading by percent of ink: the level as it is asked for, in dots that are spread evenly. An opaque tint on a page
/// that holds tones needs no dots.
std::optional<Ink> Machine::shadingInk(double percent)
{
    std::optional<Ink> ink = penInk(m_state.selectedPen);
    if (!ink || percent >= 100)
        return ink;
    ink->isArea = true;
    const int level = static_cast<int>(std::lround(percent / 100 * kShadingSteps));
    const PageCanvas canvas = m_host.previewCanvas();
    const bool isPlain = m_host.rasterOperation() == kDefaultRasterOperation;
    if (level <= 0) {
        if (m_state.isTransparent)
            return std::nullopt;
        ink->color = kWhite;
        return ink;
    }
    if (canvas.format != PixelFormat::Bilevel && !m_state.isTransparent && isPlain) {
        ink->color = mixedWithWhite(ink->color, percent / 100);
        return ink;
    }
    std::shared_ptr<const PatternTile>& tile = m_shadings[level];
    if (!tile) {
        PatternTile cell;
        cell.width = cell.height = kShadingCell;
        for (int y = 0; y < kShadingCell; ++y) {
            for (int x = 0; x < kShadingCell; ++x)
                cell.pixels.push_back(shadingThreshold(x, y) < level ? 1 : 0);
        }
        // Whole numbers of pixels, or the tone would change.
        const double dotX = std::max(1.0, std::floor(canvas.resolution.x / kPatternDpi));
        const double dotY = std::max(1.0, std::floor(canvas.resolution.y / kPatternDpi));
        tile = std::make_shared<const PatternTile>(cell.scaled(dotX, dotY));
    }
    ink->tile = tile;
    usePatternAnchor(*ink);
    return ink;
}

std::optional<Ink> Machine::rasterInk(int index, bool usesCurrentPen)
{
    const RasterFill& fill = m_state.rasterFills[static_cast<std::size_t>(index)];
    if (fill.pens.empty() || m_state.selectedPen < 0)
        return penInk(m_state.selectedPen);
    PatternTile tile;
    tile.width = fill.width;
    tile.height = fill.height;
    tile.isColor = *std::max_element(fill.pens.begin(), fill.pens.end()) > 1;
    for (const std::uint16_t pen : fill.pens) {
        if (!tile.isColor) {
            tile.pixels.push_back(static_cast<std::uint8_t>(pen));
            continue;
        }
        const Rgb color = penColor(pen);
        for (const std::uint8_t primary : { color.red, color.green, color.blue })
            tile.pixels.push_back(primary);
    }
    const PageCanvas canvas = m_host.previewCanvas();
    // Rows run along the plotter's x axis, so they turn with it: counter-clockwise for RO, and as the page in its
    // image.
    const int turns = m_frame.quarterTurns - m_state.quarterTurns + quarterTurnsOf(canvas.pageToDevice);
    const bool isAcross = quarterTurnsOf(canvas.pageToDevice) & 1;
    const double dotX = (isAcross ? canvas.resolution.y : canvas.resolution.x) / kPatternDpi;
    const double dotY = (isAcross ? canvas.resolution.x : canvas.resolution.y) / kPatternDpi;
    Ink ink;
    ink.color = penColor(usesCurrentPen ? m_state.selectedPen : 1);
    ink.tile = std::make_shared<const PatternTile>(tile.turned(turns & 3).scaled(dotX, dotY));
    usePatternAnchor(ink);
    return ink;
}

/// A pattern of the host's stores; solid when there is none of that number.
std::optional<Ink> Machine::storedPatternInk(AreaPattern kind, int id)
{
    std::optional<Ink> ink = penInk(m_state.selectedPen);
    if (m_state.selectedPen < 0)
        return std::nullopt;
    const auto tile = m_host.areaPattern(kind, id, m_host.previewCanvas());
    if (!tile || tile->width < 1 || tile->height < 1)
        return ink;
    if (!ink) {
        ink = Ink {};
        ink->color = penColor(m_state.selectedPen);
    }
    ink->tile = tile;
    usePatternAnchor(*ink);
    return ink;
}

} // namespace quillrip::hpgl
