#include "tests/support/memory_page_device.h"

#include <algorithm>
#include <cmath>

namespace quillrip::test {

namespace {

constexpr double kDecipointsPerInch = 720;

int pixelsOf(double decipoints, double dotsPerInch)
{
    const double pixels = decipoints * dotsPerInch / kDecipointsPerInch;
    return static_cast<int>(std::lround(std::clamp(pixels, 1.0, 100000.0)));
}

} // namespace

MemoryPageDevice::MemoryPageDevice(PixelFormat format, Resolution resolution)
    : m_format(format)
    , m_resolution(resolution)
{
}

MemoryPageDevice::MemoryPageDevice(PixelFormat format, double dotsPerInch)
    : MemoryPageDevice(format, Resolution { dotsPerInch, dotsPerInch })
{
}

MemoryPageDevice::~MemoryPageDevice() = default;

PageCanvas MemoryPageDevice::preview(const SheetRequest&) const
{
    PageCanvas canvas;
    canvas.pageToDevice = Matrix::scaling(m_resolution.x / kDecipointsPerInch, m_resolution.y / kDecipointsPerInch);
    canvas.format = m_format;
    canvas.resolution = m_resolution;
    return canvas;
}

RunStatus MemoryPageDevice::beginPage(const SheetRequest& sheet, PageCanvas& canvas)
{
    if (m_pages.size() >= m_pageLimit)
        return RunStatus::LimitExceeded;
    const bool isTurned = (sheet.orientation & 1) != 0;
    const double across = isTurned ? sheet.height : sheet.width;
    const double down = isTurned ? sheet.width : sheet.height;
    double longest = down;
    for (const SheetCandidate& candidate : sheet.candidates)
        longest = std::max(longest, candidate.height);
    m_height = pixelsOf(down, m_resolution.y);
    m_open = PageBitmap(m_format, pixelsOf(across, m_resolution.x), pixelsOf(longest, m_resolution.y), m_resolution);
    if (m_open.isNull())
        return RunStatus::LimitExceeded;
    m_painter = std::make_unique<Painter>(m_open, m_work);
    m_sheets.push_back(sheet);
    canvas = preview(sheet);
    canvas.painter = m_painter.get();
    return RunStatus::Done;
}

RunStatus MemoryPageDevice::endPage()
{
    m_painter.reset();
    m_work->pageEnded();
    if (!m_open.hasInk({ 0, m_height, m_open.width(), m_open.height() }))
        m_open = std::move(m_open).cropped(0, m_open.width(), m_height);
    m_pages.push_back(std::move(m_open));
    m_open = PageBitmap();
    return RunStatus::Done;
}

std::size_t MemoryPageDevice::blackPixelCount(std::size_t page) const
{
    return test::blackPixelCount(m_pages.at(page));
}

std::string MemoryPageDevice::textArt(std::size_t page, const PixelRect& rect) const
{
    return test::textArt(m_pages.at(page), rect);
}

} // namespace quillrip::test
