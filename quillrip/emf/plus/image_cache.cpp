#include "quillrip/emf/plus/canvas.h"

#include <algorithm>
#include <memory>
#include <string>

namespace quillrip::emf::plus {

std::shared_ptr<const Pixels> ImageCache::pixels(const std::shared_ptr<const ImageObject>& image, std::string& problem)
{
    const auto found = std::find_if(
        m_entries.begin(), m_entries.end(), [&image](const Entry& entry) { return entry.image == image; });
    if (found != m_entries.end()) {
        m_entries.splice(m_entries.begin(), m_entries, found);
        return found->pixels;
    }
    if (m_decodedBytes > kMostDecodedBytes) {
        problem = "the images before it were larger than any page needs";
        return nullptr;
    }
    auto pixels = std::make_shared<const Pixels>(decodeImage(*image, problem));
    if (pixels->isNull())
        pixels = nullptr;
    m_entries.push_front({ image, pixels });
    m_bytes += pixels ? pixels->bytes.size() : 0;
    m_decodedBytes += (pixels ? pixels->bytes.size() : 0) + image->bytes.size();
    while (m_bytes > kMostBytes && m_entries.size() > 1) {
        const std::shared_ptr<const Pixels>& oldest = m_entries.back().pixels;
        m_bytes -= oldest ? oldest->bytes.size() : 0;
        m_entries.pop_back();
    }
    return pixels;
}

} // namespace quillrip::emf::plus
