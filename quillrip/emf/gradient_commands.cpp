// GRADIENTFILL: rectangles and triangles whose colour runs from corner to corner.

#include "quillrip/emf/handlers.h"
#include "quillrip/emf/machine.h"
#include "quillrip/emf/record.h"
#include "quillrip/raster/compose/color_source.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>

namespace quillrip::emf {

namespace {

constexpr std::size_t kVertices = 36;
constexpr std::size_t kVertexSize = 16;

struct Vertex {
    Point at; ///< logical
    std::array<double, 3> color; ///< 0 to 255
};

Vertex vertexAt(const Record& record, std::size_t index)
{
    const std::size_t at = kVertices + index * kVertexSize;
    Vertex vertex { record.point(at), {} };
    for (std::size_t i = 0; i < 3; ++i)
        vertex.color[i] = record.u16(at + 8 + 2 * i) / 256.0;
    return vertex;
}

/// A colour that changes evenly over the plane: each channel is a plane itself.
class PlaneColors final : public ColorSource {
public:
    /// Three points of device space and their colours; false where they lie in one line.
    bool set(const std::array<Point, 3>& at, const std::array<std::array<double, 3>, 3>& colors)
    {
        const Point u = at[1] - at[0];
        const Point v = at[2] - at[0];
        const double area = u.x * v.y - u.y * v.x;
        if (!std::isfinite(area) || area == 0)
            return false;
        for (std::size_t i = 0; i < 3; ++i) {
            const double du = colors[1][i] - colors[0][i];
            const double dv = colors[2][i] - colors[0][i];
            Plane& plane = m_planes[i];
            plane.x = (du * v.y - dv * u.y) / area;
            plane.y = (dv * u.x - du * v.x) / area;
            plane.origin = colors[0][i] - plane.x * at[0].x - plane.y * at[0].y;
            plane.least = std::min({ colors[0][i], colors[1][i], colors[2][i] });
            plane.most = std::max({ colors[0][i], colors[1][i], colors[2][i] });
        }
        return true;
    }

    void row(int y, int left, int right, Rgba* pixels) const override
    {
        for (int x = left; x < right; ++x, ++pixels) {
            const Point centre { x + 0.5, y + 0.5 };
            *pixels = { m_planes[0].at(centre), m_planes[1].at(centre), m_planes[2].at(centre), 255 };
        }
    }

private:
    struct Plane {
        double origin = 0;
        double x = 0;
        double y = 0;
        double least = 0;
        double most = 0;

        std::uint8_t at(Point point) const
        {
            return static_cast<std::uint8_t>(std::clamp(origin + x * point.x + y * point.y, least, most));
        }
    };

    std::array<Plane, 3> m_planes;
};

void paintMesh(Machine& machine, const Path& devicePath, std::shared_ptr<PlaneColors> colors)
{
    Canvas& canvas = machine.canvas();
    PaintState state = PaintMaker::solid({});
    state.texture.colors = std::move(colors);
    canvas.fillRegion(canvas.regionOf(devicePath, FillRule::NonZero), state);
}

void paintRectangle(Machine& machine, const Vertex& first, const Vertex& second, bool isHorizontal)
{
    const Matrix toDevice = machine.canvas().logicalToDevice();
    Path path;
    path.rectangle(first.at.x, first.at.y, second.at.x, second.at.y);
    // Across the gradient any third corner has the first one's colour.
    const Point along = isHorizontal ? Point { second.at.x, first.at.y } : Point { first.at.x, second.at.y };
    const Point across = isHorizontal ? Point { first.at.x, second.at.y } : Point { second.at.x, first.at.y };
    auto colors = std::make_shared<PlaneColors>();
    if (colors->set({ toDevice.apply(first.at), toDevice.apply(along), toDevice.apply(across) },
            { first.color, second.color, first.color }))
        paintMesh(machine, path.transformed(toDevice), colors);
}

void paintTriangle(Machine& machine, const Vertex& a, const Vertex& b, const Vertex& c)
{
    const Matrix toDevice = machine.canvas().logicalToDevice();
    const std::array<Point, 3> corners { toDevice.apply(a.at), toDevice.apply(b.at), toDevice.apply(c.at) };
    Path path;
    path.moveTo(corners[0]);
    path.lineTo(corners[1]);
    path.lineTo(corners[2]);
    path.close();
    auto colors = std::make_shared<PlaneColors>();
    if (colors->set(corners, { a.color, b.color, c.color }))
        paintMesh(machine, path, colors);
}

} // namespace

void gradientFill(Machine& machine, const Record& record)
{
    enum : std::uint32_t { kHorizontal = 0, kVertical = 1, kTriangles = 2 };
    const std::uint64_t vertices = record.u32(24);
    const std::uint64_t meshes = record.u32(28);
    const std::uint32_t mode = record.u32(32);
    const std::uint64_t corners = mode == kTriangles ? 3 : 2;
    const std::uint64_t indices = kVertices + vertices * kVertexSize;
    if (mode > kTriangles || !record.has(indices, meshes * corners * 4))
        return machine.warn("emf.gradient", "a gradient whose corners go beyond its record, left out");
    for (std::uint64_t mesh = 0; mesh < meshes; ++mesh) {
        std::array<Vertex, 3> corner {};
        bool isGood = true;
        for (std::uint64_t i = 0; i < corners; ++i) {
            const std::uint32_t index = record.u32(static_cast<std::size_t>(indices + (mesh * corners + i) * 4));
            isGood = isGood && index < vertices;
            if (isGood)
                corner[static_cast<std::size_t>(i)] = vertexAt(record, index);
        }
        if (!isGood)
            continue;
        if (mode == kTriangles)
            paintTriangle(machine, corner[0], corner[1], corner[2]);
        else
            paintRectangle(machine, corner[0], corner[1], mode == kHorizontal);
    }
}

} // namespace quillrip::emf
