// Bitmaps within metafiles. The first two bytes choose what the device context adds, the third where the pixels begin.

#include "fuzz/fuzz_page_device.h"

#include "quillrip/emf/image_rows.h"

#include <algorithm>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quillrip;
    if (size < 3)
        return 0;
    const std::vector<Rgb> palette { { 255, 0, 0 }, { 0, 255, 0 } };
    emf::DibContext context;
    context.usage = static_cast<emf::ColorUsage>(data[0] % 3);
    context.palette = data[0] < 128 ? &palette : nullptr;
    context.storedRows = data[1] < 16 ? data[1] : -1;
    const ByteView bytes(data + 3, size - 3);
    const std::size_t split = std::min<std::size_t>(data[2], bytes.size);
    std::string problem;
    // Larger ones cost time and show nothing that these do not.
    constexpr int longestSide = 1024;
    WorkMeter work(*fuzz::smallLimits().work);
    const auto rows = emf::openDib(bytes.sub(0, split), bytes.sub(split), context, work, problem);
    if (!rows || rows->shape().width > longestSide || rows->shape().height > longestSide)
        return 0;
    const emf::Pixels pixels = emf::pixelsOf(*rows);
    if (!pixels.isNull())
        return pixels.color(pixels.width - 1, pixels.height - 1).red * 0;
    return 0;
}
