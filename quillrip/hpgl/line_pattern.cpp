#include "quillrip/hpgl/line_pattern.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace quillrip::hpgl {

namespace {

/// Patterns finer than this are drawn as if they were so long: no device shows them.
constexpr double kShortestPattern = 0.5; // decipoints
/// More dashes of one line than anybody could tell apart. Wide ones take longer to draw, and fewer make sense.
constexpr double kMostDashes = 1000000;
constexpr double kWideDash = 20; // decipoints
/// Work of a dash, of a gap, or of a vector.
constexpr std::uint64_t kUnitsPerStep = 50;

/// Walks the pattern along a line and collects what the pen draws.
class Dasher {
public:
    Dasher(const LinePattern& pattern, double closedGap, std::size_t mostDashes, WorkMeter& work, DashedLine& result)
        : m_pattern(pattern)
        , m_closedGap(closedGap)
        , m_dashesLeft(mostDashes)
        , m_work(work)
        , m_result(result)
    {
    }

    /// Goes to a place in the pattern without drawing.
    void enter(double phase, double length)
    {
        m_length = length;
        m_isDrawing = false;
        double rest = phase;
        for (m_slot = 0; m_slot < m_pattern.shares.size(); ++m_slot) {
            const double slot = m_pattern.shares[m_slot] * m_length;
            if (rest < slot)
                break;
            rest -= slot;
        }
        if (m_slot == m_pattern.shares.size()) {
            m_slot = 0;
            rest = 0;
        }
        m_left = m_pattern.shares[m_slot] * m_length - rest;
        m_isFreshSlot = rest == 0;
    }

    void walk(Point from, Point to)
    {
        const double length = std::hypot(to.x - from.x, to.y - from.y);
        if (length == 0)
            return;
        double done = 0;
        while (done < length && m_work.allows(Work::Lines, kUnitsPerStep)) {
            const Point here = from + (to - from) * (done / length);
            if (m_dashesLeft == 0 && !m_isDrawing)
                return drawRest(here, to);
            if (m_isFreshSlot && isDown() && m_left == 0) {
                m_result.dots.push_back(here);
                --m_dashesLeft;
            }
            const double step = std::min(m_left, length - done);
            done += step;
            m_left -= step;
            m_isFreshSlot = m_isFreshSlot && step == 0;
            if (isDown() && step > 0) {
                if (!m_isDrawing) {
                    m_result.dashes.moveTo(here);
                    --m_dashesLeft;
                }
                m_isDrawing = true;
                passClosedGaps(done, length);
                m_result.dashes.lineTo(from + (to - from) * (done / length));
            }
            // A slot that ends together with the vector is left at once, so that a dash is not taken up again.
            if (m_left <= kNothing)
                nextSlot();
        }
    }

    void lift() { m_isDrawing = false; }

private:
    /// Of a slot's length.
    static constexpr double kNothing = 1e-9;

    bool isDown() const { return m_slot % 2 == 0; }

    /// From a dash's end on to that of the next one, as long as the gap between them lies within the vector and does
    /// not show.
    void passClosedGaps(double& done, double length)
    {
        const std::vector<double>& shares = m_pattern.shares;
        while (m_left <= kNothing && m_slot + 1 < shares.size()) {
            const double gap = shares[m_slot + 1] * m_length;
            const std::size_t next = m_slot + 2 < shares.size() ? m_slot + 2 : 0;
            const bool isDot = shares[next] == 0;
            if (!(gap > 0 && gap <= m_closedGap && done + gap < length) || isDot
                || !m_work.allows(Work::Lines, kUnitsPerStep))
                return;
            m_slot = next;
            const double dash = shares[next] * m_length;
            const double step = std::min(dash, length - done - gap);
            done += gap + step;
            m_left = dash - step;
        }
    }

    void drawRest(Point from, Point to)
    {
        m_result.dashes.moveTo(from);
        m_result.dashes.lineTo(to);
    }

    void nextSlot()
    {
        m_isDrawing = m_isDrawing && m_slot + 1 == m_pattern.shares.size() && m_slot % 2 == 0;
        m_slot = m_slot + 1 == m_pattern.shares.size() ? 0 : m_slot + 1;
        m_left = m_pattern.shares[m_slot] * m_length;
        m_isFreshSlot = true;
    }

    const LinePattern& m_pattern;
    double m_closedGap; ///< gaps up to this do not show
    std::size_t m_dashesLeft;
    WorkMeter& m_work;
    DashedLine& m_result;
    double m_length = 0;
    std::size_t m_slot = 0;
    double m_left = 0;
    bool m_isDrawing = false;
    bool m_isFreshSlot = false;
};

/// The part of a vector inside a rectangle as fractions of it; false when there is none.
bool visiblePart(Point from, Point to, const Rect& rect, double& first, double& last)
{
    first = 0;
    last = 1;
    const auto cut = [&](double start, double step, double low, double high) {
        if (step == 0)
            return start >= low && start <= high;
        const double a = (low - start) / step;
        const double b = (high - start) / step;
        first = std::max(first, std::min(a, b));
        last = std::min(last, std::max(a, b));
        return first < last;
    };
    return cut(from.x, to.x - from.x, rect.left, rect.right) && cut(from.y, to.y - from.y, rect.top, rect.bottom);
}

double lengthOf(const LineVertex& from, const LineVertex& to)
{
    return std::hypot(to.at.x - from.at.x, to.at.y - from.at.y);
}

} // namespace

const std::vector<double>& builtInLinePattern(int type)
{
    static const std::array<std::vector<double>, 9> s_patterns { {
        {},
        { 0, 1 },
        { .5, .5 },
        { .7, .3 },
        { .8, .1, 0, .1 },
        { .7, .1, .1, .1 },
        { .5, .1, .1, .1, .1, .1 },
        { .7, .1, 0, .1, 0, .1 },
        { .5, .1, 0, .1, .1, .1, 0, .1 },
    } };
    return s_patterns[static_cast<std::size_t>(type)];
}

DashedLine cutIntoDashes(const std::vector<LineVertex>& line, const LinePattern& pattern, const Rect& visible,
    const DashPen& pen, WorkMeter& work, double& phase)
{
    DashedLine result;
    const double length = std::max(pattern.length, kShortestPattern);
    // What lies farther away than a whole pattern is passed over by arithmetic, however long it is.
    const Rect shown { visible.left - length - 100, visible.top - length - 100, visible.right + length + 100,
        visible.bottom + length + 100 };
    const double penWidth = std::max(0.0, pen.width);
    const double mostDashes = kMostDashes / (1 + penWidth / kWideDash);
    constexpr double kFinestNotch = 0.02; // decipoints
    Dasher dasher(pattern, widestClosedGap(pen.cap, penWidth, kFinestNotch),
        std::max<std::size_t>(1, static_cast<std::size_t>(mostDashes)), work, result);
    double at = pattern.isAdaptive ? 0 : std::fmod(phase, length);
    dasher.enter(at, length);

    for (std::size_t i = 1; i < line.size() && work.allows(Work::Lines, kUnitsPerStep); ++i) {
        double patternLength = length;
        const bool startsVector = i == 1 || line[i - 1].endsVector;
        if (pattern.isAdaptive && startsVector) {
            double vector = 0;
            for (std::size_t k = i; k < line.size(); ++k) {
                vector += lengthOf(line[k - 1], line[k]);
                if (line[k].endsVector)
                    break;
            }
            if (vector == 0)
                continue;
            patternLength = std::max(vector / std::max(1.0, std::round(vector / length)), kShortestPattern);
            at = 0;
            dasher.enter(0, patternLength);
        }
        const Point from = line[i - 1].at;
        const Point to = line[i].at;
        const double vector = lengthOf(line[i - 1], line[i]);
        double first = 0;
        double last = 1;
        if (!visiblePart(from, to, shown, first, last)) {
            first = last = 1;
        }
        if (first > 0) {
            at = std::fmod(at + vector * first, patternLength);
            dasher.enter(at, patternLength);
        }
        dasher.walk(from + (to - from) * first, from + (to - from) * last);
        at = std::fmod(at + vector * (last - first), patternLength);
        if (last < 1) {
            at = std::fmod(at + vector * (1 - last), patternLength);
            dasher.enter(at, patternLength);
        }
    }
    if (!pattern.isAdaptive)
        phase = at;
    return result;
}

} // namespace quillrip::hpgl
