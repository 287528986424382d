#include "quillrip/pcl/font_slots.h"

#include "quillrip/pcl/environment.h"
#include "quillrip/pcl/state.h"

#include <cmath>
#include <cstdint>
#include <optional>

namespace quillrip::pcl {

FontSlots::FontSlots(FontLibrary& library, State& state, const Environment& environment)
    : m_library(library)
    , m_state(state)
    , m_environment(environment)
{
}

SelectionContext FontSlots::context() const
{
    SelectionContext context;
    // Fonts made for 600 dots to the inch are drawn at their true size whatever the page's own resolution.
    context.resolution = 600;
    context.orientation = m_state.page.orientation();
    context.defaultSymbolSet = static_cast<std::uint16_t>(m_environment.symbolSet);
    return context;
}

const Font& FontSlots::current()
{
    FontSlot& slot = m_state.fonts[m_state.activeFont];
    if (slot.isStale) {
        if (slot.selectedById) {
            slot.font = m_library.selectById(*slot.selectedById, slot.request, context());
            if (!slot.font)
                slot.selectedById.reset();
        }
        if (!slot.selectedById)
            slot.font = m_library.select(slot.request, context());
        slot.isStale = false;
    }
    if (slot.selectedById)
        slot.font.bitmapScale = scaleById(slot.font);
    const Font& font = slot.font;
    if (font.face != m_state.hmiFace || font.height != m_state.hmiHeight || font.pitch != m_state.hmiPitch
        || font.bitmapScale != m_state.hmiScale) {
        m_state.hmiScale = font.bitmapScale;
        m_state.hmiFace = font.face;
        m_state.hmiHeight = font.height;
        m_state.hmiPitch = font.pitch;
        m_state.columnWidth = std::llround(font.defaultHmiInches() * kUnitsPerInch);
    }
    return font;
}

// Headers can state a finer resolution than their job has: the dots are the job's all the same, one for one.
double FontSlots::scaleById(const Font& font) const
{
    const FontTraits& traits = font.face->traits();
    const std::optional<double> job
        = m_environment.resolution > 0 ? std::optional<double>(m_environment.resolution) : jobResolution(m_state);
    if (traits.isScalable || !job || traits.resolution <= *job)
        return 1;
    return traits.resolution / *job;
}

InternalUnits FontSlots::columnWidth()
{
    current(); // which may set it
    return m_state.columnWidth;
}

FontSlot& FontSlots::slot(std::size_t index) { return m_state.fonts[index]; }

void FontSlots::changed(FontSlot& slot)
{
    slot.isStale = true;
    slot.selectedById.reset();
}

void FontSlots::resourcesChanged()
{
    for (FontSlot& slot : m_state.fonts) {
        if (slot.selectedById && !m_library.softFonts().find(*slot.selectedById))
            slot.selectedById.reset();
        slot.isStale = true;
    }
}

void FontSlots::selectById(FontSlot& slot, const ResourceKey& key)
{
    const Font font = m_library.selectById(key, slot.request, context());
    if (!font)
        return;
    slot.font = font;
    slot.selectedById = key;
    slot.isStale = false;
}

} // namespace quillrip::pcl
