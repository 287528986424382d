// HP-GL/2 on a PCL page: entry and exit, the picture frame, and what the two languages share.

#include "quillrip/pcl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::pcl {

namespace {

double decipoints(InternalUnits length) { return static_cast<double>(length) / kUnitsPerDecipoint; }

} // namespace

hpgl::Interpreter& Machine::plotter()
{
    if (!m_plotter) {
        hpgl::Host& host = *this;
        m_plotter = std::make_unique<hpgl::Interpreter>(host, m_fonts, m_sink, m_limits);
    }
    return *m_plotter;
}

void Machine::enterPlot(const Command& command)
{
    const int mode = command.value.integer();
    if (mode < -1 || mode > 3)
        return;
    if (m_plotterPage) {
        m_enterPlotValue = mode;
        return;
    }
    m_isPlotting = true;
    if (mode == 1 || mode == 3) {
        const Matrix toPage = m_state.page.directionToPage(m_state.direction);
        plotter().setPen(toPage.apply({ static_cast<double>(m_cursor.x), static_cast<double>(m_cursor.y) }));
    }
}

// Without effect outside HP-GL/2, which takes the command itself.
void Machine::enterPcl(const Command&) { }

void Machine::runPlot(Tokenizer& tokenizer)
{
    tokenizer.abandonSequence();
    if (!m_isInMacro)
        m_offset = tokenizer.stream().offset();
    switch (plotter().run(tokenizer.stream())) {
    case hpgl::Interpreter::End::InputEnded:
        break;
    case hpgl::Interpreter::End::EnterPcl:
        m_isPlotting = false;
        if (plotter().enterPclValue() & 1) {
            const Matrix toPage = m_state.page.directionToPage(m_state.direction);
            const Point pen = toPage.inverted().apply(plotter().pen());
            moveToClamped(inUnits(pen.x, 1), inUnits(pen.y, 1));
        }
        break;
    case hpgl::Interpreter::End::Reset:
        m_isPlotting = false;
        if (m_macroDepth == 0)
            reset();
        break;
    case hpgl::Interpreter::End::UniversalExit:
        m_isPlotting = false; // and the exit itself is the next command
        break;
    case hpgl::Interpreter::End::Failed:
        fail(plotter().status());
        break;
    }
}

void Machine::defaultFrame()
{
    m_state.frame = {};
    if (m_plotter)
        m_plotter->frameChanged();
}

void Machine::setFrameSize(const Command& command)
{
    if (command.value.number < 0 || command.value.number > 32767)
        return;
    (command.terminator == 'X' ? m_state.frame.width : m_state.frame.height)
        = inUnits(command.value.number, kUnitsPerDecipoint);
    plotter().frameChanged();
}

void Machine::setFrameAnchor(const Command& command)
{
    if (command.value.integer() != 0)
        return;
    m_state.frame.anchor = m_state.page.toOrientation(m_cursor, m_state.direction);
    plotter().frameChanged();
}

void Machine::setPlotSize(const Command& command)
{
    if (command.value.number < 0 || command.value.number > 32767)
        return;
    (command.terminator == 'K' ? m_state.frame.plotWidth : m_state.frame.plotHeight) = command.value.number;
    plotter().plotSizeChanged();
}

RunStatus Machine::beginMark(PageCanvas& canvas)
{
    if (painterForMark())
        canvas = m_canvas;
    return m_status;
}

PageCanvas Machine::previewCanvas() const { return canvas(); }

hpgl::PictureFrame Machine::pictureFrame() const
{
    const PageLayout& page = m_state.page;
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
    frame.plotWidth = settings.plotWidth * 720;
    frame.plotHeight = settings.plotHeight * 720;
    frame.clipLeft = clipFrom.x;
    frame.clipTop = clipFrom.y;
    frame.clipRight = clipTo.x;
    frame.clipBottom = clipTo.y;
    return frame;
}

std::size_t Machine::paletteSize() const { return m_state.palettes.active().size(); }

Rgb Machine::paletteColor(std::size_t index) const { return shown(m_state.palettes.active().color(index)); }

void Machine::newPalette(std::size_t size) { m_state.palettes.replaceActive(Palette::pens(size)); }

void Machine::resizePalette(std::size_t size)
{
    if (!m_state.palettes.active().isFixed())
        m_state.palettes.edit().resize(size);
}

void Machine::setPaletteColor(std::size_t index, Rgb color)
{
    if (!m_state.palettes.active().isFixed())
        m_state.palettes.edit().setColor(index, color);
}

std::uint8_t Machine::rasterOperation() const { return m_state.rasterOperation; }

void Machine::setRasterOperation(std::uint8_t operation) { m_state.rasterOperation = operation; }

bool Machine::isGridCentred() const { return m_state.isGridCentred; }

void Machine::setGridCentred(bool isCentred) { m_state.isGridCentred = isCentred; }

std::shared_ptr<const PatternTile> Machine::areaPattern(hpgl::AreaPattern kind, int id, const PageCanvas& canvas)
{
    const PatternKind pattern = kind == hpgl::AreaPattern::CrossHatch ? PatternKind::CrossHatch : PatternKind::User;
    const Matrix toDevice = m_state.page.directionToPage(0) * canvas.pageToDevice;
    return deviceTile({ pattern, id }, 0, toDevice, canvas.resolution);
}

SelectionContext Machine::fontContext() const { return selectionContext(); }

} // namespace quillrip::pcl
