#include "quillrip/raster/scan/span_union.h"

#include <algorithm>

namespace quillrip {

void SpanUnion::span(int y, int left, int right)
{
    left = std::max(left, m_bounds.left);
    right = std::min(right, m_bounds.right);
    if (y < m_bounds.top || y >= m_bounds.bottom || left >= right)
        return;
    if (!m_spans.empty() && m_spans.back().y == y && m_spans.back().right == left) {
        m_spans.back().right = right;
        return;
    }
    m_spans.push_back({ y, left, right });
}

void SpanUnion::finish()
{
    std::sort(m_spans.begin(), m_spans.end(),
        [](const Span& a, const Span& b) { return a.y != b.y ? a.y < b.y : a.left < b.left; });
    for (std::size_t i = 0; i < m_spans.size();) {
        Span whole = m_spans[i];
        for (++i; i < m_spans.size() && m_spans[i].y == whole.y && m_spans[i].left <= whole.right; ++i)
            whole.right = std::max(whole.right, m_spans[i].right);
        m_sink.span(whole.y, whole.left, whole.right);
    }
    m_spans.clear();
}

} // namespace quillrip
