// Bitmaps that show what lies below: blended, or with one colour left out.

#include "quillrip/emf/blit.h"
#include "quillrip/emf/handlers.h"
#include "quillrip/emf/machine.h"
#include "quillrip/emf/record.h"

#include <cstdint>

namespace quillrip::emf {

namespace {

constexpr std::size_t kBlend = 40;

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
    if (blit.picture.isNull())
        return;
    const bool hasPixelAlpha
        = record.u8(kBlend + 3) == kPixelAlpha && blit.picture.shape().format == PictureShape::Format::Rgba32;
    if (hasPixelAlpha)
        blit.picture.unmultiply();
    else
        blit.picture.leaveOutAlpha();
    blit.isSmooth = machine.dc().stretchMode == StretchMode::Halftone;
    PaintState state = sourceState();
    state.opacity = record.u8(kBlend + 2);
    draw(machine, blit, state);
}

void transparentBlt(Machine& machine, const Record& record)
{
    Blit blit = readBlit(machine, record, true);
    if (blit.picture.isNull())
        return;
    blit.picture.hide(colorOf(record.u32(kBlend), machine.dc()));
    // Mixed colours would be neither the one that is left out nor one of the picture's.
    blit.dropsPixels = true;
    draw(machine, blit, sourceState());
}

} // namespace quillrip::emf
