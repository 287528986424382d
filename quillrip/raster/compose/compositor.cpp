#include "quillrip/raster/compose/compositor.h"

#include "quillrip/raster/compose/bilevel_compositor.h"
#include "quillrip/raster/compose/byte_compositor.h"

namespace quillrip {

Compositor::Compositor(PageBitmap& page, const PaintState& state, std::shared_ptr<const DeviceTexture> texture)
    : m_page(page)
    , m_operation(state.rop)
    , m_sourceTransparent(state.sourceTransparent)
    , m_patternTransparent(state.patternTransparent)
    , m_opacity(state.opacity)
    , m_textureOwner(std::move(texture))
    , m_texture(*m_textureOwner)
    , m_bounds(page.bounds())
{
    if (state.clip) {
        m_bounds = m_bounds.intersected(state.clip->bounds());
        if (!state.clip->isRect())
            m_clip = state.clip;
    }
    // Only an inverted bit changes again when it is marked again.
    const auto inverts
        = [&](unsigned texture) { return (m_operation.keep(1u, texture) & m_operation.flip(1u, texture) & 1u) != 0; };
    m_isIdempotent = !inverts(0) && !inverts(1);
    if (m_opacity == 0)
        m_bounds = {};
}

std::unique_ptr<Compositor> Compositor::create(
    PageBitmap& page, const PaintState& state, std::shared_ptr<const DeviceTexture> texture)
{
    switch (page.format()) {
    case PixelFormat::Bilevel:
        return std::make_unique<BilevelCompositor>(page, state, std::move(texture));
    case PixelFormat::Gray8:
        return std::make_unique<ByteCompositor<1>>(page, state, std::move(texture));
    case PixelFormat::Rgb24:
        break;
    }
    return std::make_unique<ByteCompositor<3>>(page, state, std::move(texture));
}

} // namespace quillrip
