#include "tests/hpgl/plot_sheet.h"

#include "quillrip/base/input_stream.h"
#include "quillrip/raster/compose/area_patterns.h"

#include <algorithm>
#include <cmath>

namespace quillrip::test {

namespace {

constexpr double kDpi = 101.6;
constexpr int kPixels = 102;

} // namespace

PlotSheet::PlotSheet(PixelFormat format)
    : m_format(format)
    , m_page(format, kPixels, kPixels, { kDpi, kDpi })
    , m_interpreter(*this, m_fonts, m_diagnostics, Limits {})
{
    frame.left = frame.top = 0;
    frame.width = frame.height = 720;
    frame.clipLeft = frame.clipTop = 0;
    frame.clipRight = frame.clipBottom = 720;
}

hpgl::Interpreter::End PlotSheet::run(const std::string& commands)
{
    MemoryInputStream input({ reinterpret_cast<const std::uint8_t*>(commands.data()), commands.size() });
    return m_interpreter.run(input);
}

PageCanvas PlotSheet::previewCanvas() const
{
    PageCanvas canvas;
    canvas.pageToDevice = Matrix::scaling(kDpi / 720, kDpi / 720);
    canvas.format = m_format;
    canvas.resolution = { kDpi, kDpi };
    return canvas;
}

RunStatus PlotSheet::beginMark(PageCanvas& canvas)
{
    if (!m_painter)
        m_painter = std::make_unique<Painter>(m_page);
    canvas = previewCanvas();
    canvas.painter = m_painter.get();
    return RunStatus::Done;
}

std::shared_ptr<const PatternTile> PlotSheet::areaPattern(hpgl::AreaPattern kind, int id, const PageCanvas&)
{
    if (kind == hpgl::AreaPattern::User)
        return id == 7 ? userPattern : nullptr;
    return std::make_shared<const PatternTile>(hatchTile(id));
}

Rgb PlotSheet::color(double x, double y)
{
    const int column = static_cast<int>(std::floor(x / 10));
    const int row = static_cast<int>(std::floor(101.6 - y / 10));
    if (column < 0 || column >= kPixels || row < 0 || row >= kPixels)
        return kWhite;
    return m_page.pixel(column, row);
}

bool PlotSheet::hasInk(double x, double y) { return color(x, y) != kWhite; }

bool PlotSheet::hasLine(double x, double y)
{
    for (const double dy : { -10.0, 0.0, 10.0 }) {
        for (const double dx : { -10.0, 0.0, 10.0 }) {
            if (hasInk(x + dx, y + dy))
                return true;
        }
    }
    return false;
}

int PlotSheet::inkCount(double left, double bottom, double right, double top)
{
    int count = 0;
    for (double y = bottom + 5; y < top; y += 10) {
        for (double x = left + 5; x < right; x += 10)
            count += hasInk(x, y) ? 1 : 0;
    }
    return count;
}

int PlotSheet::inkCount() { return inkCount(0, 0, 1020, 1016); }

} // namespace quillrip::test
