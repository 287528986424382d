#include "quillrip/pclxl/soft_fonts.h"

#include <utility>

namespace quillrip::pclxl {

namespace {

SoftFontKey keyOf(const std::string& name)
{
    SoftFontKey key;
    key.name = name;
    return key;
}

std::string withoutTrailingBlanks(const std::string& name) { return name.substr(0, name.find_last_not_of(' ') + 1); }

/// The next `length` bytes, put together in `joined` where they do not lie together. Shorter when there are no more.
ByteView take(EmbeddedData& data, std::size_t length, std::vector<std::uint8_t>& joined)
{
    // Mostly the data are at hand in one piece. What is shown need not be taken: nothing follows it.
    const ByteView first = data.chunk().sub(0, length);
    if (first.size == length)
        return first;
    while (joined.size() < length) {
        const ByteView chunk = data.chunk().sub(0, length - joined.size());
        if (chunk.empty())
            break;
        joined.insert(joined.end(), chunk.begin(), chunk.end());
        data.take(chunk.size);
    }
    return joined;
}

} // namespace

std::shared_ptr<SoftFont> SoftFonts::find(const std::string& name) const
{
    if (std::shared_ptr<SoftFont> font = m_store.find(keyOf(name)))
        return font;
    const std::string stem = withoutTrailingBlanks(name);
    for (const auto& [key, entry] : m_store.entries())
        if (withoutTrailingBlanks(key.name) == stem)
            return entry.font;
    return nullptr;
}

std::shared_ptr<SoftFont> SoftFonts::remove(const std::string& name)
{
    std::shared_ptr<SoftFont> font = find(name);
    for (const auto& [key, entry] : m_store.entries()) {
        if (font && entry.font == font) {
            m_store.remove(SoftFontKey(key));
            break;
        }
    }
    return font;
}

void SoftFonts::beginHeader(const std::string& name)
{
    m_definedName = name;
    m_header.clear();
}

Status SoftFonts::appendHeader(EmbeddedData& data, std::size_t length)
{
    if (m_header.size() + length > m_maxBytes)
        return Error::InsufficientMemory;
    while (length > 0) {
        const ByteView chunk = data.chunk().sub(0, length);
        if (chunk.empty())
            return Error::MissingData;
        m_header.insert(m_header.end(), chunk.begin(), chunk.end());
        data.take(chunk.size);
        length -= chunk.size;
    }
    return {};
}

Status SoftFonts::endHeader(const Reporter& reporter, bool& isReplaced)
{
    isReplaced = false;
    std::shared_ptr<SoftFont> font = SoftFont::fromPclXlHeader(m_header, reporter);
    m_header = {};
    if (!font)
        return Error::BadFontData;
    const SoftFontKey key = keyOf(m_definedName);
    isReplaced = m_store.find(key) != nullptr;
    return m_store.put(key, std::move(font), reporter) ? Status() : Status(Error::InsufficientMemory);
}

bool SoftFonts::beginCharacters(const std::string& name)
{
    m_definedName = name;
    return find(name) != nullptr;
}

Status SoftFonts::addCharacter(std::uint16_t code, EmbeddedData& data, std::size_t length, const Reporter& reporter)
{
    const std::shared_ptr<SoftFont> font = find(m_definedName);
    if (!font)
        return Error::FontUndefined;
    if (!m_store.hasRoomFor(length))
        return Error::InsufficientMemory;
    std::vector<std::uint8_t> joined;
    const ByteView character = take(data, length, joined);
    if (character.size < length)
        return { Error::MissingData, Attribute::CharDataSize };
    if (!font->addPclXlCharacter(code, character, reporter))
        return { Error::IllegalCharacterData, Attribute::CharCode };
    return {};
}

void SoftFonts::endSession()
{
    m_store.removeAll();
    m_header = {};
}

} // namespace quillrip::pclxl
