#include "quillrip/emf/devmode.h"

#include "quillrip/emf/record.h"

#include <array>
#include <utility>

namespace quillrip::emf {

namespace {

constexpr std::size_t kSmallestPublicPart = 84;
constexpr std::size_t kLargestPublicPart = 220;
constexpr std::size_t kNameUnits = 32;
constexpr double kInch = 25.4;

/// DMPAPER numbers 1 to 118, mm; 0: none of that number.
struct PaperSize {
    double width;
    double length;
};
constexpr PaperSize inches(double width, double length) { return { width * kInch, length * kInch }; }
constexpr PaperSize kNone { 0, 0 };

constexpr std::array<PaperSize, 118> kPapers { {
    inches(8.5, 11), inches(8.5, 11), inches(11, 17), inches(17, 11), inches(8.5, 14), inches(5.5, 8.5), // 1
    inches(7.25, 10.5), { 297, 420 }, { 210, 297 }, { 210, 297 }, { 148, 210 }, { 257, 364 }, // 7
    { 182, 257 }, inches(8.5, 13), { 215, 275 }, inches(10, 14), inches(11, 17), inches(8.5, 11), // 13
    inches(3.875, 8.875), inches(4.125, 9.5), inches(4.5, 10.375), inches(4.75, 11), inches(5, 11.5), // 19
    inches(17, 22), inches(22, 34), inches(34, 44), { 110, 220 }, { 162, 229 }, { 324, 458 }, // 24
    { 229, 324 }, { 114, 162 }, { 114, 229 }, { 250, 353 }, { 176, 250 }, { 176, 125 }, { 110, 230 }, // 30
    inches(3.875, 7.5), inches(3.625, 6.5), inches(14.875, 11), inches(8.5, 12), inches(8, 13), // 37
    { 250, 353 }, { 100, 148 }, inches(9, 11), inches(10, 11), inches(15, 11), { 220, 220 }, kNone, kNone, // 42
    inches(9.5, 12), inches(9.5, 15), inches(11.69, 18), inches(9.27, 12.69), inches(8.5, 11), // 50
    { 210, 297 }, inches(9.5, 12), { 227, 356 }, { 305, 487 }, inches(8.5, 12.69), { 210, 330 }, // 55
    { 148, 210 }, { 182, 257 }, { 322, 445 }, { 174, 235 }, { 201, 276 }, { 420, 594 }, { 297, 420 }, // 61
    { 322, 445 }, { 200, 148 }, { 105, 148 }, { 240, 332 }, { 216, 277 }, { 120, 235 }, { 90, 205 }, // 68
    inches(11, 8.5), { 420, 297 }, { 297, 210 }, { 210, 148 }, { 364, 257 }, { 257, 182 }, { 148, 100 }, // 75
    { 148, 200 }, { 148, 105 }, { 332, 240 }, { 277, 216 }, { 235, 120 }, { 205, 90 }, { 128, 182 }, // 82
    { 182, 128 }, inches(12, 11), { 105, 235 }, { 235, 105 }, { 146, 215 }, { 97, 151 }, { 97, 151 }, // 89
    { 102, 165 }, { 102, 176 }, { 125, 176 }, { 110, 208 }, { 110, 220 }, { 120, 230 }, { 160, 230 }, // 96
    { 120, 309 }, { 229, 324 }, { 324, 458 }, { 215, 146 }, { 151, 97 }, { 151, 97 }, { 165, 102 }, // 103
    { 176, 102 }, { 176, 125 }, { 208, 110 }, { 220, 110 }, { 230, 120 }, { 230, 160 }, { 309, 120 }, // 110
    { 324, 229 }, { 458, 324 }, // 117
} };

struct Form {
    const char* name;
    int paper;
};
constexpr std::array<Form, 8> kForms { { { "Letter", 1 }, { "Legal", 5 }, { "Executive", 7 }, { "A3", 8 }, { "A4", 9 },
    { "A5", 11 }, { "A6", 70 }, { "Tabloid", 3 } } };

/// Where the fields lie: names take two bytes a character, or one in jobs of the oldest systems.
struct Places {
    std::size_t publicSize;
    std::size_t orientation;
    std::size_t form;
    std::size_t unitSize;
};
constexpr Places kWide { 68, 76, 102, 2 };
constexpr Places kNarrow { 36, 44, 70, 1 };

bool fits(const Fields& fields, const Places& places)
{
    constexpr std::uint16_t kOldestVersion = 0x0300;
    constexpr std::uint16_t kNewestVersion = 0x0500;
    const std::uint16_t version = fields.u16(places.publicSize - 4);
    const std::size_t size = fields.u16(places.publicSize);
    return version >= kOldestVersion && version <= kNewestVersion && size <= kLargestPublicPart
        && size >= kSmallestPublicPart - (kWide.publicSize - places.publicSize)
        && fields.has(0, places.orientation + 8);
}

} // namespace

std::optional<Devmode> Devmode::read(ByteView data)
{
    const Fields whole(data);
    const Places* places = fits(whole, kWide) ? &kWide : fits(whole, kNarrow) ? &kNarrow : nullptr;
    if (!places)
        return std::nullopt;
    // Fields beyond the public part are the driver's own.
    const Fields fields(data.sub(0, whole.u16(places->publicSize)));
    constexpr std::int16_t kLandscape = 2;
    constexpr double kTenthOfMillimeter = 0.1;
    Devmode mode;
    const std::size_t at = places->orientation;
    mode.isLandscape = fields.i16(at) == kLandscape;
    mode.paper = fields.i16(at + 2);
    mode.ownSize = { fields.i16(at + 6) * kTenthOfMillimeter, fields.i16(at + 4) * kTenthOfMillimeter };
    if (fields.i16(at + 8) > 0)
        mode.scale = fields.i16(at + 8);
    for (std::size_t i = 0; i < kNameUnits; ++i) {
        const std::size_t place = places->form + i * places->unitSize;
        const unsigned unit = places->unitSize == 2 ? fields.u16(place) : fields.u8(place);
        if (unit == 0 || unit > 0x7E)
            break;
        mode.form.push_back(static_cast<char>(unit));
    }
    return mode;
}

std::vector<Size> Devmode::sheets() const
{
    std::vector<Size> sizes;
    const auto add = [&](Size size) {
        if (size.width > 0 && size.height > 0)
            sizes.push_back(isLandscape ? Size { size.height, size.width } : size);
    };
    add(ownSize);
    add(sheetOfPaperNumber(paper));
    add(sheetOfForm(form));
    return sizes;
}

Size sheetOfPaperNumber(int number)
{
    if (number < 1 || number > static_cast<int>(kPapers.size()))
        return {};
    const PaperSize& size = kPapers[static_cast<std::size_t>(number) - 1];
    return { size.width, size.length };
}

Size sheetOfForm(const std::string& name)
{
    for (const Form& form : kForms) {
        if (name == form.name)
            return sheetOfPaperNumber(form.paper);
    }
    return {};
}

} // namespace quillrip::emf
