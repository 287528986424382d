#include "quillrip/pclxl/machine.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace quillrip::pclxl {

namespace {

constexpr std::size_t kMaxDashes = 256;

std::uint8_t level(double value, double full)
{
    return static_cast<std::uint8_t>(std::lround(std::clamp(value / full, 0.0, 1.0) * 255));
}

/// The largest value of a component: 255 for bytes, 1 for reals.
double fullScale(Element element) { return element == Element::Real32 ? 1 : 255; }

double fullScaleOfDepth(int colorDepth) { return colorDepth == 0 ? 1 : colorDepth == 1 ? 15 : 255; }

bool isFinite(const ArrayView& values)
{
    for (std::size_t i = 0; i < values.size(); ++i)
        if (!std::isfinite(values.at(i)))
            return false;
    return true;
}

std::size_t runCount(const std::shared_ptr<const ClipRegion>& clip)
{
    std::size_t runs = 0;
    if (clip && !clip->isRect())
        for (int y = clip->bounds().top; y < clip->bounds().bottom; ++y)
            runs += static_cast<std::size_t>(clip->end(y) - clip->begin(y)) + 1;
    return runs;
}

} // namespace

Status Machine::pushGS()
{
    // States share paths and clips until one changes them; counted as if each had its own, no job that repeats
    // "push, change" can fill the memory.
    std::size_t cost = m_state.path->pointCount();
    if (m_stack.empty() || m_stack.back().clip != m_state.clip)
        cost += runCount(m_state.clip);
    if (m_stack.size() >= m_limits.stateDepth || m_stackCost + cost > m_limits.pathPoints)
        return Error::MaxGSLevelsExceeded;
    m_stack.push_back(m_state);
    m_stackCosts.push_back(cost);
    m_stackCost += cost;
    return {};
}

Status Machine::popGS()
{
    if (m_stack.empty()) {
        warn("pclxl.pop", "PopGS without a matching PushGS is ignored");
        return {};
    }
    m_state = std::move(m_stack.back());
    m_stack.pop_back();
    m_stackCost -= m_stackCosts.back();
    m_stackCosts.pop_back();
    paintChanged();
    return {};
}

Status Machine::setColorSpace()
{
    const ColorSpace space = static_cast<ColorSpace>(m_operands.integer(Attribute::ColorSpace));
    const bool hasDepth = m_operands.has(Attribute::PaletteDepth);
    const ArrayView data = m_operands.array(Attribute::PaletteData);
    if (hasDepth != m_operands.has(Attribute::PaletteData))
        return { Error::IllegalAttributeCombination, hasDepth ? Attribute::PaletteDepth : Attribute::PaletteData };
    if (space == ColorSpace::Crgb)
        warn("pclxl.colorimetric", "colorimetric RGB is taken as sRGB");
    std::shared_ptr<std::vector<Rgb>> palette;
    if (hasDepth) {
        const std::size_t components = static_cast<std::size_t>(componentsOf(space));
        if (data.empty() || data.size() % components != 0)
            return { Error::IllegalArraySize, Attribute::PaletteData };
        const double full = fullScaleOfDepth(m_operands.integer(Attribute::PaletteDepth));
        palette = std::make_shared<std::vector<Rgb>>();
        // No index reaches beyond 255.
        for (std::size_t i = 0; i < std::min<std::size_t>(data.size() / components, 256); ++i) {
            const std::uint8_t red = level(data.at(i * components), full);
            palette->push_back(components == 1
                    ? Rgb { red, red, red }
                    : Rgb { red, level(data.at(i * components + 1), full), level(data.at(i * components + 2), full) });
        }
    }
    m_state.colorSpace = space;
    m_state.palette = std::move(palette);
    return {};
}

/// Brush and pen differ in the name of "none" only. Colours become device colours here, so that a later colour space
/// does not change them.
Status Machine::setInk(Ink& ink, Attribute none)
{
    Ink result;
    if (m_operands.has(none)) {
        result.kind = Ink::Kind::None;
    } else if (const Operand* gray = m_operands.find(Attribute::GrayLevel)) {
        const double full = fullScale(gray->element);
        if (gray->numbers[0] < 0 || gray->numbers[0] > full)
            return { Error::IllegalAttributeValue, Attribute::GrayLevel };
        const std::uint8_t light = level(gray->numbers[0], full);
        result.color = { light, light, light };
    } else if (m_operands.has(Attribute::PatternSelectID)) {
        const auto found = m_patterns.find(m_operands.integer(Attribute::PatternSelectID));
        if (found == m_patterns.end())
            return { Error::RasterPatternUndefined, Attribute::PatternSelectID };
        result.kind = Ink::Kind::Pattern;
        result.pattern = found->second.pattern;
        result.patternOrigin = m_operands.point(Attribute::PatternOrigin);
        if (m_operands.has(Attribute::NewDestinationSize)) {
            const Point size = m_operands.point(Attribute::NewDestinationSize);
            if (!(size.x > 0) || !(size.y > 0))
                return { Error::IllegalAttributeValue, Attribute::NewDestinationSize };
            result.patternSize = size;
        }
    } else if (m_operands.has(Attribute::PaletteIndex)) {
        const int index = m_operands.integer(Attribute::PaletteIndex);
        if (!m_state.palette)
            return { Error::MissingPalette, Attribute::PaletteIndex };
        if (index < 0 || static_cast<std::size_t>(index) >= m_state.palette->size())
            return { Error::IllegalAttributeValue, Attribute::PaletteIndex };
        result.color = (*m_state.palette)[static_cast<std::size_t>(index)];
    } else {
        const Attribute attribute = m_operands.has(Attribute::RGBColor) ? Attribute::RGBColor : Attribute::PrimaryArray;
        const ArrayView values = m_operands.array(attribute);
        // PrimaryArray follows the colour space, but one value is gray and three are RGB in any of them.
        if (values.size() != 3 && (attribute == Attribute::RGBColor || values.size() != 1))
            return { Error::IllegalArraySize, attribute };
        if (!isFinite(values))
            return { Error::IllegalAttributeValue, attribute };
        double full = fullScale(values.element());
        if (attribute == Attribute::PrimaryArray && values.element() == Element::UByte)
            full = fullScaleOfDepth(m_operands.integer(Attribute::PrimaryDepth, 2));
        const std::uint8_t first = level(values.at(0), full);
        result.color = values.size() == 1 ? Rgb { first, first, first }
                                          : Rgb { first, level(values.at(1), full), level(values.at(2), full) };
    }
    ink = std::move(result);
    paintChanged();
    return {};
}

Status Machine::setBrushSource() { return setInk(m_state.brush, Attribute::NullBrush); }

Status Machine::setPenSource() { return setInk(m_state.pen, Attribute::NullPen); }

Texture Machine::textureOf(const Ink& ink)
{
    Texture texture;
    texture.color = ink.color;
    if (ink.kind == Ink::Kind::Pattern) {
        const DeviceTile tile = deviceTileOf(*ink.pattern, ink.patternOrigin,
            ink.patternSize ? *ink.patternSize : ink.pattern->size, m_state.userToDevice, m_limits.patternBytes);
        if (!tile.tile)
            warn("pclxl.pattern-size", "a raster pattern has no size that can be drawn, it is painted black");
        texture.tile = tile.tile;
        texture.originX = tile.originX;
        texture.originY = tile.originY;
    }
    return texture;
}

PaintState Machine::makePaint(const Ink& ink)
{
    PaintState paint;
    paint.rop = m_state.rop;
    // Shapes, strokes and glyphs have no white source of their own: what lies outside is not touched.
    paint.sourceTransparent = true;
    paint.patternTransparent = m_state.paintTransparent;
    paint.texture = textureOf(ink);
    paint.clip = m_state.clip;
    return paint;
}

const PaintState& Machine::brushPaint()
{
    if (!m_brushPaintIsValid) {
        m_brushPaint = makePaint(m_state.brush);
        m_brushPaintIsValid = true;
    }
    return m_brushPaint;
}

const PaintState& Machine::penPaint()
{
    if (!m_penPaintIsValid) {
        m_penPaint = makePaint(m_state.pen);
        m_penPaintIsValid = true;
    }
    return m_penPaint;
}

/// Halftones are the page device's own; a matrix is checked and dropped.
Status Machine::setHalftoneMethod()
{
    if (!m_operands.has(Attribute::DitherMatrixSize))
        return {};
    const Point size = m_operands.point(Attribute::DitherMatrixSize);
    if (!(size.x >= 1) || !(size.y >= 1) || size.x > 256 || size.y > 256)
        return { Error::IllegalAttributeValue, Attribute::DitherMatrixSize };
    warn("pclxl.halftone", "a dither matrix has no effect, the page has halftones of its own");
    return {};
}

Status Machine::setFillMode()
{
    m_state.fillRule = m_operands.integer(Attribute::FillMode) == 1 ? FillRule::EvenOdd : FillRule::NonZero;
    return {};
}

Status Machine::setLineDash()
{
    std::vector<double>& dashes = m_state.stroke.dashes;
    if (m_operands.has(Attribute::SolidLine)) {
        dashes.clear();
        return {};
    }
    const ArrayView lengths = m_operands.array(Attribute::LineDashStyle);
    if (lengths.size() > kMaxDashes)
        return { Error::IllegalArraySize, Attribute::LineDashStyle };
    if (!isFinite(lengths))
        return { Error::IllegalAttributeValue, Attribute::LineDashStyle };
    dashes.clear();
    for (std::size_t i = 0; i < lengths.size(); ++i)
        dashes.push_back(lengths.at(i));
    const double period = std::accumulate(dashes.begin(), dashes.end(), 0.0);
    // Empty, all zero or negative patterns are solid lines, and so are those finer than any page can show.
    const bool isNegative = std::any_of(dashes.begin(), dashes.end(), [](double length) { return length < 0; });
    const Matrix& m = m_state.userToDevice;
    const double scale = std::max(std::hypot(m.a, m.b), std::hypot(m.c, m.d));
    if (isNegative || !(period > 0) || period * scale < 0.05) {
        dashes.clear();
        return {};
    }
    if (dashes.size() % 2 != 0) {
        const std::vector<double> once = dashes;
        dashes.insert(dashes.end(), once.begin(), once.end());
    }
    const double total = std::accumulate(dashes.begin(), dashes.end(), 0.0);
    const double offset = std::fmod(m_operands.number(Attribute::DashOffset), total);
    m_state.stroke.dashOffset = offset < 0 ? offset + total : offset;
    return {};
}

Status Machine::setLineCap()
{
    constexpr LineCap kCaps[] = { LineCap::Butt, LineCap::Round, LineCap::Square, LineCap::Triangle };
    m_state.stroke.cap = kCaps[m_operands.integer(Attribute::LineCapStyle)];
    return {};
}

Status Machine::setLineJoin()
{
    constexpr LineJoin kJoins[] = { LineJoin::Miter, LineJoin::Round, LineJoin::Bevel, LineJoin::None };
    m_state.stroke.join = kJoins[m_operands.integer(Attribute::LineJoinStyle)];
    return {};
}

Status Machine::setMiterLimit()
{
    const double limit = m_operands.number(Attribute::MiterLength);
    if (limit != 0 && limit < 1)
        return { Error::IllegalAttributeValue, Attribute::MiterLength };
    m_state.stroke.miterLimit = limit == 0 ? 10 : limit;
    return {};
}

Status Machine::setPenWidth()
{
    const double width = m_operands.number(Attribute::PenWidth);
    if (width < 0)
        return { Error::IllegalAttributeValue, Attribute::PenWidth };
    m_state.stroke.width = width;
    return {};
}

Status Machine::setROP()
{
    const int rop = m_operands.integer(Attribute::ROP3);
    if (rop < 0 || rop > 255)
        return { Error::IllegalAttributeValue, Attribute::ROP3 };
    m_state.rop = static_cast<std::uint8_t>(rop);
    paintChanged();
    return {};
}

Status Machine::setSourceTxMode()
{
    m_state.sourceTransparent = m_operands.integer(Attribute::TxMode) == 1;
    return {};
}

Status Machine::setPaintTxMode()
{
    m_state.paintTransparent = m_operands.integer(Attribute::TxMode) == 1;
    paintChanged();
    return {};
}

} // namespace quillrip::pclxl
