#include "quillrip/stream/pjl_environment.h"

#include "quillrip/base/paper.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace quillrip::stream {

namespace {

struct PaperVariable {
    const char* name;
    int code;
    PaperName paper;
};

// What PJL calls the sheets, and their numbers in PCL.
const std::array s_papers {
    PaperVariable { "LETTER", 2, PaperName::Letter },
    PaperVariable { "LEGAL", 3, PaperName::Legal },
    PaperVariable { "EXECUTIVE", 1, PaperName::Executive },
    PaperVariable { "LEDGER", 6, PaperName::Ledger },
    PaperVariable { "TABLOID", 6, PaperName::Ledger },
    PaperVariable { "STATEMENT", 5, PaperName::Statement },
    PaperVariable { "FOLIO", 10, PaperName::Folio },
    PaperVariable { "8.5X13", 10, PaperName::Folio },
    PaperVariable { "LEGAL13", 10, PaperName::Folio },
    PaperVariable { "A3", 27, PaperName::A3 },
    PaperVariable { "A4", 26, PaperName::A4 },
    PaperVariable { "A5", 25, PaperName::A5 },
    PaperVariable { "A6", 24, PaperName::A6 },
    PaperVariable { "B6", 44, PaperName::JisB6 },
    PaperVariable { "JISB4", 46, PaperName::JisB4 },
    PaperVariable { "JISB5", 45, PaperName::JisB5 },
    PaperVariable { "JPOST", 71, PaperName::Postcard },
    PaperVariable { "JPOSTD", 72, PaperName::DoublePostcard },
    PaperVariable { "MONARCH", 80, PaperName::Monarch },
    PaperVariable { "COM9", 89, PaperName::Com9 },
    PaperVariable { "COM10", 81, PaperName::Com10 },
    PaperVariable { "DL", 90, PaperName::DL },
    PaperVariable { "C5", 91, PaperName::C5 },
    PaperVariable { "C6", 92, PaperName::C6 },
    PaperVariable { "B5", 100, PaperName::IsoB5 },
};

struct SymbolSetName {
    const char* name;
    int number;
    char letter;
};

// What PJL calls the symbol sets, and their identifiers in PCL.
const std::array s_symbolSets {
    SymbolSetName { "ROMAN8", 8, 'U' },
    SymbolSetName { "ROMAN9", 4, 'U' },
    SymbolSetName { "ROMANEXT", 0, 'E' },
    SymbolSetName { "ISOL1", 0, 'N' },
    SymbolSetName { "ISOL2", 2, 'N' },
    SymbolSetName { "ISOL5", 5, 'N' },
    SymbolSetName { "ISOL6", 6, 'N' },
    SymbolSetName { "ISOL9", 9, 'N' },
    SymbolSetName { "ISOCYR", 10, 'N' },
    SymbolSetName { "ISOGRK", 12, 'N' },
    SymbolSetName { "ISOHEB", 7, 'H' },
    SymbolSetName { "PC8", 10, 'U' },
    SymbolSetName { "PC8DN", 11, 'U' },
    SymbolSetName { "PC8TK", 9, 'T' },
    SymbolSetName { "PC8GRK", 12, 'G' },
    SymbolSetName { "PC850", 12, 'U' },
    SymbolSetName { "PC852", 17, 'U' },
    SymbolSetName { "PC858", 13, 'U' },
    SymbolSetName { "PC775", 26, 'U' },
    SymbolSetName { "PC851", 10, 'G' },
    SymbolSetName { "PC866", 3, 'R' },
    SymbolSetName { "PC862", 15, 'H' },
    SymbolSetName { "PC864", 10, 'V' },
    SymbolSetName { "PC1004", 9, 'J' },
    SymbolSetName { "WIN30", 9, 'U' },
    SymbolSetName { "WINL1", 19, 'U' },
    SymbolSetName { "WINL2", 9, 'E' },
    SymbolSetName { "WINL5", 5, 'T' },
    SymbolSetName { "WINBALT", 19, 'L' },
    SymbolSetName { "WINCYR", 9, 'R' },
    SymbolSetName { "WINGRK", 9, 'G' },
    SymbolSetName { "DESKTOP", 7, 'J' },
    SymbolSetName { "PSTEXT", 10, 'J' },
    SymbolSetName { "VNINTL", 13, 'J' },
    SymbolSetName { "VNUS", 14, 'J' },
    SymbolSetName { "MSPUBL", 6, 'J' },
    SymbolSetName { "MCTEXT", 12, 'J' },
    SymbolSetName { "LEGAL", 1, 'U' },
    SymbolSetName { "MATH8", 8, 'M' },
    SymbolSetName { "PSMATH", 5, 'M' },
    SymbolSetName { "VNMATH", 6, 'M' },
    SymbolSetName { "MSMATH", 6, 'M' },
    SymbolSetName { "PIFONT", 15, 'U' },
    SymbolSetName { "ISO4", 1, 'E' },
    SymbolSetName { "ISO6", 0, 'U' },
    SymbolSetName { "ISO11", 0, 'S' },
    SymbolSetName { "ISO15", 0, 'I' },
    SymbolSetName { "ISO17", 2, 'S' },
    SymbolSetName { "ISO21", 1, 'G' },
    SymbolSetName { "ISO60", 0, 'D' },
    SymbolSetName { "ISO69", 1, 'F' },
};

std::string plainName(const std::string& text)
{
    std::string name;
    for (const char c : text) {
        if (c != ' ' && c != '\t' && c != '"')
            name.push_back(c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c);
    }
    return name;
}

std::optional<int> whole(const std::string& text, int lowest, int highest)
{
    const auto number = parseWholeNumber(plainName(text));
    if (!number || *number < static_cast<std::uint64_t>(lowest) || *number > static_cast<std::uint64_t>(highest))
        return std::nullopt;
    return static_cast<int>(*number);
}

std::optional<double> decimal(const std::string& text, double lowest, double highest)
{
    const auto number = parseDecimal(plainName(text));
    return number && *number >= lowest && *number <= highest ? number : std::nullopt;
}

template <typename Value> void assign(std::optional<Value>& variable, const std::optional<Value>& value)
{
    if (value)
        variable = value;
}

} // namespace

void PjlEnvironment::set(const std::string& language, const std::string& name, const std::string& value)
{
    const std::string plain = plainName(value);
    if (name == "PAPER") {
        const auto paper
            = std::find_if(s_papers.begin(), s_papers.end(), [&](const PaperVariable& p) { return plain == p.name; });
        if (paper != s_papers.end())
            paperCode = paper->code;
        else if (plain == "CUSTOM")
            paperCode = kCustomPaperCode;
    } else if (name == "PAPERWIDTH") {
        assign(customWidth, decimal(value, 1, 432000));
    } else if (name == "PAPERLENGTH") {
        assign(customLength, decimal(value, 1, 432000));
    } else if (name == "ORIENTATION") {
        if (plain == "PORTRAIT" || plain == "LANDSCAPE")
            orientation = plain == "LANDSCAPE" ? 1 : 0;
    } else if (name == "FORMLINES") {
        assign(formLines, whole(value, 5, 128));
    } else if (name == "RESOLUTION") {
        assign(resolution, whole(value, 1, 9600));
    } else if (name == "RAS1200MODE") {
        hasFineRaster = plain == "TRUE" || plain == "ON";
    } else if (name == "RENDERMODE" || name == "COLORMODE") {
        isGray = plain == "GRAYSCALE" || plain == "GRAY" || plain == "MONO" || plain == "MONOCHROME";
    } else if (name == "PERSONALITY") {
        personality = plain;
    } else if (language == "PCL") {
        if (name == "SYMSET") {
            const auto set = std::find_if(
                s_symbolSets.begin(), s_symbolSets.end(), [&](const SymbolSetName& s) { return plain == s.name; });
            if (set != s_symbolSets.end())
                symbolSet = set->number * 32 + set->letter - 64;
        } else if (name == "FONTNUMBER") {
            assign(fontNumber, whole(value, 0, 999));
        } else if (name == "PITCH") {
            assign(pitch, decimal(value, 0.44, 99.99));
        } else if (name == "PTSIZE") {
            assign(pointSize, decimal(value, 4, 999.75));
        } else if (name == "LINETERMINATION") {
            assign(lineTermination, whole(value, 0, 3));
        }
    }
}

std::optional<PaperSize> paperSizeOfCode(int code)
{
    const auto found
        = std::find_if(s_papers.begin(), s_papers.end(), [code](const PaperVariable& p) { return p.code == code; });
    if (found == s_papers.end())
        return std::nullopt;
    const Paper& paper = paperOf(found->paper);
    return PaperSize { paper.width.count, paper.length.count };
}

} // namespace quillrip::stream
