#include "quillrip/hpgl/mnemonics.h"

#include <algorithm>
#include <iterator>

namespace quillrip::hpgl {

namespace {

constexpr std::uint8_t kAny = MnemonicEntry::kAny;
constexpr std::uint8_t kStarts = MnemonicEntry::kStarts;
constexpr std::uint8_t kInPolygon = MnemonicEntry::kInPolygon;
constexpr std::uint8_t kPlotFile = MnemonicEntry::kPlotFile;
constexpr LineEffect kGoes = LineEffect::Goes;
constexpr LineEffect kEnds = LineEffect::Ends;
constexpr LineEffect kBreaks = LineEffect::Breaks;

// Sorted by mnemonic, checked by a test.
constexpr MnemonicEntry kMnemonics[] = {
    { mnemonic("AA"), "arc absolute", Form::Numbers, 3, 4, kGoes, kInPolygon },
    { mnemonic("AC"), "anchor corner", Form::Pairs, 0, 2, kBreaks },
    { mnemonic("AD"), "alternate font definition", Form::Pairs, 0, 14, kEnds },
    { mnemonic("AF"), "advance full page", Form::Numbers, 0, 0, kEnds, kPlotFile },
    { mnemonic("AH"), "advance half page", Form::Numbers, 0, 0, kEnds, kPlotFile },
    { mnemonic("AP"), "automatic pen operations", Form::Numbers, 0, 1, kGoes },
    { mnemonic("AR"), "arc relative", Form::Numbers, 3, 4, kGoes, kInPolygon },
    { mnemonic("AS"), "acceleration select", Form::Numbers, 0, 2, kGoes },
    { mnemonic("AT"), "absolute arc three point", Form::Numbers, 4, 5, kGoes, kInPolygon },
    { mnemonic("BL"), "buffer label", Form::Label, 0, 0, kEnds },
    { mnemonic("BP"), "begin plot", Form::Text, 0, 10, kEnds, kStarts },
    { mnemonic("BR"), "bezier relative", Form::Sextuples, 6, kAny, kGoes, kInPolygon },
    { mnemonic("BZ"), "bezier absolute", Form::Sextuples, 6, kAny, kGoes, kInPolygon },
    { mnemonic("CA"), "alternate character set", Form::Numbers, 0, 2, kEnds },
    { mnemonic("CF"), "character fill mode", Form::Numbers, 0, 2, kEnds },
    { mnemonic("CI"), "circle", Form::Numbers, 1, 2, kEnds, kInPolygon },
    { mnemonic("CO"), "comment", Form::Text, 0, 0, kGoes, kStarts | kInPolygon },
    { mnemonic("CP"), "character plot", Form::Pairs, 0, 2, kEnds },
    { mnemonic("CR"), "set color range for relative color data", Form::Numbers, 0, 6, kEnds },
    { mnemonic("CS"), "standard character set", Form::Numbers, 0, 1, kEnds },
    { mnemonic("CT"), "chord tolerance mode", Form::Numbers, 0, 1, kEnds, kStarts | kPlotFile },
    { mnemonic("CV"), "curved line generator", Form::Numbers, 0, 2, kGoes },
    { mnemonic("DC"), "digitize clear", Form::Numbers, 0, 0, kGoes },
    { mnemonic("DF"), "default values", Form::Numbers, 0, 0, kBreaks, kStarts | kInPolygon },
    { mnemonic("DI"), "absolute direction", Form::Pairs, 0, 2, kEnds },
    { mnemonic("DL"), "download character", Form::Numbers, 0, kAny, kEnds },
    { mnemonic("DP"), "digitize point", Form::Numbers, 0, 0, kGoes },
    { mnemonic("DR"), "relative direction", Form::Pairs, 0, 2, kEnds },
    { mnemonic("DT"), "define label terminator", Form::Terminator, 0, 1, kEnds, kStarts },
    { mnemonic("DV"), "define variable text path", Form::Numbers, 0, 2, kEnds },
    { mnemonic("EA"), "edge rectangle absolute", Form::Pairs, 2, 2, kEnds },
    { mnemonic("EC"), "enable cutter", Form::Numbers, 0, 1, kGoes },
    { mnemonic("EP"), "edge polygon", Form::Numbers, 0, 0, kEnds },
    { mnemonic("ER"), "edge rectangle relative", Form::Pairs, 2, 2, kEnds },
    { mnemonic("ES"), "extra space", Form::Numbers, 0, 2, kEnds },
    { mnemonic("EW"), "edge wedge", Form::Numbers, 3, 4, kEnds },
    { mnemonic("FI"), "select primary font", Form::Numbers, 1, 1, kEnds },
    { mnemonic("FN"), "select secondary font", Form::Numbers, 1, 1, kEnds },
    { mnemonic("FP"), "fill polygon", Form::Numbers, 0, 1, kEnds },
    { mnemonic("FR"), "frame advance", Form::Numbers, 0, 0, kEnds, kPlotFile },
    { mnemonic("FS"), "force select", Form::Numbers, 0, 2, kGoes },
    { mnemonic("FT"), "fill type", Form::Numbers, 0, 3, kEnds },
    { mnemonic("GM"), "graphics memory", Form::Numbers, 0, 6, kGoes },
    { mnemonic("IM"), "input mask", Form::Numbers, 0, 3, kGoes },
    { mnemonic("IN"), "initialize", Form::Numbers, 0, 1, kBreaks, kStarts | kInPolygon },
    { mnemonic("IP"), "input P1 and P2", Form::Pairs, 0, 4, kBreaks, kStarts },
    { mnemonic("IR"), "input relative P1 and P2", Form::Pairs, 0, 4, kBreaks, kStarts },
    { mnemonic("IV"), "invoke character slot", Form::Numbers, 0, 2, kGoes },
    { mnemonic("IW"), "input window", Form::Pairs, 0, 4, kBreaks, kStarts },
    { mnemonic("KY"), "define key", Form::Numbers, 0, 2, kGoes },
    { mnemonic("LA"), "line attributes", Form::Pairs, 0, 6, kBreaks, kStarts },
    { mnemonic("LB"), "label", Form::Label, 0, 0, kEnds },
    { mnemonic("LM"), "label mode", Form::Numbers, 0, 2, kEnds },
    { mnemonic("LO"), "label origin", Form::Numbers, 0, 1, kEnds },
    { mnemonic("LT"), "line type", Form::Numbers, 0, 3, kEnds, kStarts },
    { mnemonic("MC"), "merge control", Form::Numbers, 0, 2, kEnds },
    { mnemonic("MG"), "message", Form::Text, 0, 0, kGoes, kInPolygon },
    { mnemonic("MT"), "media type", Form::Numbers, 0, 1, kGoes, kStarts },
    { mnemonic("NP"), "number of pens", Form::Numbers, 0, 1, kEnds, kStarts },
    { mnemonic("NR"), "not ready", Form::Numbers, 0, 1, kGoes },
    { mnemonic("OA"), "output actual position", Form::Numbers, 0, 0, kGoes, kStarts },
    { mnemonic("OC"), "output commanded position", Form::Numbers, 0, 0, kGoes, kStarts },
    { mnemonic("OD"), "output digitized point", Form::Numbers, 0, 0, kGoes, kStarts },
    { mnemonic("OE"), "output error", Form::Numbers, 0, 0, kGoes, kStarts },
    { mnemonic("OF"), "output factors", Form::Numbers, 0, 0, kGoes, kStarts },
    { mnemonic("OH"), "output hard-clip limits", Form::Numbers, 0, 0, kGoes, kStarts },
    { mnemonic("OI"), "output identification", Form::Numbers, 0, 0, kGoes, kStarts },
    { mnemonic("OK"), "output key", Form::Numbers, 0, 0, kGoes, kStarts },
    { mnemonic("OO"), "output options", Form::Numbers, 0, 0, kGoes, kStarts },
    { mnemonic("OP"), "output P1 and P2", Form::Numbers, 0, 0, kGoes, kStarts },
    { mnemonic("OS"), "output status", Form::Numbers, 0, 0, kGoes, kStarts },
    { mnemonic("OT"), "output carousel type", Form::Numbers, 0, 0, kGoes, kStarts },
    { mnemonic("OW"), "output window", Form::Numbers, 0, 0, kGoes, kStarts },
    { mnemonic("PA"), "plot absolute", Form::Pairs, 0, kAny, kGoes, kStarts | kInPolygon },
    { mnemonic("PB"), "print buffered label", Form::Numbers, 0, 0, kEnds },
    { mnemonic("PC"), "pen color assignment", Form::Numbers, 0, 4, kEnds },
    { mnemonic("PD"), "pen down", Form::Pairs, 0, kAny, kGoes, kStarts | kInPolygon },
    { mnemonic("PE"), "polyline encoded", Form::Encoded, 0, 0, kGoes, kInPolygon },
    { mnemonic("PG"), "advance full page", Form::Numbers, 0, 1, kEnds, kStarts | kPlotFile },
    { mnemonic("PM"), "polygon mode", Form::Numbers, 0, 1, kEnds, kInPolygon },
    { mnemonic("PP"), "pixel placement", Form::Numbers, 0, 1, kEnds },
    { mnemonic("PR"), "plot relative", Form::Pairs, 0, kAny, kGoes, kStarts | kInPolygon },
    { mnemonic("PS"), "plot size", Form::Numbers, 0, 2, kEnds, kStarts | kPlotFile },
    { mnemonic("PT"), "pen thickness", Form::Numbers, 0, 1, kGoes, kStarts },
    { mnemonic("PU"), "pen up", Form::Pairs, 0, kAny, kGoes, kStarts | kInPolygon },
    { mnemonic("PW"), "pen width", Form::Numbers, 0, 2, kBreaks, kStarts },
    { mnemonic("QL"), "quality level", Form::Numbers, 0, 1, kGoes },
    { mnemonic("RA"), "fill rectangle absolute", Form::Pairs, 2, 2, kEnds },
    { mnemonic("RF"), "raster fill definition", Form::Numbers, 0, kAny, kBreaks },
    { mnemonic("RO"), "rotate coordinate system", Form::Numbers, 0, 1, kBreaks, kStarts },
    { mnemonic("RP"), "replot", Form::Numbers, 0, 1, kEnds },
    { mnemonic("RR"), "fill rectangle relative", Form::Pairs, 2, 2, kEnds },
    { mnemonic("RT"), "relative arc three point", Form::Numbers, 4, 5, kGoes, kInPolygon },
    { mnemonic("SA"), "select alternate font", Form::Numbers, 0, 0, kEnds },
    { mnemonic("SB"), "scalable or bitmap fonts", Form::Numbers, 0, 1, kEnds },
    { mnemonic("SC"), "scale", Form::Numbers, 0, 7, kBreaks, kStarts },
    { mnemonic("SD"), "standard font definition", Form::Pairs, 0, 14, kEnds },
    { mnemonic("SG"), "select pen group", Form::Numbers, 0, 1, kBreaks },
    { mnemonic("SI"), "absolute character size", Form::Pairs, 0, 2, kEnds },
    { mnemonic("SL"), "character slant", Form::Numbers, 0, 1, kEnds },
    { mnemonic("SM"), "symbol mode", Form::Symbol, 0, 0, kEnds },
    { mnemonic("SP"), "select pen", Form::Numbers, 0, 1, kBreaks, kStarts },
    { mnemonic("SR"), "relative character size", Form::Pairs, 0, 2, kEnds },
    { mnemonic("SS"), "select standard font", Form::Numbers, 0, 0, kEnds },
    { mnemonic("ST"), "sort", Form::Numbers, 0, 1, kGoes },
    { mnemonic("SV"), "screened vectors", Form::Numbers, 0, 3, kEnds },
    { mnemonic("TD"), "transparent data", Form::Numbers, 0, 1, kEnds },
    { mnemonic("TL"), "tick length", Form::Numbers, 0, 2, kEnds },
    { mnemonic("TR"), "transparency mode", Form::Numbers, 0, 1, kBreaks },
    { mnemonic("UC"), "user-defined character", Form::Numbers, 0, kAny, kEnds },
    { mnemonic("UL"), "user-defined line type", Form::Numbers, 0, 21, kBreaks, kStarts },
    { mnemonic("VS"), "velocity select", Form::Numbers, 0, 2, kGoes, kStarts },
    { mnemonic("WD"), "write to display", Form::Label, 0, 0, kEnds },
    { mnemonic("WG"), "fill wedge", Form::Numbers, 3, 4, kEnds },
    { mnemonic("WU"), "pen width unit", Form::Numbers, 0, 1, kBreaks, kStarts },
    { mnemonic("XT"), "x tick", Form::Numbers, 0, 0, kEnds },
    { mnemonic("YT"), "y tick", Form::Numbers, 0, 0, kEnds },
};

} // namespace

std::string toString(Mnemonic mnemonic)
{
    return { static_cast<char>(mnemonic >> 8), static_cast<char>(mnemonic & 0xFF) };
}

Reading MnemonicEntry::reading() const
{
    switch (form) {
    case Form::Numbers:
        return Reading::AtOnce;
    case Form::Pairs:
    case Form::Sextuples:
        return most == kAny ? Reading::InBatches : Reading::AtOnce;
    default:
        return Reading::ByHandler;
    }
}

const MnemonicEntry* mnemonicsBegin() { return std::begin(kMnemonics); }

const MnemonicEntry* mnemonicsEnd() { return std::end(kMnemonics); }

const MnemonicEntry* findMnemonic(Mnemonic mnemonic)
{
    const auto* const entry = std::lower_bound(mnemonicsBegin(), mnemonicsEnd(), mnemonic,
        [](const MnemonicEntry& e, Mnemonic wanted) { return e.mnemonic < wanted; });
    return entry != mnemonicsEnd() && entry->mnemonic == mnemonic ? entry : nullptr;
}

} // namespace quillrip::hpgl
