#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/base/work_meter.h"
#include "quillrip/raster/paths/path.h"
#include "quillrip/raster/paths/stroke_style.h"

#include <vector>

namespace quillrip {

/// A piece of a stroke's way without a break: straight segments between points that all differ from their neighbours.
struct StrokeLine {
    struct Vertex {
        Point at;
        bool isSmooth = false; ///< inside a curve: no join of the style's, the outline just goes on
    };

    std::vector<Vertex> vertices; ///< a single vertex is a dot
    bool isClosed = false; ///< the last vertex is joined to the first
    bool isDash = false;
    Point dotDirection { 1, 0 }; ///< which way a dot's caps look

    void clear()
    {
        vertices.clear();
        isClosed = false;
        isDash = false;
        dotDirection = { 1, 0 };
    }
    /// Skips a point that equals the last one.
    void add(Point at, bool isSmooth = false)
    {
        if (vertices.empty() || vertices.back().at != at)
            vertices.push_back({ at, isSmooth });
    }
};

/// Takes stroke lines in user space. It may change the line it is given.
class StrokeLineSink {
public:
    virtual ~StrokeLineSink() = default;
    virtual void line(StrokeLine& line) = 0;
    /// False: what follows would be left out, so it need not be made.
    virtual bool wantsMore() const { return true; }
};

/// The lines of a path, with curves as chords that are straight to the eye in device space. Points that are no numbers
/// are skipped; a subpath of a mere move makes no line.
void forEachStrokeLine(const Path& userPath, const Matrix& userToDevice, StrokeLineSink& sink);

/// Cuts lines into dashes.
class Dasher final : public StrokeLineSink {
public:
    /// Whether the style has dashes that can be drawn at all.
    static bool canDash(const StrokeStyle& style, const Matrix& userToDevice);

    /// `area`: where marks can be seen. `penWidth`: the widest it gets, in device pixels.
    /// Every dash is charged; once the work is exhausted, the rest of a line is left out.
    Dasher(const StrokeStyle& style, const Matrix& userToDevice, const PixelRect& area, double penWidth,
        WorkMeter& work, StrokeLineSink& sink);

    void line(StrokeLine& line) override;
    bool wantsMore() const override { return m_sink.wantsMore(); }

private:
    struct Phase {
        std::size_t index = 0; ///< even: on
        double left = 0; ///< of this dash or gap
        bool isOn() const { return index % 2 == 0; }
    };

    Phase phaseAt(double distance) const;
    void advance(Phase& phase) const;
    void dashSegment(Point from, Point to, bool endIsSmooth);
    void finishDash();

    std::vector<double> m_lengths; ///< an even number of them
    double m_period = 0;
    double m_offset;
    Matrix m_userToDevice;
    PixelRect m_area;
    double m_margin;
    double m_closedGap; ///< gaps up to this, in user units, do not show
    WorkMeter& m_work;
    StrokeLineSink& m_sink;
    Phase m_phase;
    double m_travelled = 0;
    std::size_t m_budget; ///< dashes still allowed
    bool m_isFirstDash = true;
    bool m_keepFirst = false; ///< the first dash of a closed line waits to be joined to the last
    StrokeLine m_dash;
    StrokeLine m_first;
};

} // namespace quillrip
