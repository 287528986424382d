// Turns advance_widths.txt into C++ tables when the library is built. Usage: generate_advance_widths INPUT OUTPUT

#include <array>
#include <cstddef>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

int failed(int line, const char* what)
{
    std::cerr << "advance_widths.txt:" << line << ": " << what << '\n';
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
        return 2;
    std::ifstream input(argv[1]);
    enum { Nothing, Faces, Symbols, Wingdings } part = Nothing;
    std::vector<std::string> faces;
    std::map<unsigned long, std::vector<std::string>> rows;
    std::map<unsigned long, std::string> symbols;
    std::array<std::string, 256> wingdings;
    wingdings.fill("0");

    std::string text;
    for (int line = 1; std::getline(input, text); ++line) {
        if (text.empty() || text[0] == '#')
            continue;
        std::istringstream words(text);
        std::string first;
        words >> first;
        std::vector<std::string> values;
        for (std::string word; words >> word;)
            values.push_back(word == "-" ? "0" : word);
        if (first == "faces") {
            faces = values;
            part = Faces;
        } else if (first == "symbols") {
            part = Symbols;
        } else if (first == "wingdings") {
            part = Wingdings;
        } else if (part == Faces && values.size() == faces.size()) {
            rows[std::stoul(first, nullptr, 16)] = values;
        } else if (part == Symbols && values.size() == 1) {
            symbols[std::stoul(first, nullptr, 16)] = values[0];
        } else if (part == Wingdings && values.size() == 16) {
            for (std::size_t i = 0; i < 16; ++i)
                wingdings.at(std::stoul(first, nullptr, 16) + i) = values[i];
        } else {
            return failed(line, "row with a wrong number of widths");
        }
    }
    if (rows.empty() || symbols.empty())
        return failed(0, "no widths");

    std::ofstream output(argv[2]);
    output << "// Made from advance_widths.txt when the library is built.\n"
              "#include \"quillrip/fonts/faces/advance_widths.h\"\n\nnamespace quillrip {\n\n"
              "const std::array<const char*, kAdvanceFaceCount> kAdvanceFaces = { {\n";
    for (const std::string& face : faces)
        output << "    \"" << face << "\",\n";
    output << "} };\n\nconst AdvanceRow kAdvanceRows[] = {\n";
    for (const auto& [unicode, values] : rows) {
        output << "    { " << unicode << ", { ";
        for (const std::string& value : values)
            output << value << ", ";
        output << "} },\n";
    }
    output << "};\nconst std::size_t kAdvanceRowCount = " << rows.size()
           << ";\n\nconst SymbolAdvance kSymbolAdvances[] = {\n";
    for (const auto& [unicode, value] : symbols)
        output << "    { " << unicode << ", " << value << " },\n";
    output << "};\nconst std::size_t kSymbolAdvanceCount = " << symbols.size()
           << ";\n\nconst std::array<std::uint16_t, 256> kWingdingsAdvances = { {\n    ";
    for (const std::string& value : wingdings)
        output << value << ", ";
    output << "\n} };\n\n} // namespace quillrip\n";
    return output.flush() ? 0 : 1;
}
