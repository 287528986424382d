#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace quillrip::hpgl {

/// Two letters, upper case, as one number that sorts like the letters.
using Mnemonic = std::uint16_t;
constexpr Mnemonic mnemonic(const char (&letters)[3])
{
    return static_cast<Mnemonic>(static_cast<unsigned char>(letters[0]) << 8 | static_cast<unsigned char>(letters[1]));
}
/// From any two letters, whatever their case.
constexpr Mnemonic mnemonic(int first, int second)
{
    return static_cast<Mnemonic>((first & ~0x20) << 8 | (second & ~0x20));
}
std::string toString(Mnemonic mnemonic);

/// What stands behind a mnemonic.
enum class Form : std::uint8_t {
    Numbers,
    Pairs, ///< numbers, an even count of them
    Sextuples,
    Label, ///< text up to the label terminator
    Terminator, ///< a byte that becomes the label terminator
    Symbol, ///< one character
    Encoded, ///< PE
    Text, ///< quoted
};

/// How the operands of a command reach its handler.
enum class Reading : std::uint8_t {
    AtOnce, ///< all numbers, then the handler
    InBatches, ///< the handler is called again for every few thousand
    ByHandler, ///< the handler reads the input itself
};

/// What becomes of the line being drawn.
enum class LineEffect : std::uint8_t {
    Goes, ///< the command may go on with it
    Ends, ///< drawn; the line type goes on where it was
    Breaks, ///< drawn, and the line type begins anew
};

/// A command of HP-GL/2 or HP-GL: what can be said of it without carrying it out.
struct MnemonicEntry {
    static constexpr std::uint8_t kAny = 255;
    static constexpr std::uint8_t kStarts = 1; ///< plots begin with it
    static constexpr std::uint8_t kInPolygon = 2; ///< polygon mode does not ignore it
    static constexpr std::uint8_t kPlotFile = 4; ///< skipped within PCL

    Mnemonic mnemonic;
    const char* name;
    Form form;
    std::uint8_t least; ///< operands; of Label, Encoded, Symbol and Text nothing is told
    std::uint8_t most; ///< kAny: no limit
    LineEffect line;
    std::uint8_t flags = 0;

    bool mayStartPlot() const { return flags & kStarts; }
    bool isLegalInPolygon() const { return flags & kInPolygon; }
    bool isForPlotFiles() const { return flags & kPlotFile; }
    Reading reading() const;
};

/// All mnemonics of the language in their order, and one of them; null for none.
const MnemonicEntry* mnemonicsBegin();
const MnemonicEntry* mnemonicsEnd();
const MnemonicEntry* findMnemonic(Mnemonic mnemonic);

} // namespace quillrip::hpgl
