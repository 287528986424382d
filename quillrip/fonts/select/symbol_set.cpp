#include "quillrip/fonts/select/symbol_set.h"

#include "quillrip/base/reporter.h"
#include "quillrip/fonts/select/symbol_set_tables.h"
#include "quillrip/fonts/soft/header_fields.h"

#include <algorithm>

namespace quillrip {

bool isPrintableCode(CodeRange range, std::uint32_t code)
{
    switch (range) {
    case CodeRange::SevenBit:
        return code >= 0x20 && code <= 0x7F;
    case CodeRange::EightBit:
        return (code >= 0x20 && code <= 0x7F) || (code >= 0xA0 && code <= 0xFF);
    case CodeRange::AllCodes:
        return code <= 0xFF;
    case CodeRange::Wide:
        return code <= 0xFFFF;
    }
    return false;
}

SymbolSet::SymbolSet(std::uint16_t number, std::string name, CodeRange range, const Table& table)
    : m_number(number)
    , m_name(std::move(name))
    , m_range(range)
    , m_table(table)
{
}

SymbolSet SymbolSet::unicodeIdentity()
{
    SymbolSet set(kUnicodeSymbolSet, "Unicode", CodeRange::Wide, {});
    set.m_isIdentity = true;
    return set;
}

std::string SymbolSet::designator() const
{
    return std::to_string(m_number / 32) + static_cast<char>(m_number % 32 + 64);
}

std::shared_ptr<const SymbolSet> SymbolSet::parse(ByteView data, const Reporter& reporter)
{
    constexpr std::size_t kSmallestHeader = 18;
    constexpr std::uint8_t kFormatMasterSymbolList = 1;
    constexpr std::uint8_t kFormatUnicode = 3;
    constexpr std::uint16_t kNoSymbol = 0xFFFF; // in either numbering

    if (data.size < kSmallestHeader) {
        reporter.damage("symbolset.short", "symbol set definition shorter than its header, ignored");
        return nullptr;
    }
    const std::size_t headerSize = u16At(data, 0);
    const auto number = static_cast<std::uint16_t>(u16At(data, 2));
    const std::uint8_t format = data[4];
    const std::uint8_t range = data[5];
    const unsigned first = u16At(data, 6);
    const unsigned last = u16At(data, 8);
    if (headerSize < kSmallestHeader || (format != kFormatMasterSymbolList && format != kFormatUnicode) || range > 2
        || first > last || last > 255) {
        reporter.damage("symbolset.header", "symbol set definition with an invalid header, ignored");
        return nullptr;
    }

    Table table {};
    std::vector<std::uint16_t> masterSymbols(format == kFormatMasterSymbolList ? table.size() : 0, kNoMasterSymbol);
    for (unsigned code = first; code <= last; ++code) {
        const std::size_t at = headerSize + std::size_t { 2 } * (code - first);
        if (at + 2 > data.size) {
            reporter.damage("symbolset.truncated", "symbol set definition shorter than its code range");
            break;
        }
        const auto symbol = static_cast<std::uint16_t>(u16At(data, at));
        if (symbol == kNoSymbol)
            continue;
        table[code] = format == kFormatUnicode ? symbol : unicodeOfMasterSymbol(symbol);
        if (format == kFormatMasterSymbolList)
            masterSymbols[code] = symbol;
    }
    auto set = std::make_shared<SymbolSet>(number, "User-defined", static_cast<CodeRange>(range), table);
    set->m_masterSymbols = std::move(masterSymbols);
    for (std::size_t at = 10; at < 18; ++at)
        set->m_requirements = set->m_requirements << 8 | data[at];
    return set;
}

std::uint16_t SymbolSet::masterSymbol(std::uint32_t code) const
{
    if (code < m_masterSymbols.size())
        return m_masterSymbols[code];
    const char32_t character = unicode(code);
    return character ? masterSymbolOfUnicode(character) : kNoMasterSymbol;
}

char32_t unicodeOfMasterSymbol(std::uint16_t number)
{
    return number < kMasterSymbolList.size() ? kMasterSymbolList[number] : 0;
}

std::uint16_t masterSymbolOfUnicode(char32_t unicode)
{
    const auto found = std::find(kMasterSymbolList.begin(), kMasterSymbolList.end(), unicode);
    return unicode == 0 || found == kMasterSymbolList.end()
        ? kNoMasterSymbol
        : static_cast<std::uint16_t>(found - kMasterSymbolList.begin());
}

const std::vector<const SymbolSet*>& builtInSymbolSets()
{
    static const std::vector<SymbolSet> s_sets = [] {
        std::vector<SymbolSet> sets;
        sets.reserve(kSymbolSetTableCount + 1);
        for (std::size_t i = 0; i < kSymbolSetTableCount; ++i) {
            const SymbolSetTable& from = kSymbolSetTables[i];
            sets.emplace_back(from.number, from.name, static_cast<CodeRange>(from.range), from.unicode);
        }
        sets.push_back(SymbolSet::unicodeIdentity());
        std::sort(sets.begin(), sets.end(), [](const auto& a, const auto& b) { return a.number() < b.number(); });
        return sets;
    }();
    static const std::vector<const SymbolSet*> s_pointers = [] {
        std::vector<const SymbolSet*> pointers;
        pointers.reserve(s_sets.size());
        for (const SymbolSet& set : s_sets)
            pointers.push_back(&set);
        return pointers;
    }();
    return s_pointers;
}

const SymbolSet* findSymbolSet(std::uint16_t number)
{
    const auto& sets = builtInSymbolSets();
    const auto found = std::lower_bound(sets.begin(), sets.end(), number,
        [](const SymbolSet* set, std::uint16_t wanted) { return set->number() < wanted; });
    return found != sets.end() && (*found)->number() == number ? *found : nullptr;
}

} // namespace quillrip
