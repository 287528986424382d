#include "fuzz/fuzz_page_device.h"

#include "quillrip/job/job_runner.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quillrip;
    MemoryInputStream input({ data, size });
    fuzz::NoDiagnostics diagnostics;
    fuzz::NoPages pages;
    ConversionObserver observer;
    runJob(input, pages, fuzz::smallPages(size), fuzz::smallLimits(), diagnostics, {}, observer);
    return 0;
}
