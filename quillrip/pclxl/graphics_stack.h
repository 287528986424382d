#pragma once

#include "quillrip/base/limits.h"
#include "quillrip/pclxl/state.h"

#include <cstddef>
#include <vector>

namespace quillrip::pclxl {

/// The graphics state that counts, and those saved under it.
class GraphicsStack {
public:
    GraphicsState& state() { return m_state; }
    const GraphicsState& state() const { return m_state; }

    /// MaxGSLevelsExceeded when the saved states are too many, or hold too much.
    Status push(const Limits& limits);
    /// False, and nothing done, when none is saved.
    [[nodiscard]] bool pop();
    /// No saved states any more.
    void reset(GraphicsState state = {});

private:
    GraphicsState m_state;
    struct Saved {
        GraphicsState state;
        std::size_t cost; ///< path points and clip runs that it may hold alone
    };
    std::vector<Saved> m_saved;
    std::size_t m_cost = 0;
};

} // namespace quillrip::pclxl
