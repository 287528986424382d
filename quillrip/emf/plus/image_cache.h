#pragma once

#include "quillrip/emf/plus/image_object.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillrip::emf::plus {

/// An image that is drawn: its rows as Rgba32, not premultiplied. A small one is decoded once and held. Of others the
/// rows that were asked for last stay, as programs draw large images in strips that share rows at their edges.
class OpenImage {
public:
    static constexpr std::size_t kMostHeldBytes = std::size_t { 8 } << 20;
    static constexpr std::size_t kRecentBytes = std::size_t { 4 } << 20;

    OpenImage(std::shared_ptr<const ImageObject> object, std::unique_ptr<ImageRows> rows,
        std::size_t mostHeldBytes = kMostHeldBytes, std::size_t recentBytes = kRecentBytes);

    int width() const { return m_rows->shape().width; }
    int height() const { return m_rows->shape().height; }
    /// It stays until the next one is asked for. Rows from the top cost one pass over the image.
    const std::uint8_t* row(int y);
    /// Whether the page shows through nowhere. Where only the pixels tell, they are looked at, once.
    bool isOpaque();
    /// As far as it has been read.
    bool isDamaged() const { return m_rows->isDamaged(); }
    /// Null when the image is not held.
    const std::shared_ptr<const Pixels>& pixels() const { return m_pixels; }

private:
    std::uint8_t* recent(int y);
    bool hasOpaquePixels();

    std::shared_ptr<const ImageObject> m_object; ///< what the rows are made of
    std::unique_ptr<ImageRows> m_rows;
    std::shared_ptr<const Pixels> m_pixels;
    std::size_t m_recentRows; ///< room for so many
    std::vector<std::uint8_t> m_recent; ///< row y is the (y % m_recentRows)th
    int m_first = 0; ///< of those that are there
    int m_end = 0;
    std::optional<bool> m_isOpaque;
};

/// Images as they were last drawn: pages draw the same one many times.
class ImageCache {
public:
    /// `work` must outlive it.
    explicit ImageCache(WorkMeter& work)
        : m_work(work)
    {
    }

    /// Null, with the reason in `problem`, when the image cannot be read.
    std::shared_ptr<OpenImage> open(const std::shared_ptr<const ImageObject>& image, std::string& problem);

private:
    static constexpr std::size_t kMostHeldBytes = std::size_t { 16 } << 20; ///< by all of them
    static constexpr std::size_t kMostEntries = 64;
    struct Entry {
        std::shared_ptr<const ImageObject> object;
        std::shared_ptr<OpenImage> image; ///< null: it cannot be read
        std::string problem;

        bool isLarge() const { return image && !image->pixels(); }
        std::size_t heldBytes() const { return image && image->pixels() ? image->pixels()->bytes.size() : 0; }
    };

    void makeRoom();

    WorkMeter& m_work;
    std::list<Entry> m_entries; ///< the one used last comes first
};

} // namespace quillrip::emf::plus
