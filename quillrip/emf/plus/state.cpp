#include "quillrip/emf/plus/state.h"

#include <algorithm>

namespace quillrip::emf::plus {

bool StateStack::save(std::uint32_t index)
{
    if (m_saved.size() >= kMostSaved)
        return false;
    m_saved.push_back({ index, m_current });
    return true;
}

bool StateStack::restore(std::uint32_t index)
{
    const auto found
        = std::find_if(m_saved.rbegin(), m_saved.rend(), [index](const Saved& saved) { return saved.index == index; });
    if (found == m_saved.rend())
        return false;
    m_current = found->state;
    m_saved.erase(found.base() - 1, m_saved.end());
    return true;
}

} // namespace quillrip::emf::plus
