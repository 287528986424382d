#include "quillrip/pcl/machine.h"

#include <algorithm>
#include <string>

namespace quillrip::pcl {

void Machine::setFontId(const Command& command)
{
    m_state.fontKey = {};
    m_state.fontKey.number = std::clamp(command.value.integer(), 0, 32767);
}

void Machine::setCharacterCode(const Command& command)
{
    m_state.characterCode = static_cast<std::uint32_t>(std::clamp(command.value.integer(), 0, 65535));
}

void Machine::downloadFontHeader(const Command& command)
{
    if (command.data.empty())
        return;
    SoftFontStore& store = m_fonts.softFonts();
    // A header replaces the font of that number even when it turns out to be none.
    store.remove(m_state.fontKey);
    const std::shared_ptr<SoftFont> font = SoftFont::fromPclHeader(command.data, fontReporter());
    if (font && !store.put(m_state.fontKey, font, fontReporter()))
        fail(RunStatus::LimitExceeded);
    softFontsChanged();
}

void Machine::downloadCharacter(const Command& command)
{
    const std::shared_ptr<SoftFont> font = m_fonts.softFonts().find(m_state.fontKey);
    if (!font || command.data.empty())
        return;
    if (!m_fonts.softFonts().hasRoomFor(command.data.size)) {
        damage("pcl.font-memory", "the job's fonts need more memory than the limit allows");
        fail(RunStatus::LimitExceeded);
        return;
    }
    font->addPclCharacter(m_state.characterCode, command.data, fontReporter());
}

void Machine::controlFonts(const Command& command)
{
    SoftFontStore& store = m_fonts.softFonts();
    switch (command.value.integer()) {
    case 0:
        store.removeAll();
        break;
    case 1:
        store.removeTemporary();
        break;
    case 2:
        store.remove(m_state.fontKey);
        break;
    case 3:
        if (const std::shared_ptr<SoftFont> font = store.find(m_state.fontKey))
            font->removeCharacter(m_state.characterCode);
        return;
    case 4:
        store.setPermanent(m_state.fontKey, false);
        return;
    case 5:
        store.setPermanent(m_state.fontKey, true);
        return;
    case 6: {
        const auto* inUse = dynamic_cast<const SoftFont*>(currentFont().face.get());
        if (!inUse) {
            warn("pcl.copy-of-built-in-font", "a copy of a built-in font under a number is not made");
            return;
        }
        if (!store.put(m_state.fontKey, inUse->copy(), fontReporter()))
            fail(RunStatus::LimitExceeded);
        break;
    }
    default:
        return;
    }
    softFontsChanged();
}

void Machine::setSymbolSetCode(const Command& command)
{
    m_state.symbolSetCode = std::clamp(command.value.integer(), 0, 65535);
}

void Machine::defineSymbolSet(const Command& command)
{
    const std::shared_ptr<const SymbolSet> set = SymbolSet::parse(command.data, fontReporter());
    if (!set)
        return;
    if (set->number() != m_state.symbolSetCode) {
        warn("pcl.symbol-set-number", "a symbol set's header names another number than its command, skipped");
        return;
    }
    m_fonts.defineSymbolSet(set);
    softFontsChanged();
}

void Machine::controlSymbolSets(const Command& command)
{
    const auto number = static_cast<std::uint16_t>(m_state.symbolSetCode);
    switch (command.value.integer()) {
    case 0:
        m_fonts.removeAllSymbolSets();
        break;
    case 1:
        m_fonts.removeTemporarySymbolSets();
        break;
    case 2:
        m_fonts.removeSymbolSet(number);
        break;
    case 4:
        m_fonts.setSymbolSetPermanent(number, false);
        return;
    case 5:
        m_fonts.setSymbolSetPermanent(number, true);
        return;
    default:
        return;
    }
    softFontsChanged();
}

// Names instead of numbers, for fonts and macros.
void Machine::alphanumericId(const Command& command)
{
    if (command.data.size < 2 || command.data.size > 512)
        return;
    ResourceKey named;
    named.name.assign(command.data.begin() + 1, command.data.end());
    switch (command.data[0]) {
    case 0:
        m_state.fontKey = named;
        break;
    case 1:
        m_fonts.softFonts().associate(m_state.fontKey, named);
        softFontsChanged();
        break;
    case 2:
    case 3:
        selectFontById(m_state.fonts[command.data[0] - 2u], named);
        break;
    case 4:
        m_state.macroKey = named;
        break;
    case 5:
        m_macros.associate(m_state.macroKey, named);
        break;
    case 20:
        m_fonts.softFonts().remove(m_state.fontKey);
        softFontsChanged();
        break;
    case 21:
        m_macros.remove(m_state.macroKey);
        break;
    default:
        break; // media by name and what nobody knows
    }
}

} // namespace quillrip::pcl
