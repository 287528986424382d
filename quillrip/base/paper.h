#pragma once

#include "quillrip/base/units.h"

#include <cstdint>

namespace quillrip {

/// The sheets that printers and plotters know, whatever number or name a language has for them. JIS B sizes are larger
/// than the ISO sizes of the same name.
enum class PaperName : std::uint8_t {
    Executive,
    Letter,
    Legal,
    Statement,
    Ledger,
    Folio,
    Quarto,
    Inch8x10,
    Inch9x11,
    Inch10x11,
    Inch10x14,
    Inch11x12,
    Inch11x14,
    Inch11x15,
    Inch12x12,
    LetterPlus,
    LetterExtra,
    LegalExtra,
    TabloidExtra,
    SuperB,
    FanfoldUs,
    FanfoldGerman,
    FanfoldGermanLegal,
    A0,
    A1,
    A2,
    A3,
    A4,
    A5,
    A6,
    A3Plus,
    A3Extra,
    A4Extra,
    A4Plus,
    A5Extra,
    SuperA,
    SuperBMetric,
    IsoB1,
    IsoB2,
    IsoB4,
    IsoB5,
    IsoB6,
    IsoB5Extra,
    JisB4,
    JisB5,
    JisB6,
    JisExecutive,
    Jis8K,
    Jis16K,
    Postcard,
    DoublePostcard,
    Prc16K,
    Prc32K,
    AnsiC,
    AnsiD,
    AnsiE,
    ArchB,
    ArchC,
    ArchD,
    ArchE,
    ArchE1,
    Card3x5,
    Card4x6,
    Card5x8,
    Photo35x5,
    Photo44x6,
    Photo5x7,
    PhotoL,
    Photo2L,
    Card91x128,
    Card120x165,
    Monarch,
    Com9,
    Com10,
    Com11,
    Com12,
    Com14,
    Com6,
    EnvelopeA2,
    EnvelopeCard,
    DL,
    C3,
    C4,
    C5,
    C6,
    C65,
    Italy,
    Invite,
    Chou3,
    Chou4,
    Kaku2,
    Kaku3,
    You4,
    Prc1,
    Prc2,
    Prc4,
    Prc6,
    Prc7,
    Prc8,
};

/// A sheet. The short edge is its width.
struct Paper {
    PaperName id = PaperName::Letter;
    const char* name = ""; ///< for people
    Decipoints width;
    Decipoints length;
    /// As printers count the sheet. Published figures of the old sizes are cut off rather than rounded, so that these
    /// do not follow from the lengths.
    Dots dotsWide;
    Dots dotsLong;
    bool isMetric = false; ///< defined in millimetres, else in inches
};

/// The one table. Never fails.
const Paper& paperOf(PaperName name);

/// Where a language lets the job give the size itself, it says so by this number: PCL 5's page size, and PAPER=CUSTOM.
constexpr int kCustomPaperCode = 101;

} // namespace quillrip
