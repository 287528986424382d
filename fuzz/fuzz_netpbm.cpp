#include "fuzz/fuzz_page_device.h"

#include "quillrip/job/netpbm_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quillrip;
    MemoryInputStream input({ data, size });
    NetpbmReader reader(input);
    NetpbmHeader header;
    while (reader.nextPage(header)) {
        if (header.width > 4096)
            break;
        PageBitmap page(header.format, 100, 100, {});
        const bool isWhole = header.format == PixelFormat::Bilevel && size % 2 == 0
            ? reader.readTurned(page, 1 + static_cast<int>(size % 4 / 2) * 2, -7)
            : reader.readUpright(page, static_cast<int>(size % 9) - 4);
        if (!isWhole)
            break;
    }
    return 0;
}
