#include "fuzz/fuzz_page_device.h"
#include "fuzz/token_mutator.h"

#include "quillrip/pcl/interpreter.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quillrip;
    const Limits limits = fuzz::smallLimits();
    MemoryInputStream input({ data, size });
    fuzz::NoDiagnostics diagnostics;
    fuzz::NoPages pages;
    ImagePageDevice device(pages, fuzz::smallPages(size), limits);
    FontLibrary& fonts = fuzz::cleanFonts();
    pcl::Interpreter interpreter(device, diagnostics, limits, fonts, {});
    while (interpreter.run(input) == pcl::Interpreter::End::UniversalExit)
        input.skip(sizeof "\x1b%-12345X" - 1);
    return static_cast<int>(interpreter.finish()) * 0;
}

QUILLRIP_FUZZ_COMMANDS(quillrip::fuzz::kPclCommands)
