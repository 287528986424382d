#include "quillrip/pcl/current_raster.h"

#include "quillrip/pcl/cursor.h"
#include "quillrip/pcl/error_state.h"
#include "quillrip/pcl/page.h"
#include "quillrip/pcl/placed_block.h"
#include "quillrip/pcl/plot_visit.h"
#include "quillrip/pcl/print_model.h"
#include "quillrip/pcl/state.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace quillrip::pcl {

CurrentRaster::CurrentRaster(const Surroundings& surroundings)
    : m_state(surroundings.state)
    , m_environment(surroundings.environment)
    , m_page(surroundings.page)
    , m_cursor(surroundings.cursor)
    , m_printModel(surroundings.printModel)
    , m_visit(surroundings.visit)
    , m_errors(surroundings.errors)
    , m_work(surroundings.work)
{
}

// Rows run along the print direction, or, in presentation mode 3, along the sheet's short edge.
int CurrentRaster::rowDirection() const
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

// Ink-jets that are told not to skip the perforation keep no margin above raster, unless the job sets one; the earliest
// of them know no top margin at all.
void CurrentRaster::dropDefaultTopMargin()
{
    const bool isMarginless = !m_state.skipsPerforation || isOfEarliestInkjets(m_state.raster.resolution);
    const bool isDropped = m_environment.family == PrinterFamily::Inkjet && isMarginless && !m_state.isTopMarginSet
        && m_state.direction == 0 && !m_page.isMarked();
    if (!isDropped)
        return;
    const InternalUnits top = std::min(m_state.text.top, m_cursor.y());
    m_state.text.top = 0;
    m_cursor.moveTo(m_cursor.x(), m_cursor.y() - top);
}

// Models of the raster language differ in what they keep free at the left: an eighth of an inch or a quarter. Their
// drivers send rasters as wide as can be printed, which tells.
void CurrentRaster::centreOnSheet()
{
    constexpr InternalUnits kWideMargin = kUnitsPerInch / 4;
    constexpr InternalUnits kAllowance = kUnitsPerInch / 100;
    if (m_environment.family != PrinterFamily::InkjetRaster || !m_state.raster.width)
        return;
    const InternalUnits margin = (inUnits(m_state.page.size().width, kUnitsPerDecipoint) - declaredWidth()) / 2;
    if (std::abs(margin - kWideMargin) > kAllowance)
        return;
    m_state.page.setLeftOffset(margin);
    m_page.geometryChanged();
}

// Of sheets that have no number some drivers tell only the length, in whole lines. A raster that fills the length fills
// the width between the margins as well, which tells the width.
void CurrentRaster::cutSheetToRaster()
{
    constexpr double kFilled = 0.75;
    const RasterSettings& settings = m_state.raster;
    if (m_state.customLength == 0 || !settings.width || !settings.height)
        return;
    const InternalUnits rows = inUnits(*settings.height, static_cast<double>(kUnitsPerInch) / resolution().y);
    if (static_cast<double>(rows) < kFilled * static_cast<double>(m_state.customLength))
        return;
    const LogicalPage unnamed(
        customPageSize(m_environment.customWidth, m_environment.customLength), 0, m_environment.family);
    const InternalUnits width = declaredWidth() + 2 * unnamed.leftOffset();
    const std::optional<PageSize> named = findPageSizeByMeasure(width, m_state.customLength);
    const PageSize size = named ? *named
                                : customPageSize(static_cast<double>(width) / kUnitsPerDecipoint,
                                    static_cast<double>(m_state.customLength) / kUnitsPerDecipoint);
    if (!isPossible(size))
        return;
    m_state.page = LogicalPage(size, 0, m_environment.family);
    m_state.text
        = { 0, std::min(m_state.text.top, m_state.page.length()), m_state.page.width(), m_state.page.length() };
    m_page.geometryChanged();
}

// What a raster tells of its sheet, as long as nothing is on it.
void CurrentRaster::prepareSheet()
{
    if (!m_page.isOpen() && m_state.page.orientation() == 0) {
        cutSheetToRaster();
        centreOnSheet();
    }
    dropDefaultTopMargin();
}

// Method 1030 comes from drivers that send nothing but rows: of the job language's resolution, from the corner of what
// their printers print on.
bool CurrentRaster::isBare() const { return m_state.raster.compression == 1030; }

void CurrentRaster::moveToBareOrigin()
{
    constexpr Position kOrigin { kUnitsPerInch / 9, kUnitsPerInch * 2 / 9 };
    const Position place
        = m_state.page.fromOrientation({ kOrigin.x - m_state.page.leftOffset(), kOrigin.y }, m_state.direction);
    m_state.raster.leftMargin = place.x;
    m_cursor.moveTo(place.x, place.y);
}

Resolution CurrentRaster::resolution() const
{
    const RasterSettings& settings = m_state.raster;
    if (isBare()) {
        constexpr double kUsual = 600;
        const double dots = m_environment.resolution > 0 ? m_environment.resolution : kUsual;
        return { dots, dots };
    }
    const Resolution plain { settings.resolution, settings.resolution };
    if (settings.componentData.empty())
        return plain;
    return RasterLayout::resolutionOf(settings.componentData, settings.unitResolution).value_or(plain);
}

InternalUnits CurrentRaster::declaredWidth() const
{
    return inUnits(m_state.raster.width.value_or(0), static_cast<double>(kUnitsPerInch) / resolution().x);
}

void CurrentRaster::start(int mode)
{
    prepareSheet();
    const int direction = rowDirection();
    const LogicalPage& page = m_state.page;
    const Position place = page.fromOrientation(page.toOrientation(m_cursor.position(), m_state.direction), direction);
    if (mode & 1)
        m_state.raster.leftMargin = place.x;
    else
        m_state.raster.leftMargin = direction == m_state.direction ? m_state.text.left : 0;
    m_isScaled = mode >= 2;
    begin();
}

void CurrentRaster::ensureOpen()
{
    if (m_session)
        return;
    prepareSheet();
    if (isBare() && !m_page.isMarked())
        moveToBareOrigin();
    m_isScaled = false;
    RasterLayout::Planes seeds = std::move(m_interrupted);
    begin();
    m_session->takeSeeds(std::move(seeds));
}

void CurrentRaster::settingsChanged()
{
    const int skipped = m_rowsSkipped;
    begin();
    skipRows(skipped);
}

void CurrentRaster::begin()
{
    m_rowsSkipped = 0;
    m_interrupted.clear();
    const RasterSettings& settings = m_state.raster;
    const LogicalPage& page = m_state.page;
    RasterSession::Setup setup;
    setup.direction = rowDirection();
    const Position place
        = page.fromOrientation(page.toOrientation(m_cursor.position(), m_state.direction), setup.direction);
    setup.origin = { settings.leftMargin, place.y };
    setup.pageEnd = page.reachDown(setup.direction);

    const Resolution dots = resolution();
    setup.pixelWidth = static_cast<double>(kUnitsPerInch) / dots.x;
    setup.pixelHeight = static_cast<double>(kUnitsPerInch) / dots.y;
    // Raster goes on beyond the logical page; but not where pixels that were never sent would be black.
    const bool zeroIsWhite = !settings.componentData.empty()
        || RasterLayout::forPalette(m_state.palettes.active(), 1, m_state.isMonochrome).zeroIsWhite();
    const InternalUnits end = zeroIsWhite ? page.reachRight(setup.direction) : page.width(setup.direction);
    const InternalUnits room = std::max<InternalUnits>(end - settings.leftMargin, 1);
    const int roomPixels = static_cast<int>(std::ceil(static_cast<double>(room) / setup.pixelWidth - 1e-9));
    int width = settings.width.value_or(std::max(1, roomPixels));
    // Drivers can declare widths that no sheet has; what lies beyond it, sent or not, is not seen.
    const InternalUnits sheetEnd = page.reachRight(setup.direction) - settings.leftMargin;
    if (!m_isScaled && !m_visit.isOn() && width * setup.pixelWidth > static_cast<double>(sheetEnd) + kUnitsPerInch)
        width = std::max(1, roomPixels);
    setup.height = settings.height;
    setup.hasDeclaredArea = settings.width && settings.height;
    if (m_isScaled && setup.hasDeclaredArea && *settings.width > 0 && *settings.height > 0) {
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
        if (auto layout = RasterLayout::forComponents(settings.componentData, width, settings.unitResolution))
            setup.layout = std::move(*layout);
        setup.pixelWidth /= setup.layout.columnsPerUnit();
        setup.pixelHeight /= setup.layout.rowsPerSet();
        if (setup.height)
            *setup.height *= setup.layout.rowsPerSet();
    } else {
        setup.layout = RasterLayout::forPalette(m_state.palettes.active(), width, m_state.isMonochrome);
    }
    m_session = sessionOf(std::move(setup));
}

std::unique_ptr<RasterSession> CurrentRaster::sessionOf(RasterSession::Setup setup)
{
    // The canvas may be there only from the first row on, but its geometry is known before.
    setup.unitsToDevice = m_page.unitsToDevice(setup.direction);
    setup.paint = m_printModel.paintState(m_state.pattern);
    setup.needsPixels = m_visit.needsPixels();
    setup.work = &m_work;
    return std::make_unique<RasterSession>(std::move(setup), [this] { return m_page.painterForMark(); });
}

// Its place counts from a corner that the driver supposes near the sheet's, wherever the cursor is.
void CurrentRaster::paintBlock(ByteView data)
{
    constexpr Position kOrigin { kUnitsPerInch / 20, kUnitsPerInch * 3 / 20 };
    const auto block = PlacedBlock::read(data);
    if (!block) {
        report(RasterSession::Outcome::BadBlock);
        return;
    }
    RasterSession::Setup setup;
    setup.pixelWidth = kUnitsPerInch / 1200.0;
    setup.pixelHeight = kUnitsPerInch / 600.0;
    setup.origin = { kOrigin.x - m_state.page.leftOffset() + std::llround(block->left() * setup.pixelWidth),
        kOrigin.y + std::llround(block->top() * setup.pixelHeight) };
    setup.pageEnd = m_state.page.reachDown(setup.direction);
    setup.layout = RasterLayout::forPalette(m_state.palettes.active(), block->width(), m_state.isMonochrome);
    const std::unique_ptr<RasterSession> session = sessionOf(std::move(setup));
    const bool isWhole = block->decode([&](ByteView row) {
        session->transferRow(row, 0);
        return !m_work.isExhausted();
    });
    session->finish();
    if (!isWhole)
        report(RasterSession::Outcome::BadBlock);
}

void CurrentRaster::finish()
{
    m_interrupted.clear();
    if (m_session)
        close(m_session->finish());
}

void CurrentRaster::interrupt()
{
    if (!m_session)
        return;
    m_interrupted = m_session->seeds();
    close(m_session->interrupt());
}

// `end` counts in the raster's axes.
void CurrentRaster::close(Position end)
{
    const LogicalPage& page = m_state.page;
    const Position place = page.toOrientation(end, m_session->direction());
    if (m_session->hasRows())
        m_visit.covered(m_session->area());
    m_session.reset();
    const Position cursor = page.fromOrientation(place, m_state.direction);
    m_cursor.moveTo(cursor.x, cursor.y);
}

void CurrentRaster::skipRows(int rows)
{
    if (rows < 0 || (rows == 0 && !m_session))
        return;
    ensureOpen();
    m_session->skipRows(rows);
    m_rowsSkipped += rows;
}

void CurrentRaster::transferPlane(ByteView data)
{
    ensureOpen();
    report(m_session->transferPlane(data, m_state.raster.compression));
}

void CurrentRaster::transferRow(ByteView data)
{
    constexpr int kPlacedBlocks = 1027;
    if (m_state.raster.compression == kPlacedBlocks) {
        paintBlock(data);
        return;
    }
    ensureOpen();
    const Palette& palette = m_state.palettes.active();
    if (palette.isPens() && m_state.raster.componentData.empty() && !m_session->hasData() && !data.empty()) {
        // Pens are there without a raster having been thought of: rows of one transfer have one plane.
        m_session->replaceLayout(
            RasterLayout::forPalette(palette.firstTwo(), m_session->width(), m_state.isMonochrome));
    }
    report(m_session->transferRow(data, m_state.raster.compression));
}

void CurrentRaster::report(RasterSession::Outcome outcome)
{
    switch (outcome) {
    case RasterSession::Outcome::UnknownMethod:
        m_errors.warn("pcl.raster-method",
            "raster compression method " + std::to_string(m_state.raster.compression) + " is not known, rows skipped");
        break;
    case RasterSession::Outcome::BadBlock:
        m_errors.warn("pcl.raster-block", "a block of raster rows is cut short or holds an unknown record");
        break;
    default:
        break;
    }
}

} // namespace quillrip::pcl
