#include "quillrip/emf/text.h"

#include "quillrip/emf/machine.h"
#include "quillrip/fonts/glyph_painter.h"
#include "quillrip/fonts/pixels/outline_raster.h"
#include "quillrip/fonts/shaping/scripts.h"
#include "quillrip/fonts/shaping/text_shaper.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

namespace quillrip::emf {

namespace {

enum : std::uint32_t {
    kUpdatePosition = 1,
    kAlignMask = 6,
    kAlignRight = 2,
    kAlignCentre = 6,
    kVerticalMask = 0x18,
    kBottom = 8,
    kBaseline = 0x18,
    kRightToLeftReading = 0x100,
};

constexpr double kStockInches = 12.0 / 72;

double sign(double value) { return value < 0 ? -1 : 1; }
double lengthOf(double x, double y) { return std::hypot(x, y); }

double radians(double tenthsOfDegree) { return tenthsOfDegree * std::acos(-1.0) / 1800; }

/// Text space: logical units from the reference point, x to the right, y down, before the line is turned.
class Line {
public:
    Line(Machine& machine, const TextRun& run)
        : m_machine(machine)
        , m_dc(machine.dc())
        , m_run(run)
        , m_logical(std::get<LogicalFont>(*m_dc.font))
        , m_font(machine.font((run.options & kTextGlyphIndex) != 0))
    {
        chooseMatrix();
        chooseSize();
        if (m_dc.justificationCount > 0 && !m_run.hasAdvances)
            m_extra = double(m_dc.justificationExtra) / m_dc.justificationCount;
        findGlyphs();
    }

    void draw()
    {
        m_ascent = m_em * m_font.metrics().ascent;
        m_descent = m_em * m_font.metrics().descent;
        const bool updates = (m_dc.textAlign & kUpdatePosition) != 0;
        Canvas& canvas = m_machine.canvas();
        const Point reference = updates ? m_dc.position : m_run.reference;
        m_origin = m_dc.coordinates.toReference().apply(reference) + m_toReference.applyVector(start());
        if (m_dc.path.isRecording) {
            addOutlines();
        } else {
            const PaintState ink = PaintMaker::solid(colorOf(m_dc.textColor, m_dc));
            if (m_dc.isOpaque && !m_run.units.empty())
                canvas.fill(bar(0, m_width, -m_ascent, m_descent), FillRule::NonZero,
                    PaintMaker::solid(colorOf(m_dc.backgroundColor, m_dc)));
            drawGlyphs(ink);
            forEachBar([&](const Path& bar) { canvas.fill(bar, FillRule::NonZero, ink); });
        }
        if (updates)
            movePosition();
    }

private:
    struct Placed {
        WindowsFont::Glyph glyph;
        double x = 0;
        double y = 0; ///< down
    };

    void chooseMatrix()
    {
        const Matrix& world = m_dc.coordinates.world();
        const Matrix& page = m_dc.coordinates.pageToReference();
        const bool isTurned = world.b != 0 || world.c != 0;
        // A mapping mode with y upwards does not mirror letters, a world transform does.
        Matrix whole = Matrix::scaling(sign(page.a), sign(page.d)) * m_dc.coordinates.toReference();
        whole.e = whole.f = 0;
        m_glyphStretch = 1;
        if (m_run.isCompatible && !isTurned) {
            const double scaleX = std::abs(whole.a);
            const double scaleY = std::abs(whole.d);
            whole = Matrix::scaling(scaleX, scaleY);
            if (m_logical.width == 0 && scaleX > 0)
                m_glyphStretch = scaleY / scaleX;
        }
        if (m_logical.width == 0)
            m_glyphStretch *= m_machine.pixelAspect();
        m_toReference = whole;
        // Angles are logical: where y points upwards they turn the other way.
        m_turn = page.a * page.d < 0 ? -1 : 1;
        const double escapement = radians(m_logical.escapement * m_turn);
        m_along = { std::cos(escapement), -std::sin(escapement) };
        m_down = { std::sin(escapement), std::cos(escapement) };
    }

    void chooseSize()
    {
        const WindowsFontMetrics& metrics = m_font.metrics();
        const double cell = metrics.ascent + metrics.descent;
        const double height = m_logical.height;
        if (height < 0)
            m_em = -height;
        else if (height > 0)
            m_em = cell > 0 ? height / cell : height;
        else
            m_em = kStockInches * m_machine.dotsPerInch() / std::max(1e-9, lengthOf(m_toReference.c, m_toReference.d));
        m_stretch = m_font.stretch() * m_glyphStretch;
        if (m_logical.width != 0)
            m_stretch = std::abs(double(m_logical.width)) / (metrics.averageWidth * m_em);
    }

    WindowsFont::Glyph glyphOf(char32_t code) const
    {
        if ((m_run.options & kTextGlyphIndex) == 0)
            return m_font.glyphOfCharacter(code);
        return m_font.glyphOfIndex(code);
    }

    void findGlyphs()
    {
        if (!placeShaped()) {
            for (const TextRun::Unit& unit : m_run.units)
                place(unit);
        }
        constexpr double kClose = 0.02;
        if (m_run.hasAdvances && m_natural > 0 && m_given > 0 && (!m_logical.isSizeKnown || m_logical.height == 0)) {
            // What size the reference device gave the font shows in the widths alone.
            constexpr double kSmallest = 0.1;
            constexpr double kLargest = 4;
            if (std::abs(m_given / m_natural - 1) > kClose)
                m_em *= std::clamp(m_given / m_natural, kSmallest, kLargest);
            m_natural = m_given;
        }
        // Letters of a face with other widths are fitted into those that the job gives.
        constexpr double kNarrowest = 0.7;
        constexpr double kWidest = 1.3;
        if (m_run.hasAdvances && !m_font.hasTrueWidths() && m_natural > 0 && m_given > 0
            && std::abs(m_given / m_natural - 1) > kClose)
            m_stretch *= std::clamp(m_given / m_natural, kNarrowest, kWidest);
    }

    /// A character by its own glyph, behind those before it.
    void place(const TextRun::Unit& unit)
    {
        const bool isIndex = (m_run.options & kTextGlyphIndex) != 0;
        double advance = 0;
        if (unit.code != 0 || isIndex) {
            const WindowsFont::Glyph glyph = glyphOf(unit.code);
            m_placed.push_back({ glyph, m_width, m_drop });
            advance = glyph.advance;
            if (!isIndex && !glyph.face)
                missed(unit.code);
        }
        const bool isSpace = unit.code == U' ' && !isIndex;
        move(advance, unit.dx, unit.dy, isSpace, unit.code != 0 || isIndex);
    }

    void missed(char32_t character)
    {
        if (leavesMark(character))
            m_machine.warn("emf.letters-missing", "letters that no installed font has are left out");
    }

    /// The line goes on by what the job gives, or by an advance in em, which is widened at a space to justify the line.
    /// `countsAsLetters`: what the widths of the face are compared by.
    void move(double advance, double dx, double dy, bool isSpace, bool countsAsLetters)
    {
        advance *= m_stretch * m_em;
        if (countsAsLetters && !isSpace) {
            m_natural += advance;
            m_given += dx;
        }
        if (m_run.hasAdvances) {
            m_width += dx;
            m_drop -= dy;
        } else {
            m_width += advance + (isSpace ? m_extra : 0);
        }
    }

    /// Where the string has letters that change places or shapes beside each other. False: each stands for itself.
    bool placeShaped()
    {
        if ((m_run.options & (kTextGlyphIndex | kTextIgnoreLanguage)) != 0 || m_font.isSymbolic())
            return false;
        const bool isRightToLeft
            = (m_run.options & kTextRightToLeft) != 0 || (m_dc.textAlign & kRightToLeftReading) != 0;
        const auto& units = m_run.units;
        if (!isRightToLeft
            && std::none_of(units.begin(), units.end(), [](const auto& unit) { return needsShaping(unit.code); }))
            return false;
        std::u32string line;
        std::vector<std::size_t> places; // of the characters among the units
        for (std::size_t i = 0; i < units.size(); ++i) {
            if (units[i].code != 0) {
                line.push_back(units[i].code);
                places.push_back(i);
            }
        }
        if (line.empty())
            return false;
        places.front() = 0;
        places.push_back(units.size());
        m_machine.job().limits.work->charge(Work::Glyphs, kWorkPerShapedCharacter * line.size());
        placeClusters(shapeLine(line, m_font, isRightToLeft), line, places);
        return true;
    }

    /// Characters that are drawn together move by the sum of their steps. `places`: of the line's characters among the
    /// string's units, and where these end.
    void placeClusters(const ShapedLine& shaped, const std::u32string& line, const std::vector<std::size_t>& places)
    {
        const auto stepOf = [&](const ShapedCluster& cluster) {
            Point step;
            for (std::size_t i = places[cluster.begin]; i < places[cluster.end]; ++i)
                step = step + Point { m_run.units[i].dx, m_run.units[i].dy };
            return step;
        };
        // The last character of a string needs no step, and writers do not give a true one: it does not count for the
        // letters' widths, and moves as the others do where it is read from right to left and comes first on the line.
        double steps = 0;
        double advances = 0;
        const auto isLast = [&](const ShapedCluster& cluster) { return cluster.end == line.size(); };
        const auto isSpace = [&](const ShapedCluster& cluster) { return line[cluster.begin] == U' '; };
        for (const ShapedCluster& cluster : shaped.clusters) {
            if (!isLast(cluster) && !isSpace(cluster)) {
                steps += stepOf(cluster).x;
                advances += cluster.advance;
            }
        }
        for (const ShapedCluster& cluster : shaped.clusters) {
            for (std::size_t i = cluster.firstGlyph; i < cluster.lastGlyph; ++i) {
                m_placed.push_back({ shaped.glyphs[i], m_width, m_drop });
                if (!shaped.glyphs[i].face)
                    missed(line[cluster.begin]);
            }
            Point step = stepOf(cluster);
            if (isLast(cluster) && cluster.isRightToLeft && advances > 0) {
                constexpr double kClose = 0.1;
                const double likely = cluster.advance * steps / advances;
                if (std::abs(step.x - likely) > kClose * likely)
                    step.x = likely;
            }
            move(cluster.advance, step.x, step.y, isSpace(cluster), !isLast(cluster));
        }
    }

    /// Where the line's first reference point lies, from the record's own: text space.
    Point start() const
    {
        const std::uint32_t align = m_dc.textAlign & kAlignMask;
        const double back = align == kAlignCentre ? m_width / 2 : align == kAlignRight ? m_width : 0;
        const std::uint32_t vertical = m_dc.textAlign & kVerticalMask;
        const double down = vertical == kBaseline ? 0 : vertical == kBottom ? -m_descent : m_ascent;
        return m_along * -back + m_down * down;
    }

    Point at(double x, double y) const { return m_origin + m_toReference.applyVector(m_along * x + m_down * y); }

    /// A bar along the line, reference pixels.
    Path bar(double left, double right, double top, double bottom) const
    {
        Path path;
        path.moveTo(at(left, top));
        path.lineTo(at(right, top));
        path.lineTo(at(right, bottom));
        path.lineTo(at(left, bottom));
        path.close();
        return path;
    }

    /// Glyph space to reference pixels.
    Matrix matrixOf(const Placed& placed) const
    {
        const double turn = radians(m_turn * (m_run.isCompatible ? m_logical.escapement : m_logical.orientation));
        const double cosine = std::cos(turn);
        const double sine = std::sin(turn);
        const Matrix shape { m_em * m_stretch, 0, m_em * placed.glyph.slant * m_stretch, -m_em, 0, 0 };
        const Matrix turned = shape * Matrix { cosine, -sine, sine, cosine, 0, 0 };
        Matrix result = turned * m_toReference;
        const Point origin = at(placed.x, placed.y) + result.applyVector(placed.glyph.shift);
        result.e = origin.x;
        result.f = origin.y;
        return result;
    }

    void drawGlyphs(const PaintState& ink)
    {
        Canvas& canvas = m_machine.canvas();
        PaintState state = ink;
        state.clip = canvas.clip();
        if ((m_run.options & kTextClipped) != 0) {
            Path box;
            box.rectangle(m_run.box.left, m_run.box.top, m_run.box.right, m_run.box.bottom);
            state.clip = intersection(
                state.clip, canvas.regionOf(box.transformed(canvas.logicalToDevice()), FillRule::NonZero));
        }
        const PageCanvas page { &canvas.painter(), Matrix(), canvas.format(), {} };
        for (const Placed& placed : m_placed) {
            if (placed.glyph.face) {
                m_machine.job().glyphs.draw(page, *placed.glyph.face, placed.glyph.id,
                    matrixOf(placed) * canvas.toDevice(), state, { placed.glyph.bold });
            }
        }
    }

    Path outlineOf(const Placed& placed) const
    {
        Path outline;
        if (!placed.glyph.face || !placed.glyph.face->outline(placed.glyph.id, outline))
            return {};
        const double bold = placed.glyph.bold;
        return bold > 0 ? emboldened(outline, bold, bold) : outline;
    }

    void addOutlines()
    {
        for (const Placed& placed : m_placed)
            m_machine.addToPath(outlineOf(placed).transformed(matrixOf(placed)));
        forEachBar([&](const Path& bar) { m_machine.addToPath(bar); });
    }

    template <typename Use> void forEachBar(const Use& use) const
    {
        const WindowsFontMetrics& metrics = m_font.metrics();
        const auto give = [&](double top, double thickness) {
            if (m_width != 0)
                use(bar(0, m_width, -top * m_em, (thickness - top) * m_em));
        };
        if (m_logical.isUnderlined)
            give(metrics.underlineTop, metrics.underlineThickness);
        if (m_logical.isStruckOut)
            give(metrics.strikeoutTop, metrics.strikeoutThickness);
    }

    void movePosition()
    {
        const std::uint32_t align = m_dc.textAlign & kAlignMask;
        if (align == kAlignCentre || !m_dc.coordinates.toReference().isInvertible())
            return;
        const double way = align == kAlignRight ? -m_width : m_width;
        const Point moved = m_toReference.applyVector(m_along * way + m_down * m_drop);
        const Point from = m_dc.coordinates.toReference().apply(m_dc.position);
        m_dc.position = m_dc.coordinates.toReference().inverted().apply(from + moved);
    }

    Machine& m_machine;
    DeviceContext& m_dc;
    const TextRun& m_run;
    const LogicalFont& m_logical;
    const WindowsFont& m_font;
    Matrix m_toReference; ///< text space to reference pixels, without translation
    Point m_along; ///< text space, a unit along the line
    Point m_down;
    double m_turn = 1; ///< sense of angles
    double m_glyphStretch = 1;
    double m_em = 0; ///< logical units
    double m_ascent = 0;
    double m_descent = 0;
    double m_stretch = 1; ///< of glyphs along the line
    double m_extra = 0; ///< that each space gets
    double m_natural = 0; ///< widths of the letters
    double m_given = 0; ///< the same as the job has them
    double m_width = 0; ///< of the line
    double m_drop = 0; ///< of its end
    Point m_origin; ///< reference pixels
    std::vector<Placed> m_placed;
};

} // namespace

void drawText(Machine& machine, const TextRun& run)
{
    DeviceContext& dc = machine.dc();
    if ((run.options & kTextOpaque) != 0 && !dc.path.isRecording) {
        Path box;
        box.rectangle(run.box.left, run.box.top, run.box.right, run.box.bottom);
        if (run.box.left != run.box.right && run.box.top != run.box.bottom)
            machine.canvas().fill(box.transformed(dc.coordinates.toReference()), FillRule::NonZero,
                PaintMaker::solid(colorOf(dc.backgroundColor, dc)));
    }
    if (run.units.empty())
        return;
    const WindowsFont& font = machine.font((run.options & kTextGlyphIndex) != 0);
    if (!font)
        return;
    if ((run.options & kTextGlyphIndex) != 0 && font.lacksIndices())
        machine.warn("emf.font-missing",
            "text by glyph numbers of the font \"" + std::get<LogicalFont>(*dc.font).face
                + "\", which the job does not carry: left out");
    Line(machine, run).draw();
}

} // namespace quillrip::emf
