#pragma once

#include "quillrip/base/page_bitmap.h"
#include "quillrip/pcl/pattern_store.h"
#include "quillrip/raster/compose/paint_state.h"

namespace quillrip::pcl {

class Page;
class PatternCache;
struct State;

/// How marks are combined with the page: pattern, foreground colour, transparency modes, logical operation.
class PrintModel {
public:
    /// All references must outlive the object.
    PrintModel(const State& state, const Page& page, PatternCache& patterns);

    /// For a mark in that pattern, without a clip.
    PaintState paintState(PatternChoice choice);
    /// A colour as it prints: grey in monochrome mode.
    Rgb shown(Rgb color) const;

private:
    const State& m_state;
    const Page& m_page;
    PatternCache& m_patterns;
};

} // namespace quillrip::pcl
