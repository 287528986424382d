#pragma once

#include "quillrip/raster/page_device.h"
#include "tests/support/text_art.h"

#include <memory>
#include <string>
#include <vector>

namespace quillrip::test {

/// A page device that keeps what is printed, so that a test can look at it. Pages on which a sheet that is not named is
/// overrun keep all that was drawn.
class MemoryPageDevice : public PageDevice {
public:
    MemoryPageDevice(PixelFormat format, Resolution resolution);
    /// The same resolution both ways.
    MemoryPageDevice(PixelFormat format, double dotsPerInch);
    ~MemoryPageDevice() override;

    PageCanvas preview(const SheetRequest& sheet) const override;
    RunStatus beginPage(const SheetRequest& sheet, PageCanvas& canvas) override;
    RunStatus endPage() override;

    /// Finished pages, in order.
    const std::vector<PageBitmap>& pages() const { return m_pages; }
    /// What each finished page was started with.
    const std::vector<SheetRequest>& sheets() const { return m_sheets; }
    bool isPageOpen() const { return m_painter != nullptr; }

    std::size_t blackPixelCount(std::size_t page) const;
    std::string textArt(std::size_t page, const PixelRect& rect) const;

    /// What painting and pages are charged to.
    void useMeter(std::shared_ptr<WorkMeter> work) { m_work = std::move(work); }
    /// From the call that starts page `count` on, beginPage() answers LimitExceeded.
    void refuseAfter(std::size_t count) { m_pageLimit = count; }

private:
    PixelFormat m_format;
    Resolution m_resolution;
    std::size_t m_pageLimit = SIZE_MAX;
    std::vector<PageBitmap> m_pages;
    std::vector<SheetRequest> m_sheets;
    PageBitmap m_open; ///< as long as the longest candidate for its sheet
    int m_height = 0; ///< of the sheet itself, device pixels
    std::unique_ptr<Painter> m_painter;
    std::shared_ptr<WorkMeter> m_work = std::make_shared<WorkMeter>();
};

} // namespace quillrip::test
