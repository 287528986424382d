#pragma once

#include <cstdint>
#include <optional>

namespace quillrip::pcl {

/// Puts the bytes of text together to character codes, as a text parsing method (ESC&t#P) says: one byte each, a lead
/// byte and another, or UTF-8.
class CharacterDecoder {
public:
    static constexpr int kUtf8 = 83;

    struct Code {
        std::uint32_t value = 0;
        bool isUnicode = false; ///< from UTF-8: whatever the font's symbol set
    };

    /// The method that a value of the command selects; nothing for values that mean none.
    static std::optional<int> methodOf(int value);

    /// Takes one byte; nothing while a character is not whole yet.
    std::optional<Code> take(std::uint8_t byte, int method);
    /// A lead byte that nothing followed, as a character of its own.
    std::optional<Code> flush();
    void dropLeadByte() { m_leadByte = -1; }
    /// Forgets a character that is not whole.
    void reset();

private:
    std::optional<Code> takeUtf8(std::uint8_t byte);

    int m_leadByte = -1;
    std::uint32_t m_utf8Code = 0;
    int m_utf8Missing = 0;
};

/// Display functions mode (ESC Y): every byte prints, up to and with ESC Z.
class DisplayFunctions {
public:
    void begin()
    {
        m_isOn = true;
        m_sawEscape = false;
    }
    void end() { m_isOn = false; }
    bool isOn() const { return m_isOn; }
    /// A byte has been printed.
    void note(std::uint8_t byte);

private:
    bool m_isOn = false;
    bool m_sawEscape = false;
};

} // namespace quillrip::pcl
