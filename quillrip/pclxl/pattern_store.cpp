#include "quillrip/pclxl/pattern_store.h"

#include <utility>

namespace quillrip::pclxl {

void PatternStore::put(std::int32_t number, RasterPattern pattern, PatternLife life)
{
    Stored& stored = m_patterns[number];
    m_bytes -= stored.bytes();
    stored = { std::make_shared<const RasterPattern>(std::move(pattern)), life };
    m_bytes += stored.bytes();
}

std::shared_ptr<const RasterPattern> PatternStore::find(std::int32_t number) const
{
    const auto found = m_patterns.find(number);
    return found == m_patterns.end() ? nullptr : found->second.pattern;
}

void PatternStore::endPage()
{
    for (auto it = m_patterns.begin(); it != m_patterns.end();) {
        if (it->second.life == PatternLife::Page) {
            m_bytes -= it->second.bytes();
            it = m_patterns.erase(it);
        } else {
            ++it;
        }
    }
}

void PatternStore::endSession()
{
    m_patterns.clear();
    m_bytes = 0;
}

} // namespace quillrip::pclxl
