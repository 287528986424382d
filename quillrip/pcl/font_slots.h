#pragma once

#include "quillrip/fonts/font_library.h"
#include "quillrip/pcl/logical_page.h"
#include "quillrip/pcl/macro_store.h"

#include <cstddef>

namespace quillrip::pcl {

struct Environment;
struct FontSlot;
struct State;

/// The primary and the secondary font. What was asked for is part of the state; what it selects is found out when a
/// font is needed, for a job may change one attribute after the other.
class FontSlots {
public:
    /// All references must outlive the object.
    FontSlots(FontLibrary& library, State& state, const Environment& environment);

    FontLibrary& library() { return m_library; }

    const Font& current();
    /// The width of a column (HMI), which a newly selected font sets.
    InternalUnits columnWidth();
    /// What selection looks at besides the attributes.
    SelectionContext context() const;

    /// 0 the primary, 1 the secondary font.
    FontSlot& slot(std::size_t index);
    /// A slot's request is another one.
    void changed(FontSlot& slot);
    /// Soft fonts or symbol sets came or went, or the page turned.
    void resourcesChanged();
    /// Ignored when there is no such font.
    void selectById(FontSlot& slot, const ResourceKey& key);

private:
    double scaleById(const Font& font) const;

    FontLibrary& m_library;
    State& m_state;
    const Environment& m_environment;
};

} // namespace quillrip::pcl
