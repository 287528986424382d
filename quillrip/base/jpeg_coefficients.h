#pragma once

#include <cstdint>
#include <cstdio>

extern "C" {
#include <jpeglib.h>
}

namespace quillrip {

/// Bytes that libjpeg keeps to decode a file whose header it has read: for one of several scans, as progressive ones
/// (ITU-T Recommendation T.81, G) are, the coefficients of the whole picture. Others are decoded a few rows at a time.
inline std::uint64_t coefficientBytes(jpeg_decompress_struct& info)
{
    if (!jpeg_has_multiple_scans(&info))
        return 0;
    const auto upTo = [](std::uint64_t count, int step) {
        const auto unit = static_cast<std::uint64_t>(step);
        return (count + unit - 1) / unit * unit;
    };
    std::uint64_t blocks = 0;
    for (int i = 0; i < info.num_components; ++i) {
        const jpeg_component_info& component = info.comp_info[i];
        blocks += upTo(component.width_in_blocks, component.h_samp_factor)
            * upTo(component.height_in_blocks, component.v_samp_factor);
    }
    return blocks * sizeof(JBLOCK);
}

} // namespace quillrip
