// LB: from bytes to characters in their places.

#include "quillrip/hpgl/label.h"
#include "quillrip/hpgl/machine.h"
#include "quillrip/hpgl/stick_font.h"

#include <algorithm>
#include <cmath>

namespace quillrip::hpgl {

namespace {

constexpr std::uint8_t kBackspace = 8;
constexpr std::uint8_t kTab = 9;
constexpr std::uint8_t kLineFeed = 10;
constexpr std::uint8_t kCarriageReturn = 13;
constexpr std::uint8_t kShiftOut = 14;
constexpr std::uint8_t kShiftIn = 15;
constexpr int kTabCells = 8;
/// A label is set in parts of so many bytes: one without a terminator goes on to the end of the data.
constexpr std::size_t kLabelPart = 16384;

enum Path4 { kRight, kDown, kLeft, kUp };

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
    return { ((n - 1) / 3) * 0.5, ((n - 1) % 3) * 0.5 };
}

/// Whether a label ends where the next one goes on, rather than going back to its start.
bool isContinuing(int path, int origin)
{
    if (origin == 21)
        return path == kRight || path == kUp;
    const OriginPlace place = originPlace(origin);
    switch (path) {
    case kRight:
        return place.across == 0;
    case kDown:
        return place.high == 1;
    case kLeft:
        return place.across == 1;
    default:
        return place.high == 0;
    }
}

Point pathDirection(const LabelMetrics& metrics, int path)
{
    switch (path) {
    case kDown:
        return metrics.up * -1;
    case kLeft:
        return metrics.along * -1;
    case kUp:
        return metrics.up;
    default:
        return metrics.along;
    }
}

/// From one line to the next.
Point lineFeedVector(const LabelMetrics& metrics, const TextState& text)
{
    const bool isVertical = text.path == kDown || text.path == kUp;
    const double distance
        = isVertical ? metrics.cellWidth * (1 + text.extraWidth) : metrics.lineFeed * (1 + text.extraHeight);
    const Point path = pathDirection(metrics, text.path);
    const Point clockwise { path.y, -path.x };
    return clockwise * (text.lineFeedsLeft ? -distance : distance);
}

/// From one character to the next along the text path, for a character of that natural advance.
double pathAdvance(const LabelMetrics& metrics, const TextState& text, double advance)
{
    if (text.path == kDown || text.path == kUp)
        return metrics.lineFeed * (1 + text.extraHeight);
    return advance + text.extraWidth * (metrics.isProportional ? advance : metrics.cellWidth);
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

/// Bytes of a label up to its terminator, at most `atMost`. `isComplete`: the label has ended.
std::string Machine::readLabel(std::size_t atMost, bool& isComplete)
{
    const TextState& text = m_state.text;
    std::string label;
    isComplete = true;
    while (label.size() < atMost) {
        const int byte = m_input->peek();
        if (byte < 0)
            return label;
        if (byte == kEscape && endsLabel(m_input->window(16)))
            return label;
        m_input->get();
        if (byte == text.terminator) {
            if (text.printsTerminator && byte > ' ')
                label.push_back(static_cast<char>(byte));
            return label;
        }
        label.push_back(static_cast<char>(byte));
    }
    isComplete = false;
    return label;
}

/// Whether an ESC leaves the language although the label's terminator is missing.
bool Machine::endsLabel(ByteView window) const
{
    if (isUniversalExit(window))
        return true;
    if (m_state.text.isTransparent || window.size < 2)
        return false;
    if (window[1] == 'E')
        return true;
    if (window[1] != '%')
        return false;
    std::size_t at = 2;
    while (at < window.size && ((window[at] >= '0' && window[at] <= '9') || window[at] == '-' || window[at] == '+'))
        ++at;
    return at < window.size && window[at] == 'A';
}

void Machine::label()
{
    const Point start = m_state.pen;
    const Point carriageReturn = m_state.carriageReturn;
    bool isComplete = false;
    while (!isComplete) {
        const std::string text = readLabel(kLabelPart, isComplete);
        if (!m_isPolygonMode && !text.empty())
            drawLabel(text);
        if (status() != RunStatus::Done)
            return;
    }
    if (!isContinuing(m_state.text.path, m_state.text.origin)) {
        m_state.pen = start;
        m_state.carriageReturn = carriageReturn;
    }
    m_hasDotToDraw = false;
    m_linePhase = 0;
}

/// BL keeps a label, PB prints it.
void Machine::bufferLabel()
{
    bool isComplete = false;
    m_labelBuffer = readLabel(kLabelPart, isComplete);
    while (!isComplete)
        readLabel(kLabelPart, isComplete);
}

void Machine::printBuffer()
{
    if (!m_labelBuffer.empty())
        drawLabel(m_labelBuffer);
}

void Machine::writeToDisplay()
{
    bool isComplete = false;
    while (!isComplete)
        readLabel(kLabelPart, isComplete);
}

void Machine::moveByLines(const LabelMetrics& metrics, double lines)
{
    const Point step = lineFeedVector(metrics, m_state.text) * lines;
    m_state.pen = m_state.pen + step;
    m_state.carriageReturn = m_state.carriageReturn + step;
}

/// To the carriage return point along the text path; the line stays.
void Machine::returnCarriage(const LabelMetrics& metrics)
{
    const Point path = pathDirection(metrics, m_state.text.path);
    const Point back = m_state.carriageReturn - m_state.pen;
    m_state.pen = m_state.pen + path * (back.x * path.x + back.y * path.y);
}

void Machine::characterPlot()
{
    const LabelMetrics metrics = labelMetrics();
    if (m_operands.empty()) {
        returnCarriage(metrics);
        moveByLines(metrics, 1);
    } else {
        const double advance = pathAdvance(metrics, m_state.text, metrics.cellWidth);
        m_state.pen = m_state.pen + pathDirection(metrics, m_state.text.path) * (advance * clampedReal(0));
        moveByLines(metrics, -clampedReal(1, 0));
    }
    m_linePhase = 0;
    m_hasDotToDraw = false;
}

/// Sets text from the pen's place on; the pen ends behind it.
void Machine::drawLabel(const std::string& text)
{
    TextState& state = m_state.text;
    LabelLine line;
    line.metrics.push_back(labelMetrics());
    const bool isWide = state.labelMode & 1;
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::uint32_t code = static_cast<std::uint8_t>(text[i]);
        if (isWide && i + 1 < text.size())
            code = code << 8 | static_cast<std::uint8_t>(text[++i]);
        if (code < ' ' && !state.isTransparent) {
            obeyLabelControl(code, line);
            continue;
        }
        LabelItem item;
        item.metrics = line.metrics.size() - 1;
        if (!findCharacter(line.metrics.back(), code, state.isTransparent, item))
            continue;
        item.offset = line.end;
        line.end += pathAdvance(line.metrics.back(), state, item.advance);
        line.items.push_back(item);
    }
    setLine(line);
}

void Machine::obeyLabelControl(std::uint32_t code, LabelLine& line)
{
    const LabelMetrics& metrics = line.metrics.back();
    switch (code) {
    case kBackspace: {
        const double advance = line.empty() ? metrics.cellWidth : line.items.back().advance;
        line.end -= pathAdvance(metrics, m_state.text, advance);
        break;
    }
    case kTab: {
        const double cell = pathAdvance(metrics, m_state.text, metrics.cellWidth) * kTabCells;
        if (cell == 0)
            break;
        const Point path = pathDirection(metrics, m_state.text.path);
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
        m_state.text.usesAlternate = code == kShiftOut;
        line.metrics.push_back(labelMetrics());
        break;
    default:
        break;
    }
}

/// Draws a line of a label where the label origin puts it, moves the pen behind it and leaves the line empty.
void Machine::setLine(LabelLine& line)
{
    const TextState& state = m_state.text;
    if (line.empty()) {
        m_state.pen = m_state.pen + pathDirection(line.metrics.back(), state.path) * line.end;
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
    switch (state.path) {
    case kLeft:
        left = -high;
        right = -low;
        break;
    case kDown:
    case kUp: {
        left = 0;
        right = widest;
        const double last = line.items.back().offset;
        bottom = state.path == kDown ? -cap - last : 0;
        top = state.path == kDown ? 0 : last + cap;
        break;
    }
    default:
        break;
    }
    // Mirrored characters grow the other way.
    if (first.unitWidth < 0 && state.path != kDown && state.path != kUp)
        std::swap(left, right);

    const OriginPlace place = originPlace(state.origin);
    Point shift { -(left + (right - left) * place.across), -(bottom + (top - bottom) * place.high) };
    if (state.origin > 10 && state.origin < 20) {
        shift.x += (1 - 2 * place.across) * first.originOffset;
        shift.y += (1 - 2 * place.high) * first.originOffset;
    }
    for (const LabelItem& item : line.items) {
        if (item.glyph == kNoGlyph)
            continue;
        const LabelMetrics& metrics = line.metrics[item.metrics];
        Point at = shift;
        switch (state.path) {
        case kLeft:
            at.x -= item.offset + item.advance - metrics.gap;
            break;
        case kDown:
            at.y -= item.offset + cap;
            break;
        case kUp:
            at.y += item.offset;
            break;
        default:
            at.x += item.offset;
            break;
        }
        drawCharacter(metrics, item.glyph, m_state.pen + metrics.along * at.x + metrics.up * at.y);
        if (status() != RunStatus::Done)
            break;
    }
    if (isContinuing(state.path, state.origin))
        m_state.pen = m_state.pen + pathDirection(first, state.path) * line.end;
    const LabelMetrics current = line.metrics.back();
    line = LabelLine {};
    line.metrics.push_back(current);
}

/// SM: the symbol with its middle on the pen.
void Machine::symbolAtPen()
{
    if (m_isPolygonMode)
        return;
    finishLine();
    flushStrokes();
    const LabelMetrics metrics = labelMetrics();
    LabelItem item;
    if (!findCharacter(metrics, static_cast<std::uint32_t>(m_state.symbol), true, item) || item.glyph == kNoGlyph)
        return;
    drawCharacter(metrics, item.glyph,
        m_state.pen - metrics.along * ((item.advance - metrics.gap) / 2) - metrics.up * (metrics.capHeight / 2));
}

} // namespace quillrip::hpgl
