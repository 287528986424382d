#pragma once

#include "quillrip/fonts/font_library.h"

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace quillrip::pcl {

/// Fonts and macros are both named by a number or a string.
using ResourceKey = SoftFontKey;

using MacroBytes = std::shared_ptr<const std::vector<std::uint8_t>>;

/// Recorded commands, by number or name.
class MacroStore {
public:
    /// New macros are temporary and replace one of that key.
    void put(const ResourceKey& key, MacroBytes bytes);
    /// Null when there is none.
    MacroBytes find(const ResourceKey& key) const;
    /// Lets `alias` run the macro that `key` names now.
    void associate(const ResourceKey& alias, const ResourceKey& key);
    void remove(const ResourceKey& key);
    void removeAll();
    void removeTemporary();
    void setPermanent(const ResourceKey& key, bool isPermanent);
    /// All macros together.
    std::size_t bytes() const;

private:
    struct Entry {
        MacroBytes bytes;
        bool isPermanent = false;
    };

    std::map<ResourceKey, Entry> m_entries;
};

} // namespace quillrip::pcl
