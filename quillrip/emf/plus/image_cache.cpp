#include "quillrip/emf/plus/image_cache.h"

#include <algorithm>

namespace quillrip::emf::plus {

namespace {

bool isOpaqueRow(const std::uint8_t* row, int width)
{
    for (int x = 0; x < width; ++x) {
        if (row[4 * static_cast<std::size_t>(x) + 3] != 255)
            return false;
    }
    return true;
}

} // namespace

OpenImage::OpenImage(std::shared_ptr<const ImageObject> object, std::unique_ptr<ImageRows> rows,
    std::size_t mostHeldBytes, std::size_t recentBytes)
    : m_object(std::move(object))
    , m_rows(std::move(rows))
{
    const std::size_t rowBytes = m_rows->shape().rowBytes();
    const auto height = static_cast<std::size_t>(m_rows->shape().height);
    m_recentRows = std::clamp<std::size_t>(recentBytes / rowBytes, 1, height);
    if (rowBytes * height <= mostHeldBytes)
        m_pixels = std::make_shared<const Pixels>(pixelsOf(*m_rows));
}

std::uint8_t* OpenImage::recent(int y)
{
    return m_recent.data() + static_cast<std::size_t>(y) % m_recentRows * m_rows->shape().rowBytes();
}

const std::uint8_t* OpenImage::row(int y)
{
    if (m_pixels)
        return m_pixels->row(y);
    if (y >= m_first && y < m_end)
        return recent(y);
    m_recent.resize(m_recentRows * m_rows->shape().rowBytes());
    m_rows->row(y, recent(y));
    const bool follows = y == m_end;
    m_end = y + 1;
    m_first = follows ? std::max(m_first, m_end - static_cast<int>(m_recentRows)) : y;
    return recent(y);
}

bool OpenImage::isOpaque()
{
    if (!m_isOpaque)
        m_isOpaque = !m_rows->shape().hasAlpha || hasOpaquePixels();
    return *m_isOpaque;
}

bool OpenImage::hasOpaquePixels()
{
    for (int y = 0; y < height(); ++y) {
        if (!isOpaqueRow(row(y), width()))
            return false;
    }
    return true;
}

std::shared_ptr<OpenImage> ImageCache::open(const std::shared_ptr<const ImageObject>& image, std::string& problem)
{
    const auto found = std::find_if(
        m_entries.begin(), m_entries.end(), [&image](const Entry& entry) { return entry.object == image; });
    if (found != m_entries.end()) {
        m_entries.splice(m_entries.begin(), m_entries, found);
    } else {
        // A large one's decoder goes before the next one's comes.
        m_entries.remove_if([](const Entry& entry) { return entry.isLarge(); });
        Entry entry { image, nullptr, {} };
        if (auto rows = openImage(*image, m_work, entry.problem))
            entry.image = std::make_shared<OpenImage>(image, std::move(rows));
        m_entries.push_front(std::move(entry));
        makeRoom();
    }
    problem = m_entries.front().problem;
    return m_entries.front().image;
}

void ImageCache::makeRoom()
{
    std::size_t held = 0;
    std::size_t count = 0;
    m_entries.remove_if([&](const Entry& entry) {
        held += entry.heldBytes();
        return ++count > kMostEntries || held > kMostHeldBytes;
    });
}

} // namespace quillrip::emf::plus
