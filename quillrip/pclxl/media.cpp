#include "quillrip/pclxl/media.h"

#include <cctype>

namespace quillrip::pclxl {

namespace {

constexpr double kInch = 720;
constexpr double kMillimetre = 720 / 25.4;

struct Entry {
    int number;
    const char* name; ///< capitals, without blanks
    double width;
    double height;
    double unit;
};

constexpr Entry kMedia[] = {
    { 0, "LETTER", 8.5, 11, kInch },
    { 1, "LEGAL", 8.5, 14, kInch },
    { 2, "A4", 210, 297, kMillimetre },
    { 3, "EXEC", 7.25, 10.5, kInch },
    { 4, "LEDGER", 11, 17, kInch },
    { 5, "A3", 297, 420, kMillimetre },
    { 6, "COM10", 4.125, 9.5, kInch },
    { 7, "MONARCH", 3.875, 7.5, kInch },
    { 8, "C5", 162, 229, kMillimetre },
    { 9, "DL", 110, 220, kMillimetre },
    { 10, "JISB4", 257, 364, kMillimetre },
    { 11, "JISB5", 182, 257, kMillimetre },
    { 12, "B5", 176, 250, kMillimetre },
    { 13, "B5JIS", 182, 257, kMillimetre },
    { 14, "JPOST", 100, 148, kMillimetre },
    { 15, "JPOSTD", 200, 148, kMillimetre },
    { 16, "A5", 148, 210, kMillimetre },
    { 17, "A6", 105, 148, kMillimetre },
    { 18, "JISB6", 128, 182, kMillimetre },
    { 19, "JIS8K", 270, 390, kMillimetre },
    { 20, "JIS16K", 195, 270, kMillimetre },
    { 21, "JISEXEC", 216, 330, kMillimetre },
};

Medium sheetOf(const Entry& entry) { return { entry.width * entry.unit, entry.height * entry.unit }; }

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
        return 1 / 25.4;
    case 2:
        return 1 / 254.0;
    default:
        return 1;
    }
}

} // namespace quillrip::pclxl
