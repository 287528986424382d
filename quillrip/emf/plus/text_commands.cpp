#include "quillrip/emf/plus/handlers.h"
#include "quillrip/emf/plus/operands.h"
#include "quillrip/emf/plus/string_layout.h"
#include "quillrip/emf/plus/text_painter.h"
#include "quillrip/emf/utf16.h"
#include "quillrip/fonts/shaping/scripts.h"
#include "quillrip/fonts/shaping/text_shaper.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace quillrip::emf::plus {

namespace {

enum DriverStringOption : std::uint32_t {
    kCharacters = 1, ///< codes are characters, which the font's map turns into glyphs one by one; else glyph numbers
    kVertical = 2,
    kRealizedAdvance = 4, ///< only the first position counts
};

/// The text's rectangle as a clip, for formats that cut what does not fit. Where a substitute's letters are of other
/// widths, nothing is cut sideways.
PixelSet clipOf(const Canvas& canvas, const StringLayout& layout, const StringFormatObject& format,
    const SizedFont& font, const Matrix& toWorld, RectF rect)
{
    if (!format.isClipped || rect.width <= 0 || rect.height <= 0)
        return nullptr;
    const bool isTooWide = font.font.hasTrueWidths() && layout.width() > rect.width;
    if (layout.height <= rect.height && !isTooWide)
        return nullptr;
    if (!isTooWide) {
        rect.x -= rect.width + layout.width();
        rect.width = 3 * rect.width + 2 * layout.width();
    }
    return pixelsOf(rect, toWorld * canvas.worldToDevice(), canvas.pageBounds());
}

/// Text that runs down the page is laid out in a rectangle that is turned by a quarter about the upper right corner.
Matrix quarterTurn(const RectF& rect) { return { 0, 1, -1, 0, rect.x + rect.width, rect.y }; }

/// In columns from the left, not from the right as lines of turned text lie.
void orderFromLeft(StringLayout& layout, const SizedFont& font, double width)
{
    const WindowsFontMetrics& metrics = font.font.metrics();
    const double middle = (width + (metrics.lineAscent - metrics.lineDescent) * font.em) / 2;
    for (StringLayout::Line& line : layout.lines) {
        const double down = 2 * (middle - line.start.y);
        line.start.y += down;
        for (TextGlyph& glyph : line.glyphs)
            glyph.at.y += down;
    }
}

/// How much of the position that is read from here looks like one: bytes that are read at a wrong place make numbers
/// that are tiny or huge.
int likelyNumbers(FieldReader fields)
{
    int likely = 0;
    for (int axis = 0; axis < 2; ++axis) {
        FieldReader number(fields.take(4));
        const double value = std::abs(number.f32());
        likely += !number.hasFailed() && (value == 0 || (value > 1e-4 && value < 1e6)) ? 1 : 0;
    }
    return likely;
}

/// An odd number of glyphs is followed by two bytes of padding in the files of some writers, and by none in others.
void skipPadding(FieldReader& fields)
{
    FieldReader padded = fields;
    padded.take(2);
    if (likelyNumbers(padded) > likelyNumbers(fields))
        fields.take(2);
}

} // namespace

void drawString(Machine& machine, const Record& record, FieldReader& fields)
{
    const auto paint = readPaint(machine, record, fields);
    const std::uint32_t formatId = fields.u32();
    const std::uint32_t length = fields.u32();
    const RectF rect = fields.rectF();
    const std::u32string text = toCharacters(fields.text(length));
    if (fields.hasFailed() || !paint)
        return;
    const auto object = findFont(machine, record.id());
    if (!object)
        return;
    const auto stored = machine.objects().find<StringFormatObject>(formatId);
    StringFormatObject format = stored ? *stored : StringFormatObject();
    // The order of the columns is all that reading from the right changes in vertical text.
    const bool isFromRight = format.isRightToLeft;
    format.isRightToLeft = format.isRightToLeft && !format.isVertical;
    Canvas& canvas = machine.canvas();
    const TextPainter painter(canvas, machine.reporter());
    const SizedFont font = painter.select(*object);
    if (needsShaping(text))
        canvas.host().painter.work().charge(Work::Glyphs, kWorkPerShapedCharacter * text.size());
    const RectF space = format.isVertical ? RectF { 0, 0, rect.height, rect.width } : rect;
    StringLayout layout = layOut(text, font, format, space);
    if (format.isVertical && !isFromRight)
        orderFromLeft(layout, font, rect.width);
    if (std::any_of(text.begin(), text.end(),
            [&](char32_t code) { return leavesMark(code) && !font.font.glyphOfCharacter(code).face; }))
        machine.warn("emf.letters-missing", "letters that no installed font has are left out");
    TextPlace place;
    if (format.isVertical)
        place.toWorld = quarterTurn(rect);
    place.within = clipOf(canvas, layout, format, font, place.toWorld, space);
    for (const StringLayout::Line& line : layout.lines) {
        painter.draw(font, line.glyphs, Matrix(), *paint, place);
        if (font.isUnderlined)
            painter.underline(font, line.start, line.length, *paint, place);
        if (font.isStruckOut)
            painter.strikeOut(font, line.start, line.length, *paint, place);
        for (const auto& [from, width] : line.hotKeys)
            painter.underline(font, line.start + Point { from, 0 }, width, *paint, place);
    }
}

void drawDriverString(Machine& machine, const Record& record, FieldReader& fields)
{
    const auto paint = readPaint(machine, record, fields);
    const std::uint32_t options = fields.u32();
    const bool hasMatrix = fields.u32() != 0;
    const std::uint32_t count = fields.u32();
    if (count == 0 || !fields.has(count, 2))
        return;
    std::vector<std::uint32_t> codes;
    for (std::uint32_t i = 0; i < count; ++i)
        codes.push_back(fields.u16());
    if (count % 2 != 0)
        skipPadding(fields);
    // Where only the first position counts, the others hold whatever was in memory, or are left out.
    const bool hasOnePosition = options & kRealizedAdvance;
    const std::vector<Point> positions = fields.points(PointForm::Float, hasOnePosition ? 1 : count);
    constexpr std::size_t pointSize = 8;
    constexpr std::size_t matrixSize = 24;
    const std::size_t unused = (std::size_t { count } - positions.size()) * pointSize;
    if (fields.remaining() >= unused)
        fields.take(unused);
    const Matrix shape = hasMatrix && fields.remaining() >= matrixSize ? fields.matrix() : Matrix();
    if (fields.hasFailed() || !paint || positions.empty())
        return;
    const auto object = findFont(machine, record.id());
    if (!object)
        return;
    if (options & kVertical)
        machine.warn("emfplus.vertical", "vertical text of EMF+ is drawn along the line");
    const TextPainter painter(machine.canvas(), machine.reporter());
    const SizedFont font = painter.select(*object);
    std::vector<TextGlyph> glyphs;
    Point next = positions[0];
    for (std::size_t i = 0; i < codes.size(); ++i) {
        const WindowsFont::Glyph glyph = options & kCharacters ? font.font.glyphOfCharacter(char32_t { codes[i] })
                                                               : font.font.glyphOfIndex(codes[i]);
        glyphs.push_back({ glyph, hasOnePosition ? next : positions[i] });
        next.x += glyph.advance * font.font.stretch() * font.em;
    }
    painter.draw(font, glyphs, shape, *paint, {});
    const Point start = glyphs.front().at;
    const double end
        = hasOnePosition ? next.x : glyphs.back().at.x + glyphs.back().glyph.advance * font.font.stretch() * font.em;
    if (font.isUnderlined)
        painter.underline(font, start, end - start.x, *paint, {});
    if (font.isStruckOut)
        painter.strikeOut(font, start, end - start.x, *paint, {});
}

} // namespace quillrip::emf::plus
