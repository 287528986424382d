#pragma once

#include "quillrip/pcl/command_table.h"

#include <cstdint>

namespace quillrip::pcl {

// The handlers that the command table names, by the file that holds them.

// page_commands.cpp
void setPageSize(Machine& machine, const Command& command);
void setPageLength(Machine& machine, const Command& command);
void setOrientation(Machine& machine, const Command& command);
void setPaperSource(Machine& machine, const Command& command);
void setDuplex(Machine& machine, const Command& command);
void selectSide(Machine& machine, const Command& command);
void setPrintDirection(Machine& machine, const Command& command);
void setLeftRegistration(Machine& machine, const Command& command);
void setTopRegistration(Machine& machine, const Command& command);
void setTopMargin(Machine& machine, const Command& command);
void setTextLength(Machine& machine, const Command& command);
void setPerforationSkip(Machine& machine, const Command& command);
void setLeftMargin(Machine& machine, const Command& command);
void setRightMargin(Machine& machine, const Command& command);
void clearHorizontalMargins(Machine& machine, const Command& command);
void setColumnWidth(Machine& machine, const Command& command);
void setLineSpacing(Machine& machine, const Command& command);
void setLinesPerInch(Machine& machine, const Command& command);
void setUnitOfMeasure(Machine& machine, const Command& command);
void setLineTermination(Machine& machine, const Command& command);
void setWrap(Machine& machine, const Command& command);
void extendedSetting(Machine& machine, const Command& command);

// cursor_commands.cpp
void moveColumns(Machine& machine, const Command& command);
void moveHorizontalDecipoints(Machine& machine, const Command& command);
void moveHorizontalUnits(Machine& machine, const Command& command);
void moveRows(Machine& machine, const Command& command);
void moveVerticalDecipoints(Machine& machine, const Command& command);
void moveVerticalUnits(Machine& machine, const Command& command);
void pushOrPopCursor(Machine& machine, const Command& command);
void halfLineFeed(Machine& machine, const Command& command);
/// BS, HT, LF, FF, CR, SO and SI; all others do nothing.
void obeyControlCode(Machine& machine, std::uint8_t code);

// text_commands.cpp
void setTextParsing(Machine& machine, const Command& command);
void setTextPath(Machine& machine, const Command& command);
void transparentText(Machine& machine, const Command& command);
void displayFunctionsOn(Machine& machine, const Command& command);
void displayFunctionsOff(Machine& machine, const Command& command);
void setUnderline(Machine& machine, const Command& command);

// font_commands.cpp
void setSymbolSet(Machine& machine, const Command& command);
void selectFontById(Machine& machine, const Command& command);
void selectDefaultFont(Machine& machine, const Command& command);
void setSpacing(Machine& machine, const Command& command);
void setPitch(Machine& machine, const Command& command);
void setHeight(Machine& machine, const Command& command);
void setStyle(Machine& machine, const Command& command);
void setWeight(Machine& machine, const Command& command);
void setTypeface(Machine& machine, const Command& command);
void setPitchMode(Machine& machine, const Command& command);

// soft_font_commands.cpp
void setFontId(Machine& machine, const Command& command);
void setCharacterCode(Machine& machine, const Command& command);
void downloadFontHeader(Machine& machine, const Command& command);
void downloadCharacter(Machine& machine, const Command& command);
void controlFonts(Machine& machine, const Command& command);
void setSymbolSetCode(Machine& machine, const Command& command);
void defineSymbolSet(Machine& machine, const Command& command);
void controlSymbolSets(Machine& machine, const Command& command);
void alphanumericId(Machine& machine, const Command& command);

// macro_commands.cpp
void setMacroId(Machine& machine, const Command& command);
void controlMacro(Machine& machine, const Command& command);

// print_model_commands.cpp
void setPattern(Machine& machine, const Command& command);
void setPatternId(Machine& machine, const Command& command);
void downloadPattern(Machine& machine, const Command& command);
void controlPatterns(Machine& machine, const Command& command);
void setPatternReference(Machine& machine, const Command& command);
void setSourceTransparency(Machine& machine, const Command& command);
void setPatternTransparency(Machine& machine, const Command& command);
void setRasterOperation(Machine& machine, const Command& command);
void setPixelPlacement(Machine& machine, const Command& command);
void setRectangleSize(Machine& machine, const Command& command);
void fillRectangle(Machine& machine, const Command& command);

// raster_commands.cpp
void setRasterResolution(Machine& machine, const Command& command);
void noteInkjet(Machine& machine, const Command& command);
void setPresentation(Machine& machine, const Command& command);
void setSourceHeight(Machine& machine, const Command& command);
void setSourceWidth(Machine& machine, const Command& command);
void setDestinationSize(Machine& machine, const Command& command);
void setCompression(Machine& machine, const Command& command);
void configureRasterData(Machine& machine, const Command& command);
void startRaster(Machine& machine, const Command& command);
void endRaster(Machine& machine, const Command& command);
void moveRasterRows(Machine& machine, const Command& command);
void transferPlane(Machine& machine, const Command& command);
void transferRow(Machine& machine, const Command& command);

// color_commands.cpp
void setSimpleColor(Machine& machine, const Command& command);
void configureImageData(Machine& machine, const Command& command);
void setColorComponent(Machine& machine, const Command& command);
void assignColor(Machine& machine, const Command& command);
void setForeground(Machine& machine, const Command& command);
void pushOrPopPalette(Machine& machine, const Command& command);
void selectPalette(Machine& machine, const Command& command);
void setPaletteControlId(Machine& machine, const Command& command);
void controlPalettes(Machine& machine, const Command& command);
void setRenderAlgorithm(Machine& machine, const Command& command);
void setGamma(Machine& machine, const Command& command);
void downloadLookup(Machine& machine, const Command& command);
void setMonochrome(Machine& machine, const Command& command);

// plot_commands.cpp
void enterPlot(Machine& machine, const Command& command);
void enterPcl(Machine& machine, const Command& command);
void setFrameSize(Machine& machine, const Command& command);
void setFrameAnchor(Machine& machine, const Command& command);
void setPlotSize(Machine& machine, const Command& command);

// machine.cpp
void printerReset(Machine& machine, const Command& command);

} // namespace quillrip::pcl
