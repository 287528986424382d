#pragma once

namespace quillrip::hpgl {

class Command;
class Plotter;

/// The handlers of all commands: they read the operands and have the plotter's parts do the rest.
namespace commands {

// configuration_commands.cpp
void initialise(Plotter& plotter, Command& command);
void useDefaults(Plotter& plotter, Command& command);
void inputPoints(Plotter& plotter, Command& command);
void inputRelativePoints(Plotter& plotter, Command& command);
void scale(Plotter& plotter, Command& command);
void inputWindow(Plotter& plotter, Command& command);
void rotate(Plotter& plotter, Command& command);

// job_commands.cpp
void beginPlot(Plotter& plotter, Command& command);
void advancePage(Plotter& plotter, Command& command);
void advanceFrame(Plotter& plotter, Command& command);
void plotSize(Plotter& plotter, Command& command);
void comment(Plotter& plotter, Command& command);

// vector_commands.cpp
void plotAbsolute(Plotter& plotter, Command& command);
void plotRelative(Plotter& plotter, Command& command);
void penUp(Plotter& plotter, Command& command);
void penDown(Plotter& plotter, Command& command);
void tickLength(Plotter& plotter, Command& command);
void tickX(Plotter& plotter, Command& command);
void tickY(Plotter& plotter, Command& command);

// encoded_polyline.cpp
void encodedPolyline(Plotter& plotter, Command& command);

// curve_commands.cpp
void arcAbsolute(Plotter& plotter, Command& command);
void arcRelative(Plotter& plotter, Command& command);
void arcThreePointAbsolute(Plotter& plotter, Command& command);
void arcThreePointRelative(Plotter& plotter, Command& command);
void bezierAbsolute(Plotter& plotter, Command& command);
void bezierRelative(Plotter& plotter, Command& command);
void circle(Plotter& plotter, Command& command);
void chordTolerance(Plotter& plotter, Command& command);

// polygon_commands.cpp
void polygonMode(Plotter& plotter, Command& command);
void fillPolygon(Plotter& plotter, Command& command);
void edgePolygon(Plotter& plotter, Command& command);
void fillRectangleAbsolute(Plotter& plotter, Command& command);
void fillRectangleRelative(Plotter& plotter, Command& command);
void edgeRectangleAbsolute(Plotter& plotter, Command& command);
void edgeRectangleRelative(Plotter& plotter, Command& command);
void fillWedge(Plotter& plotter, Command& command);
void edgeWedge(Plotter& plotter, Command& command);

// line_commands.cpp
void lineType(Plotter& plotter, Command& command);
void userLineType(Plotter& plotter, Command& command);
void lineAttributes(Plotter& plotter, Command& command);
void screenVectors(Plotter& plotter, Command& command);
void symbolMode(Plotter& plotter, Command& command);

// fill_commands.cpp
void fillType(Plotter& plotter, Command& command);
void rasterFill(Plotter& plotter, Command& command);
void anchorCorner(Plotter& plotter, Command& command);
void transparencyMode(Plotter& plotter, Command& command);
void mergeControl(Plotter& plotter, Command& command);
void pixelPlacement(Plotter& plotter, Command& command);

// pen_commands.cpp
void selectPen(Plotter& plotter, Command& command);
void penWidth(Plotter& plotter, Command& command);
void penWidthUnit(Plotter& plotter, Command& command);
void numberOfPens(Plotter& plotter, Command& command);
void penColors(Plotter& plotter, Command& command);
void colorRange(Plotter& plotter, Command& command);

// font_commands.cpp
void standardFont(Plotter& plotter, Command& command);
void alternateFont(Plotter& plotter, Command& command);
void selectStandard(Plotter& plotter, Command& command);
void selectAlternate(Plotter& plotter, Command& command);
void primaryFont(Plotter& plotter, Command& command);
void secondaryFont(Plotter& plotter, Command& command);
void standardCharacterSet(Plotter& plotter, Command& command);
void alternateCharacterSet(Plotter& plotter, Command& command);
void scalableOrBitmap(Plotter& plotter, Command& command);

// label_commands.cpp
void label(Plotter& plotter, Command& command);
void bufferLabel(Plotter& plotter, Command& command);
void printBuffer(Plotter& plotter, Command& command);
void writeToDisplay(Plotter& plotter, Command& command);
void characterPlot(Plotter& plotter, Command& command);
void labelMode(Plotter& plotter, Command& command);
void defineTerminator(Plotter& plotter, Command& command);
void transparentData(Plotter& plotter, Command& command);
void absoluteSize(Plotter& plotter, Command& command);
void relativeSize(Plotter& plotter, Command& command);
void slant(Plotter& plotter, Command& command);
void absoluteDirection(Plotter& plotter, Command& command);
void relativeDirection(Plotter& plotter, Command& command);
void verticalPath(Plotter& plotter, Command& command);
void extraSpace(Plotter& plotter, Command& command);
void labelOrigin(Plotter& plotter, Command& command);
void characterFill(Plotter& plotter, Command& command);
void userCharacter(Plotter& plotter, Command& command);

} // namespace commands
} // namespace quillrip::hpgl
