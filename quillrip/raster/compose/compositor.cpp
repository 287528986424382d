#include "quillrip/raster/compose/compositor.h"

#include "quillrip/raster/compose/bilevel_compositor.h"
#include "quillrip/raster/compose/byte_compositor.h"

#include <cstdint>

namespace quillrip {

namespace {

std::uint64_t unitsPer1024Pixels(PixelFormat format, const DeviceTexture& texture, bool isOpaque)
{
    if (texture.hasAlpha())
        return 20000; // whatever computes the colours
    if (format == PixelFormat::Bilevel)
        return !isOpaque ? 4000 : texture.isUniformBilevel() ? 50 : 200;
    return !isOpaque || !texture.isSolid() ? 2000 : 500;
}

} // namespace

Compositor::Compositor(
    PageBitmap& page, const PaintState& state, std::shared_ptr<const DeviceTexture> texture, WorkMeter& work)
    : m_page(page)
    , m_operation(state.rop)
    , m_sourceTransparent(state.sourceTransparent)
    , m_patternTransparent(state.patternTransparent)
    , m_opacity(state.opacity)
    , m_textureOwner(std::move(texture))
    , m_texture(*m_textureOwner)
    , m_work(work)
    , m_unitsPer1024Pixels(unitsPer1024Pixels(page.format(), m_texture, state.opacity == 255))
    , m_charged(page.paintedPixels())
    , m_bounds(page.bounds())
{
    if (state.clip) {
        m_bounds = m_bounds.intersected(state.clip->bounds());
        if (!state.clip->isRect())
            m_clip = state.clip;
        // A mark that turns round what is below would turn it round in part.
        const bool readsPage = (m_operation.keep(0u, 0u) | m_operation.keep(0u, 1u) | m_operation.keep(1u, 0u)
                                   | m_operation.keep(1u, 1u))
            & 1u;
        if (m_clip && page.format() != PixelFormat::Bilevel && !readsPage)
            m_fringe = m_clip->fringe();
    }
    // Only an inverted bit changes again when it is marked again.
    const auto inverts
        = [&](unsigned texture) { return (m_operation.keep(1u, texture) & m_operation.flip(1u, texture) & 1u) != 0; };
    m_isIdempotent = !inverts(0) && !inverts(1);
    if (m_opacity == 0)
        m_bounds = {};
}

std::unique_ptr<Compositor> Compositor::create(
    PageBitmap& page, const PaintState& state, std::shared_ptr<const DeviceTexture> texture, WorkMeter& work)
{
    switch (page.format()) {
    case PixelFormat::Bilevel:
        return std::make_unique<BilevelCompositor>(page, state, std::move(texture), work);
    case PixelFormat::Gray8:
        return std::make_unique<ByteCompositor<1>>(page, state, std::move(texture), work);
    case PixelFormat::Rgb24:
        break;
    }
    return std::make_unique<ByteCompositor<3>>(page, state, std::move(texture), work);
}

} // namespace quillrip
