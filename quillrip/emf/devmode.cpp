#include "quillrip/emf/devmode.h"

#include "quillrip/base/paper.h"
#include "quillrip/emf/record.h"

#include <array>
#include <utility>

namespace quillrip::emf {

namespace {

constexpr std::size_t kSmallestPublicPart = 84;
constexpr std::size_t kLargestPublicPart = 220;
constexpr std::size_t kNameUnits = 32;

struct TurnedPaper {
    PaperName name;
    bool isWide; ///< the long edge is across
};
using PaperNumber = std::optional<TurnedPaper>;
constexpr PaperNumber tall(PaperName name) { return TurnedPaper { name, false }; }
constexpr PaperNumber wide(PaperName name) { return TurnedPaper { name, true }; }

/// DMPAPER numbers from 1 on; nothing where there is none of that number.
constexpr std::array<PaperNumber, 118> kPapers { {
    tall(PaperName::Letter), tall(PaperName::Letter), tall(PaperName::Ledger), wide(PaperName::Ledger), // 1
    tall(PaperName::Legal), tall(PaperName::Statement), tall(PaperName::Executive), tall(PaperName::A3), // 5
    tall(PaperName::A4), tall(PaperName::A4), tall(PaperName::A5), tall(PaperName::JisB4), // 9
    tall(PaperName::JisB5), tall(PaperName::Folio), tall(PaperName::Quarto), tall(PaperName::Inch10x14), // 13
    tall(PaperName::Ledger), tall(PaperName::Letter), tall(PaperName::Com9), tall(PaperName::Com10), // 17
    tall(PaperName::Com11), tall(PaperName::Com12), tall(PaperName::Com14), tall(PaperName::AnsiC), // 21
    tall(PaperName::AnsiD), tall(PaperName::AnsiE), tall(PaperName::DL), tall(PaperName::C5), // 25
    tall(PaperName::C3), tall(PaperName::C4), tall(PaperName::C6), tall(PaperName::C65), // 29
    tall(PaperName::IsoB4), tall(PaperName::IsoB5), wide(PaperName::IsoB6), tall(PaperName::Italy), // 33
    tall(PaperName::Monarch), tall(PaperName::Com6), wide(PaperName::FanfoldUs), tall(PaperName::FanfoldGerman), // 37
    tall(PaperName::FanfoldGermanLegal), tall(PaperName::IsoB4), tall(PaperName::Postcard),
    tall(PaperName::Inch9x11), // 41
    tall(PaperName::Inch10x11), wide(PaperName::Inch11x15), tall(PaperName::Invite), std::nullopt, // 45
    std::nullopt, tall(PaperName::LetterExtra), tall(PaperName::LegalExtra), tall(PaperName::TabloidExtra), // 49
    tall(PaperName::A4Extra), tall(PaperName::Letter), tall(PaperName::A4), tall(PaperName::LetterExtra), // 53
    tall(PaperName::SuperA), tall(PaperName::SuperBMetric), tall(PaperName::LetterPlus), tall(PaperName::A4Plus), // 57
    tall(PaperName::A5), tall(PaperName::JisB5), tall(PaperName::A3Extra), tall(PaperName::A5Extra), // 61
    tall(PaperName::IsoB5Extra), tall(PaperName::A2), tall(PaperName::A3), tall(PaperName::A3Extra), // 65
    wide(PaperName::DoublePostcard), tall(PaperName::A6), tall(PaperName::Kaku2), tall(PaperName::Kaku3), // 69
    tall(PaperName::Chou3), tall(PaperName::Chou4), wide(PaperName::Letter), wide(PaperName::A3), // 73
    wide(PaperName::A4), wide(PaperName::A5), wide(PaperName::JisB4), wide(PaperName::JisB5), // 77
    wide(PaperName::Postcard), tall(PaperName::DoublePostcard), wide(PaperName::A6), wide(PaperName::Kaku2), // 81
    wide(PaperName::Kaku3), wide(PaperName::Chou3), wide(PaperName::Chou4), tall(PaperName::JisB6), // 85
    wide(PaperName::JisB6), wide(PaperName::Inch11x12), tall(PaperName::You4), wide(PaperName::You4), // 89
    tall(PaperName::Prc16K), tall(PaperName::Prc32K), tall(PaperName::Prc32K), tall(PaperName::Prc1), // 93
    tall(PaperName::Prc2), tall(PaperName::IsoB6), tall(PaperName::Prc4), tall(PaperName::DL), // 97
    tall(PaperName::Prc6), tall(PaperName::Prc7), tall(PaperName::Prc8), tall(PaperName::C4), // 101
    tall(PaperName::C3), wide(PaperName::Prc16K), wide(PaperName::Prc32K), wide(PaperName::Prc32K), // 105
    wide(PaperName::Prc1), wide(PaperName::Prc2), wide(PaperName::IsoB6), wide(PaperName::Prc4), // 109
    wide(PaperName::DL), wide(PaperName::Prc6), wide(PaperName::Prc7), wide(PaperName::Prc8), // 113
    wide(PaperName::C4), wide(PaperName::C3), // 117
} };

struct Form {
    const char* name;
    PaperName paper;
};
constexpr std::array<Form, 8> kForms { { { "Letter", PaperName::Letter }, { "Legal", PaperName::Legal },
    { "Executive", PaperName::Executive }, { "A3", PaperName::A3 }, { "A4", PaperName::A4 }, { "A5", PaperName::A5 },
    { "A6", PaperName::A6 }, { "Tabloid", PaperName::Ledger } } };

Size sheetOf(PaperName name, bool isWide)
{
    const Paper& paper = paperOf(name);
    const Size size { paper.width.millimetres(), paper.length.millimetres() };
    return isWide ? Size { size.height, size.width } : size;
}

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
    const PaperNumber& paper = kPapers[static_cast<std::size_t>(number) - 1];
    return paper ? sheetOf(paper->name, paper->isWide) : Size {};
}

Size sheetOfForm(const std::string& name)
{
    for (const Form& form : kForms) {
        if (name == form.name)
            return sheetOf(form.paper, false);
    }
    return {};
}

} // namespace quillrip::emf
