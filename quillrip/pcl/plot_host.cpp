#include "quillrip/pcl/plot_host.h"

#include "quillrip/base/units.h"
#include "quillrip/pcl/cursor.h"
#include "quillrip/pcl/error_state.h"
#include "quillrip/pcl/font_slots.h"
#include "quillrip/pcl/page.h"
#include "quillrip/pcl/pattern_cache.h"
#include "quillrip/pcl/print_model.h"
#include "quillrip/pcl/state.h"

#include <algorithm>
#include <cstdint>

namespace quillrip::pcl {

namespace {

double decipoints(InternalUnits length) { return static_cast<double>(length) / kUnitsPerDecipoint; }

} // namespace

PlotHost::PlotHost(const Surroundings& surroundings)
    : m_state(surroundings.state)
    , m_page(surroundings.page)
    , m_cursor(surroundings.cursor)
    , m_fonts(surroundings.fonts)
    , m_patterns(surroundings.patterns)
    , m_printModel(surroundings.printModel)
    , m_errors(surroundings.errors)
    , m_limits(surroundings.limits)
{
}

PlotHost::~PlotHost() = default;

hpgl::Interpreter& PlotHost::interpreter()
{
    if (!m_interpreter) {
        hpgl::Host& host = *this;
        m_interpreter = std::make_unique<hpgl::Interpreter>(host, m_fonts.library(), m_errors.sink(), m_limits);
    }
    return *m_interpreter;
}

void PlotHost::enter(bool isPenAtCursor)
{
    m_isOn = true;
    if (!isPenAtCursor)
        return;
    const Matrix toPage = m_state.page.directionToPage(m_state.direction);
    interpreter().setPen(toPage.apply({ static_cast<double>(m_cursor.x()), static_cast<double>(m_cursor.y()) }));
}

PlotHost::End PlotHost::run(InputStream& input)
{
    switch (interpreter().run(input)) {
    case hpgl::Interpreter::End::InputEnded:
        return End::Stays;
    case hpgl::Interpreter::End::EnterPcl:
        m_isOn = false;
        if (interpreter().enterPclValue() & 1) {
            const Matrix toPage = m_state.page.directionToPage(m_state.direction);
            const Point pen = toPage.inverted().apply(interpreter().pen());
            m_cursor.moveToClamped(inUnits(pen.x, 1), inUnits(pen.y, 1));
        }
        return End::Left;
    case hpgl::Interpreter::End::Reset:
        m_isOn = false;
        return End::Reset;
    case hpgl::Interpreter::End::UniversalExit:
        m_isOn = false;
        return End::Left;
    case hpgl::Interpreter::End::Failed:
        break;
    }
    m_errors.fail(interpreter().status());
    return End::Stays;
}

void PlotHost::frameChanged() { interpreter().frameChanged(); }

void PlotHost::setDefaultFrame()
{
    m_state.frame = {};
    if (m_interpreter)
        m_interpreter->frameChanged();
}

void PlotHost::plotSizeChanged() { interpreter().plotSizeChanged(); }

void PlotHost::reset()
{
    m_isOn = false;
    if (m_interpreter)
        m_interpreter->reset();
}

RunStatus PlotHost::beginMark(PageCanvas& canvas)
{
    if (m_page.painterForMark())
        canvas = m_page.canvas();
    return m_errors.status();
}

PageCanvas PlotHost::previewCanvas() const { return m_page.canvas(); }

hpgl::PictureFrame PlotHost::pictureFrame() const
{
    const LogicalPage& page = m_state.page;
    const FrameSettings& settings = m_state.frame;
    const Position anchor = settings.anchor.value_or(Position { 0, kUnitsPerInch / 2 });
    const InternalUnits width = settings.width > 0 ? settings.width : page.width();
    const InternalUnits height
        = settings.height > 0 ? settings.height : std::max<InternalUnits>(page.length() - kUnitsPerInch, kUnitsPerDot);
    const Matrix toPage = page.directionToPage(0);
    const Point corner = toPage.apply({ static_cast<double>(anchor.x), static_cast<double>(anchor.y) });
    const Point clipFrom = toPage.apply({ 0, 0 });
    const Point clipTo = toPage.apply({ static_cast<double>(page.width()), static_cast<double>(page.length()) });
    hpgl::PictureFrame frame;
    frame.left = corner.x;
    frame.top = corner.y;
    frame.width = decipoints(width);
    frame.height = decipoints(height);
    frame.plotWidth = settings.plotWidth * kDecipointsPerInch;
    frame.plotHeight = settings.plotHeight * kDecipointsPerInch;
    frame.clipLeft = clipFrom.x;
    frame.clipTop = clipFrom.y;
    frame.clipRight = clipTo.x;
    frame.clipBottom = clipTo.y;
    return frame;
}

std::size_t PlotHost::paletteSize() const { return m_state.palettes.active().size(); }

Rgb PlotHost::paletteColor(std::size_t index) const
{
    return m_printModel.shown(m_state.palettes.active().color(index));
}

void PlotHost::newPalette(std::size_t size) { m_state.palettes.replaceActive(Palette::pens(size)); }

void PlotHost::resizePalette(std::size_t size)
{
    if (!m_state.palettes.active().isFixed())
        m_state.palettes.edit().resize(size);
}

void PlotHost::setPaletteColor(std::size_t index, Rgb color)
{
    if (!m_state.palettes.active().isFixed())
        m_state.palettes.edit().setColor(index, color);
}

std::uint8_t PlotHost::rasterOperation() const { return m_state.rasterOperation; }

void PlotHost::setRasterOperation(std::uint8_t operation) { m_state.rasterOperation = operation; }

bool PlotHost::isGridCentred() const { return m_state.isGridCentred; }

void PlotHost::setGridCentred(bool isCentred) { m_state.isGridCentred = isCentred; }

std::shared_ptr<const PatternTile> PlotHost::areaPattern(hpgl::AreaPattern kind, int id, const PageCanvas& canvas)
{
    const PatternKind pattern = kind == hpgl::AreaPattern::CrossHatch ? PatternKind::CrossHatch : PatternKind::User;
    const Matrix toDevice = m_state.page.directionToPage(0) * canvas.pageToDevice;
    return m_patterns.makeTile({ pattern, id }, m_state.palettes.active(), 0, toDevice, canvas.resolution);
}

SelectionContext PlotHost::fontContext() const { return m_fonts.context(); }

} // namespace quillrip::pcl
