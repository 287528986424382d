#include "tests/emf/plus/plus_job.h"

#include <algorithm>

namespace quillrip::emf::plus::test {

Sheet::Sheet(int width, int height, PixelFormat format, const WorkBudget& budget)
    : m_page(format, width, height, { 300, 300 })
    , m_painter(m_page, std::make_shared<WorkMeter>(budget))
{
    const auto playMetafile
        = [this](ByteView metafile, const Matrix& matrix, const std::shared_ptr<const ClipRegion>&) {
              m_metafiles.push_back({ { metafile.begin(), metafile.end() }, matrix });
          };
    m_interpreter = std::make_unique<Interpreter>(Host {
        m_painter, format, Matrix(), { 300, 300 }, nullptr, m_fonts, m_glyphs, m_limits, m_diagnostics, playMetafile });
}

Sheet& Sheet::play(const Records& records, bool mayStart)
{
    m_interpreter->comment(records.get(), 0, mayStart);
    return *this;
}

PixelRect Sheet::marked() const
{
    PixelRect marked { m_page.width(), m_page.height(), 0, 0 };
    for (int y = 0; y < m_page.height(); ++y) {
        for (int x = 0; x < m_page.width(); ++x) {
            if (isWhite(x, y))
                continue;
            marked.left = std::min(marked.left, x);
            marked.top = std::min(marked.top, y);
            marked.right = std::max(marked.right, x + 1);
            marked.bottom = std::max(marked.bottom, y + 1);
        }
    }
    return marked.empty() ? PixelRect() : marked;
}

std::size_t Sheet::markedCount() const
{
    std::size_t count = 0;
    for (int y = 0; y < m_page.height(); ++y) {
        for (int x = 0; x < m_page.width(); ++x)
            count += isWhite(x, y) ? 0 : 1;
    }
    return count;
}

} // namespace quillrip::emf::plus::test
