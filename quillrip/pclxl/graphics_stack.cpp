#include "quillrip/pclxl/graphics_stack.h"

#include <utility>

namespace quillrip::pclxl {

Status GraphicsStack::push(const Limits& limits)
{
    // States share paths and clips until one changes them; counted as if each had its own, no job that repeats
    // "push, change" can fill the memory.
    std::size_t cost = m_state.path.path().pointCount();
    if (m_saved.empty() || m_saved.back().state.clip.region() != m_state.clip.region())
        cost += m_state.clip.runCount();
    if (m_saved.size() >= limits.stateDepth || m_cost + cost > limits.pathPoints)
        return Error::MaxGSLevelsExceeded;
    m_saved.push_back({ m_state, cost });
    m_cost += cost;
    return {};
}

bool GraphicsStack::pop()
{
    if (m_saved.empty())
        return false;
    m_state = std::move(m_saved.back().state);
    m_cost -= m_saved.back().cost;
    m_saved.pop_back();
    return true;
}

void GraphicsStack::reset(GraphicsState state)
{
    m_state = std::move(state);
    m_saved.clear();
    m_cost = 0;
}

} // namespace quillrip::pclxl
