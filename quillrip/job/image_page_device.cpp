#include "quillrip/job/image_page_device.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace quillrip {

namespace {

// What a bitmap's coordinates can hold with room for sums of them.
constexpr double kLongestEdge = 1 << 28;

// Drivers and scanned pages overrun the sheet they mean by as much as a printer leaves white at its edge.
constexpr double kHarmlessOverrun = 180; // decipoints

/// Of an edge that has not been refused yet, and may be longer than an int can say.
int wholePixels(double edge) { return edge < kLongestEdge ? static_cast<int>(edge) : static_cast<int>(kLongestEdge); }

void removeColour(PageBitmap& page)
{
    for (int y = 0; y < page.height(); ++y) {
        const PageBitmap::Extent extent = page.extent(y);
        if (extent.empty())
            continue;
        std::uint8_t* row = page.row(y);
        for (int x = extent.left; x < extent.right; ++x) {
            std::uint8_t* pixel = row + 3 * static_cast<std::size_t>(x);
            // Ink instead of light: the luminance of complements is the complement of the luminance.
            const std::uint8_t ink = luminance({ pixel[0], pixel[1], pixel[2] });
            pixel[0] = pixel[1] = pixel[2] = ink;
        }
    }
}

} // namespace

ImagePageDevice::ImagePageDevice(PageSink& sink, const PageSettings& settings, const Limits& limits)
    : m_sink(sink)
    , m_settings(settings)
    , m_limits(limits)
{
}

PageCanvas ImagePageDevice::preview(const SheetRequest& sheet) const
{
    const PageLayout layout = layoutOf(m_settings, sheet);
    return { nullptr, layout.pageToDevice, layout.format, layout.pageResolution };
}

PageBitmap ImagePageDevice::bitmapFor(const PageLayout& layout)
{
    const double rowBytes = std::ceil(layout.width * bitsPerPixel(layout.format) / 64) * 8;
    if (!(layout.width < kLongestEdge) || !(layout.height < kLongestEdge)
        || rowBytes * layout.height > static_cast<double>(m_limits.pageBytes)) {
        m_reason = "a page needs more than " + std::to_string(m_limits.pageBytes >> 20)
            + " MiB of memory at this resolution and depth";
        return {};
    }
    PageBitmap page(
        layout.format, static_cast<int>(layout.width), static_cast<int>(layout.height), layout.imageResolution, m_pool);
    if (page.isNull())
        m_reason = "there is not enough memory for a page";
    return page;
}

RunStatus ImagePageDevice::beginPage(const SheetRequest& sheet, PageCanvas& canvas)
{
    dropOpenPage();
    if (m_pageOfJob >= m_limits.pages || m_delivered >= static_cast<int>(m_limits.pages)) {
        m_reason = "the job has more than " + std::to_string(m_limits.pages) + " pages";
        return RunStatus::LimitExceeded;
    }
    m_page = bitmapFor(planWindows(sheet));
    if (m_page.isNull() && m_windows.size() > 1) {
        m_windows.resize(1);
        m_reason.clear();
        m_page = bitmapFor(layoutOf(m_settings, sheet));
    }
    if (m_page.isNull())
        return RunStatus::LimitExceeded;
    m_painter.emplace(m_page, m_limits.work);
    canvas = preview(sheet);
    canvas.painter = &*m_painter;
    return RunStatus::Done;
}

/// The sheet's layout, made as long as the longest candidate.
PageLayout ImagePageDevice::planWindows(const SheetRequest& sheet)
{
    PageLayout layout = layoutOf(m_settings, sheet);
    m_windows.assign(1, { 0, wholePixels(layout.width), wholePixels(layout.height) });
    m_overrun = static_cast<int>(std::lround(kHarmlessOverrun * layout.pageToDevice.d));
    const PageLayout requested = layout;
    for (const SheetCandidate& candidate : sheet.candidates) {
        SheetRequest other = sheet;
        other.width = candidate.width;
        other.height = candidate.height;
        const PageLayout longer = layoutOf(m_settings, other);
        const Matrix& was = requested.pageToDevice;
        const Matrix& is = longer.pageToDevice;
        // Where the image's size is given, another sheet means another scale.
        const bool isSameScale = was.a == is.a && was.b == is.b && was.c == is.c && was.d == is.d;
        if (!isSameScale || longer.height > kLongestEdge)
            continue;
        const double left = was.a * candidate.left + was.e - is.e;
        m_windows.push_back(
            { static_cast<int>(std::lround(left)), wholePixels(longer.width), wholePixels(longer.height) });
        layout.height = std::max(layout.height, longer.height);
    }
    return layout;
}

ImagePageDevice::Window ImagePageDevice::chooseWindow() const
{
    const Window& requested = m_windows.front();
    const int end = m_page.height();
    if (!m_page.hasInk({ 0, requested.height + m_overrun, m_page.width(), end }))
        return requested;
    for (const Window& window : m_windows) {
        const bool isWhole = !m_page.hasInk({ 0, 0, window.left, end })
            && !m_page.hasInk({ window.left + window.width, 0, m_page.width(), end })
            && !m_page.hasInk({ 0, window.height, m_page.width(), end });
        if (isWhole)
            return window;
    }
    return m_windows.back();
}

RunStatus ImagePageDevice::endPage()
{
    if (m_page.isNull())
        return RunStatus::Done;
    m_painter.reset();
    if (m_limits.work->isExhausted()) {
        m_reason = m_limits.work->reason();
        return RunStatus::LimitExceeded;
    }
    if (m_windows.size() > 1) {
        const Window window = chooseWindow();
        m_page = std::move(m_page).cropped(window.left, window.width, window.height);
        if (m_page.isNull()) {
            m_reason = "there is not enough memory for a page";
            return RunStatus::LimitExceeded;
        }
    }
    return addFinishedPage(std::move(m_page));
}

RunStatus ImagePageDevice::addFinishedPage(PageBitmap&& page)
{
    PageBitmap own = std::move(page);
    m_limits.work->pageEnded();
    ++m_pageOfJob;
    if (m_pageOfJob < m_firstPage || m_pageOfJob > m_lastPage)
        return RunStatus::Done;
    if (m_delivered >= static_cast<int>(m_limits.pages)) {
        m_reason = "the job has more than " + std::to_string(m_limits.pages) + " pages";
        return RunStatus::LimitExceeded;
    }
    if (m_isGray && own.format() == PixelFormat::Rgb24)
        removeColour(own);
    if (!m_sink.addPage(std::move(own))) {
        m_reason = m_sink.reason();
        return RunStatus::OutputFailed;
    }
    ++m_delivered;
    return RunStatus::Done;
}

void ImagePageDevice::beginJob(std::uint64_t firstPage, std::uint64_t lastPage)
{
    m_firstPage = firstPage;
    m_lastPage = lastPage;
    m_pageOfJob = 0;
}

void ImagePageDevice::dropOpenPage()
{
    m_painter.reset();
    m_page = PageBitmap();
}

} // namespace quillrip
