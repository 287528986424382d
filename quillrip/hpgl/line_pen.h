#pragma once

#include "quillrip/base/work_meter.h"
#include "quillrip/hpgl/coordinates.h"
#include "quillrip/hpgl/host.h"
#include "quillrip/hpgl/inks.h"
#include "quillrip/hpgl/line_pattern.h"
#include "quillrip/hpgl/pens.h"
#include "quillrip/hpgl/plot_clip.h"
#include "quillrip/hpgl/state.h"
#include "quillrip/hpgl/surface.h"

#include <array>
#include <cstddef>
#include <vector>

namespace quillrip::hpgl {

/// Makes strokes from the pen's way. Connected vectors are one line, so that they join; a line type goes on over
/// them. Finished solid lines that look the same are gathered and drawn together, so end() must come before anything
/// changes that they are made with.
class LinePen {
public:
    LinePen(Surface& surface, const Host& host, State& state, const Coordinates& coordinates, const Pens& pens,
        Inks& inks, PlotClip& clip, WorkMeter& work);

    // The line in progress
    /// The pen, down, goes from one place to another (plotter units). `endsVector` is false for the small steps of
    /// arcs and curves.
    void drawTo(Point from, Point to, bool endsVector);
    /// The pen goes on elsewhere: the next line begins the line type anew.
    void lift();
    /// Draws the line in progress; the next one goes on in the line type.
    void finish();
    /// Hands gathered lines to the page.
    void flush();
    /// finish() and flush().
    void end();
    /// The next line begins the line type anew.
    void restartPattern() { m_phase = 0; }
    void discard(); ///< what is not on the page yet

    bool hasPen() const { return m_pens.hasPen(); }
    /// A line in page space that nothing joins; at least two vertices.
    void drawSeparately(const std::vector<LineVertex>& line);

    // A pen that goes down and up without a move leaves a dot
    void touchDown() { m_hasTouched = true; }
    void forgetTouch() { m_hasTouched = false; }
    void liftFrom(Point plotter);

    // How lines look
    void useDefaults();
    const LineType& type() const { return m_type; }
    /// No device shows that the line has gaps, if it has any.
    bool drawsSolid() const;
    /// LT: the line type begins anew.
    void setType(const LineType& type);
    /// LT without operands. The line type before can be taken up again where the pen still stands.
    void useSolid(Point pen);
    void takeUpFormerType(Point pen); ///< LT99
    /// UL, shares adding up to 1; empty: the built-in one. Index 1 to 8.
    void setPattern(int index, std::vector<double> shares)
    {
        m_patterns.at(static_cast<std::size_t>(index)) = std::move(shares);
    }
    void useBuiltInPatterns() { m_patterns = {}; }
    LineAttributes& attributes() { return m_attributes; }

private:
    void draw(const std::vector<LineVertex>& line, double& phase);
    void gatherSolid(const std::vector<LineVertex>& line);
    void gatherDashes(std::vector<LineVertex> line, double& phase);
    void drawDot(Point page);
    void flushWhereNeeded();
    StrokeStyle strokeStyle() const;
    double patternDecipoints(const PatternLength& length) const;

    Surface& m_surface;
    const Host& m_host;
    State& m_state;
    const Coordinates& m_coordinates;
    const Pens& m_pens;
    Inks& m_inks;
    PlotClip& m_clip;
    WorkMeter& m_work;

    std::vector<LineVertex> m_line; ///< being drawn, page space
    double m_phase = 0; ///< how far into its pattern the line type is, decipoints
    Path m_strokes; ///< finished lines that look the same
    bool m_hasTouched = false; ///< the pen went down and has not moved
    LineType m_type;
    std::array<std::vector<double>, 9> m_patterns;
    LineAttributes m_attributes;
    struct {
        bool isKnown = false;
        LineType type;
        double phase = 0;
        Point pen;
    } m_former; ///< for LT99
};

} // namespace quillrip::hpgl
