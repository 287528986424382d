#include "quillrip/fonts/font_library.h"

namespace quillrip {

SoftFontStore::SoftFontStore(std::size_t limitBytes)
    : m_limit(limitBytes)
{
}

bool SoftFontStore::put(const SoftFontKey& key, std::shared_ptr<SoftFont> font, const FontReporter& reporter)
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
    if (found != m_entries.end())
        m_entries[alias] = Entry(found->second);
}

void SoftFontStore::remove(const SoftFontKey& key) { m_entries.erase(key); }

void SoftFontStore::removeAll() { m_entries.clear(); }

void SoftFontStore::removeTemporary()
{
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
    std::size_t used = 0;
    for (const auto& [key, entry] : m_entries)
        used += entry.font->bytes();
    return bytes <= m_limit && used <= m_limit - bytes;
}

} // namespace quillrip
