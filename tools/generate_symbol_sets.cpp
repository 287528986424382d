// Turns symbol_sets.txt into a C++ table when the library is built. Usage: generate_symbol_sets INPUT OUTPUT

#include <array>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>

namespace {

struct Set {
    std::string designator;
    std::string name;
    int range = 0;
    std::array<std::uint32_t, 256> table {};
};

int failed(int line, const char* what)
{
    std::cerr << "symbol_sets.txt:" << line << ": " << what << '\n';
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
        return 2;
    std::ifstream input(argv[1]);
    std::map<unsigned, Set> sets;
    std::array<std::uint32_t, 2048> list {};
    Set* current = nullptr;
    bool isList = false;
    std::string text;
    for (int line = 1; std::getline(input, text); ++line) {
        if (text.empty() || text[0] == '#')
            continue;
        std::istringstream words(text);
        if (text.rfind("set ", 0) == 0) {
            Set set;
            std::string keyword;
            words >> keyword >> set.designator >> set.range >> std::ws;
            std::getline(words, set.name);
            if (!words && set.name.empty())
                return failed(line, "a set needs designator, range and name");
            const auto number = static_cast<unsigned>(std::stoul(set.designator)) * 32
                + static_cast<unsigned>(set.designator.back()) - 64;
            if (!sets.emplace(number, set).second)
                return failed(line, "set defined twice");
            current = &sets[number];
            continue;
        }
        if (text == "list") {
            isList = true;
            continue;
        }
        std::string first;
        words >> first;
        if ((!current && !isList) || first.size() < 2 || first.back() != ':')
            return failed(line, "a row starts with its first code and a colon");
        const unsigned long row = std::stoul(first, nullptr, isList ? 10 : 16);
        const unsigned long columns = isList ? 10 : 16;
        for (unsigned long i = 0; i < columns; ++i) {
            std::string value;
            if (!(words >> value))
                return failed(line, "a row is too short");
            if (value == "-")
                continue;
            const auto unicode = static_cast<std::uint32_t>(std::stoul(value, nullptr, 16));
            (isList ? list.at(row + i) : current->table.at(row + i)) = unicode;
        }
    }

    std::ofstream output(argv[2]);
    output << "// Made from symbol_sets.txt when the library is built.\n"
              "#include \"quillrip/fonts/select/symbol_set_tables.h\"\n\nnamespace quillrip {\n\n"
              "const SymbolSetTable kSymbolSetTables[] = {\n";
    for (const auto& [number, set] : sets) {
        output << "    { " << number << ", \"" << set.name << "\", " << set.range << ",\n        { ";
        for (std::size_t i = 0; i < set.table.size(); ++i)
            output << set.table[i] << (i % 16 == 15 ? ",\n          " : ", ");
        output << "} },\n";
    }
    output << "};\n\nconst std::size_t kSymbolSetTableCount = " << sets.size()
           << ";\n\nconst std::array<char16_t, 2048> kMasterSymbolList = { {\n    ";
    for (std::size_t i = 0; i < list.size(); ++i)
        output << list[i] << (i % 16 == 15 ? ",\n    " : ", ");
    output << "} };\n\n} // namespace quillrip\n";
    return sets.empty() || !output.flush() ? 1 : 0;
}
