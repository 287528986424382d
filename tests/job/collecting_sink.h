#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/job/job_runner.h"

#include <string>
#include <vector>

namespace quillrip::test {

/// Keeps all pages, diagnostics and names of languages.
class CollectingSink final : public PageSink, public DiagnosticSink, public ConversionObserver {
public:
    bool addPage(PageBitmap&& page) override
    {
        if (static_cast<int>(pages.size()) == failsAfter)
            return false;
        pages.push_back(std::move(page));
        return true;
    }
    std::string reason() const override { return "the disk is full"; }
    void report(const Diagnostic& diagnostic) override { diagnostics.push_back(diagnostic); }

    void partFound(const std::string& language) override { languages.push_back(language); }

    std::vector<PageBitmap> pages;
    std::vector<std::string> languages;
    std::vector<Diagnostic> diagnostics;
    int failsAfter = -1;
};

struct Run {
    ConversionResult result;
    CollectingSink sink;
};

inline Run runBytes(const std::string& bytes, const PageSettings& settings = {}, const DocumentPrograms& programs = {},
    const Limits& limits = {}, int failsAfter = -1)
{
    Run run;
    run.sink.failsAfter = failsAfter;
    MemoryInputStream input({ reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size() });
    run.result = runJob(input, run.sink, settings, limits, run.sink, programs, run.sink);
    return run;
}

/// Pixels with any ink within a rectangle.
inline int inkCount(const PageBitmap& page, const PixelRect& rect)
{
    int count = 0;
    const PixelRect inside = rect.intersected(page.bounds());
    for (int y = inside.top; y < inside.bottom; ++y) {
        for (int x = inside.left; x < inside.right; ++x)
            count += page.pixel(x, y) != Rgb { 255, 255, 255 };
    }
    return count;
}

inline int inkCount(const PageBitmap& page) { return inkCount(page, page.bounds()); }

} // namespace quillrip::test
