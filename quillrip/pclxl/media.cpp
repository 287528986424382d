#include "quillrip/pclxl/media.h"

#include "quillrip/base/paper.h"
#include "quillrip/base/units.h"

#include <cctype>

namespace quillrip::pclxl {

namespace {

struct Entry {
    int number;
    const char* name; ///< capitals, without blanks
    PaperName paper;
};

constexpr Entry kMedia[] = {
    { 0, "LETTER", PaperName::Letter },
    { 1, "LEGAL", PaperName::Legal },
    { 2, "A4", PaperName::A4 },
    { 3, "EXEC", PaperName::Executive },
    { 4, "LEDGER", PaperName::Ledger },
    { 5, "A3", PaperName::A3 },
    { 6, "COM10", PaperName::Com10 },
    { 7, "MONARCH", PaperName::Monarch },
    { 8, "C5", PaperName::C5 },
    { 9, "DL", PaperName::DL },
    { 10, "JISB4", PaperName::JisB4 },
    { 11, "JISB5", PaperName::JisB5 },
    { 12, "B5", PaperName::IsoB5 },
    { 13, "B5JIS", PaperName::JisB5 },
    { 14, "JPOST", PaperName::Postcard },
    { 15, "JPOSTD", PaperName::DoublePostcard },
    { 16, "A5", PaperName::A5 },
    { 17, "A6", PaperName::A6 },
    { 18, "JISB6", PaperName::JisB6 },
    { 19, "JIS8K", PaperName::Jis8K },
    { 20, "JIS16K", PaperName::Jis16K },
    { 21, "JISEXEC", PaperName::JisExecutive },
};

Medium sheetOf(const Entry& entry)
{
    const Paper& paper = paperOf(entry.paper);
    const Medium medium { paper.width.count, paper.length.count };
    // The double postcard is fed with its long edge first.
    return entry.paper == PaperName::DoublePostcard ? Medium { medium.height, medium.width } : medium;
}

} // namespace

std::optional<Medium> mediumOfNumber(int number)
{
    for (const Entry& entry : kMedia)
        if (entry.number == number)
            return sheetOf(entry);
    return std::nullopt;
}

std::optional<Medium> mediumOfName(const std::string& name)
{
    std::string plain;
    for (const char c : name)
        if (std::isalnum(static_cast<unsigned char>(c)))
            plain += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    for (const Entry& entry : kMedia)
        if (plain == entry.name)
            return sheetOf(entry);
    return std::nullopt;
}

double inchesOfMeasure(int measure)
{
    switch (measure) {
    case 1:
        return 1 / kMillimetresPerInch;
    case 2:
        return 1 / (10 * kMillimetresPerInch);
    default:
        return 1;
    }
}

} // namespace quillrip::pclxl
