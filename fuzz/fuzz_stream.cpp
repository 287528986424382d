#include "fuzz/fuzz_page_device.h"

#include "quillrip/hpgl/recognition.h"
#include "quillrip/stream/containers.h"
#include "quillrip/stream/job_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quillrip;
    MemoryInputStream input({ data, size });
    fuzz::NoDiagnostics diagnostics;
    const stream::Container container = stream::unwrap(input);
    stream::JobReader reader(container.job(input), diagnostics, &hpgl::looksLikePlot);
    while (reader.next()) {
        // Something is always taken of a part, or the same would be found again.
        container.job(input).skip(1);
        reader.skipRest();
    }
    return 0;
}
