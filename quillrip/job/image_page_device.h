#pragma once

#include "quillrip/base/limits.h"
#include "quillrip/job/page_layout.h"
#include "quillrip/job/page_sink.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillrip {

/// The page device of a conversion: gives every sheet a bitmap and hands it on when it is full.
class ImagePageDevice final : public PageDevice {
public:
    /// All references must outlive the device.
    ImagePageDevice(PageSink& sink, const PageSettings& settings, const Limits& limits);

    PageCanvas preview(const SheetRequest& sheet) const override;
    RunStatus beginPage(const SheetRequest& sheet, PageCanvas& canvas) override;
    RunStatus endPage() override;

    /// A page that did not come from an interpreter. `layout` was made for it by layoutOf().
    RunStatus addFinishedPage(PageBitmap&& page);
    /// A white bitmap for a layout; null, with reason(), above a limit.
    PageBitmap bitmapFor(const PageLayout& layout);

    /// From here on pages count from 1 again, and only these are delivered.
    void beginJob(std::uint64_t firstPage, std::uint64_t lastPage);
    /// The printer was told to print without colour.
    void setGray(bool isGray) { m_isGray = isGray; }
    /// Drops a page that was begun and not ended.
    void dropOpenPage();

    const PageSettings& settings() const { return m_settings; }
    /// Whole pages delivered.
    int pageCount() const { return m_delivered; }
    /// Why the last call was not Done: a sentence without full stop.
    const std::string& reason() const { return m_reason; }

private:
    /// The part of the bitmap, from its top on, that becomes the image on one of the sheets.
    struct Window {
        int left;
        int width;
        int height;
    };

    PageLayout planWindows(const SheetRequest& sheet);
    Window chooseWindow() const;

    PageSink& m_sink;
    PageSettings m_settings;
    Limits m_limits;
    std::shared_ptr<PagePool> m_pool = std::make_shared<PagePool>();
    PageBitmap m_page;
    std::vector<Window> m_windows; ///< the requested sheet, then its candidates; of the open page
    int m_overrun = 0; ///< device pixels below the requested sheet that may be lost
    std::optional<Painter> m_painter;
    std::uint64_t m_firstPage = 1;
    std::uint64_t m_lastPage = UINT64_MAX;
    std::uint64_t m_pageOfJob = 0;
    int m_delivered = 0;
    bool m_isGray = false;
    std::string m_reason;
};

} // namespace quillrip
