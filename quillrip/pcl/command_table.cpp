#include "quillrip/pcl/command_table.h"

#include "quillrip/pcl/command_handlers.h"
#include "quillrip/pcl/tokenizer.h"

#include <algorithm>
#include <cstring>

namespace quillrip::pcl {

// Every command that is understood, in the order of its three letters. An entry without a handler is a command that has
// no meaning for an image: trays, staplers, print quality, status readback; and ESC%#X, but for the universal exit,
// which is no command of the language. What is not listed is skipped likewise.
const std::vector<CommandEntry>& commandTable()
{
    constexpr DataRule kNone = DataRule::None;
    constexpr DataRule kBytes = DataRule::Bytes;
    constexpr RasterRule kEnds = RasterRule::Ends;
    constexpr RasterRule kEndsOrMoves = RasterRule::EndsOrMoves;
    constexpr RasterRule kWithin = RasterRule::Within;
    constexpr RasterRule kWaits = RasterRule::Waits;
    constexpr RasterRule kBefore = RasterRule::BeforeRows;
    constexpr RasterRule kBeforeOrEnds = RasterRule::BeforeRowsOrEnds;
    static const std::vector<CommandEntry> s_commands {
        { '%', 0, 'A', &enterPcl, "enter PCL mode", kNone, kEnds },
        { '%', 0, 'B', &enterPlot, "enter HP-GL/2 mode", kNone, kEnds },
        { '%', 0, 'X', nullptr, "universal exit", kNone, kEnds },

        { '&', 'a', 'C', &moveColumns, "horizontal position in columns", kNone, kEnds },
        { '&', 'a', 'G', &selectSide, "duplex page side selection", kNone, kEnds },
        { '&', 'a', 'H', &moveHorizontalDecipoints, "horizontal position in decipoints", kNone, kEnds },
        { '&', 'a', 'L', &setLeftMargin, "left margin", kNone, kEnds },
        { '&', 'a', 'M', &setRightMargin, "right margin", kNone, kEnds },
        { '&', 'a', 'N', nullptr, "negative motion", kNone, kWithin },
        { '&', 'a', 'P', &setPrintDirection, "print direction", kNone, kEnds },
        { '&', 'a', 'R', &moveRows, "vertical position in rows", kNone, kEnds },
        { '&', 'a', 'V', &moveVerticalDecipoints, "vertical position in decipoints", kNone, kEnds },
        { '&', 'b', 'F', nullptr, "finish mode", kNone, kWithin },
        { '&', 'b', 'M', &setMonochrome, "monochrome print mode", kNone, kBeforeOrEnds },
        { '&', 'b', 'W', nullptr, "configuration", kBytes, kWithin },
        { '&', 'c', 'T', &setTextPath, "character text path", kNone, kEnds },
        { '&', 'd', '@', &setUnderline, "underline off", kNone, kEnds },
        { '&', 'd', 'D', &setUnderline, "underline on", kNone, kEnds },
        { '&', 'f', 'S', &pushOrPopCursor, "push or pop cursor", kNone, kEnds },
        { '&', 'f', 'X', &controlMacro, "macro control", kNone, kEnds },
        { '&', 'f', 'Y', &setMacroId, "macro ID", kNone, kEnds },
        { '&', 'k', 'G', &setLineTermination, "line termination", kNone, kEnds },
        { '&', 'k', 'H', &setColumnWidth, "horizontal motion index", kNone, kEnds },
        { '&', 'k', 'S', &setPitchMode, "pitch mode", kNone, kEnds },
        { '&', 'k', 'W', nullptr, "text scale or carriage direction", kNone, kWithin },
        { '&', 'l', 'A', &setPageSize, "page size", kNone, kEnds },
        { '&', 'l', 'C', &setLineSpacing, "vertical motion index", kNone, kEnds },
        { '&', 'l', 'D', &setLinesPerInch, "line spacing", kNone, kEnds },
        { '&', 'l', 'E', &setTopMargin, "top margin", kNone, kEnds },
        { '&', 'l', 'F', &setTextLength, "text length", kNone, kEnds },
        { '&', 'l', 'G', nullptr, "output bin", kNone, kWithin },
        { '&', 'l', 'H', &setPaperSource, "paper source", kNone, kEnds },
        { '&', 'l', 'L', &setPerforationSkip, "perforation skip", kNone, kEnds },
        { '&', 'l', 'M', nullptr, "media type", kNone, kWithin },
        { '&', 'l', 'O', &setOrientation, "logical page orientation", kNone, kEnds },
        { '&', 'l', 'P', &setPageLength, "page length", kNone, kEnds },
        { '&', 'l', 'S', &setDuplex, "simplex or duplex", kNone, kEnds },
        { '&', 'l', 'T', nullptr, "job separation", kNone, kWithin },
        { '&', 'l', 'U', &setLeftRegistration, "left offset registration", kNone, kEnds },
        { '&', 'l', 'W', nullptr, "vertical forms control", kBytes, kWithin },
        { '&', 'l', 'X', nullptr, "number of copies", kNone, kWithin },
        { '&', 'l', 'Z', &setTopRegistration, "top offset registration", kNone, kEnds },
        { '&', 'n', 'W', &alphanumericId, "alphanumeric ID", kBytes, kEnds },
        { '&', 'p', 'C', &controlPalettes, "palette control", kNone, kBeforeOrEnds },
        { '&', 'p', 'I', &setPaletteControlId, "palette control ID", kNone, kBeforeOrEnds },
        { '&', 'p', 'S', &selectPalette, "select palette", kNone, kBeforeOrEnds },
        { '&', 'p', 'X', &transparentText, "transparent print data", kBytes, kEnds },
        { '&', 'r', 'F', nullptr, "flush pages", kNone, kWithin },
        { '&', 's', 'C', &setWrap, "end-of-line wrap", kNone, kEnds },
        { '&', 't', 'P', &setTextParsing, "text parsing method", kNone, kEnds },
        { '&', 'u', 'D', &setUnitOfMeasure, "unit of measure", kNone, kEnds },

        { '(', 0, 0, &setSymbolSet, "primary symbol set", kNone, kEnds },
        { '(', 0, '@', &selectDefaultFont, "primary default font", kNone, kEnds },
        { '(', 0, 'X', &selectFontById, "primary font by ID", kNone, kEnds },
        { '(', 'f', 'W', &defineSymbolSet, "define symbol set", kBytes, kEnds },
        { '(', 's', 'B', &setWeight, "primary stroke weight", kNone, kEnds },
        { '(', 's', 'H', &setPitch, "primary pitch", kNone, kEnds },
        { '(', 's', 'P', &setSpacing, "primary spacing", kNone, kEnds },
        { '(', 's', 'Q', nullptr, "primary quality", kNone, kWithin },
        { '(', 's', 'S', &setStyle, "primary style", kNone, kEnds },
        { '(', 's', 'T', &setTypeface, "primary typeface", kNone, kEnds },
        { '(', 's', 'U', nullptr, "primary placement", kNone, kWithin },
        { '(', 's', 'V', &setHeight, "primary height", kNone, kEnds },
        { '(', 's', 'W', &downloadCharacter, "download character", kBytes, kEnds },

        { ')', 0, 0, &setSymbolSet, "secondary symbol set", kNone, kEnds },
        { ')', 0, '@', &selectDefaultFont, "secondary default font", kNone, kEnds },
        { ')', 0, 'X', &selectFontById, "secondary font by ID", kNone, kEnds },
        { ')', 's', 'B', &setWeight, "secondary stroke weight", kNone, kEnds },
        { ')', 's', 'H', &setPitch, "secondary pitch", kNone, kEnds },
        { ')', 's', 'P', &setSpacing, "secondary spacing", kNone, kEnds },
        { ')', 's', 'Q', nullptr, "secondary quality", kNone, kWithin },
        { ')', 's', 'S', &setStyle, "secondary style", kNone, kEnds },
        { ')', 's', 'T', &setTypeface, "secondary typeface", kNone, kEnds },
        { ')', 's', 'U', nullptr, "secondary placement", kNone, kWithin },
        { ')', 's', 'V', &setHeight, "secondary height", kNone, kEnds },
        { ')', 's', 'W', &downloadFontHeader, "download font header", kBytes, kEnds },

        { '*', 'b', 'M', &setCompression, "raster compression method", kNone, kWithin },
        { '*', 'b', 'S', &noteInkjet, "seed row source", kNone, kWithin },
        { '*', 'b', 'V', &transferPlane, "transfer raster plane", kBytes, kWithin },
        { '*', 'b', 'W', &transferRow, "transfer raster row", kBytes, kWithin },
        { '*', 'b', 'X', nullptr, "plane offset", kNone, kWithin },
        { '*', 'b', 'Y', &moveRasterRows, "raster row offset", kNone, kWithin },
        { '*', 'c', 'A', &setRectangleSize, "rectangle width in PCL units", kNone, kEnds },
        { '*', 'c', 'B', &setRectangleSize, "rectangle height in PCL units", kNone, kEnds },
        { '*', 'c', 'D', &setFontId, "font ID", kNone, kEnds },
        { '*', 'c', 'E', &setCharacterCode, "character code", kNone, kEnds },
        { '*', 'c', 'F', &controlFonts, "font control", kNone, kEnds },
        { '*', 'c', 'G', &setPatternId, "pattern ID", kNone, kEnds },
        { '*', 'c', 'H', &setRectangleSize, "rectangle width in decipoints", kNone, kEnds },
        { '*', 'c', 'K', &setPlotSize, "plot width", kNone, kEnds },
        { '*', 'c', 'L', &setPlotSize, "plot height", kNone, kEnds },
        { '*', 'c', 'P', &fillRectangle, "fill rectangle", kNone, kEnds },
        { '*', 'c', 'Q', &controlPatterns, "pattern control", kNone, kEnds },
        { '*', 'c', 'R', &setSymbolSetCode, "symbol set ID code", kNone, kEnds },
        { '*', 'c', 'S', &controlSymbolSets, "symbol set control", kNone, kEnds },
        { '*', 'c', 'T', &setFrameAnchor, "picture frame anchor", kNone, kEnds },
        { '*', 'c', 'V', &setRectangleSize, "rectangle height in decipoints", kNone, kEnds },
        { '*', 'c', 'W', &downloadPattern, "user-defined pattern", kBytes, kEnds },
        { '*', 'c', 'X', &setFrameSize, "picture frame width", kNone, kEnds },
        { '*', 'c', 'Y', &setFrameSize, "picture frame height", kNone, kEnds },
        { '*', 'g', 'W', &configureRasterData, "configure raster data", kBytes, kBeforeOrEnds },
        { '*', 'i', 'W', nullptr, "viewing illuminant", kBytes, kEnds },
        { '*', 'l', 'O', &setRasterOperation, "logical operation", kNone, kBeforeOrEnds },
        { '*', 'l', 'R', &setPixelPlacement, "pixel placement", kNone, kBeforeOrEnds },
        { '*', 'l', 'W', &downloadLookup, "colour lookup tables", kBytes, kBeforeOrEnds },
        { '*', 'm', 'W', nullptr, "download dither matrix", kBytes, kEnds },
        { '*', 'o', 'D', &noteInkjet, "depletion", kNone, kWithin },
        { '*', 'o', 'M', &noteInkjet, "print quality", kNone, kWithin },
        { '*', 'o', 'Q', nullptr, "shingling", kNone, kWithin },
        { '*', 'o', 'W', &extendedSetting, "driver configuration", kBytes, kWithin },
        { '*', 'p', 'P', &pushOrPopPalette, "push or pop palette", kNone, kEnds },
        { '*', 'p', 'R', &setPatternReference, "pattern reference point", kNone, kEnds },
        { '*', 'p', 'X', &moveHorizontalUnits, "horizontal position in PCL units", kNone, kEnds },
        { '*', 'p', 'Y', &moveVerticalUnits, "vertical position in PCL units", kNone, kEndsOrMoves },
        { '*', 'r', 'A', &startRaster, "start raster graphics", kNone, kWaits },
        { '*', 'r', 'B', &endRaster, "end raster graphics", kNone, kEnds },
        { '*', 'r', 'C', &endRaster, "end raster graphics", kNone, kEnds },
        { '*', 'r', 'F', &setPresentation, "raster presentation", kNone, kWaits },
        { '*', 'r', 'Q', &noteInkjet, "raster quality", kNone, kWithin },
        { '*', 'r', 'S', &setSourceWidth, "source raster width", kNone, kBefore },
        { '*', 'r', 'T', &setSourceHeight, "source raster height", kNone, kWaits },
        { '*', 'r', 'U', &setSimpleColor, "simple colour", kNone, kBefore },
        { '*', 's', 'I', nullptr, "inquire entity", kNone, kWithin },
        { '*', 's', 'M', nullptr, "free space", kNone, kWithin },
        { '*', 's', 'T', nullptr, "status location type", kNone, kWithin },
        { '*', 's', 'U', nullptr, "status location unit", kNone, kWithin },
        { '*', 's', 'X', nullptr, "echo", kNone, kWithin },
        { '*', 't', 'H', &setDestinationSize, "destination raster width", kNone, kWaits },
        { '*', 't', 'I', &setGamma, "gamma correction", kNone, kBeforeOrEnds },
        { '*', 't', 'J', &setRenderAlgorithm, "render algorithm", kNone, kBeforeOrEnds },
        { '*', 't', 'R', &setRasterResolution, "raster resolution", kNone, kWaits },
        { '*', 't', 'V', &setDestinationSize, "destination raster height", kNone, kWaits },
        { '*', 'v', 'A', &setColorComponent, "first colour component", kNone, kBeforeOrEnds },
        { '*', 'v', 'B', &setColorComponent, "second colour component", kNone, kBeforeOrEnds },
        { '*', 'v', 'C', &setColorComponent, "third colour component", kNone, kBeforeOrEnds },
        { '*', 'v', 'I', &assignColor, "assign colour index", kNone, kBeforeOrEnds },
        { '*', 'v', 'N', &setSourceTransparency, "source transparency mode", kNone, kBeforeOrEnds },
        { '*', 'v', 'O', &setPatternTransparency, "pattern transparency mode", kNone, kBeforeOrEnds },
        { '*', 'v', 'S', &setForeground, "foreground colour", kNone, kBeforeOrEnds },
        { '*', 'v', 'T', &setPattern, "select current pattern", kNone, kBeforeOrEnds },
        { '*', 'v', 'W', &configureImageData, "configure image data", kBytes, kBefore },
    };
    return s_commands;
}

const std::vector<TwoCharacterEntry>& twoCharacterTable()
{
    static const std::vector<TwoCharacterEntry> s_commands {
        { '9', &clearHorizontalMargins, "clear horizontal margins" },
        { '=', &halfLineFeed, "half line feed" },
        { 'E', &printerReset, "printer reset" },
        { 'Y', &displayFunctionsOn, "display functions on" },
        { 'Z', &displayFunctionsOff, "display functions off" },
        { 'z', nullptr, "self test" },
    };
    return s_commands;
}

namespace {

/// A symbol set's letter is part of its name.
bool isSymbolSet(const Token& token) { return token.group == 0 && (token.prefix == '(' || token.prefix == ')'); }

const CommandEntry* findExactly(char prefix, char group, char terminator)
{
    const CommandEntry wanted { prefix, group, terminator, nullptr, "" };
    const auto& all = commandTable();
    const auto found = std::lower_bound(
        all.begin(), all.end(), wanted, [](const auto& a, const auto& b) { return a.key() < b.key(); });
    return found != all.end() && found->key() == wanted.key() ? &*found : nullptr;
}

} // namespace

const CommandEntry* find(const Token& token)
{
    if (const CommandEntry* entry = findExactly(token.prefix, token.group, token.terminator))
        return entry;
    const bool isLetter = token.terminator >= 'A' && token.terminator <= 'Z';
    return isSymbolSet(token) && isLetter ? findExactly(token.prefix, token.group, 0) : nullptr;
}

const TwoCharacterEntry* findTwoCharacter(char code)
{
    const auto& all = twoCharacterTable();
    const auto found = std::find_if(all.begin(), all.end(), [code](const auto& entry) { return entry.code == code; });
    return found != all.end() ? &*found : nullptr;
}

std::uint64_t dataLength(const Token& token, const CommandEntry* entry)
{
    // What nobody knows but ends like a transfer is one; symbol sets end in any letter.
    const bool hasData = entry ? entry->data == DataRule::Bytes : token.terminator == 'W' && !isSymbolSet(token);
    return hasData && token.value.number >= 1 ? static_cast<std::uint64_t>(token.value.number) : 0;
}

// Raster, colours, patterns as textures, logical operations, moves, and the way back to the vectors.
bool isOfPlotters(const CommandEntry& entry)
{
    switch (entry.prefix) {
    case '*':
        return std::strchr("bgilmrtv", entry.group) || (entry.group == 'p' && entry.terminator != 'R')
            || (entry.group == 'c' && std::strchr("GQW", entry.terminator));
    case '&':
        return (entry.group == 'a' && std::strchr("HV", entry.terminator))
            || (entry.group == 'p' && entry.terminator != 'X') || (entry.group == 'u' && entry.terminator == 'D');
    case '%':
        return entry.terminator == 'A' || entry.terminator == 'B';
    default:
        return false;
    }
}

} // namespace quillrip::pcl
