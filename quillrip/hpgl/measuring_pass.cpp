#include "quillrip/hpgl/measuring_pass.h"

#include <utility>

namespace quillrip::hpgl {

namespace {

std::optional<Point> sizeOfPlotSize(const std::vector<double>& operands, const Environment& environment)
{
    if (operands.empty() || !(operands[0] > 0))
        return std::nullopt;
    if (operands.size() >= 2 && operands[1] > 0)
        return Point { operands[0], operands[1] };
    PlotFacts facts;
    facts.plotLength = operands[0];
    const PictureFrame frame = plotPage(facts, environment).frame;
    return Point { frame.plotWidth / kDecipointsPerPlotterUnit, frame.plotHeight / kDecipointsPerPlotterUnit };
}

} // namespace

MeasuringPass::MeasuringPass(FontLibrary& fonts, const Limits& limits, const Environment& environment,
    const RasterLanguageFactory& rasterLanguage)
    : m_environment(environment)
    , m_size(assumedPaper(environment))
    , m_rasterLanguage(rasterLanguage ? rasterLanguage(fonts, m_sink) : nullptr)
    , m_machine(*this, m_surface, fonts, m_sink, limits, this, m_rasterLanguage.get())
{
}

std::vector<PlotFacts> MeasuringPass::run(InputStream& input)
{
    // Marks are noted in the system that they were made in; which one is known from the machine.
    m_surface.onMark = [this](const Rect& bounds) { mark(bounds); };
    // However the reading ended, the pages up to there are known.
    static_cast<void>(m_machine.run(input));
    endPage();
    return std::move(m_pages);
}

PictureFrame MeasuringPass::pictureFrame() const
{
    PictureFrame frame;
    frame.left = frame.top = 0;
    frame.width = m_size.x * kDecipointsPerPlotterUnit;
    frame.height = m_size.y * kDecipointsPerPlotterUnit;
    frame.cutsAtFrame = false;
    constexpr double kEndless = 1e12;
    frame.clipLeft = frame.clipTop = -kEndless;
    frame.clipRight = frame.clipBottom = kEndless;
    return frame;
}

bool MeasuringPass::plotSize(const std::vector<double>& operands)
{
    if (m_facts.isDrawn)
        return false;
    m_facts.plotLength = m_facts.plotWidth = std::nullopt;
    m_size = assumedPaper(m_environment);
    if (const auto size = sizeOfPlotSize(operands, m_environment)) {
        m_facts.plotLength = size->x;
        m_facts.plotWidth = size->y;
        m_size = *size;
    }
    return true;
}

void MeasuringPass::plotWindow(bool isInputWindow, Point corner1, Point corner2)
{
    if (!isInputWindow)
        m_hasOwnPoints = true;
    if (m_facts.isDrawn)
        return;
    Rect rect = Rect::nothing();
    rect.include(corner1);
    rect.include(corner2);
    (isInputWindow ? m_facts.inputWindow : m_facts.inputPoints) = rect;
    Rect unrotated = Rect::nothing();
    unrotated.include(withoutRotation(coordinates().toPage(corner1)));
    unrotated.include(withoutRotation(coordinates().toPage(corner2)));
    (isInputWindow ? m_unrotatedWindow : m_unrotatedPoints) = unrotated;
}

void MeasuringPass::scaled()
{
    if (!m_hasOwnPoints)
        m_facts.usesDefaultPoints = true;
}

void MeasuringPass::advancePage(bool isForced)
{
    if (m_facts.isDrawn || isForced)
        endPage();
}

void MeasuringPass::endPage()
{
    if (m_facts.hasMixedTurns || m_facts.hasRaster)
        m_facts.extent = m_unrotated;
    PlotFacts page = m_facts;
    if (page.hasRaster) {
        page.inputWindow = m_unrotatedWindow;
        page.inputPoints = m_unrotatedPoints;
    }
    m_pages.push_back(page);
    // PS stays in force until the next; what the state still holds is known to the next page too.
    PlotFacts next;
    next.plotLength = m_facts.plotLength;
    next.plotWidth = m_facts.plotWidth;
    next.inputWindow = m_facts.inputWindow;
    next.inputPoints = m_facts.inputPoints;
    next.usesDefaultPoints = m_facts.usesDefaultPoints;
    m_facts = next;
    m_unrotated = Rect::nothing();
}

void MeasuringPass::mark(const Rect& bounds)
{
    const int turns = coordinates().quarterTurns();
    if (!m_facts.isDrawn)
        m_facts.quarterTurns = turns;
    else if (m_facts.quarterTurns != turns)
        m_facts.hasMixedTurns = true;
    m_facts.isDrawn = true;
    const Matrix toPlotter = coordinates().plotterToPage().inverted();
    for (const Point corner : { Point { bounds.left, bounds.top }, Point { bounds.right, bounds.bottom } }) {
        m_facts.extent.include(toPlotter.apply(corner));
        m_unrotated.include(withoutRotation(corner));
    }
}

void MeasuringPass::rasterCovered(const Rect& raster)
{
    m_facts.isDrawn = true;
    m_facts.hasRaster = true;
    m_unrotated.include(withoutRotation({ raster.left, raster.top }));
    m_unrotated.include(withoutRotation({ raster.right, raster.bottom }));
}

/// Page space to plotter units at RO0.
Point MeasuringPass::withoutRotation(Point page) const
{
    return { page.x / kDecipointsPerPlotterUnit, m_size.y - page.y / kDecipointsPerPlotterUnit };
}

} // namespace quillrip::hpgl
