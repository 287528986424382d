#include "quillrip/hpgl/label_fonts.h"

#include "quillrip/hpgl/stick_font.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>

namespace quillrip::hpgl {

namespace {

constexpr double kUnitsPerPoint = kPlotterUnitsPerInch / kPointsPerInch;

} // namespace

std::shared_ptr<const Typeface> LabelFonts::softFont(int id) const { return m_library.softFonts().find({ id, {} }); }

const Font& LabelFonts::font()
{
    const FontAttributes& wanted = m_text.font();
    // Soft fonts may have been replaced since, so only built-in ones are remembered.
    if (m_hasFont && wanted.id < 0 && wanted == m_attributes && m_text.allowsBitmapFonts == m_allowsBitmaps)
        return m_font;
    m_hasFont = true;
    m_attributes = wanted;
    m_allowsBitmaps = m_text.allowsBitmapFonts;
    m_font = select(wanted);
    return m_font;
}

Font LabelFonts::select(const FontAttributes& wanted) const
{
    FontRequest request;
    request.symbolSet = static_cast<std::uint16_t>(wanted.symbolSet);
    request.isProportional = wanted.isProportional;
    request.pitch = wanted.pitch;
    request.height = wanted.height;
    request.style = static_cast<std::uint16_t>(wanted.style);
    request.weight = wanted.weight == kPenWeight ? 0 : wanted.weight;
    request.family = static_cast<std::uint16_t>(wanted.typeface);
    SelectionContext context = m_host.fontContext();
    context.allowsBitmapFonts = m_text.allowsBitmapFonts;
    if (wanted.id >= 0) {
        if (Font font = m_library.selectById({ wanted.id, {} }, request, context))
            return font;
    }
    if (!isStrokedTypeface(wanted.typeface))
        return m_library.select(request, context);
    Font stroked;
    stroked.symbolSet = m_library.symbolSet(request.symbolSet);
    stroked.height = wanted.height;
    stroked.pitch = wanted.pitch;
    return stroked;
}

LabelMetrics LabelFonts::metrics()
{
    LabelMetrics metrics;
    metrics.font = font();
    aim(metrics);
    if (metrics.font)
        measureTypeface(metrics);
    else
        measureStroked(metrics);
    return metrics;
}

void LabelFonts::aim(LabelMetrics& metrics) const
{
    Point direction { m_text.run, m_text.rise };
    if (m_text.directionIsRelative) {
        direction.x *= m_coordinates.p2().x - m_coordinates.p1().x;
        direction.y *= m_coordinates.p2().y - m_coordinates.p1().y;
    }
    const double length = std::hypot(direction.x, direction.y);
    metrics.along = length > 0 ? direction * (1 / length) : Point { 1, 0 };
    metrics.up = { -metrics.along.y, metrics.along.x };
    metrics.slant = m_text.slant;
}

Point LabelFonts::wantedSize() const
{
    const CharacterSize& size = m_text.size;
    constexpr double kUnitsPerCentimetre = 10 * kPlotterUnitsPerMillimetre;
    if (size.kind == CharacterSize::Kind::Centimetres)
        return { size.width * kUnitsPerCentimetre, size.height * kUnitsPerCentimetre };
    return { size.width / 100 * (m_coordinates.p2().x - m_coordinates.p1().x),
        size.height / 100 * (m_coordinates.p2().y - m_coordinates.p1().y) };
}

void LabelFonts::measureStroked(LabelMetrics& m) const
{
    const FontAttributes& wanted = m_text.font();
    const bool isSized = m_text.size.kind != CharacterSize::Kind::FromFont;
    const Point size = wantedSize();
    const double pitch = std::max(wanted.pitch, 0.01);
    m.isArc = wanted.typeface == kArcTypeface;
    m.isProportional = m.isArc;
    m.unitHeight = isSized ? size.y / kStickCapHeight : wanted.height * kUnitsPerPoint / kStickEm;
    if (isSized)
        m.unitWidth = size.x / kStickWidth;
    else
        m.unitWidth = m.isArc ? m.unitHeight * kArcNarrowing : kPlotterUnitsPerInch / pitch / kStickCell;
    m.capHeight = kStickCapHeight * m.unitHeight;
    m.lineFeed = kStickLineFeed * m.unitHeight;
    m.cellWidth = (m.isArc ? kArcSpace : kStickCell) * m.unitWidth;
    m.gap = (m.isArc ? kArcGap : kStickCell - kStickWidth) * m.unitWidth;
    m.originOffset = kStickOriginOffset * std::abs(m.unitHeight);
    const double em = std::abs(m.unitHeight) * kStickEm;
    // Medium strokes are a twelfth of the height, bold ones an eighth.
    m.strokeWidth = wanted.weight == kPenWeight ? -1 : em / 12 * std::max(0.25, 1 + wanted.weight / 6.0);
}

void LabelFonts::measureTypeface(LabelMetrics& m) const
{
    const FontTraits& traits = m.font.face->traits();
    m.isProportional = traits.isProportional;
    const double natural = m.font.unitInches() * kPlotterUnitsPerInch;
    m.unitWidth = m.unitHeight = natural;
    m.capHeight = traits.capHeight * natural;
    m.lineFeed = (traits.isScalable ? m.font.height : traits.height) * kUnitsPerPoint * 4 / 3;
    const bool isSized = m_text.size.kind != CharacterSize::Kind::FromFont && traits.isScalable;
    if (isSized) {
        // A nominal character is half an em wide and its capitals are seven tenths high.
        constexpr double kNominalWidth = 0.5;
        constexpr double kNominalCapHeight = 0.7;
        const Point size = wantedSize();
        m.unitHeight = size.y / kNominalCapHeight;
        m.unitWidth = size.x / kNominalWidth;
        m.capHeight = size.y;
        m.lineFeed = 2 * size.y;
    }
    m.stretch = m.unitWidth / natural;
    m.cellWidth = m.font.defaultHmiInches() * kPlotterUnitsPerInch * m.stretch;
    m.originOffset = isSized ? 0.25 * std::abs(m.unitHeight) : 0.25 * m.font.height * kUnitsPerPoint;
}

} // namespace quillrip::hpgl
