#include "quillrip/hpgl/stick_font.h"

#include "quillrip/base/units.h"

#include "quillrip/hpgl/stick_font_shapes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace quillrip::hpgl {

namespace {

/// Accents stand over small letters; over capitals they are so much higher.
constexpr double kCapitalAccentRise = 10;
constexpr char32_t kCedilla = 0xB8;

/// Reads the shapes' own little language, which is right by construction.
class ShapeReader {
public:
    ShapeReader(const char* text, double rise, Path& path)
        : m_at(text)
        , m_rise(rise)
        , m_path(path)
    {
    }

    void read()
    {
        while (*m_at) {
            const char verb = *m_at;
            if (verb == ' ') {
                ++m_at;
                continue;
            }
            ++m_at;
            switch (verb) {
            case 'M':
                m_path.moveTo(point());
                break;
            case 'L':
                m_path.lineTo(point());
                break;
            case 'Q':
                curve();
                break;
            default:
                arc();
                break;
            }
        }
    }

private:
    double number()
    {
        char* end = nullptr;
        const double value = std::strtod(m_at, &end);
        m_at = end;
        return value;
    }

    Point point()
    {
        const double x = number();
        return { x, number() + m_rise };
    }

    void curve()
    {
        const Point from = m_path.current();
        const Point control = point();
        const Point to = point();
        m_path.cubicTo(from + (control - from) * (2.0 / 3), to + (control - to) * (2.0 / 3), to);
    }

    void arc()
    {
        const Point centre = point();
        const double radiusX = number();
        const double radiusY = number();
        const double start = number() * kRadiansPerDegree;
        const double sweep = number() * kRadiansPerDegree;
        const Point first { centre.x + radiusX * std::cos(start), centre.y + radiusY * std::sin(start) };
        constexpr double kSamePlace = 0.75;
        const Point gap = first - m_path.current();
        const bool goesOn = !m_path.empty() && std::hypot(gap.x, gap.y) < kSamePlace;
        m_path.arc(centre, radiusX, radiusY, start, sweep, !goesOn);
    }

    const char* m_at;
    double m_rise;
    Path& m_path;
};

const StickShape* findShape(char32_t character)
{
    const auto shape = std::lower_bound(kStickShapes.begin(), kStickShapes.end(), character,
        [](const StickShape& s, char32_t wanted) { return s.character < wanted; });
    return shape != kStickShapes.end() && shape->character == character ? &*shape : nullptr;
}

void draw(const StickShape& shape, double rise, Path& path)
{
    if (shape.base) {
        const StickShape* const base = findShape(shape.base);
        const StickShape* const accent = findShape(shape.accent);
        const bool isCapital = shape.base < 'a';
        draw(*base, rise, path);
        draw(*accent, rise + (isCapital && shape.accent != kCedilla ? kCapitalAccentRise : 0), path);
        return;
    }
    ShapeReader(shape.strokes, rise, path).read();
}

std::vector<StickGlyph> makeGlyphs()
{
    std::vector<StickGlyph> glyphs;
    glyphs.reserve(kStickShapes.size());
    for (const StickShape& shape : kStickShapes) {
        StickGlyph glyph;
        draw(shape, 0, glyph.strokes);
        if (!glyph.strokes.empty()) {
            glyph.left = 1e9;
            glyph.right = -1e9;
            for (const Point& point : glyph.strokes.points()) {
                glyph.left = std::min(glyph.left, point.x);
                glyph.right = std::max(glyph.right, point.x);
            }
        }
        glyphs.push_back(std::move(glyph));
    }
    return glyphs;
}

} // namespace

const StickGlyph* stickGlyph(char32_t character)
{
    static const std::vector<StickGlyph> s_glyphs = makeGlyphs();
    const StickShape* const shape = findShape(character);
    return shape ? &s_glyphs[static_cast<std::size_t>(shape - kStickShapes.data())] : nullptr;
}

std::vector<char32_t> stickCharacters()
{
    std::vector<char32_t> characters;
    characters.reserve(std::size(kStickShapes));
    for (const StickShape& shape : kStickShapes)
        characters.push_back(shape.character);
    return characters;
}

} // namespace quillrip::hpgl
