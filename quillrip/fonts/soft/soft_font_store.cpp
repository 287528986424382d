#include "quillrip/fonts/font_library.h"

#include <memory>

namespace quillrip {

SoftFontStore::SoftFontStore(std::size_t limitBytes)
    : m_limit(limitBytes)
{
}

bool SoftFontStore::put(const SoftFontKey& key, std::shared_ptr<SoftFont> font, const Reporter& reporter)
{
    remove(key);
    if (!font)
        return false;
    if (!hasRoomFor(font->bytes())) {
        reporter.warn("font.memory", "soft fonts need more memory than the limit allows, font ignored");
        return false;
    }
    if (m_shapeFinder)
        font->lendShapes(m_shapeFinder(font->traits()));
    ++m_generation;
    m_entries[key] = { std::move(font), false };
    return true;
}

std::shared_ptr<SoftFont> SoftFontStore::find(const SoftFontKey& key) const
{
    const auto found = m_entries.find(key);
    return found == m_entries.end() ? nullptr : found->second.font;
}

void SoftFontStore::associate(const SoftFontKey& alias, const SoftFontKey& key)
{
    const auto found = m_entries.find(key);
    if (found == m_entries.end())
        return;
    const Entry entry = found->second;
    m_entries[alias] = entry;
    ++m_generation;
}

void SoftFontStore::remove(const SoftFontKey& key)
{
    ++m_generation;
    m_entries.erase(key);
}

void SoftFontStore::removeAll()
{
    ++m_generation;
    m_entries.clear();
}

void SoftFontStore::removeTemporary()
{
    ++m_generation;
    for (auto at = m_entries.begin(); at != m_entries.end();)
        at = at->second.isPermanent ? std::next(at) : m_entries.erase(at);
}

void SoftFontStore::setPermanent(const SoftFontKey& key, bool isPermanent)
{
    const auto found = m_entries.find(key);
    if (found != m_entries.end())
        found->second.isPermanent = isPermanent;
}

bool SoftFontStore::hasRoomFor(std::size_t bytes) const
{
    // Counting anew for each of many characters would take too long; what was asked for since is near enough, though
    // packed characters can grow somewhat.
    constexpr int kCountAfter = 16;
    if (bytes > m_limit)
        return false;
    if (m_asked > m_limit - bytes || ++m_asksSinceCount >= kCountAfter) {
        m_asksSinceCount = 0;
        m_asked = 0;
        for (const auto& [key, entry] : m_entries)
            m_asked += entry.font->bytes();
        if (m_asked > m_limit - bytes)
            return false;
    }
    m_asked += bytes;
    return true;
}

} // namespace quillrip
