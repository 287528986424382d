#pragma once

#include "quillrip/base/escape_sequence.h"
#include "quillrip/base/input_stream.h"
#include "quillrip/hpgl/mnemonics.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quillrip::hpgl {

bool isLetter(int byte);

/// The syntax of HP-GL/2 and HP-GL: mnemonics and their operands. What a mnemonic takes is the caller's knowledge.
class Lexer {
public:
    enum class Token {
        Mnemonic,
        Escape, ///< the input stands on an ESC
        End,
    };

    explicit Lexer(InputStream& input)
        : m_input(input)
    {
    }

    InputStream& input() { return m_input; }

    /// Skips what may stand between commands (and noise), and reads the next two letters.
    Token next(Mnemonic& mnemonic);

    /// Appends numbers until the command ends or `numbers` holds `atMost`. True when the command has ended; its
    /// semicolon is then taken.
    bool readNumbers(std::vector<double>& numbers, std::size_t atMost);

    /// Takes what is left of the command.
    void skipOperands();

    /// A quoted string, or everything up to the semicolon; at most `atMost` bytes are kept. The command's terminator
    /// is left.
    std::string readText(std::size_t atMost);

private:
    InputStream& m_input;
};

/// What an escape sequence means to a plotter.
struct EscapeSequence {
    enum class Kind {
        EnterPcl, ///< ESC%#A
        EnterHpgl, ///< ESC%#B
        UniversalExit, ///< left in the input
        Reset, ///< ESC E
        DeviceControl, ///< ESC. and a character
        Other, ///< a command of PCL, skipped with its data
    };
    Kind kind = Kind::Other;
    int value = 0; ///< of ESC%#A, ESC%#B
    char control = 0; ///< of a device control
};

/// Takes one escape sequence; the input stands on the ESC. Only UniversalExit is left where it is.
EscapeSequence readEscape(InputStream& input);

/// Bytes of binary data behind a parameter, in which an ESC means nothing: its number counts them before W, and before
/// the V that transfers a plane of raster.
inline std::uint64_t dataLength(const EscapeParameter& parameter)
{
    const bool isPlane = parameter.prefix == '*' && parameter.group == 'b' && parameter.letter == 'V';
    const bool hasData = parameter.letter == 'W' || isPlane;
    return hasData && parameter.value.number > 0 ? static_cast<std::uint64_t>(parameter.value.number) : 0;
}

} // namespace quillrip::hpgl
