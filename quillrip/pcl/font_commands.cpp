#include "quillrip/pcl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::pcl {

SelectionContext Machine::selectionContext() const
{
    SelectionContext context;
    // Fonts made for 600 dots to the inch are drawn at their true size whatever the page's own resolution.
    context.resolution = 600;
    context.orientation = m_state.page.orientation();
    context.defaultSymbolSet = static_cast<std::uint16_t>(m_environment.symbolSet);
    return context;
}

// Selection waits until a font is needed: a job may change one attribute after the other.
const Font& Machine::currentFont()
{
    FontSlot& slot = m_state.fonts[m_state.activeFont];
    if (slot.isStale) {
        if (slot.selectedById) {
            slot.font = m_fonts.selectById(*slot.selectedById, slot.request, selectionContext());
            if (!slot.font)
                slot.selectedById.reset();
        }
        if (!slot.selectedById)
            slot.font = m_fonts.select(slot.request, selectionContext());
        slot.isStale = false;
    }
    const Font& font = slot.font;
    if (font.face != m_state.hmiFace || font.height != m_state.hmiHeight || font.pitch != m_state.hmiPitch) {
        m_state.hmiFace = font.face;
        m_state.hmiHeight = font.height;
        m_state.hmiPitch = font.pitch;
        m_state.columnWidth = std::llround(font.defaultHmiInches() * kUnitsPerInch);
    }
    return font;
}

InternalUnits Machine::columnWidth()
{
    currentFont(); // which may set it
    return m_state.columnWidth;
}

void Machine::changed(FontSlot& slot)
{
    slot.isStale = true;
    slot.selectedById.reset();
}

void Machine::softFontsChanged()
{
    for (FontSlot& slot : m_state.fonts) {
        if (slot.selectedById && !m_fonts.softFonts().find(*slot.selectedById))
            slot.selectedById.reset();
        slot.isStale = true;
    }
}

void Machine::setSymbolSet(const Command& command)
{
    const int number = command.value.integer();
    if (number < 0 || number > 2047)
        return;
    FontSlot& slot = slotOf(command);
    slot.request.symbolSet = symbolSetNumber(static_cast<unsigned>(number), command.terminator);
    changed(slot);
}

void Machine::selectFontById(const Command& command)
{
    ResourceKey key;
    key.number = command.value.integer();
    selectFontById(slotOf(command), key);
}

void Machine::selectFontById(FontSlot& slot, const ResourceKey& key)
{
    const Font font = m_fonts.selectById(key, slot.request, selectionContext());
    if (!font)
        return;
    slot.font = font;
    slot.selectedById = key;
    slot.isStale = false;
}

void Machine::selectDefaultFont(const Command& command)
{
    FontSlot& slot = slotOf(command);
    const FontRequest standard = userDefaults().fonts[0].request;
    switch (command.value.integer()) {
    case 0:
    case 1:
        slot.request.symbolSet = standard.symbolSet;
        break;
    case 2:
        slot.request.symbolSet = m_state.fonts[0].request.symbolSet;
        break;
    case 3:
        slot.request = standard;
        break;
    default:
        return;
    }
    changed(slot);
}

void Machine::setSpacing(const Command& command)
{
    const int spacing = command.value.integer();
    if (spacing != 0 && spacing != 1)
        return;
    slotOf(command).request.isProportional = spacing == 1;
    changed(slotOf(command));
}

void Machine::setPitch(const Command& command)
{
    if (command.value.number <= 0)
        return;
    slotOf(command).request.pitch = std::clamp(std::round(command.value.number * 100) / 100, 0.1, 576.0);
    changed(slotOf(command));
}

void Machine::setHeight(const Command& command)
{
    if (command.value.number <= 0)
        return;
    slotOf(command).request.height = std::clamp(std::round(command.value.number * 4) / 4, 0.25, 999.75);
    changed(slotOf(command));
}

void Machine::setStyle(const Command& command)
{
    const int style = command.value.integer();
    if (style < 0 || style > 32767)
        return;
    slotOf(command).request.style = static_cast<std::uint16_t>(style);
    changed(slotOf(command));
}

void Machine::setWeight(const Command& command)
{
    slotOf(command).request.weight = std::clamp(command.value.integer(), -7, 7);
    changed(slotOf(command));
}

void Machine::setTypeface(const Command& command)
{
    const int family = command.value.integer();
    if (family < 0 || family > 65535)
        return;
    slotOf(command).request.family = static_cast<std::uint16_t>(family);
    changed(slotOf(command));
}

void Machine::setPitchMode(const Command& command)
{
    double pitch = 0;
    switch (command.value.integer()) {
    case 0:
        pitch = 10;
        break;
    case 2:
        pitch = 16.67;
        break;
    case 4:
        pitch = 12;
        break;
    default:
        return;
    }
    for (FontSlot& slot : m_state.fonts) {
        slot.request.pitch = pitch;
        changed(slot);
    }
}

void Machine::useFont(std::size_t slot) { m_state.activeFont = slot; }

} // namespace quillrip::pcl
