#include "quillrip/pcl/raster_session.h"

#include "quillrip/pcl/row_decoder.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace quillrip::pcl {

namespace {

constexpr int kAdaptive = 5;
constexpr int kCountedReplacement = 1030;
constexpr int kNearLossless = 10;

/// What is meant as a whole number, or as a number of few decimals, is made one again: the painter copies pixels where
/// scale factors are exactly whole, and rounds halves up.
double cleaned(double value) { return std::floor(value * 65536 + 0.5) / 65536; }

double cleanedScale(double value)
{
    const double whole = std::round(value);
    return std::abs(value - whole) < 1e-9 ? whole : value;
}

} // namespace

RasterSession::RasterSession(Setup setup, std::function<Painter*()> painter)
    : m_setup(std::move(setup))
    , m_painter(std::move(painter))
{
    makePlanes();
}

RasterSession::~RasterSession() = default;

void RasterSession::makePlanes()
{
    m_planes.clear();
    for (const RasterLayout::Transfer& transfer : m_setup.layout.transfers())
        m_planes.emplace_back(m_setup.needsPixels ? transfer.rowBytes : 0, std::uint8_t { 0 });
}

void RasterSession::replaceLayout(RasterLayout layout)
{
    stopImage();
    m_setup.layout = std::move(layout);
    m_nextTransfer = 0;
    makePlanes();
}

Rect RasterSession::area() const
{
    const auto decipoints = [](double units) { return units / kUnitsPerDecipoint; };
    const auto rows = static_cast<double>(m_setup.height ? std::min<std::int64_t>(m_row, *m_setup.height) : m_row);
    const double left = decipoints(static_cast<double>(m_setup.origin.x));
    const double top = decipoints(static_cast<double>(m_setup.origin.y));
    return { left, top, left + decipoints(width() * m_setup.pixelWidth), top + decipoints(rows * m_setup.pixelHeight) };
}

Position RasterSession::cursor() const
{
    return { m_setup.origin.x, m_setup.origin.y + std::llround(static_cast<double>(m_row) * m_setup.pixelHeight) };
}

void RasterSession::clearSeeds()
{
    for (std::vector<std::uint8_t>& plane : m_planes)
        std::fill(plane.begin(), plane.end(), std::uint8_t { 0 });
    m_seedsAreFresh = true;
    m_nextTransfer = 0;
}

RasterSession::Outcome RasterSession::decodePlane(ByteView data, int method)
{
    m_hasBegun = true;
    if (m_nextTransfer >= m_planes.size())
        return Outcome::Fine;
    std::vector<std::uint8_t>& plane = m_planes[m_nextTransfer];
    const int forced = m_setup.layout.transfers()[m_nextTransfer].method;
    ++m_nextTransfer;
    m_hasData = m_hasData || !data.empty();
    if (forced >= 0)
        method = forced;
    // The method of photographs starts from white paper.
    if (method == kNearLossless && m_seedsAreFresh)
        std::fill(plane.begin(), plane.end(), std::uint8_t { 255 });
    return decodeRow(method, data, plane) ? Outcome::Fine : Outcome::UnknownMethod;
}

// A row is as wide as the raster, whatever was sent for it.
bool RasterSession::hasWorkForRow()
{
    std::size_t bytes = 0;
    for (const std::vector<std::uint8_t>& plane : m_planes)
        bytes += plane.size();
    return !m_setup.work || m_setup.work->allows(Work::Decoding, 2 * bytes);
}

RasterSession::Outcome RasterSession::transferPlane(ByteView data, int method) { return decodePlane(data, method); }

RasterSession::Outcome RasterSession::transferRow(ByteView data, int method)
{
    if ((method == kAdaptive || method == kCountedReplacement) && m_planes.size() == 1) {
        m_hasBegun = true;
        m_hasData = m_hasData || !data.empty();
        const auto decode = method == kAdaptive ? decodeAdaptive : decodeCountedReplacement;
        const bool isWhole = decode(data, m_planes[0], [this](int count) {
            m_seedsAreFresh = false;
            emitRow(composed(0), count);
            return hasWorkForRow();
        });
        return isWhole ? Outcome::Fine : Outcome::BadBlock;
    }
    if (!hasWorkForRow())
        return Outcome::Fine; // the interpreter ends the job
    const Outcome outcome = decodePlane(data, method);
    if (outcome == Outcome::UnknownMethod) {
        // Nobody knows how many rows these would have been.
        m_nextTransfer = 0;
        return outcome;
    }
    // Planes that were not sent for this row count as empty transfers: white, or, where rows tell only what differs,
    // the row above once more.
    while (m_nextTransfer < m_planes.size())
        decodePlane({}, method);
    m_seedsAreFresh = false;
    m_nextTransfer = 0;
    emitSet();
    return outcome;
}

void RasterSession::emitSet()
{
    for (int subRow = 0; subRow < m_setup.layout.rowsPerSet(); ++subRow)
        emitRow(composed(subRow), 1);
}

const std::uint8_t* RasterSession::composed(int subRow)
{
    return m_setup.needsPixels ? m_setup.layout.compose(m_planes, subRow, m_pixels) : nullptr;
}

int RasterSession::rowsUntilPageEnd() const
{
    const double top = static_cast<double>(m_setup.origin.y) + static_cast<double>(m_row) * m_setup.pixelHeight;
    const double rows = std::ceil((static_cast<double>(m_setup.pageEnd) - top) / m_setup.pixelHeight);
    return static_cast<int>(std::clamp(rows, 0.0, 1e6));
}

void RasterSession::emitRow(const std::uint8_t* pixels, int count)
{
    m_hasRows = m_hasRows || count > 0;
    if (!m_setup.needsPixels) {
        m_row += count;
        return;
    }
    int visible = std::min(count, rowsUntilPageEnd());
    if (m_setup.height)
        visible = static_cast<int>(std::clamp<std::int64_t>(*m_setup.height - m_row, 0, visible));
    if (visible > 0 && !m_imageStarted)
        startImage();
    if (m_image) {
        const std::size_t bytes = m_setup.layout.format() == ImageFormat::Mono
            ? (static_cast<std::size_t>(m_setup.layout.width()) + 7) / 8
            : static_cast<std::size_t>(m_setup.layout.width()) * 3;
        const std::uint8_t white = m_setup.layout.format() == ImageFormat::Mono ? 0 : 255;
        if (std::all_of(pixels, pixels + bytes, [white](std::uint8_t byte) { return byte == white; })) {
            m_image->blankRows(visible);
        } else {
            m_image->rows(pixels, visible);
        }
    }
    m_row += count;
}

bool RasterSession::zeroRowsLeaveMarks() const
{
    return m_setup.hasDeclaredArea && (!m_setup.paint.sourceTransparent || !m_setup.layout.zeroIsWhite());
}

void RasterSession::emitZeroRows(int count) { emitRow(composed(0), count); }

void RasterSession::skipRows(int count)
{
    clearSeeds();
    if (count <= 0)
        return;
    count *= m_setup.layout.rowsPerSet();
    if (zeroRowsLeaveMarks()) {
        emitZeroRows(count);
        return;
    }
    // Nothing is drawn there, so the image may begin anew below.
    stopImage();
    m_row += count;
}

void RasterSession::takeSeeds(RasterLayout::Planes seeds)
{
    const bool fits = std::equal(seeds.begin(), seeds.end(), m_planes.begin(), m_planes.end(),
        [](const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b) { return a.size() == b.size(); });
    if (!fits)
        return;
    m_planes = std::move(seeds);
    m_seedsAreFresh = false;
}

Position RasterSession::interrupt()
{
    stopImage();
    return cursor();
}

Position RasterSession::finish()
{
    if (m_nextTransfer > 0) {
        // A row whose last plane never came.
        m_nextTransfer = 0;
    }
    if (m_setup.height && m_row < *m_setup.height) {
        clearSeeds();
        if (zeroRowsLeaveMarks())
            emitZeroRows(static_cast<int>(*m_setup.height - m_row));
        m_row = *m_setup.height;
    }
    stopImage();
    return cursor();
}

void RasterSession::startImage()
{
    m_imageStarted = true;
    Painter* painter = m_painter();
    if (!painter)
        return;
    ImageGeometry geometry;
    geometry.format = m_setup.layout.format();
    geometry.width = m_setup.layout.width();
    const double top = static_cast<double>(m_setup.origin.y) + static_cast<double>(m_row) * m_setup.pixelHeight;
    const Matrix placed = Matrix::scaling(m_setup.pixelWidth, m_setup.pixelHeight)
        * Matrix::translation(static_cast<double>(m_setup.origin.x), top) * m_setup.unitsToDevice;
    geometry.imageToDevice = { cleanedScale(placed.a), cleanedScale(placed.b), cleanedScale(placed.c),
        cleanedScale(placed.d), cleaned(placed.e), cleaned(placed.f) };
    m_image = painter->beginImage(geometry, m_setup.paint);
}

void RasterSession::stopImage()
{
    if (m_image)
        m_image->finish();
    m_image.reset();
    m_imageStarted = false;
}

} // namespace quillrip::pcl
