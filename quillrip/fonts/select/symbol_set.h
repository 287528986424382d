#pragma once

#include "quillrip/base/bytes.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quillrip {

class Reporter;

constexpr std::uint16_t kNoMasterSymbol = 0xFFFF;

/// Which character codes of a symbol set print; the numbers are those of soft font headers.
enum class CodeRange : std::uint8_t {
    SevenBit = 0, ///< 0x20 to 0x7F
    EightBit = 1, ///< 0x20 to 0x7F and 0xA0 to 0xFF
    AllCodes = 2, ///< 0 to 255 (which of them a language takes as controls is the language's affair)
    Wide = 3, ///< 0 to 65535
};

bool isPrintableCode(CodeRange range, std::uint32_t code);

/// What the codes of text mean: character code to Unicode. Immutable once made.
class SymbolSet {
public:
    using Table = std::array<char32_t, 256>;

    SymbolSet(std::uint16_t number, std::string name, CodeRange range, const Table& table);
    /// Set 18N: codes are Unicode values.
    static SymbolSet unicodeIdentity();

    /// A user-defined set from the data of the "define symbol set" command: header and an array of symbol
    /// numbers (master symbol list or Unicode). Null when the data make no set.
    static std::shared_ptr<const SymbolSet> parse(ByteView data, const Reporter& reporter);

    /// 32 * number + letter - 64: 277 for 8U. Headers, PCL XL and HP-GL/2 use this number.
    std::uint16_t number() const { return m_number; }
    /// As the selection command writes it: "8U".
    std::string designator() const;
    const std::string& name() const { return m_name; }
    CodeRange range() const { return m_range; }
    bool isPrintable(std::uint32_t code) const { return isPrintableCode(m_range, code); }
    /// The character of a code, 0 when the set has none there.
    char32_t unicode(std::uint32_t code) const
    {
        if (m_isIdentity)
            return code;
        return code < m_table.size() ? m_table[code] : 0;
    }
    /// Its number in the master symbol list, kNoMasterSymbol when the set has none there.
    std::uint16_t masterSymbol(std::uint32_t code) const;
    /// What the set demands of an unbound font (complement bits, see FontTraits::complement); 0 when unknown.
    std::uint64_t requirements() const { return m_requirements; }

private:
    std::uint16_t m_number;
    std::string m_name;
    CodeRange m_range;
    bool m_isIdentity = false;
    std::uint64_t m_requirements = 0;
    Table m_table;
    std::vector<std::uint16_t> m_masterSymbols; ///< user-defined sets in that numbering
};

/// 32 * number + letter - 64. `letter` is upper case, @ to ^.
constexpr std::uint16_t symbolSetNumber(unsigned number, char letter)
{
    return static_cast<std::uint16_t>(number * 32 + static_cast<unsigned>(letter) - 64);
}

constexpr std::uint16_t kRoman8 = symbolSetNumber(8, 'U');
constexpr std::uint16_t kUnicodeSymbolSet = symbolSetNumber(18, 'N');
/// Sets of faces that have no other.
constexpr std::uint16_t kSymbolSet = symbolSetNumber(19, 'M');
constexpr std::uint16_t kWingdingsSet = symbolSetNumber(579, 'L');
constexpr std::uint16_t kDingbatsSet = symbolSetNumber(14, 'L');

/// A set that the printer has built in, or null. The pointer lives as long as the program.
const SymbolSet* findSymbolSet(std::uint16_t number);

/// All built-in sets, by number.
const std::vector<const SymbolSet*>& builtInSymbolSets();

/// Unicode of a number of the master symbol list (format 1 symbol sets, unbound Intellifont fonts); 0 when unknown.
char32_t unicodeOfMasterSymbol(std::uint16_t number);
/// The number of a character in the master symbol list; kNoMasterSymbol when it is not there.
std::uint16_t masterSymbolOfUnicode(char32_t unicode);

} // namespace quillrip
