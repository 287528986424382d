#pragma once

#include "quillrip/raster/compose/compositor.h"
#include "quillrip/raster/scan/span_sink.h"

#include <cstdint>
#include <vector>

namespace quillrip {

/// Paints spans as they come.
class PaintingSink final : public SpanSink {
public:
    explicit PaintingSink(Compositor& compositor)
        : m_compositor(compositor)
    {
    }

    void span(int y, int left, int right) override { m_compositor.ink(y, left, right); }
    void coverage(int y, int left, const std::uint8_t* coverage, int count) override
    {
        m_compositor.coverage(y, left, coverage, count, false);
    }

private:
    Compositor& m_compositor;
};

/// Collects spans that may overlap and come in any order, and hands each pixel on once: for raster operations that
/// change a pixel again when it is painted again.
class SpanUnion final : public SpanSink {
public:
    SpanUnion(const PixelRect& bounds, SpanSink& sink)
        : m_bounds(bounds)
        , m_sink(sink)
    {
    }

    void span(int y, int left, int right) override;
    void coverage(int, int, const std::uint8_t*, int) override { }
    void finish();

private:
    struct Span {
        int y;
        int left;
        int right;
    };

    PixelRect m_bounds;
    SpanSink& m_sink;
    std::vector<Span> m_spans;
};

} // namespace quillrip
