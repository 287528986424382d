#include "quillrip/fonts/select/font_names.h"

#include <algorithm>
#include <array>

namespace quillrip {

namespace {

struct Treatment {
    const char* letters; ///< folded to lower case
    std::uint16_t style;
    int weight;
};

/// Longer ones first where one is the end of another.
constexpr std::array<Treatment, 34> kTreatments { {
    { "bolditalic", 1, 3 },
    { "boldoblique", 1, 3 },
    { "condensed", 4, 0 },
    { "narrow", 4, 0 },
    { "regular", 0, 0 },
    { "medium", 0, 0 },
    { "oblique", 1, 0 },
    { "italic", 1, 0 },
    { "kursiv", 1, 0 },
    { "halbfett", 0, 3 },
    { "antiqua", 0, 0 },
    { "extrabold", 0, 4 },
    { "light", 0, -3 },
    { "roman", 0, 0 },
    { "book", 0, 0 },
    { "bold", 0, 3 },
    { "demi", 0, 2 },
    { "krsv", 1, 0 },
    { "hlb", 0, 3 },
    { "rmn", 0, 0 },
    { "md", 0, 0 },
    { "bd", 0, 3 },
    { "it", 1, 0 },
    { "ob", 1, 0 },
    { "cd", 4, 0 },
    { "nr", 4, 0 },
    { "lt", 0, -3 },
    { "db", 0, 2 },
    { "bk", 0, 0 },
    { "xb", 0, 4 },
    { "0n", 0, 0 },
    { "8u", 0, 0 },
    { "10u", 0, 0 },
    { "psmt", 0, 0 },
} };

struct Stem {
    const char* letters;
    std::uint16_t family;
};

/// Beginnings of folded names, more special ones first.
constexpr std::array<Stem, 58> kStems { {
    { "albertus", 4362 },
    { "antiqolive", 4168 },
    { "antiqueolv", 4168 },
    { "antiqueolive", 4168 },
    { "marial", 16602 },
    { "arial", 16602 },
    { "cgomega", 4113 },
    { "omega", 4113 },
    { "cgtimes", 4101 },
    { "clarendon", 4140 },
    { "coronet", 4116 },
    { "marigold", 4297 },
    { "courierps", 24579 },
    { "couriernew", 4099 },
    { "courier", 4099 },
    { "cour", 4099 },
    { "garamond", 4197 },
    { "garmond", 4197 },
    { "lettergothic", 4102 },
    { "lettergoth", 4102 },
    { "letrgothic", 4102 },
    { "timesnewrmn", 16901 },
    { "timesnewroman", 16901 },
    { "timesnew", 16901 },
    { "mtimes", 16901 },
    { "univers", 4148 },
    { "symbolps", 45358 },
    { "msymbol", 16686 },
    { "symbol", 16686 },
    { "wingdings", 31402 },
    { "webdings", 31402 },
    { "itcavantgard", 24607 },
    { "avantgard", 24607 },
    { "avantegarde", 24607 },
    { "itcbookman", 24623 },
    { "bookman", 24623 },
    { "helvetica", 24580 },
    { "helv", 24580 },
    { "nwcentschlbk", 24703 },
    { "newcentury", 24703 },
    { "centuryschool", 24703 },
    { "palatino", 24591 },
    { "bookantiqua", 24591 },
    { "times", 25093 },
    { "zapfchancery", 45099 },
    { "itczapfchancery", 45099 },
    { "zapfdingbats", 45101 },
    { "itczapfdingbats", 45101 },
    { "lineprinter", 0 },
    { "lucidaconsole", 4099 },
    { "consolas", 4099 },
    { "calibri", 16602 },
    { "tahoma", 16602 },
    { "verdana", 16602 },
    { "segoeui", 16602 },
    { "georgia", 16901 },
    { "cambria", 16901 },
    { "mssansserif", 16602 },
} };

std::string folded(const std::string& name)
{
    std::string result;
    for (const char c : name) {
        if (c >= 'A' && c <= 'Z')
            result += static_cast<char>(c - 'A' + 'a');
        else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'))
            result += c;
    }
    return result;
}

bool startsWith(const std::string& text, const std::string& start) { return text.rfind(start, 0) == 0; }

bool endsWith(const std::string& text, const std::string& end)
{
    return text.size() > end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

} // namespace

NamedFace readFontName(const std::string& name)
{
    const std::string whole = folded(name);
    NamedFace face;
    const auto stem = std::find_if(
        kStems.begin(), kStems.end(), [&](const Stem& candidate) { return startsWith(whole, candidate.letters); });
    face.isKnown = stem != kStems.end();
    // What comes after the family is treatment; without a family, what can be read from the end.
    std::string rest = face.isKnown ? whole.substr(std::string(stem->letters).size()) : whole;
    rest.insert(rest.begin(), ' ');

    bool isItalic = false;
    bool isCondensed = false;
    for (bool hasFound = true; hasFound;) {
        hasFound = false;
        for (const Treatment& treatment : kTreatments) {
            if (!endsWith(rest, treatment.letters))
                continue;
            rest.erase(rest.size() - std::string(treatment.letters).size());
            isItalic = isItalic || (treatment.style & 1);
            isCondensed = isCondensed || (treatment.style & 4);
            if (treatment.weight != 0)
                face.weight = treatment.weight;
            hasFound = true;
            break;
        }
    }
    face.style = static_cast<std::uint16_t>((isItalic ? 1 : 0) + (isCondensed ? 4 : 0));

    constexpr std::uint16_t kCourier = 4099;
    constexpr std::uint16_t kSerif = 4101;
    face.family = face.isKnown ? stem->family : whole.find("cour") != std::string::npos ? kCourier : kSerif;
    return face;
}

} // namespace quillrip
