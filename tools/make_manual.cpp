#include "quillrip/cli/command_line.h"
#include "quillrip/cli/version.h"

#include <fstream>
#include <iostream>
#include <iterator>

// Makes the manual page of its template: make_manual TEMPLATE OUT. The option list is the command line's own.
int main(int count, char** words)
{
    if (count != 3)
        return 1;
    std::ifstream input(words[1]);
    std::string text((std::istreambuf_iterator<char>(input)), std::istreambuf_iterator<char>());
    const auto put = [&text](const std::string& name, const std::string& value) {
        const std::size_t at = text.find(name);
        if (at != std::string::npos)
            text.replace(at, name.size(), value);
    };
    put("@PROJECT_VERSION@", quillrip::cli::kVersion);
    std::string options = quillrip::cli::manualOptionList();
    options.pop_back();
    put("@OPTIONS@", options);
    std::ofstream output(words[2]);
    output << text;
    return output.flush() ? 0 : 1;
}
