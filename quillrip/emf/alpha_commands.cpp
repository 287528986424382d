// Bitmaps that show what lies below: blended, or with one colour left out.

#include "quillrip/emf/blit.h"
#include "quillrip/emf/handlers.h"
#include "quillrip/emf/machine.h"
#include "quillrip/emf/record.h"

#include <algorithm>
#include <cstdint>

namespace quillrip::emf {

namespace {

constexpr std::size_t kBlend = 40;

Pixels withAlpha(Pixels&& pixels)
{
    if (pixels.format == Pixels::Format::Rgba32)
        return std::move(pixels);
    const Pixels opaque = std::move(pixels).toRgb();
    Pixels result;
    result.format = Pixels::Format::Rgba32;
    result.width = opaque.width;
    result.height = opaque.height;
    result.isBottomUp = opaque.isBottomUp;
    result.stride = static_cast<std::size_t>(opaque.width) * 4;
    result.bytes.resize(result.stride * static_cast<std::size_t>(opaque.height));
    for (int y = 0; y < opaque.height; ++y) {
        const std::uint8_t* from = opaque.row(y);
        std::uint8_t* to = result.row(y);
        for (int x = 0; x < opaque.width; ++x, from += 3, to += 4) {
            std::copy(from, from + 3, to);
            to[3] = 255;
        }
    }
    return result;
}

/// Colours that were multiplied by their alpha, divided by it again.
void unmultiply(Pixels& pixels)
{
    for (std::size_t at = 0; at + 3 < pixels.bytes.size(); at += 4) {
        const unsigned alpha = pixels.bytes[at + 3];
        if (alpha == 0 || alpha == 255)
            continue;
        for (std::size_t i = at; i < at + 3; ++i)
            pixels.bytes[i] = static_cast<std::uint8_t>(std::min(255u, (pixels.bytes[i] * 255u + alpha / 2) / alpha));
    }
}

PaintState sourceState()
{
    constexpr std::uint8_t kCopySource = 0xCC;
    PaintState state = PaintMaker::solid({});
    state.rop = kCopySource;
    return state;
}

} // namespace

void alphaBlend(Machine& machine, const Record& record)
{
    constexpr std::uint8_t kPixelAlpha = 1;
    Blit blit = readBlit(machine, record, true);
    if (blit.pixels.isNull())
        return;
    const bool hasPixelAlpha = record.u8(kBlend + 3) == kPixelAlpha && blit.pixels.format == Pixels::Format::Rgba32;
    if (hasPixelAlpha)
        unmultiply(blit.pixels);
    else
        blit.pixels = std::move(blit.pixels).toRgb();
    blit.isSmooth = machine.dc().stretchMode == StretchMode::Halftone;
    PaintState state = sourceState();
    state.opacity = record.u8(kBlend + 2);
    draw(machine.canvas(), blit, state);
}

void transparentBlt(Machine& machine, const Record& record)
{
    Blit blit = readBlit(machine, record, true);
    if (blit.pixels.isNull())
        return;
    const Rgb left = colorOf(record.u32(kBlend), machine.dc());
    blit.pixels = withAlpha(std::move(blit.pixels));
    for (int y = 0; y < blit.pixels.height; ++y) {
        std::uint8_t* pixel = blit.pixels.row(y);
        for (int x = 0; x < blit.pixels.width; ++x, pixel += 4)
            pixel[3] = Rgb { pixel[0], pixel[1], pixel[2] } == left ? 0 : 255;
    }
    // Mixed colours would be neither the one that is left out nor one of the picture's.
    blit.dropsPixels = true;
    draw(machine.canvas(), blit, sourceState());
}

} // namespace quillrip::emf
