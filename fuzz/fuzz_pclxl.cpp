#include "fuzz/fuzz_page_device.h"
#include "fuzz/token_mutator.h"

#include "quillrip/pclxl/interpreter.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quillrip;
    const Limits limits = fuzz::smallLimits();
    MemoryInputStream input({ data, size });
    fuzz::NoDiagnostics diagnostics;
    fuzz::NoPages pages;
    ImagePageDevice device(pages, fuzz::smallPages(size), limits);
    FontLibrary& fonts = fuzz::cleanFonts();
    pclxl::Interpreter interpreter(device, diagnostics, limits, fonts, {});
    interpreter.run(input);
    return 0;
}

QUILLRIP_FUZZ_COMMANDS(quillrip::fuzz::kPclXlTags)
