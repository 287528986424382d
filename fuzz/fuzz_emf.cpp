// Spool files of Windows and single metafiles: the container, all records, EMF+ and embedded fonts.

#include "fuzz/fuzz_page_device.h"
#include "fuzz/token_mutator.h"

#include "quillrip/emf/interpreter.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quillrip;
    const Limits limits = fuzz::smallLimits();
    MemoryInputStream input({ data, size });
    fuzz::NoDiagnostics diagnostics;
    fuzz::NoPages pages;
    ImagePageDevice device(pages, fuzz::smallPages(size), limits);
    emf::Interpreter interpreter(device, diagnostics, limits);
    return static_cast<int>(interpreter.run(input)) * 0;
}

QUILLRIP_FUZZ_COMMANDS(
    quillrip::fuzz::isSpoolFile(data, size) ? quillrip::fuzz::kSpoolRecords : quillrip::fuzz::kEmfRecords)
