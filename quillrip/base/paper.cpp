#include "quillrip/base/paper.h"

#include <array>
#include <cstddef>

namespace quillrip {

namespace {

Paper inches(PaperName id, const char* name, double width, double length)
{
    const Decipoints wide = decipointsOfInches(width);
    const Decipoints tall = decipointsOfInches(length);
    return { id, name, wide, tall, nearestDots(wide), nearestDots(tall), false };
}

Paper inches(PaperName id, const char* name, double width, double length, int dotsWide, int dotsLong)
{
    return { id, name, decipointsOfInches(width), decipointsOfInches(length), { dotsWide }, { dotsLong }, false };
}

Paper millimetres(PaperName id, const char* name, double width, double length)
{
    const Decipoints wide = decipointsOfMillimetres(width);
    const Decipoints tall = decipointsOfMillimetres(length);
    return { id, name, wide, tall, nearestDots(wide), nearestDots(tall), true };
}

Paper millimetres(PaperName id, const char* name, double width, double length, int dotsWide, int dotsLong)
{
    return { id, name, decipointsOfMillimetres(width), decipointsOfMillimetres(length), { dotsWide }, { dotsLong },
        true };
}

// In the order of PaperName.
const std::array s_papers {
    inches(PaperName::Executive, "Executive", 7.25, 10.5, 2175, 3150),
    inches(PaperName::Letter, "Letter", 8.5, 11, 2550, 3300),
    inches(PaperName::Legal, "Legal", 8.5, 14, 2550, 4200),
    inches(PaperName::Statement, "Statement", 5.5, 8.5, 1650, 2550),
    inches(PaperName::Ledger, "Ledger", 11, 17, 3300, 5100),
    inches(PaperName::Folio, "Folio", 8.5, 13, 2550, 3900),
    millimetres(PaperName::Quarto, "Quarto", 215, 275),
    inches(PaperName::Inch8x10, "8x10 in", 8, 10),
    inches(PaperName::Inch9x11, "9x11 in", 9, 11),
    inches(PaperName::Inch10x11, "10x11 in", 10, 11),
    inches(PaperName::Inch10x14, "10x14 in", 10, 14),
    inches(PaperName::Inch11x12, "11x12 in", 11, 12),
    inches(PaperName::Inch11x14, "11x14 in", 11, 14),
    inches(PaperName::Inch11x15, "11x15 in", 11, 15),
    inches(PaperName::Inch12x12, "12x12 in", 12, 12),
    inches(PaperName::LetterPlus, "Letter plus", 8.5, 12.69),
    inches(PaperName::LetterExtra, "Letter extra", 9.5, 12),
    inches(PaperName::LegalExtra, "Legal extra", 9.5, 15),
    inches(PaperName::TabloidExtra, "Tabloid extra", 11.69, 18),
    inches(PaperName::SuperB, "Super B, 13x19 in", 13, 19),
    inches(PaperName::FanfoldUs, "US fanfold", 11, 14.875),
    inches(PaperName::FanfoldGerman, "German fanfold", 8.5, 12),
    inches(PaperName::FanfoldGermanLegal, "German legal fanfold", 8, 13),
    millimetres(PaperName::A0, "A0", 841, 1189, 9933, 14043),
    millimetres(PaperName::A1, "A1", 594, 841, 7016, 9933),
    millimetres(PaperName::A2, "A2", 420, 594, 4960, 7016),
    millimetres(PaperName::A3, "A3", 297, 420, 3507, 4960),
    millimetres(PaperName::A4, "A4", 210, 297, 2480, 3507),
    millimetres(PaperName::A5, "A5", 148, 210, 1748, 2480),
    millimetres(PaperName::A6, "A6", 105, 148, 1240, 1748),
    millimetres(PaperName::A3Plus, "A3+", 329, 483, 3886, 5705),
    millimetres(PaperName::A3Extra, "A3 extra", 322, 445),
    inches(PaperName::A4Extra, "A4 extra", 9.27, 12.69),
    millimetres(PaperName::A4Plus, "A4 plus", 210, 330),
    millimetres(PaperName::A5Extra, "A5 extra", 174, 235),
    millimetres(PaperName::SuperA, "Super A", 227, 356),
    millimetres(PaperName::SuperBMetric, "Super B, 305x487 mm", 305, 487),
    millimetres(PaperName::IsoB1, "ISO B1", 707, 1000, 8350, 11811),
    millimetres(PaperName::IsoB2, "ISO B2", 500, 707, 5906, 8350),
    millimetres(PaperName::IsoB4, "ISO B4", 250, 353),
    millimetres(PaperName::IsoB5, "ISO B5", 176, 250, 2078, 2952),
    millimetres(PaperName::IsoB6, "ISO B6", 125, 176, 1476, 2078),
    millimetres(PaperName::IsoB5Extra, "ISO B5 extra", 201, 276),
    millimetres(PaperName::JisB4, "JIS B4", 257, 364, 3035, 4299),
    millimetres(PaperName::JisB5, "JIS B5", 182, 257, 2150, 3035),
    millimetres(PaperName::JisB6, "JIS B6", 128, 182, 1512, 2150),
    millimetres(PaperName::JisExecutive, "JIS Executive", 216, 330, 2551, 3898),
    millimetres(PaperName::Jis8K, "8K, 270x390 mm", 270, 390, 3189, 4606),
    millimetres(PaperName::Jis16K, "16K, 195x270 mm", 195, 270, 2303, 3189),
    millimetres(PaperName::Postcard, "Japanese postcard", 100, 148, 1181, 1748),
    millimetres(PaperName::DoublePostcard, "Japanese double postcard", 148, 200, 1748, 2362),
    millimetres(PaperName::Prc16K, "PRC 16K", 146, 215),
    millimetres(PaperName::Prc32K, "PRC 32K", 97, 151),
    inches(PaperName::AnsiC, "ANSI C", 17, 22, 5100, 6600),
    inches(PaperName::AnsiD, "ANSI D", 22, 34, 6600, 10200),
    inches(PaperName::AnsiE, "ANSI E", 34, 44, 10200, 13200),
    inches(PaperName::ArchB, "architects' B", 12, 18, 3600, 5400),
    inches(PaperName::ArchC, "architects' C", 18, 24, 5400, 7200),
    inches(PaperName::ArchD, "architects' D", 24, 36, 7200, 10800),
    inches(PaperName::ArchE, "architects' E", 36, 48, 10800, 14400),
    inches(PaperName::ArchE1, "architects' E1", 30, 42, 9000, 12600),
    inches(PaperName::Card3x5, "3x5 in card", 3, 5),
    inches(PaperName::Card4x6, "4x6 in card", 4, 6, 1200, 1800),
    inches(PaperName::Card5x8, "5x8 in card", 5, 8, 1500, 2400),
    inches(PaperName::Photo35x5, "3.5x5 in photo", 3.5, 5),
    inches(PaperName::Photo44x6, "4.4x6 in photo", 4.4, 6),
    inches(PaperName::Photo5x7, "5x7 in photo", 5, 7),
    millimetres(PaperName::PhotoL, "photo L, 88x125 mm", 88, 125),
    millimetres(PaperName::Photo2L, "photo 2L, 127x178 mm", 127, 178),
    millimetres(PaperName::Card91x128, "91x128 mm card", 91, 128),
    millimetres(PaperName::Card120x165, "120x165 mm card", 120, 165, 1417, 1948),
    inches(PaperName::Monarch, "Monarch envelope", 3.875, 7.5, 1162, 2250),
    inches(PaperName::Com9, "No. 9 envelope", 3.875, 8.875, 1162, 2662),
    inches(PaperName::Com10, "Com-10 envelope", 4.125, 9.5, 1237, 2850),
    inches(PaperName::Com11, "No. 11 envelope", 4.5, 10.375),
    inches(PaperName::Com12, "No. 12 envelope", 4.75, 11),
    inches(PaperName::Com14, "No. 14 envelope", 5, 11.5),
    inches(PaperName::Com6, "No. 6 3/4 envelope", 3.625, 6.5, 1087, 1950),
    inches(PaperName::EnvelopeA2, "A2 envelope", 4.375, 5.75, 1312, 1725),
    inches(PaperName::EnvelopeCard, "card envelope", 4.375, 6, 1312, 1800),
    millimetres(PaperName::DL, "DL envelope", 110, 220, 1299, 2598),
    millimetres(PaperName::C3, "C3 envelope", 324, 458),
    millimetres(PaperName::C4, "C4 envelope", 229, 324),
    millimetres(PaperName::C5, "C5 envelope", 162, 229, 1913, 2704),
    millimetres(PaperName::C6, "C6 envelope", 114, 162, 1346, 1913),
    millimetres(PaperName::C65, "C65 envelope", 114, 229),
    millimetres(PaperName::Italy, "Italian envelope", 110, 230),
    millimetres(PaperName::Invite, "invitation envelope", 220, 220),
    millimetres(PaperName::Chou3, "Chou 3 envelope", 120, 235, 1417, 2775),
    millimetres(PaperName::Chou4, "Chou 4 envelope", 90, 205),
    millimetres(PaperName::Kaku2, "Kaku 2 envelope", 240, 332, 2834, 3921),
    millimetres(PaperName::Kaku3, "Kaku 3 envelope", 216, 277),
    millimetres(PaperName::You4, "You 4 envelope", 105, 235),
    millimetres(PaperName::Prc1, "PRC envelope No. 1", 102, 165),
    millimetres(PaperName::Prc2, "PRC envelope No. 2", 102, 176),
    millimetres(PaperName::Prc4, "PRC envelope No. 4", 110, 208),
    millimetres(PaperName::Prc6, "PRC envelope No. 6", 120, 230),
    millimetres(PaperName::Prc7, "PRC envelope No. 7", 160, 230),
    millimetres(PaperName::Prc8, "PRC envelope No. 8", 120, 309),
};

} // namespace

const Paper& paperOf(PaperName name) { return s_papers[static_cast<std::size_t>(name)]; }

} // namespace quillrip
