#pragma once

#include "quillrip/fonts/font_library.h"
#include "quillrip/job/image_page_device.h"

namespace quillrip::fuzz {

class NoDiagnostics final : public DiagnosticSink {
public:
    void report(const Diagnostic&) override { }
};

/// Pages that nobody looks at.
class NoPages final : public PageSink {
public:
    bool addPage(PageBitmap&&) override { return true; }
    std::string reason() const override { return {}; }
};

/// Small enough for a hundred runs a second under the sanitizers.
inline Limits smallLimits()
{
    Limits limits;
    limits.pageBytes = 1 << 20;
    limits.pages = 8;
    limits.fontBytes = limits.patternBytes = limits.macroBytes = 1 << 18;
    limits.pathPoints = 1 << 14;
    limits.imageRowBytes = 1 << 16;
    WorkBudget budget;
    budget.page = budget.job = 10'000'000;
    budget.perPage = 0;
    limits.work = std::make_shared<WorkMeter>(budget);
    return limits;
}

/// Bilevel, grey or colour by the input's length, so that all three are reached.
inline PageSettings smallPages(std::size_t size)
{
    PageSettings settings;
    settings.resolution = { 36, 36 };
    settings.format = size % 3 == 0 ? PixelFormat::Bilevel : size % 3 == 1 ? PixelFormat::Gray8 : PixelFormat::Rgb24;
    return settings;
}

/// The one library of all runs, as a job finds it. Opening the faces and making their glyphs anew for each run would
/// take half of the time; what a run can add to the library goes.
inline FontLibrary& cleanFonts()
{
    static FontLibrary fonts(smallLimits());
    fonts.softFonts().removeAll();
    fonts.removeAllSymbolSets();
    return fonts;
}

} // namespace quillrip::fuzz
