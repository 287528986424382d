#include "quillrip/fonts/faces/internal_face_table.h"

#include "quillrip/fonts/select/symbol_set.h"

namespace quillrip {

namespace {

using Make = InternalFaceSpec::Make;

} // namespace

// Order matters where a request leaves several faces: the first of the family list, then the first of all. The serif
// text face is what a printer falls to, so it comes first among the proportional ones, as Courier among the fixed.
// clang-format off
const InternalFaceSpec kInternalFaces[] = {
    // name, PCL XL name, family, style, weight, make, bound set, fixed advance, space, widths, file, second file,
    // scale x, scale y, scale of small letters, embolden x, y
    { "CG Times", "CG Times", 4101, 0, 0, Make::Older, 0, 0, 0, "CgTimes", "NimbusRoman-Regular", "LiberationSerif-Regular", 1, 1.03, 0, 0, 0 },
    { "CG Times Bold", "CG Times      Bd", 4101, 0, 3, Make::Older, 0, 0, 0, "CgTimesBold", "NimbusRoman-Bold", "LiberationSerif-Bold", 1, 1.03, 0, 0, 0 },
    { "CG Times Italic", "CG Times      It", 4101, 1, 0, Make::Older, 0, 0, 0, "CgTimesItalic", "NimbusRoman-Italic", "LiberationSerif-Italic", 1, 1.03, 0, 0, 0 },
    { "CG Times Bold Italic", "CG Times    BdIt", 4101, 1, 3, Make::Older, 0, 0, 0, "CgTimesBoldItalic", "NimbusRoman-BoldItalic", "LiberationSerif-BoldItalic", 1, 1.03, 0, 0, 0 },
    { "Univers Medium", "Univers       Md", 4148, 0, 0, Make::Older, 0, 0, 0, "Univers", "NimbusSans-Regular", "LiberationSans-Regular", 1.05, 0.93, 0, 0, 0 },
    { "Univers Bold", "Univers       Bd", 4148, 0, 3, Make::Older, 0, 0, 0, "UniversBold", "NimbusSans-Bold", "LiberationSans-Bold", 0.97, 0.93, 0, 0, 0 },
    { "Univers Medium Italic", "Univers     MdIt", 4148, 1, 0, Make::Older, 0, 0, 0, "UniversItalic", "NimbusSans-Italic", "LiberationSans-Italic", 1.05, 0.93, 0, 0, 0 },
    { "Univers Bold Italic", "Univers     BdIt", 4148, 1, 3, Make::Older, 0, 0, 0, "UniversBoldItalic", "NimbusSans-BoldItalic", "LiberationSans-BoldItalic", 0.97, 0.93, 0, 0, 0 },
    { "Univers Condensed Medium", "Univers     CdMd", 4148, 4, 0, Make::Older, 0, 0, 0, "UniversCondensed", "NimbusSansNarrow-Regular", "NimbusSans-Regular", 0.94, 0.93, 0, 0, 0 },
    { "Univers Condensed Bold", "Univers     CdBd", 4148, 4, 3, Make::Older, 0, 0, 0, "UniversCondensedBold", "NimbusSansNarrow-Bold", "NimbusSans-Bold", 0.96, 0.93, 0, 0, 0 },
    { "Univers Condensed Medium Italic", "Univers   CdMdIt", 4148, 5, 0, Make::Older, 0, 0, 0, "UniversCondensedItalic", "NimbusSansNarrow-Oblique", "NimbusSans-Italic", 0.94, 0.93, 0, 0, 0 },
    { "Univers Condensed Bold Italic", "Univers   CdBdIt", 4148, 5, 3, Make::Older, 0, 0, 0, "UniversCondensedBoldItalic", "NimbusSansNarrow-BoldOblique", "NimbusSans-BoldItalic", 0.96, 0.93, 0, 0, 0 },
    { "CG Omega", "CG Omega", 4113, 0, 0, Make::Older, 0, 0, 0, "CgOmega", "LinBiolinum_R", "NimbusSans-Regular", 1.04, 1.06, 0, 0, 0 },
    { "CG Omega Bold", "CG Omega      Bd", 4113, 0, 3, Make::Older, 0, 0, 0, "CgOmegaBold", "LinBiolinum_RB", "NimbusSans-Bold", 0.96, 1.06, 0, 0, 0 },
    { "CG Omega Italic", "CG Omega      It", 4113, 1, 0, Make::Older, 0, 0, 0, "CgOmegaItalic", "LinBiolinum_RI", "NimbusSans-Italic", 1.09, 1.06, 0, 0, 0 },
    { "CG Omega Bold Italic", "CG Omega    BdIt", 4113, 1, 3, Make::Older, 0, 0, 0, "CgOmegaBoldItalic", "NimbusSans-BoldItalic", "LiberationSans-BoldItalic", 0.91, 0.93, 0, 0, 0 },
    { "Antique Olive", "AntiqOlive", 4168, 0, 0, Make::Older, 0, 0, 0, "AntiqueOlive", "NimbusSans-Regular", "LiberationSans-Regular", 0.955, 1.03, 1.21, 0, 0 },
    { "Antique Olive Bold", "AntiqOlive    Bd", 4168, 0, 3, Make::Older, 0, 0, 0, "AntiqueOliveBold", "NimbusSans-Bold", "LiberationSans-Bold", 1.01, 1.03, 1.2, 0, 0 },
    { "Antique Olive Italic", "AntiqOlive    It", 4168, 1, 0, Make::Older, 0, 0, 0, "AntiqueOliveItalic", "NimbusSans-Italic", "LiberationSans-Italic", 0.955, 1.03, 1.21, 0, 0 },
    { "Garamond Antiqua", "Garamond Antiqua", 4197, 0, 0, Make::Older, 0, 0, 0, "Garamond", "EBGaramond12-Regular", "NimbusRoman-Regular", 1.09, 1.06, 0, 0, 0 },
    { "Garamond Halbfett", "Garamond     Hlb", 4197, 0, 3, Make::Older, 0, 0, 0, "GaramondBold", "P052-Bold", "NimbusRoman-Bold", 0.95, 0.97, 0, 0, 0 },
    { "Garamond Kursiv", "Garamond  Kursiv", 4197, 1, 0, Make::Older, 0, 0, 0, "GaramondItalic", "EBGaramond12-Italic", "P052-Italic", 1.07, 1.04, 0, 0, 0 },
    { "Garamond Kursiv Halbfett", "Garamond KrsvHlb", 4197, 1, 3, Make::Older, 0, 0, 0, "GaramondBoldItalic", "P052-BoldItalic", "NimbusRoman-BoldItalic", 0.94, 0.97, 0, 0, 0 },
    { "Courier", "Courier", 4099, 0, 0, Make::TrueType, 0, 0.6, 0, nullptr, "NimbusMonoPS-Regular", "LiberationMono-Regular", 1, 1.02, 0, 0, 0 },
    { "Courier Bold", "Courier       Bd", 4099, 0, 3, Make::TrueType, 0, 0.6, 0, nullptr, "NimbusMonoPS-Bold", "LiberationMono-Bold", 1, 1.02, 0, 0, 0 },
    { "Courier Italic", "Courier       It", 4099, 1, 0, Make::TrueType, 0, 0.6, 0, nullptr, "NimbusMonoPS-Italic", "LiberationMono-Italic", 1, 1.02, 0, 0, 0 },
    { "Courier Bold Italic", "Courier     BdIt", 4099, 1, 3, Make::TrueType, 0, 0.6, 0, nullptr, "NimbusMonoPS-BoldItalic", "LiberationMono-BoldItalic", 1, 1.02, 0, 0, 0 },
    { "Letter Gothic", "LetterGothic", 4102, 0, 0, Make::TrueType, 0, 0.5, 0, nullptr, "LiberationMono-Regular", "NimbusMonoPS-Regular", 0.8333, 1, 0, 0, 0 },
    { "Letter Gothic Bold", "LetterGothic  Bd", 4102, 0, 3, Make::TrueType, 0, 0.5, 0, nullptr, "LiberationMono-Bold", "NimbusMonoPS-Bold", 0.8333, 1, 0, 0, 0 },
    { "Letter Gothic Italic", "LetterGothic  It", 4102, 1, 0, Make::TrueType, 0, 0.5, 0, nullptr, "LiberationMono-Italic", "NimbusMonoPS-Italic", 0.8333, 1, 0, 0, 0 },
    { "Albertus Medium", "Albertus      Md", 4362, 0, 1, Make::Older, 0, 0, 0, "AlbertusMedium", "P052-Roman", "NimbusRoman-Regular", 0.94, 1.11, 0, 0, 0 },
    { "Albertus Extra Bold", "Albertus      Xb", 4362, 0, 4, Make::Older, 0, 0, 0, "AlbertusExtraBold", "P052-Bold", "NimbusRoman-Bold", 1.02, 1.11, 0, 0.0166667, 0.0166667 },
    { "Clarendon Condensed Bold", "Clarendon   CdBd", 4140, 4, 3, Make::Older, 0, 0, 0, "ClarendonCondensed", "URWBookman-Demi", "C059-Bold", 0.77, 1, 0, 0.0125, 0 },
    { "Coronet", "Coronet", 4116, 1, 0, Make::Older, 0, 0, 0, "Coronet", "Z003-MediumItalic", "NimbusRoman-Italic", 1.1, 1, 0.71, 0, 0 },
    { "Marigold", "Marigold", 4297, 0, 0, Make::Older, 0, 0, 0, "Marigold", "Z003-MediumItalic", "NimbusRoman-Italic", 0.69, 0.9, 0, 0, 0 },
    { "Arial", "Arial", 16602, 0, 0, Make::TrueType, 0, 0, 0, "Arial", "LiberationSans-Regular", "NimbusSans-Regular", 1, 1, 0, 0, 0 },
    { "Arial Bold", "Arial         Bd", 16602, 0, 3, Make::TrueType, 0, 0, 0, "ArialBold", "LiberationSans-Bold", "NimbusSans-Bold", 1, 1, 0, 0, 0 },
    { "Arial Italic", "Arial         It", 16602, 1, 0, Make::TrueType, 0, 0, 0, "ArialItalic", "LiberationSans-Italic", "NimbusSans-Italic", 1, 1, 0, 0, 0 },
    { "Arial Bold Italic", "Arial       BdIt", 16602, 1, 3, Make::TrueType, 0, 0, 0, "ArialBoldItalic", "LiberationSans-BoldItalic", "NimbusSans-BoldItalic", 1, 1, 0, 0, 0 },
    { "Times New Roman", "TimesNewRmn", 16901, 0, 0, Make::TrueType, 0, 0, 0, "TimesNew", "LiberationSerif-Regular", "NimbusRoman-Regular", 1, 1, 0, 0, 0 },
    { "Times New Roman Bold", "TimesNewRmn   Bd", 16901, 0, 3, Make::TrueType, 0, 0, 0, "TimesNewBold", "LiberationSerif-Bold", "NimbusRoman-Bold", 1, 1, 0, 0, 0 },
    { "Times New Roman Italic", "TimesNewRmn   It", 16901, 1, 0, Make::TrueType, 0, 0, 0, "TimesNewItalic", "LiberationSerif-Italic", "NimbusRoman-Italic", 1, 1, 0, 0, 0 },
    { "Times New Roman Bold Italic", "TimesNewRmn BdIt", 16901, 1, 3, Make::TrueType, 0, 0, 0, "TimesNewBoldItalic", "LiberationSerif-BoldItalic", "NimbusRoman-BoldItalic", 1, 1, 0, 0, 0 },
    { "Symbol", "Symbol", 16686, 0, 0, Make::TrueType, kSymbolSet, 0, 0.25, nullptr, "StandardSymbolsPS", "DejaVuSans", 1, 1, 0, 0, 0 },
    { "Wingdings", "Wingdings", 31402, 0, 0, Make::TrueType, kWingdingsSet, 0, 1, nullptr, "D050000L", "DejaVuSans", 1, 1, 0, 0, 0 },
    { "ITC Avant Garde Book", "ITCAvantGard  Bk", 24607, 0, 0, Make::AddOn, 0, 0, 0.277, nullptr, "URWGothic-Book", "NimbusSans-Regular", 1, 1, 0, 0, 0 },
    { "ITC Avant Garde Book Oblique", "ITCAvantGardBkOb", 24607, 1, 0, Make::AddOn, 0, 0, 0.277, nullptr, "URWGothic-BookOblique", "NimbusSans-Italic", 1, 1, 0, 0, 0 },
    { "ITC Avant Garde Demi", "ITCAvantGard  Db", 24607, 0, 2, Make::AddOn, 0, 0, 0.28, nullptr, "URWGothic-Demi", "NimbusSans-Bold", 1, 1, 0, 0, 0 },
    { "ITC Avant Garde Demi Oblique", "ITCAvantGardDbOb", 24607, 1, 2, Make::AddOn, 0, 0, 0.28, nullptr, "URWGothic-DemiOblique", "NimbusSans-BoldItalic", 1, 1, 0, 0, 0 },
    { "ITC Bookman Light", "ITCBookman    Lt", 24623, 0, -3, Make::AddOn, 0, 0, 0.32, nullptr, "URWBookman-Light", "C059-Roman", 1, 1, 0, 0, 0 },
    { "ITC Bookman Light Italic", "ITCBookman  LtIt", 24623, 1, -3, Make::AddOn, 0, 0, 0.3, nullptr, "URWBookman-LightItalic", "C059-Italic", 1, 1, 0, 0, 0 },
    { "ITC Bookman Demi", "ITCBookman    Db", 24623, 0, 2, Make::AddOn, 0, 0, 0.34, nullptr, "URWBookman-Demi", "C059-Bold", 1, 1, 0, 0, 0 },
    { "ITC Bookman Demi Italic", "ITCBookman  DbIt", 24623, 1, 2, Make::AddOn, 0, 0, 0.34, nullptr, "URWBookman-DemiItalic", "C059-BdIta", 1, 1, 0, 0, 0 },
    { "CourierPS", "CourierPS", 24579, 0, 0, Make::AddOn, 0, 0.6, 0, nullptr, "NimbusMonoPS-Regular", "LiberationMono-Regular", 1, 1, 0, 0, 0 },
    { "CourierPS Bold", "CourierPS     Bd", 24579, 0, 3, Make::AddOn, 0, 0.6, 0, nullptr, "NimbusMonoPS-Bold", "LiberationMono-Bold", 1, 1, 0, 0, 0 },
    { "CourierPS Oblique", "CourierPS     Ob", 24579, 1, 0, Make::AddOn, 0, 0.6, 0, nullptr, "NimbusMonoPS-Italic", "LiberationMono-Italic", 1, 1, 0, 0, 0 },
    { "CourierPS Bold Oblique", "CourierPS   BdOb", 24579, 1, 3, Make::AddOn, 0, 0.6, 0, nullptr, "NimbusMonoPS-BoldItalic", "LiberationMono-BoldItalic", 1, 1, 0, 0, 0 },
    { "Helvetica", "Helvetica", 24580, 0, 0, Make::AddOn, 0, 0, 0.278, nullptr, "NimbusSans-Regular", "LiberationSans-Regular", 1, 1, 0, 0, 0 },
    { "Helvetica Bold", "Helvetica     Bd", 24580, 0, 3, Make::AddOn, 0, 0, 0.278, nullptr, "NimbusSans-Bold", "LiberationSans-Bold", 1, 1, 0, 0, 0 },
    { "Helvetica Oblique", "Helvetica     Ob", 24580, 1, 0, Make::AddOn, 0, 0, 0.278, nullptr, "NimbusSans-Italic", "LiberationSans-Italic", 1, 1, 0, 0, 0 },
    { "Helvetica Bold Oblique", "Helvetica   BdOb", 24580, 1, 3, Make::AddOn, 0, 0, 0.278, nullptr, "NimbusSans-BoldItalic", "LiberationSans-BoldItalic", 1, 1, 0, 0, 0 },
    { "Helvetica Narrow", "Helvetica     Nr", 24580, 4, 0, Make::AddOn, 0, 0, 0.228, nullptr, "NimbusSansNarrow-Regular", "LiberationSansNarrow-Regular", 1, 1, 0, 0, 0 },
    { "Helvetica Narrow Bold", "Helvetica   NrBd", 24580, 4, 3, Make::AddOn, 0, 0, 0.228, nullptr, "NimbusSansNarrow-Bold", "LiberationSansNarrow-Bold", 1, 1, 0, 0, 0 },
    { "Helvetica Narrow Oblique", "Helvetica   NrOb", 24580, 5, 0, Make::AddOn, 0, 0, 0.228, nullptr, "NimbusSansNarrow-Oblique", "LiberationSansNarrow-Italic", 1, 1, 0, 0, 0 },
    { "Helvetica Narrow Bold Oblique", "Helvetica NrBdOb", 24580, 5, 3, Make::AddOn, 0, 0, 0.228, nullptr, "NimbusSansNarrow-BoldOblique", "LiberationSansNarrow-BoldItalic", 1, 1, 0, 0, 0 },
    { "New Century Schoolbook Roman", "NwCentSchlbk Rmn", 24703, 0, 0, Make::AddOn, 0, 0, 0.278, nullptr, "C059-Roman", "NimbusRoman-Regular", 1, 1, 0, 0, 0 },
    { "New Century Schoolbook Bold", "NwCentSchlbk  Bd", 24703, 0, 3, Make::AddOn, 0, 0, 0.287, nullptr, "C059-Bold", "NimbusRoman-Bold", 1, 1, 0, 0, 0 },
    { "New Century Schoolbook Italic", "NwCentSchlbk  It", 24703, 1, 0, Make::AddOn, 0, 0, 0.278, nullptr, "C059-Italic", "NimbusRoman-Italic", 1, 1, 0, 0, 0 },
    { "New Century Schoolbook Bold Italic", "NwCentSchlbkBdIt", 24703, 1, 3, Make::AddOn, 0, 0, 0.287, nullptr, "C059-BdIta", "NimbusRoman-BoldItalic", 1, 1, 0, 0, 0 },
    { "Palatino Roman", "Palatino     Rmn", 24591, 0, 0, Make::AddOn, 0, 0, 0.25, nullptr, "P052-Roman", "NimbusRoman-Regular", 1, 1, 0, 0, 0 },
    { "Palatino Bold", "Palatino      Bd", 24591, 0, 3, Make::AddOn, 0, 0, 0.25, nullptr, "P052-Bold", "NimbusRoman-Bold", 1, 1, 0, 0, 0 },
    { "Palatino Italic", "Palatino      It", 24591, 1, 0, Make::AddOn, 0, 0, 0.25, nullptr, "P052-Italic", "NimbusRoman-Italic", 1, 1, 0, 0, 0 },
    { "Palatino Bold Italic", "Palatino    BdIt", 24591, 1, 3, Make::AddOn, 0, 0, 0.25, nullptr, "P052-BoldItalic", "NimbusRoman-BoldItalic", 1, 1, 0, 0, 0 },
    { "Times Roman", "Times        Rmn", 25093, 0, 0, Make::AddOn, 0, 0, 0.25, nullptr, "NimbusRoman-Regular", "LiberationSerif-Regular", 1, 1, 0, 0, 0 },
    { "Times Bold", "Times         Bd", 25093, 0, 3, Make::AddOn, 0, 0, 0.25, nullptr, "NimbusRoman-Bold", "LiberationSerif-Bold", 1, 1, 0, 0, 0 },
    { "Times Italic", "Times         It", 25093, 1, 0, Make::AddOn, 0, 0, 0.25, nullptr, "NimbusRoman-Italic", "LiberationSerif-Italic", 1, 1, 0, 0, 0 },
    { "Times Bold Italic", "Times       BdIt", 25093, 1, 3, Make::AddOn, 0, 0, 0.25, nullptr, "NimbusRoman-BoldItalic", "LiberationSerif-BoldItalic", 1, 1, 0, 0, 0 },
    { "ITC Zapf Chancery Medium Italic", "ZapfChanceryMdIt", 45099, 1, 0, Make::AddOn, 0, 0, 0.22, nullptr, "Z003-MediumItalic", "NimbusRoman-Italic", 1, 1, 0, 0, 0 },
    { "SymbolPS", "SymbolPS", 45358, 0, 0, Make::AddOn, kSymbolSet, 0, 0.25, nullptr, "StandardSymbolsPS", "DejaVuSans", 1, 1, 0, 0, 0 },
    { "ITC Zapf Dingbats", "ZapfDingbats", 45101, 0, 0, Make::AddOn, kDingbatsSet, 0, 0.278, nullptr, "D050000L", "DejaVuSans", 1, 1, 0, 0, 0 },
    { "Line Printer", "Line Printer  0N", 0, 0, 0, Make::TrueType, 0, 0.50812, 0, nullptr, "LiberationMono-Regular", "NimbusMonoPS-Regular", 0.847, 1, 0, 0, 0 },
};
// clang-format on

const std::size_t kInternalFaceCount = sizeof(kInternalFaces) / sizeof(kInternalFaces[0]);

FaceHeights heightsOf(const InternalFaceSpec& spec)
{
    switch (spec.family) {
    case 4099:
    case 24579:
        return { 0.569, 0.433 };
    case 4101:
        return { 0.679, 0.468 };
    case 4102:
        return { 0.718, 0.530 };
    case 4113:
        return { 0.686, 0.476 };
    case 4148:
        return { 0.688, 0.479 };
    case 4168:
        return { 0.750, 0.636 };
    case 4197:
        return { 0.695, 0.434 };
    case 4362:
        return { 0.764, 0.532 };
    case 16602:
    case 24580:
        return { 0.716, 0.519 };
    case 16901:
    case 25093:
        return { 0.662, 0.448 };
    default:
        return { 0.7, 0.47 };
    }
}

} // namespace quillrip
