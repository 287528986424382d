#include "quillrip/raster/paths/stroke_area.h"

#include "quillrip/raster/paths/stroke_line.h"
#include "quillrip/raster/paths/stroke_outline.h"

#include <algorithm>
#include <cstdint>

namespace quillrip {

namespace {

class AreaBuilder final : public StrokeLineSink, private PieceSink {
public:
    AreaBuilder(const Matrix& userToDevice, const Pen& pen, const StrokeStyle& style)
        : m_userToDevice(userToDevice)
        , m_pen(pen)
        , m_outline(style, *this)
    {
    }

    void line(StrokeLine& line) override
    {
        for (StrokeLine::Vertex& vertex : line.vertices)
            vertex.at = m_userToDevice.apply(vertex.at);
        line.dotDirection = m_userToDevice.applyVector(line.dotDirection);
        m_outline.outline(line, m_pen);
    }

    Path take() { return std::move(m_area); }

private:
    void piece(const Point* points, std::size_t count) override
    {
        double twiceArea = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const Point a = points[i];
            const Point b = points[(i + 1) % count];
            twiceArea += a.x * b.y - a.y * b.x;
        }
        const bool turnsBack = twiceArea < 0;
        for (std::size_t i = 0; i < count; ++i) {
            const Point at = points[turnsBack ? count - 1 - i : i];
            if (i == 0)
                m_area.moveTo(at);
            else
                m_area.lineTo(at);
        }
        if (count > 0)
            m_area.close();
    }

    Matrix m_userToDevice;
    Pen m_pen;
    StrokeOutline m_outline;
    Path m_area;
};

} // namespace

Path strokeArea(
    const Path& userPath, const Matrix& userToDevice, const StrokeStyle& style, const PixelRect& area, WorkMeter& work)
{
    constexpr std::uint64_t unitsPerPoint = 100;
    work.charge(Work::Lines, unitsPerPoint * userPath.pointCount());
    const Pen pen(style.width, userToDevice);
    AreaBuilder builder(userToDevice, pen, style);
    if (!Dasher::canDash(style, userToDevice)) {
        forEachStrokeLine(userPath, userToDevice, builder);
        return builder.take();
    }
    Dasher dasher(style, userToDevice, area, std::max(pen.deviceWidth(), pen.deviceHeight()), work, builder);
    forEachStrokeLine(userPath, userToDevice, dasher);
    return builder.take();
}

} // namespace quillrip
