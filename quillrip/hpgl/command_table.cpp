// The commands by name.

#include "quillrip/hpgl/machine.h"

#include <algorithm>

namespace quillrip::hpgl {

const std::vector<Machine::Entry>& Machine::commands()
{
    using M = Machine;
    constexpr auto kGoes = Line::Goes;
    constexpr auto kEnds = Line::Ends;
    constexpr auto kBreaks = Line::Breaks;
    constexpr auto kNumbers = Operands::Numbers;
    constexpr auto kList = Operands::Coordinates;
    constexpr auto kRaw = Operands::Raw;
    constexpr auto kPlot = Scope::PlotFile;
    // Sorted by mnemonic, checked by a test.
    static const std::vector<Entry> s_commands {
        { mnemonic("AA"), &M::arcAbsolute, "arc absolute", kGoes, kNumbers, true },
        { mnemonic("AC"), &M::anchorCorner, "anchor corner", kBreaks },
        { mnemonic("AD"), &M::alternateFont, "alternate font definition" },
        { mnemonic("AF"), &M::advanceFrame, "advance full page", kEnds, kNumbers, false, kPlot },
        { mnemonic("AH"), &M::advanceFrame, "advance half page", kEnds, kNumbers, false, kPlot },
        { mnemonic("AP"), &M::ignore, "automatic pen operations", kGoes },
        { mnemonic("AR"), &M::arcRelative, "arc relative", kGoes, kNumbers, true },
        { mnemonic("AS"), &M::ignore, "acceleration select", kGoes },
        { mnemonic("AT"), &M::arcThreePointAbsolute, "absolute arc three point", kGoes, kNumbers, true },
        { mnemonic("BL"), &M::bufferLabel, "buffer label", kEnds, kRaw },
        { mnemonic("BP"), &M::beginPlot, "begin plot", kEnds, kRaw },
        { mnemonic("BR"), &M::bezierRelative, "bezier relative", kGoes, kList, true },
        { mnemonic("BZ"), &M::bezierAbsolute, "bezier absolute", kGoes, kList, true },
        { mnemonic("CA"), &M::alternateCharacterSet, "alternate character set" },
        { mnemonic("CF"), &M::characterFill, "character fill mode" },
        { mnemonic("CI"), &M::circle, "circle", kEnds, kNumbers, true },
        { mnemonic("CO"), &M::comment, "comment", kGoes, kRaw, true },
        { mnemonic("CP"), &M::characterPlot, "character plot" },
        { mnemonic("CR"), &M::colorRange, "set color range for relative color data" },
        { mnemonic("CS"), &M::standardCharacterSet, "standard character set" },
        { mnemonic("CT"), &M::chordTolerance, "chord tolerance mode", kEnds, kNumbers, false, kPlot },
        { mnemonic("CV"), &M::ignore, "curved line generator", kGoes },
        { mnemonic("DC"), &M::ignore, "digitize clear", kGoes },
        { mnemonic("DF"), &M::defaultsCommand, "default values", kBreaks, kNumbers, true },
        { mnemonic("DI"), &M::absoluteDirection, "absolute direction" },
        { mnemonic("DL"), &M::ignore, "download character" },
        { mnemonic("DP"), &M::ignore, "digitize point", kGoes },
        { mnemonic("DR"), &M::relativeDirection, "relative direction" },
        { mnemonic("DT"), &M::defineTerminator, "define label terminator", kEnds, kRaw },
        { mnemonic("DV"), &M::verticalPath, "define variable text path" },
        { mnemonic("EA"), &M::edgeRectangleAbsolute, "edge rectangle absolute" },
        { mnemonic("EC"), &M::ignore, "enable cutter", kGoes },
        { mnemonic("EP"), &M::edgePolygon, "edge polygon" },
        { mnemonic("ER"), &M::edgeRectangleRelative, "edge rectangle relative" },
        { mnemonic("ES"), &M::extraSpace, "extra space" },
        { mnemonic("EW"), &M::edgeWedge, "edge wedge" },
        { mnemonic("FI"), &M::primaryFont, "select primary font" },
        { mnemonic("FN"), &M::secondaryFont, "select secondary font" },
        { mnemonic("FP"), &M::fillPolygon, "fill polygon" },
        { mnemonic("FR"), &M::advanceFrame, "frame advance", kEnds, kNumbers, false, kPlot },
        { mnemonic("FS"), &M::ignore, "force select", kGoes },
        { mnemonic("FT"), &M::fillType, "fill type" },
        { mnemonic("GM"), &M::ignore, "graphics memory", kGoes },
        { mnemonic("IM"), &M::ignore, "input mask", kGoes },
        { mnemonic("IN"), &M::initialiseCommand, "initialize", kBreaks, kNumbers, true },
        { mnemonic("IP"), &M::inputPoints, "input P1 and P2", kBreaks },
        { mnemonic("IR"), &M::inputRelativePoints, "input relative P1 and P2", kBreaks },
        { mnemonic("IV"), &M::ignore, "invoke character slot", kGoes },
        { mnemonic("IW"), &M::inputWindow, "input window", kBreaks },
        { mnemonic("KY"), &M::ignore, "define key", kGoes },
        { mnemonic("LA"), &M::lineAttributes, "line attributes", kBreaks },
        { mnemonic("LB"), &M::label, "label", kEnds, kRaw },
        { mnemonic("LM"), &M::labelMode, "label mode" },
        { mnemonic("LO"), &M::labelOrigin, "label origin" },
        { mnemonic("LT"), &M::lineType, "line type" },
        { mnemonic("MC"), &M::mergeControl, "merge control" },
        { mnemonic("MG"), &M::comment, "message", kGoes, kRaw, true },
        { mnemonic("MT"), &M::ignore, "media type", kGoes },
        { mnemonic("NP"), &M::numberOfPens, "number of pens" },
        { mnemonic("NR"), &M::ignore, "not ready", kGoes },
        { mnemonic("OA"), &M::ignore, "output actual position", kGoes },
        { mnemonic("OC"), &M::ignore, "output commanded position", kGoes },
        { mnemonic("OD"), &M::ignore, "output digitized point", kGoes },
        { mnemonic("OE"), &M::ignore, "output error", kGoes },
        { mnemonic("OF"), &M::ignore, "output factors", kGoes },
        { mnemonic("OH"), &M::ignore, "output hard-clip limits", kGoes },
        { mnemonic("OI"), &M::ignore, "output identification", kGoes },
        { mnemonic("OK"), &M::ignore, "output key", kGoes },
        { mnemonic("OO"), &M::ignore, "output options", kGoes },
        { mnemonic("OP"), &M::ignore, "output P1 and P2", kGoes },
        { mnemonic("OS"), &M::ignore, "output status", kGoes },
        { mnemonic("OT"), &M::ignore, "output carousel type", kGoes },
        { mnemonic("OW"), &M::ignore, "output window", kGoes },
        { mnemonic("PA"), &M::plotAbsolute, "plot absolute", kGoes, kList, true },
        { mnemonic("PB"), &M::printBuffer, "print buffered label" },
        { mnemonic("PC"), &M::penColors, "pen color assignment" },
        { mnemonic("PD"), &M::penDown, "pen down", kGoes, kList, true },
        { mnemonic("PE"), &M::encodedPolyline, "polyline encoded", kGoes, kRaw, true },
        { mnemonic("PG"), &M::advancePage, "advance full page", kEnds, kNumbers, false, kPlot },
        { mnemonic("PM"), &M::polygonMode, "polygon mode", kEnds, kNumbers, true },
        { mnemonic("PP"), &M::pixelPlacement, "pixel placement" },
        { mnemonic("PR"), &M::plotRelative, "plot relative", kGoes, kList, true },
        { mnemonic("PS"), &M::plotSize, "plot size", kEnds, kNumbers, false, kPlot },
        { mnemonic("PT"), &M::ignore, "pen thickness", kGoes },
        { mnemonic("PU"), &M::penUp, "pen up", kGoes, kList, true },
        { mnemonic("PW"), &M::penWidth, "pen width", kBreaks },
        { mnemonic("QL"), &M::ignore, "quality level", kGoes },
        { mnemonic("RA"), &M::fillRectangleAbsolute, "fill rectangle absolute" },
        { mnemonic("RF"), &M::rasterFill, "raster fill definition", kBreaks },
        { mnemonic("RO"), &M::rotate, "rotate coordinate system", kBreaks },
        { mnemonic("RP"), &M::ignore, "replot" },
        { mnemonic("RR"), &M::fillRectangleRelative, "fill rectangle relative" },
        { mnemonic("RT"), &M::arcThreePointRelative, "relative arc three point", kGoes, kNumbers, true },
        { mnemonic("SA"), &M::selectAlternate, "select alternate font" },
        { mnemonic("SB"), &M::scalableOrBitmap, "scalable or bitmap fonts" },
        { mnemonic("SC"), &M::scale, "scale", kBreaks },
        { mnemonic("SD"), &M::standardFont, "standard font definition" },
        { mnemonic("SG"), &M::selectPen, "select pen group", kBreaks },
        { mnemonic("SI"), &M::absoluteSize, "absolute character size" },
        { mnemonic("SL"), &M::slant, "character slant" },
        { mnemonic("SM"), &M::symbolMode, "symbol mode", kEnds, kRaw },
        { mnemonic("SP"), &M::selectPen, "select pen", kBreaks },
        { mnemonic("SR"), &M::relativeSize, "relative character size" },
        { mnemonic("SS"), &M::selectStandard, "select standard font" },
        { mnemonic("ST"), &M::ignore, "sort", kGoes },
        { mnemonic("SV"), &M::screenVectors, "screened vectors" },
        { mnemonic("TD"), &M::transparentData, "transparent data" },
        { mnemonic("TL"), &M::tickLength, "tick length" },
        { mnemonic("TR"), &M::transparencyMode, "transparency mode", kBreaks },
        { mnemonic("UC"), &M::userCharacter, "user-defined character" },
        { mnemonic("UL"), &M::userLineType, "user-defined line type", kBreaks },
        { mnemonic("VS"), &M::ignore, "velocity select", kGoes },
        { mnemonic("WD"), &M::writeToDisplay, "write to display", kEnds, kRaw },
        { mnemonic("WG"), &M::fillWedge, "fill wedge" },
        { mnemonic("WU"), &M::penWidthUnit, "pen width unit", kBreaks },
        { mnemonic("XT"), &M::tickX, "x tick" },
        { mnemonic("YT"), &M::tickY, "y tick" },
    };
    return s_commands;
}

std::vector<Mnemonic> Machine::knownCommands()
{
    std::vector<Mnemonic> names;
    for (const Entry& entry : commands())
        names.push_back(entry.mnemonic);
    return names;
}

const Machine::Entry* Machine::find(Mnemonic mnemonic)
{
    const std::vector<Entry>& table = commands();
    const auto entry = std::lower_bound(
        table.begin(), table.end(), mnemonic, [](const Entry& e, Mnemonic wanted) { return e.mnemonic < wanted; });
    return entry != table.end() && entry->mnemonic == mnemonic ? &*entry : nullptr;
}

} // namespace quillrip::hpgl
