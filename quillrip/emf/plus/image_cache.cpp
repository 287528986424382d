#include "quillrip/emf/plus/canvas.h"

#include <algorithm>
#include <memory>
#include <new>
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
    auto pixels = std::make_shared<const Pixels>(decode(*image, problem));
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

Pixels ImageCache::decode(const ImageObject& image, std::string& problem)
{
    try {
        return decodeImage(image, problem);
    } catch (const std::bad_alloc&) {
        if (m_entries.empty())
            throw;
    }
    // What is kept to save time makes room.
    m_entries.clear();
    m_bytes = 0;
    return decodeImage(image, problem);
}

} // namespace quillrip::emf::plus
