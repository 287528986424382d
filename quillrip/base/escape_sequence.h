#pragma once

#include "quillrip/base/bytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace quillrip {

// The syntax of escape sequences, which PCL 5, the switch to HP-GL/2, HP RTL and the job language share ("PCL 5 Printer
// Language Technical Reference Manual", chapter 2): ESC and one character; or ESC, a parameterised character, perhaps a
// group character, and parameters, each a value and a letter. A lower-case letter combines: the same sequence goes on
// with another parameter. A capital ends it.

constexpr std::uint8_t kEscape = 0x1B;

constexpr bool isDigit(int byte) { return byte >= '0' && byte <= '9'; }
constexpr bool isParameterisedCharacter(int byte) { return byte >= 0x21 && byte <= 0x2F; }
constexpr bool isTwoCharacterSequence(int byte) { return byte >= 0x30 && byte <= 0x7E; }
constexpr bool isGroupCharacter(int byte) { return byte >= 0x60 && byte <= 0x7E; }
/// Ends a parameter and lets the sequence go on.
constexpr bool isCombiningCharacter(int byte) { return byte >= 0x60 && byte <= 0x7E; }
constexpr bool isTerminationCharacter(int byte) { return byte >= 0x40 && byte <= 0x5E; }

/// The Universal Exit Language: <ESC>%-12345X.
constexpr std::size_t kUniversalExitLength = 9;
bool startsWithUniversalExit(ByteView bytes);

/// The value field of a parameter. A missing field is 0; a sign makes the value relative where that has a meaning.
struct EscapeValue {
    double number = 0;
    bool hasSign = false;
    bool hasDigits = false;

    /// The fraction is cut off, as commands that need a whole number ask for.
    int integer() const;
};

/// Takes a value field from bytes that come one by one: tells for each whether it still belongs to the field.
class EscapeValueReader {
public:
    bool add(int byte);
    EscapeValue value() const;

private:
    EscapeValue m_value;
    bool m_isNegative = false;
    bool m_isInFraction = false;
    double m_place = 0.1;
};

/// One parameter of a parameterised sequence.
struct EscapeParameter {
    char prefix = 0; ///< parameterised character, such as '&'
    char group = 0; ///< group character, such as 'l'; 0 where the sequence has none
    char letter = 0; ///< always upper case: combining is undone
    bool isCombined = false; ///< the sequence goes on behind it, after the parameter's data
    EscapeValue value;
};

/// Reads parameterised sequences from bytes in memory, such as what comes next of a stream. It knows the syntax only:
/// data that follow a parameter are the caller's business, by skip().
class EscapeReader {
public:
    explicit EscapeReader(ByteView bytes)
        : m_bytes(bytes)
    {
    }

    /// Takes the ESC, the parameterised character and the group. False, and nothing taken, where no such sequence
    /// begins.
    bool open();
    /// Goes on with a sequence whose beginning lies elsewhere: what comes next are parameters of these characters.
    void resume(char prefix, char group);
    /// Takes the next parameter of the open sequence. Nothing when the sequence has ended or is broken off: the reader
    /// then stands on the byte that broke it, or at the end, and the sequence is closed.
    std::optional<EscapeParameter> next();
    bool isOpen() const { return m_isOpen; }

    std::size_t offset() const { return m_at; }
    bool atEnd() const { return m_at >= m_bytes.size; }
    /// The byte that comes next, or -1 at the end.
    int peek(std::size_t ahead = 0) const { return ahead < m_bytes.size - m_at ? m_bytes[m_at + ahead] : -1; }
    /// At most to the end.
    void skip(std::uint64_t count);

private:
    ByteView m_bytes;
    std::size_t m_at = 0;
    bool m_isOpen = false;
    char m_prefix = 0;
    char m_group = 0;
};

} // namespace quillrip
