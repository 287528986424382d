#include "quillrip/hpgl/command_table.h"

#include "quillrip/hpgl/commands.h"

#include <algorithm>

namespace quillrip::hpgl {

const std::vector<CommandEntry>& commandTable()
{
    // Sorted by mnemonic, checked by a test. Mnemonics that are missing here are known and have no effect: speeds,
    // media, queries, messages.
    static const std::vector<CommandEntry> s_commands {
        { mnemonic("AA"), &commands::arcAbsolute },
        { mnemonic("AC"), &commands::anchorCorner },
        { mnemonic("AD"), &commands::alternateFont },
        { mnemonic("AF"), &commands::advanceFrame },
        { mnemonic("AH"), &commands::advanceFrame },
        { mnemonic("AR"), &commands::arcRelative },
        { mnemonic("AT"), &commands::arcThreePointAbsolute },
        { mnemonic("BL"), &commands::bufferLabel },
        { mnemonic("BP"), &commands::beginPlot },
        { mnemonic("BR"), &commands::bezierRelative },
        { mnemonic("BZ"), &commands::bezierAbsolute },
        { mnemonic("CA"), &commands::alternateCharacterSet },
        { mnemonic("CF"), &commands::characterFill },
        { mnemonic("CI"), &commands::circle },
        { mnemonic("CO"), &commands::comment },
        { mnemonic("CP"), &commands::characterPlot },
        { mnemonic("CR"), &commands::colorRange },
        { mnemonic("CS"), &commands::standardCharacterSet },
        { mnemonic("CT"), &commands::chordTolerance },
        { mnemonic("DF"), &commands::useDefaults },
        { mnemonic("DI"), &commands::absoluteDirection },
        { mnemonic("DR"), &commands::relativeDirection },
        { mnemonic("DT"), &commands::defineTerminator },
        { mnemonic("DV"), &commands::verticalPath },
        { mnemonic("EA"), &commands::edgeRectangleAbsolute },
        { mnemonic("EP"), &commands::edgePolygon },
        { mnemonic("ER"), &commands::edgeRectangleRelative },
        { mnemonic("ES"), &commands::extraSpace },
        { mnemonic("EW"), &commands::edgeWedge },
        { mnemonic("FI"), &commands::primaryFont },
        { mnemonic("FN"), &commands::secondaryFont },
        { mnemonic("FP"), &commands::fillPolygon },
        { mnemonic("FR"), &commands::advanceFrame },
        { mnemonic("FT"), &commands::fillType },
        { mnemonic("IN"), &commands::initialise },
        { mnemonic("IP"), &commands::inputPoints },
        { mnemonic("IR"), &commands::inputRelativePoints },
        { mnemonic("IW"), &commands::inputWindow },
        { mnemonic("LA"), &commands::lineAttributes },
        { mnemonic("LB"), &commands::label },
        { mnemonic("LM"), &commands::labelMode },
        { mnemonic("LO"), &commands::labelOrigin },
        { mnemonic("LT"), &commands::lineType },
        { mnemonic("MC"), &commands::mergeControl },
        { mnemonic("MG"), &commands::comment },
        { mnemonic("NP"), &commands::numberOfPens },
        { mnemonic("PA"), &commands::plotAbsolute },
        { mnemonic("PB"), &commands::printBuffer },
        { mnemonic("PC"), &commands::penColors },
        { mnemonic("PD"), &commands::penDown },
        { mnemonic("PE"), &commands::encodedPolyline },
        { mnemonic("PG"), &commands::advancePage },
        { mnemonic("PM"), &commands::polygonMode },
        { mnemonic("PP"), &commands::pixelPlacement },
        { mnemonic("PR"), &commands::plotRelative },
        { mnemonic("PS"), &commands::plotSize },
        { mnemonic("PU"), &commands::penUp },
        { mnemonic("PW"), &commands::penWidth },
        { mnemonic("RA"), &commands::fillRectangleAbsolute },
        { mnemonic("RF"), &commands::rasterFill },
        { mnemonic("RO"), &commands::rotate },
        { mnemonic("RR"), &commands::fillRectangleRelative },
        { mnemonic("RT"), &commands::arcThreePointRelative },
        { mnemonic("SA"), &commands::selectAlternate },
        { mnemonic("SB"), &commands::scalableOrBitmap },
        { mnemonic("SC"), &commands::scale },
        { mnemonic("SD"), &commands::standardFont },
        { mnemonic("SG"), &commands::selectPen },
        { mnemonic("SI"), &commands::absoluteSize },
        { mnemonic("SL"), &commands::slant },
        { mnemonic("SM"), &commands::symbolMode },
        { mnemonic("SP"), &commands::selectPen },
        { mnemonic("SR"), &commands::relativeSize },
        { mnemonic("SS"), &commands::selectStandard },
        { mnemonic("SV"), &commands::screenVectors },
        { mnemonic("TD"), &commands::transparentData },
        { mnemonic("TL"), &commands::tickLength },
        { mnemonic("TR"), &commands::transparencyMode },
        { mnemonic("UC"), &commands::userCharacter },
        { mnemonic("UL"), &commands::userLineType },
        { mnemonic("WD"), &commands::writeToDisplay },
        { mnemonic("WG"), &commands::fillWedge },
        { mnemonic("WU"), &commands::penWidthUnit },
        { mnemonic("XT"), &commands::tickX },
        { mnemonic("YT"), &commands::tickY },
    };
    return s_commands;
}

Handler findHandler(Mnemonic mnemonic)
{
    const std::vector<CommandEntry>& table = commandTable();
    const auto entry = std::lower_bound(table.begin(), table.end(), mnemonic,
        [](const CommandEntry& e, Mnemonic wanted) { return e.mnemonic < wanted; });
    return entry != table.end() && entry->mnemonic == mnemonic ? entry->handler : nullptr;
}

} // namespace quillrip::hpgl
