#include "quillrip/hpgl/label_setter.h"

#include "quillrip/hpgl/stick_font.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quillrip::hpgl {

namespace {

constexpr std::uint8_t kBackspace = 8;
constexpr std::uint8_t kTab = 9;
constexpr std::uint8_t kLineFeed = 10;
constexpr std::uint8_t kCarriageReturn = 13;
constexpr std::uint8_t kShiftOut = 14;
constexpr std::uint8_t kShiftIn = 15;
constexpr int kTabCells = 8;
/// Work of finding where the ink of a character begins.
constexpr std::uint64_t kUnitsPerBearing = 10000;

/// LO as a place in the label's box: 0, 1/2, 1 from left to right and from the baseline to the top.
struct OriginPlace {
    double across;
    double high;
};

OriginPlace originPlace(int origin)
{
    const int n = origin > 10 ? origin - 10 : origin;
    if (n == 11)
        return { 0, 0 }; // 21
    const int column = (n - 1) / 3;
    const int row = (n - 1) % 3;
    return { column * 0.5, row * 0.5 };
}

/// Whether a label ends where the next one goes on, rather than going back to its start.
bool isContinuing(TextPath path, int origin)
{
    if (origin == 21)
        return path == TextPath::Right || path == TextPath::Up;
    const OriginPlace place = originPlace(origin);
    switch (path) {
    case TextPath::Right:
        return place.across == 0;
    case TextPath::Down:
        return place.high == 1;
    case TextPath::Left:
        return place.across == 1;
    case TextPath::Up:
        break;
    }
    return place.high == 0;
}

Point pathDirection(const LabelMetrics& metrics, TextPath path)
{
    switch (path) {
    case TextPath::Down:
        return metrics.up * -1;
    case TextPath::Left:
        return metrics.along * -1;
    case TextPath::Up:
        return metrics.up;
    case TextPath::Right:
        break;
    }
    return metrics.along;
}

/// From one line to the next.
Point lineFeedVector(const LabelMetrics& metrics, const TextState& text)
{
    const double distance
        = isVertical(text.path) ? metrics.cellWidth * (1 + text.extraWidth) : metrics.lineFeed * (1 + text.extraHeight);
    const Point path = pathDirection(metrics, text.path);
    const Point clockwise { path.y, -path.x };
    return clockwise * (text.lineFeedsLeft ? -distance : distance);
}

/// From one character to the next along the text path, for a character of that natural advance.
double pathAdvance(const LabelMetrics& metrics, const TextState& text, double advance)
{
    if (isVertical(text.path))
        return metrics.lineFeed * (1 + text.extraHeight);
    return advance + text.extraWidth * (metrics.isProportional ? advance : metrics.cellWidth);
}

/// From a character's reference point to its ink, plotter units; the strokes of stroked fonts start there.
double leftBearing(const LabelMetrics& metrics, const LabelItem& item)
{
    Path outline;
    const bool isScalable = metrics.font && metrics.font.face->traits().isScalable;
    if (!isScalable || item.glyph == kNoGlyph || !metrics.font.face->outline(item.glyph, outline) || outline.empty())
        return 0;
    return outline.bounds().left * metrics.unitWidth;
}

/// The character of a code and its natural advance; false for codes that are no characters.
bool findCharacter(const LabelMetrics& metrics, std::uint32_t code, bool isTransparent, LabelItem& item)
{
    if (!metrics.font) {
        const SymbolSet* const set = metrics.font.symbolSet.get();
        const bool isPrintable = set ? set->isPrintable(code) : code >= 0x20;
        if (!isPrintable && !isTransparent)
            return false;
        const char32_t character = isPrintable ? (set ? set->unicode(code) : code) : U' ';
        const StickGlyph* const glyph = stickGlyph(character);
        item.glyph = glyph && !glyph->strokes.empty() ? static_cast<std::uint32_t>(character) : kNoGlyph;
        item.advance = metrics.cellWidth;
        if (metrics.isArc && item.glyph != kNoGlyph)
            item.advance = (glyph->right - glyph->left + kArcGap) * metrics.unitWidth;
        return true;
    }
    const Font::Lookup found = metrics.font.find(code);
    if (!found.isPrintable && !isTransparent)
        return false;
    item.glyph = found.isPrintable ? found.glyph : kNoGlyph;
    item.advance = metrics.font.advanceInches(item.glyph) * kPlotterUnitsPerInch * metrics.stretch;
    return true;
}

} // namespace

void LabelSetter::endLabel(Point start, Point carriageReturn)
{
    if (isContinuing(m_text.path, m_text.origin))
        return;
    m_state.pen = start;
    m_state.carriageReturn = carriageReturn;
}

void LabelSetter::moveByLines(const LabelMetrics& metrics, double lines)
{
    const Point step = lineFeedVector(metrics, m_text) * lines;
    m_state.pen = m_state.pen + step;
    m_state.carriageReturn = m_state.carriageReturn + step;
}

/// To the carriage return point along the text path; the line stays.
void LabelSetter::returnCarriage(const LabelMetrics& metrics)
{
    const Point path = pathDirection(metrics, m_text.path);
    const Point back = m_state.carriageReturn - m_state.pen;
    m_state.pen = m_state.pen + path * (back.x * path.x + back.y * path.y);
}

void LabelSetter::startNextLine()
{
    const LabelMetrics metrics = m_fonts.metrics();
    returnCarriage(metrics);
    moveByLines(metrics, 1);
}

void LabelSetter::moveBy(double characters, double lines)
{
    const LabelMetrics metrics = m_fonts.metrics();
    const double advance = pathAdvance(metrics, m_text, metrics.cellWidth);
    m_state.pen = m_state.pen + pathDirection(metrics, m_text.path) * (advance * characters);
    moveByLines(metrics, -lines);
}

void LabelSetter::set(const std::string& text)
{
    LabelLine line;
    line.metrics.push_back(m_fonts.metrics());
    const bool isWide = m_text.mode == LabelMode::TwoBytes || m_text.mode == LabelMode::TwoBytesVertical;
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::uint32_t code = static_cast<std::uint8_t>(text[i]);
        if (isWide && i + 1 < text.size())
            code = code << 8 | static_cast<std::uint8_t>(text[++i]);
        if (code < ' ' && !m_text.isTransparent) {
            obeyControl(code, line);
            continue;
        }
        LabelItem item;
        item.metrics = line.metrics.size() - 1;
        if (!findCharacter(line.metrics.back(), code, m_text.isTransparent, item))
            continue;
        item.offset = line.end;
        line.end += pathAdvance(line.metrics.back(), m_text, item.advance);
        line.items.push_back(item);
    }
    setLine(line);
}

void LabelSetter::obeyControl(std::uint32_t code, LabelLine& line)
{
    const LabelMetrics& metrics = line.metrics.back();
    switch (code) {
    case kBackspace: {
        const double advance = line.empty() ? metrics.cellWidth : line.items.back().advance;
        line.end -= pathAdvance(metrics, m_text, advance);
        break;
    }
    case kTab: {
        const double cell = pathAdvance(metrics, m_text, metrics.cellWidth) * kTabCells;
        if (cell == 0)
            break;
        const Point path = pathDirection(metrics, m_text.path);
        const Point way = m_state.pen - m_state.carriageReturn;
        const double before = way.x * path.x + way.y * path.y;
        const double at = (before + line.end) / cell;
        line.end = (std::floor(at + 1e-6) + 1) * cell - before;
        break;
    }
    case kLineFeed:
        setLine(line);
        moveByLines(line.metrics.back(), 1);
        break;
    case kCarriageReturn:
        setLine(line);
        returnCarriage(line.metrics.back());
        break;
    case kShiftOut:
    case kShiftIn:
        m_text.usesAlternate = code == kShiftOut;
        line.metrics.push_back(m_fonts.metrics());
        break;
    default:
        break;
    }
}

/// Draws a line of a label where the label origin puts it, moves the pen behind it and leaves the line empty.
void LabelSetter::setLine(LabelLine& line)
{
    if (line.empty()) {
        m_state.pen = m_state.pen + pathDirection(line.metrics.back(), m_text.path) * line.end;
        line.end = 0;
        return;
    }
    // The line's box in its own axes, with the natural start of its text path at 0.
    const LabelMetrics& first = line.metrics[line.items.front().metrics];
    double low = 1e300;
    double high = -1e300;
    double widest = 0;
    for (const LabelItem& item : line.items) {
        const LabelMetrics& metrics = line.metrics[item.metrics];
        const double width = item.advance - metrics.gap;
        low = std::min({ low, item.offset, item.offset + width });
        high = std::max({ high, item.offset, item.offset + width });
        widest = std::abs(width) > std::abs(widest) ? width : widest;
    }
    const double cap = first.capHeight;
    double left = low;
    double right = high;
    double bottom = 0;
    double top = cap;
    switch (m_text.path) {
    case TextPath::Left:
        left = -high;
        right = -low;
        break;
    case TextPath::Down:
    case TextPath::Up: {
        left = 0;
        right = widest;
        const double last = line.items.back().offset;
        bottom = m_text.path == TextPath::Down ? -cap - last : 0;
        top = m_text.path == TextPath::Down ? 0 : last + cap;
        break;
    }
    default:
        break;
    }
    // Mirrored characters grow the other way.
    if (first.unitWidth < 0 && !isVertical(m_text.path))
        std::swap(left, right);

    const OriginPlace place = originPlace(m_text.origin);
    Point shift { -(left + (right - left) * place.across), -(bottom + (top - bottom) * place.high) };
    if (m_text.origin > 10 && m_text.origin < 20) {
        shift.x += (1 - 2 * place.across) * first.originOffset;
        shift.y += (1 - 2 * place.high) * first.originOffset;
    }
    // The ink of the line's first character starts at the point, not its bearing; 21 keeps that.
    if (m_text.origin <= 3 && m_text.path == TextPath::Right) {
        m_work.charge(Work::Glyphs, kUnitsPerBearing);
        shift.x -= leftBearing(first, line.items.front());
    }
    for (const LabelItem& item : line.items) {
        if (item.glyph == kNoGlyph)
            continue;
        const LabelMetrics& metrics = line.metrics[item.metrics];
        Point at = shift;
        switch (m_text.path) {
        case TextPath::Left:
            at.x -= item.offset + item.advance - metrics.gap;
            break;
        case TextPath::Down:
            at.y -= item.offset + cap;
            break;
        case TextPath::Up:
            at.y += item.offset;
            break;
        default:
            at.x += item.offset;
            break;
        }
        m_characters.draw(metrics, item.glyph, m_state.pen + metrics.along * at.x + metrics.up * at.y);
        if (m_surface.status() != RunStatus::Done)
            break;
    }
    if (isContinuing(m_text.path, m_text.origin))
        m_state.pen = m_state.pen + pathDirection(first, m_text.path) * line.end;
    const LabelMetrics current = line.metrics.back();
    line = LabelLine {};
    line.metrics.push_back(current);
}

void LabelSetter::drawSymbol()
{
    const LabelMetrics metrics = m_fonts.metrics();
    LabelItem item;
    if (!findCharacter(metrics, static_cast<std::uint32_t>(m_state.symbol), true, item) || item.glyph == kNoGlyph)
        return;
    m_characters.draw(metrics, item.glyph,
        m_state.pen - metrics.along * ((item.advance - metrics.gap) / 2) - metrics.up * (metrics.capHeight / 2));
}

} // namespace quillrip::hpgl
