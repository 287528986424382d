#include "quillrip/pcl/macro_store.h"

namespace quillrip::pcl {

void MacroStore::put(const ResourceKey& key, MacroBytes bytes) { m_entries[key] = { std::move(bytes), false }; }

MacroBytes MacroStore::find(const ResourceKey& key) const
{
    const auto entry = m_entries.find(key);
    return entry == m_entries.end() ? nullptr : entry->second.bytes;
}

void MacroStore::associate(const ResourceKey& alias, const ResourceKey& key)
{
    const auto entry = m_entries.find(key);
    if (entry != m_entries.end()) {
        const Entry copy = entry->second;
        m_entries[alias] = copy;
    }
}

void MacroStore::remove(const ResourceKey& key) { m_entries.erase(key); }

void MacroStore::removeAll() { m_entries.clear(); }

void MacroStore::removeTemporary()
{
    for (auto entry = m_entries.begin(); entry != m_entries.end();)
        entry = entry->second.isPermanent ? std::next(entry) : m_entries.erase(entry);
}

void MacroStore::setPermanent(const ResourceKey& key, bool isPermanent)
{
    const auto entry = m_entries.find(key);
    if (entry != m_entries.end())
        entry->second.isPermanent = isPermanent;
}

std::size_t MacroStore::bytes() const
{
    std::size_t total = 0;
    for (const auto& entry : m_entries)
        total += entry.second.bytes->size();
    return total;
}

} // namespace quillrip::pcl
