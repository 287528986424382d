#include "fuzz/fuzz_page_device.h"
#include "fuzz/token_mutator.h"

#include "quillrip/hpgl/plot_file.h"
#include "quillrip/pcl/plotter_raster.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quillrip;
    const Limits limits = fuzz::smallLimits();
    MemoryInputStream input({ data, size });
    fuzz::NoDiagnostics diagnostics;
    fuzz::NoPages pages;
    ImagePageDevice device(pages, fuzz::smallPages(size), limits);
    FontLibrary& fonts = fuzz::cleanFonts();
    hpgl::PlotFile plot(device, fonts, diagnostics, limits, {}, [&limits](FontLibrary& library, DiagnosticSink& sink) {
        return std::make_unique<pcl::PlotterRaster>(library, sink, limits);
    });
    return static_cast<int>(plot.run(input)) * 0;
}

QUILLRIP_FUZZ_COMMANDS(quillrip::fuzz::kHpglInstructions)
