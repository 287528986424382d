#include "quillrip/pcl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::pcl {

namespace {

constexpr int kLargestCount = 65535;
/// No device has more dots to the inch.
constexpr double kLargestResolution = 9600;

} // namespace

void Machine::setRasterResolution(const Command& command)
{
    if (command.value.number < 1)
        return;
    m_state.raster.resolution = std::min(std::trunc(command.value.number), kLargestResolution);
    // Plotters count moves in the raster's dots.
    if (m_environment.isPlotterRaster)
        m_state.unitsPerInch = static_cast<int>(m_state.raster.resolution);
}

void Machine::setPresentation(const Command& command)
{
    const int mode = command.value.integer();
    if (mode == 0 || mode == 3)
        m_state.raster.presentation = mode;
}

void Machine::setSourceHeight(const Command& command)
{
    if (command.value.number >= 0)
        m_state.raster.height = std::min(command.value.integer(), kLargestCount);
}

void Machine::setSourceWidth(const Command& command)
{
    if (command.value.number >= 0)
        m_state.raster.width = std::min(command.value.integer(), kLargestCount);
}

void Machine::setDestinationSize(const Command& command)
{
    if (command.value.number < 0)
        return;
    const InternalUnits size = inUnits(std::min(command.value.number, 32767.0), kUnitsPerDecipoint);
    (command.terminator == 'H' ? m_state.raster.destinationWidth : m_state.raster.destinationHeight) = size;
}

void Machine::setCompression(const Command& command)
{
    if (command.value.number >= 0)
        m_state.raster.compression = command.value.integer();
}

void Machine::configureRasterData(const Command& command)
{
    if (RasterLayout::forComponents(command.data, 1) && RasterLayout::resolutionOf(command.data))
        m_state.raster.componentData.assign(command.data.begin(), command.data.end());
    else
        warn("pcl.raster-configuration", "a raster data configuration that is not understood was skipped");
}

// Rows run along the print direction, or, in presentation mode 3, along the sheet's short edge.
int Machine::rasterDirection() const
{
    if (m_state.raster.presentation == 0)
        return m_state.direction;
    switch (m_state.page.orientation()) {
    case 1:
        return 3;
    case 3:
        return 1;
    default:
        return 0;
    }
}

void Machine::startRaster(const Command& command)
{
    const int mode = command.value.integer();
    if (mode < 0 || mode > 3)
        return;
    const int direction = rasterDirection();
    const PageLayout& page = m_state.page;
    const Position place = page.fromOrientation(page.toOrientation(m_cursor, m_state.direction), direction);
    if (mode & 1)
        m_state.raster.leftMargin = place.x;
    else
        m_state.raster.leftMargin = direction == m_state.direction ? m_state.text.left : 0;
    beginRaster(mode >= 2);
}

void Machine::ensureRaster()
{
    if (!m_raster)
        beginRaster(false);
}

void Machine::beginRaster(bool isScaled)
{
    const RasterSettings& settings = m_state.raster;
    const PageLayout& page = m_state.page;
    RasterSession::Setup setup;
    setup.direction = rasterDirection();
    const Position place = page.fromOrientation(page.toOrientation(m_cursor, m_state.direction), setup.direction);
    setup.origin = { settings.leftMargin, place.y };
    setup.pageEnd = page.reachDown(setup.direction);

    Resolution resolution { settings.resolution, settings.resolution };
    if (!settings.componentData.empty())
        resolution = RasterLayout::resolutionOf(settings.componentData).value_or(resolution);
    setup.pixelWidth = static_cast<double>(kUnitsPerInch) / resolution.x;
    setup.pixelHeight = static_cast<double>(kUnitsPerInch) / resolution.y;
    const InternalUnits room = std::max<InternalUnits>(page.reachRight(setup.direction) - settings.leftMargin, 1);
    const int roomPixels = static_cast<int>(std::ceil(static_cast<double>(room) / setup.pixelWidth - 1e-9));
    int width = settings.width.value_or(std::max(1, roomPixels));
    setup.height = settings.height;
    setup.hasDeclaredArea = settings.width && settings.height;
    if (isScaled && setup.hasDeclaredArea && *settings.width > 0 && *settings.height > 0) {
        double across = static_cast<double>(settings.destinationWidth) / width;
        double down = static_cast<double>(settings.destinationHeight) / *settings.height;
        if (settings.destinationWidth == 0 && settings.destinationHeight == 0) {
            // Nothing said: as large as the page allows.
            across = static_cast<double>(room) / width;
            down = static_cast<double>(std::max<InternalUnits>(setup.pageEnd - place.y, 1)) / *settings.height;
            across = down = std::min(across, down);
        }
        setup.pixelWidth = across > 0 ? across : down;
        setup.pixelHeight = down > 0 ? down : across;
    }
    if (width == 0) {
        // All is clipped, but rows still count.
        width = 1;
        setup.pageEnd = setup.origin.y;
    }
    if (!settings.componentData.empty()) {
        if (auto layout = RasterLayout::forComponents(settings.componentData, width))
            setup.layout = std::move(*layout);
        setup.pixelWidth /= setup.layout.columnsPerUnit();
        setup.pixelHeight /= setup.layout.rowsPerSet();
        if (setup.height)
            *setup.height *= setup.layout.rowsPerSet();
    } else {
        setup.layout = RasterLayout::forPalette(m_state.palettes.active(), width, m_state.isMonochrome);
    }
    // The canvas may be there only from the first row on, but its geometry is known before.
    setup.unitsToDevice = unitsToDevice(setup.direction);
    setup.paint = paintState(m_state.pattern);
    setup.needsPixels = !m_plotterPage || m_plotterPage->needsPixels();
    m_raster = std::make_unique<RasterSession>(std::move(setup), [this] { return painterForMark(); });
}

void Machine::finishRaster()
{
    if (!m_raster)
        return;
    const PageLayout& page = m_state.page;
    const Position place = page.toOrientation(m_raster->finish(), m_raster->direction());
    if (m_plotterPage && m_raster->hasRows())
        m_plotterPage->covered(m_raster->area());
    m_raster.reset();
    const Position cursor = page.fromOrientation(place, m_state.direction);
    moveTo(cursor.x, cursor.y);
}

void Machine::endRaster(const Command& command)
{
    // The raster itself has been ended already, as by any command that is no part of it.
    if (command.terminator == 'C') {
        m_state.raster.compression = 0;
        m_state.raster.leftMargin = 0;
    }
}

void Machine::moveRasterRows(const Command& command)
{
    const int rows = std::min(command.value.integer(), 32767);
    if (rows < 0 || (rows == 0 && !m_raster))
        return;
    ensureRaster();
    m_raster->skipRows(rows);
}

void Machine::transferPlane(const Command& command)
{
    ensureRaster();
    report(m_raster->transferPlane(command.data, m_state.raster.compression));
}

void Machine::transferRow(const Command& command)
{
    ensureRaster();
    const Palette& palette = m_state.palettes.active();
    if (palette.isPens() && m_state.raster.componentData.empty() && !m_raster->hasData() && !command.data.empty()) {
        // Pens are there without a raster having been thought of: rows of one transfer have one plane.
        m_raster->replaceLayout(RasterLayout::forPalette(palette.firstTwo(), m_raster->width(), m_state.isMonochrome));
    }
    report(m_raster->transferRow(command.data, m_state.raster.compression));
}

void Machine::report(RasterSession::Outcome outcome)
{
    switch (outcome) {
    case RasterSession::Outcome::UnknownMethod:
        warn("pcl.raster-method",
            "raster compression method " + std::to_string(m_state.raster.compression) + " is not known, rows skipped");
        break;
    case RasterSession::Outcome::BadBlock:
        warn("pcl.raster-block", "an adaptive compression block is cut short or holds an unknown record");
        break;
    default:
        break;
    }
}

} // namespace quillrip::pcl
