#include "quillrip/fonts/faces/typeface.h"

#include <atomic>

namespace quillrip {

Typeface::Typeface()
{
    static std::atomic<std::uint32_t> s_nextId { 1 };
    m_id = s_nextId++;
}

} // namespace quillrip
