#include "quillrip/pclxl/machine.h"

#include <algorithm>

namespace quillrip::pclxl {

namespace {

/// Names are compared code by code, so one of bytes and one of words can be the same.
std::string nameFrom(const ArrayView& codes)
{
    std::string name;
    for (std::size_t i = 0; i < codes.size(); ++i) {
        const std::uint32_t code = codes.code(i);
        if (code > 0xFF)
            name += static_cast<char>(code >> 8);
        name += static_cast<char>(code & 0xFF);
    }
    return name;
}

} // namespace

std::string Machine::fontName() const { return nameFrom(m_operands.array(Attribute::FontName)); }

std::string Machine::streamName() const { return nameFrom(m_operands.array(Attribute::StreamName)); }

/// Trailing blanks do not count when the name as it stands is not there.
std::shared_ptr<SoftFont> Machine::softFont(const std::string& name) const
{
    const auto found = m_softFonts.find(name);
    if (found != m_softFonts.end())
        return found->second;
    const auto stem = [](const std::string& text) { return text.substr(0, text.find_last_not_of(' ') + 1); };
    for (const auto& [candidate, font] : m_softFonts)
        if (stem(candidate) == stem(name))
            return font;
    return nullptr;
}

Status Machine::beginFontHeader()
{
    m_definedFont = fontName();
    if (m_definedFont.empty())
        return { Error::IllegalArraySize, Attribute::FontName };
    m_fontHeader.clear();
    m_definition = Definition::FontHeader;
    return {};
}

/// The pieces of a header may be cut anywhere, also within a segment.
Status Machine::readFontHeader()
{
    const int length = m_operands.integer(Attribute::FontHeaderLength);
    if (length < 0)
        return { Error::IllegalAttributeValue, Attribute::FontHeaderLength };
    std::size_t left = static_cast<std::size_t>(length);
    if (m_softFontBytes + m_fontHeader.size() + left > m_limits.fontBytes)
        return Error::InsufficientMemory;
    while (left > 0) {
        const ByteView chunk = data().chunk().sub(0, left);
        if (chunk.empty())
            return Error::MissingData;
        m_fontHeader.insert(m_fontHeader.end(), chunk.begin(), chunk.end());
        data().take(chunk.size);
        left -= chunk.size;
    }
    return {};
}

Status Machine::endFontHeader()
{
    m_definition = Definition::None;
    std::shared_ptr<SoftFont> font = SoftFont::fromPclXlHeader(m_fontHeader, fontReporter());
    m_fontHeader = {};
    if (!font)
        return Error::BadFontData;
    std::shared_ptr<SoftFont>& stored = m_softFonts[m_definedFont];
    if (stored) {
        warn("pclxl.font-replaced", "a soft font is defined again and takes the place of the former one");
        m_softFontBytes -= std::min(m_softFontBytes, stored->bytes());
    }
    stored = std::move(font);
    m_softFontBytes += stored->bytes();
    return m_softFontBytes > m_limits.fontBytes ? Status(Error::InsufficientMemory) : Status();
}

Status Machine::beginChar()
{
    m_definedFont = fontName();
    if (!softFont(m_definedFont))
        return { Error::FontUndefined, Attribute::FontName };
    m_definition = Definition::Character;
    return {};
}

Status Machine::readChar()
{
    const int length = m_operands.integer(Attribute::CharDataSize);
    if (length < 0)
        return { Error::IllegalAttributeValue, Attribute::CharDataSize };
    const int code = m_operands.integer(Attribute::CharCode);
    if (code < 0 || code > 0xFFFF)
        return { Error::IllegalAttributeValue, Attribute::CharCode };
    const std::shared_ptr<SoftFont> font = softFont(m_definedFont);
    if (!font)
        return Error::FontUndefined;
    const std::size_t size = static_cast<std::size_t>(length);
    if (m_softFontBytes + size > m_limits.fontBytes)
        return Error::InsufficientMemory;
    // Mostly the data are at hand in one piece.
    std::vector<std::uint8_t> joined;
    ByteView character = data().chunk().sub(0, size);
    if (character.size < size) {
        while (joined.size() < size) {
            const ByteView chunk = data().chunk().sub(0, size - joined.size());
            if (chunk.empty())
                return { Error::MissingData, Attribute::CharDataSize };
            joined.insert(joined.end(), chunk.begin(), chunk.end());
            data().take(chunk.size);
        }
        character = joined;
    }
    const std::size_t before = font->bytes();
    if (!font->addPclXlCharacter(static_cast<std::uint32_t>(code), character, fontReporter()))
        return { Error::IllegalCharacterData, Attribute::CharCode };
    m_softFontBytes += font->bytes() - std::min(before, font->bytes());
    return {};
}

Status Machine::endChar()
{
    m_definition = Definition::None;
    return {};
}

/// Text that is on the page already stays; the current font goes when it is the one that is removed.
Status Machine::removeFont()
{
    const std::shared_ptr<SoftFont> font = softFont(fontName());
    if (!font) {
        warn("pclxl.font-not-removed", "a font is to be removed that is no soft font (UndefinedFontNotRemoved)");
        return {};
    }
    m_softFontBytes -= std::min(m_softFontBytes, font->bytes());
    for (auto it = m_softFonts.begin(); it != m_softFonts.end(); ++it) {
        if (it->second == font) {
            m_softFonts.erase(it);
            break;
        }
    }
    if (m_state.character.font.face == font)
        m_state.character.font = {};
    return {};
}

} // namespace quillrip::pclxl
