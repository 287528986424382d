#include "quillrip/emf/plus/string_layout.h"

#include "quillrip/fonts/shaping/scripts.h"
#include "quillrip/fonts/shaping/text_shaper.h"

#include <algorithm>
#include <cmath>

namespace quillrip::emf::plus {

namespace {

constexpr char32_t kEllipsis = 0x2026;

struct Character {
    WindowsFont::Glyph glyph;
    double advance = 0; ///< world units; of characters that are drawn together the first has it all
    char32_t code = 0;
    bool isHotKey = false;
    bool isDrawnWithLast = false; ///< no line breaks in front of it
};

using Characters = std::vector<Character>;

/// The characters to be drawn: without carriage returns, and ampersands as the format says.
Characters charactersOf(const std::u32string& text, const SizedFont& font, const StringFormatObject& format)
{
    Characters characters;
    bool isHotKey = false;
    for (const char32_t code : text) {
        if (code == U'\r')
            continue;
        if (code == U'&' && format.hotKeys != StringFormatObject::HotKeys::Plain && !isHotKey) {
            isHotKey = true;
            continue;
        }
        Character character;
        character.code = code;
        if (code != U'\n' && code != U'\t') {
            character.glyph = font.font.glyphOfCharacter(code);
            character.advance = character.glyph.advance * font.font.stretch() * font.em;
        }
        // Two ampersands stand for one.
        character.isHotKey = isHotKey && code != U'&' && format.hotKeys == StringFormatObject::HotKeys::Underlined;
        isHotKey = false;
        characters.push_back(character);
    }
    return characters;
}

/// Whether letters of the line change places or shapes beside each other.
bool isShaped(const Characters& line, const SizedFont& font, const StringFormatObject& format)
{
    return !font.font.isSymbolic()
        && (format.isRightToLeft || std::any_of(line.begin(), line.end(), [](const Character& character) {
               return needsShaping(character.code);
           }));
}

ShapedLine shape(const Characters& line, const SizedFont& font, const StringFormatObject& format)
{
    std::u32string codes;
    for (const Character& character : line)
        codes.push_back(character.code);
    return shapeLine(codes, font.font, format.isRightToLeft);
}

/// Gives the characters of a paragraph the advances that they have beside each other.
void measureShaped(Characters& paragraph, const SizedFont& font, const StringFormatObject& format)
{
    for (const ShapedCluster& cluster : shape(paragraph, font, format).clusters) {
        if (paragraph[cluster.begin].code != U'\t')
            paragraph[cluster.begin].advance = cluster.advance * font.font.stretch() * font.em;
        for (std::size_t i = cluster.begin + 1; i < cluster.end; ++i) {
            paragraph[i].advance = 0;
            paragraph[i].isDrawnWithLast = true;
        }
    }
}

/// How far the next tab stop lies from `position`.
double toNextTab(double position, const SizedFont& font, const StringFormatObject& format)
{
    double stop = format.firstTab;
    for (const double step : format.tabs) {
        stop += std::max(step, 0.0);
        if (stop > position)
            return stop - position;
    }
    // Behind the last stop tabs go on at a distance that any text has.
    constexpr double ems = 4;
    const double step = ems * font.em;
    return step > 0 ? step - std::fmod(std::max(position - stop, 0.0), step) : 0;
}

double lengthOf(const Characters& line, const SizedFont& font, const StringFormatObject& format)
{
    double length = 0;
    for (const Character& character : line)
        length += character.code == U'\t' ? toNextTab(length, font, format) : character.advance;
    return length;
}

void dropTrailingSpaces(Characters& line)
{
    while (!line.empty() && line.back().code == U' ')
        line.pop_back();
}

/// Breaks a paragraph behind spaces so that no line is longer than `width`; a word that is longer is cut.
void wrap(const Characters& paragraph, double width, const SizedFont& font, const StringFormatObject& format,
    std::vector<Characters>& lines)
{
    Characters line;
    std::size_t lastBreak = 0; // characters of the line that may stay when it is broken
    double length = 0;
    for (const Character& character : paragraph) {
        const double advance = character.code == U'\t' ? toNextTab(length, font, format) : character.advance;
        const bool overruns
            = length + advance > width && character.code != U' ' && !character.isDrawnWithLast && !line.empty();
        if (overruns) {
            const std::size_t kept = lastBreak > 0 ? lastBreak : line.size();
            const auto cut = line.begin() + static_cast<std::ptrdiff_t>(kept);
            Characters rest(cut, line.end());
            line.erase(cut, line.end());
            dropTrailingSpaces(line);
            lines.push_back(std::move(line));
            line = std::move(rest);
            length = lengthOf(line, font, format);
            lastBreak = 0;
        }
        line.push_back(character);
        length += advance;
        if (character.code == U' ')
            lastBreak = line.size();
    }
    lines.push_back(std::move(line));
}

Character characterOf(char32_t code, const SizedFont& font)
{
    Character character;
    character.code = code;
    character.glyph = font.font.glyphOfCharacter(code);
    character.advance = character.glyph.advance * font.font.stretch() * font.em;
    return character;
}

/// Puts an ellipsis at a line's end, in the place of what would make it longer than `width`.
void endWithEllipsis(Characters& line, double width, const SizedFont& font, const StringFormatObject& format)
{
    double length = lengthOf(line, font, format);
    const Character dots = characterOf(kEllipsis, font);
    for (; !line.empty() && length + dots.advance > width; line.pop_back())
        length -= line.back().advance;
    line.push_back(dots);
}

/// Leaves out the lines that the rectangle has no room for.
void limitLines(std::vector<Characters>& lines, const RectF& rect, double width, const SizedFont& font,
    const StringFormatObject& format)
{
    const WindowsFontMetrics& metrics = font.font.metrics();
    const double line = (metrics.lineAscent + metrics.lineDescent) * font.em;
    const double spacing = line + metrics.lineGap * font.em;
    if (rect.height <= 0 || spacing <= 0)
        return;
    // A box that was measured with another face of the kind is a little too low for the last of its lines.
    constexpr double kSlack = 0.1;
    std::size_t most = lines.size();
    for (std::size_t i = 1; i < lines.size() && most == lines.size(); ++i) {
        const double end = spacing * static_cast<double>(i) + (format.hasWholeLinesOnly ? (1 - kSlack) * line : 0);
        if (end >= rect.height)
            most = i;
    }
    if (most == lines.size())
        return;
    Characters& last = lines[most - 1];
    if (format.endsWithEllipsis && rect.width > 0) {
        last.push_back(characterOf(U' ', font)); // which the line was broken at
        last.insert(last.end(), lines[most].begin(), lines[most].end());
        endWithEllipsis(last, width, font, format);
    }
    lines.resize(most);
}

void placeShaped(
    StringLayout::Line& line, const Characters& characters, const SizedFont& font, const StringFormatObject& format)
{
    const ShapedLine shaped = shape(characters, font, format);
    for (const ShapedCluster& cluster : shaped.clusters) {
        if (characters[cluster.begin].code == U'\t') {
            line.length += toNextTab(line.length, font, format);
            continue;
        }
        for (std::size_t i = cluster.firstGlyph; i < cluster.lastGlyph; ++i)
            line.glyphs.push_back({ shaped.glyphs[i], line.start + Point { line.length, 0 } });
        const double advance = cluster.advance * font.font.stretch() * font.em;
        const auto first = characters.begin();
        if (std::any_of(first + static_cast<std::ptrdiff_t>(cluster.begin),
                first + static_cast<std::ptrdiff_t>(cluster.end), [](const Character& c) { return c.isHotKey; }))
            line.hotKeys.push_back({ line.length, advance });
        line.length += advance;
    }
}

StringLayout::Line place(
    const Characters& characters, Point start, const SizedFont& font, const StringFormatObject& format)
{
    StringLayout::Line line;
    line.start = start;
    if (isShaped(characters, font, format)) {
        placeShaped(line, characters, font, format);
        return line;
    }
    for (const Character& character : characters) {
        if (character.code == U'\t') {
            line.length += toNextTab(line.length, font, format);
            continue;
        }
        line.glyphs.push_back({ character.glyph, start + Point { line.length, 0 } });
        if (character.isHotKey)
            line.hotKeys.push_back({ line.length, character.advance });
        line.length += character.advance;
    }
    return line;
}

/// Where something of a size begins in a space.
double aligned(StringAlignment alignment, double begin, double space, double size)
{
    switch (alignment) {
    case StringAlignment::Near:
        return begin;
    case StringAlignment::Center:
        return begin + (space - size) / 2;
    case StringAlignment::Far:
        return begin + space - size;
    }
    return begin;
}

StringAlignment mirrored(StringAlignment alignment)
{
    return alignment == StringAlignment::Near ? StringAlignment::Far
        : alignment == StringAlignment::Far   ? StringAlignment::Near
                                              : alignment;
}

} // namespace

double StringLayout::width() const
{
    double longest = 0;
    for (const Line& line : lines)
        longest = std::max(longest, line.length);
    return longest;
}

StringLayout layOut(
    const std::u32string& text, const SizedFont& font, const StringFormatObject& format, const RectF& rect)
{
    const double leading = format.leadingMargin * font.em;
    const double trailing = format.trailingMargin * font.em;
    const bool hasWidth = rect.width > 0;
    const double width = rect.width - leading - trailing;
    const Characters characters = charactersOf(text, font, format);

    std::vector<Characters> lines;
    for (auto from = characters.begin();;) {
        const auto to = std::find_if(from, characters.end(), [](const Character& c) { return c.code == U'\n'; });
        Characters paragraph(from, to);
        if (isShaped(paragraph, font, format))
            measureShaped(paragraph, font, format);
        if (hasWidth && format.isWrapped)
            wrap(paragraph, width, font, format, lines);
        else
            lines.push_back(paragraph);
        if (to == characters.end())
            break;
        from = to + 1;
    }

    if (format.hasWholeLinesOnly || (format.endsWithEllipsis && format.isClipped))
        limitLines(lines, rect, width, font, format);

    const WindowsFontMetrics& metrics = font.font.metrics();
    const double ascent = metrics.lineAscent * font.em;
    const double spacing = (metrics.lineAscent + metrics.lineDescent + metrics.lineGap) * font.em;
    StringLayout layout;
    layout.height
        = (metrics.lineAscent + metrics.lineDescent) * font.em + spacing * static_cast<double>(lines.size() - 1);
    const double top = aligned(format.lineAlignment, rect.y, std::max(rect.height, 0.0), layout.height);
    const StringAlignment alignment = format.isRightToLeft ? mirrored(format.alignment) : format.alignment;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        Characters& line = lines[i];
        if (hasWidth && format.endsWithEllipsis && lengthOf(line, font, format) > width)
            endWithEllipsis(line, width, font, format);
        const double length = lengthOf(line, font, format);
        const double left = hasWidth ? aligned(alignment, rect.x + leading, width, length)
                                     : aligned(alignment, rect.x + leading, 0, length);
        layout.lines.push_back(place(line, { left, top + ascent + spacing * static_cast<double>(i) }, font, format));
    }
    return layout;
}

} // namespace quillrip::emf::plus
