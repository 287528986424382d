#include "quillrip/pcl/character_decoder.h"

#include "quillrip/base/escape_sequence.h"

namespace quillrip::pcl {

namespace {

/// Whether a byte is the first of two, by text parsing method.
bool isLeadByte(int method, std::uint8_t byte)
{
    switch (method) {
    case 21:
        return byte >= 0x21;
    case 31:
        return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
    case 38:
        return byte >= 0x80;
    default:
        return false;
    }
}

} // namespace

std::optional<int> CharacterDecoder::methodOf(int value)
{
    switch (value) {
    case 0:
    case 1:
    case 21:
    case 31:
    case 38:
    case kUtf8:
        return value;
    case 1008:
        return kUtf8;
    default:
        return std::nullopt;
    }
}

std::optional<CharacterDecoder::Code> CharacterDecoder::take(std::uint8_t byte, int method)
{
    if (method == kUtf8 && (byte >= 0x80 || m_utf8Missing > 0))
        return takeUtf8(byte);
    if (m_leadByte >= 0) {
        const std::uint32_t code = (static_cast<std::uint32_t>(m_leadByte) << 8) | byte;
        m_leadByte = -1;
        return Code { code, false };
    }
    if (isLeadByte(method, byte)) {
        m_leadByte = byte;
        return std::nullopt;
    }
    return Code { byte, false };
}

std::optional<CharacterDecoder::Code> CharacterDecoder::takeUtf8(std::uint8_t byte)
{
    if (byte >= 0x80 && byte < 0xC0 && m_utf8Missing > 0) {
        m_utf8Code = (m_utf8Code << 6) | (byte & 0x3Fu);
        if (--m_utf8Missing > 0)
            return std::nullopt;
        return Code { m_utf8Code, true };
    }
    m_utf8Missing = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : byte >= 0xC0 ? 1 : 0;
    m_utf8Code = byte & (0x3Fu >> m_utf8Missing);
    if (byte < 0x80)
        return Code { byte, false }; // a sequence broken off by ASCII
    return std::nullopt;
}

std::optional<CharacterDecoder::Code> CharacterDecoder::flush()
{
    if (m_leadByte < 0)
        return std::nullopt;
    const auto code = static_cast<std::uint32_t>(m_leadByte);
    m_leadByte = -1;
    return Code { code, false };
}

void CharacterDecoder::reset()
{
    m_leadByte = -1;
    m_utf8Missing = 0;
}

void DisplayFunctions::note(std::uint8_t byte)
{
    if (m_sawEscape && byte == 'Z')
        m_isOn = false;
    m_sawEscape = byte == kEscape;
}

} // namespace quillrip::pcl
