#pragma once

#include "quillrip/pclxl/status.h"

namespace quillrip::pclxl {

class Machine;

/// The handlers of the operators, by the files they stand in. Each reads its operands, which the command table's rules
/// have passed, and asks the machine's rooms for the rest. The operators are the published language's; what they may
/// fail with is told by the Status.
namespace commands {

// Sessions, and what has no effect on a page: session_commands.cpp
Status beginSession(Machine& machine);
Status endSession(Machine& machine);
Status openDataSource(Machine& machine);
Status closeDataSource(Machine& machine);
Status ignore(Machine& machine);
Status ignoreOnce(Machine& machine);

// Pages, the saved states and the coordinates: page_commands.cpp
Status beginPage(Machine& machine);
Status endPage(Machine& machine);
Status pushGS(Machine& machine);
Status popGS(Machine& machine);
Status setDefaultGS(Machine& machine);
Status setPageDefaultCTM(Machine& machine);
Status setPageOrigin(Machine& machine);
Status setPageRotation(Machine& machine);
Status setPageScale(Machine& machine);
Status passThrough(Machine& machine);

// Colours and how they mix: color_commands.cpp
Status setColorSpace(Machine& machine);
Status setBrushSource(Machine& machine);
Status setPenSource(Machine& machine);
Status setHalftoneMethod(Machine& machine);
Status setROP(Machine& machine);
Status setSourceTxMode(Machine& machine);
Status setPaintTxMode(Machine& machine);

// How lines and areas are drawn: line_commands.cpp
Status setFillMode(Machine& machine);
Status setLineDash(Machine& machine);
Status setLineCap(Machine& machine);
Status setLineJoin(Machine& machine);
Status setMiterLimit(Machine& machine);
Status setPenWidth(Machine& machine);

// clip_commands.cpp
Status setClipReplace(Machine& machine);
Status setClipIntersect(Machine& machine);
Status setClipRectangle(Machine& machine);
Status setClipToPage(Machine& machine);
Status setClipMode(Machine& machine);
Status setPathToClip(Machine& machine);

// path_commands.cpp
Status setCursor(Machine& machine);
Status setCursorRel(Machine& machine);
Status newPath(Machine& machine);
Status closeSubPath(Machine& machine);
Status linePath(Machine& machine);
Status lineRelPath(Machine& machine);
Status bezierPath(Machine& machine);
Status bezierRelPath(Machine& machine);
Status paintPath(Machine& machine);

// shape_commands.cpp
Status arcPath(Machine& machine);
Status chordPath(Machine& machine);
Status chord(Machine& machine);
Status piePath(Machine& machine);
Status pie(Machine& machine);
Status ellipsePath(Machine& machine);
Status ellipse(Machine& machine);
Status rectanglePath(Machine& machine);
Status rectangle(Machine& machine);
Status roundRectanglePath(Machine& machine);
Status roundRectangle(Machine& machine);
Status beginScan(Machine& machine);
Status scanLineRel(Machine& machine);
Status endScan(Machine& machine);

// Images and raster patterns: image_commands.cpp
Status beginImage(Machine& machine);
Status readImage(Machine& machine);
Status endImage(Machine& machine);
Status beginRastPattern(Machine& machine);
Status readRastPattern(Machine& machine);
Status endRastPattern(Machine& machine);

// vendor_commands.cpp
Status vendorUnique(Machine& machine);

// Soft fonts: font_commands.cpp
Status beginFontHeader(Machine& machine);
Status readFontHeader(Machine& machine);
Status endFontHeader(Machine& machine);
Status beginChar(Machine& machine);
Status readChar(Machine& machine);
Status endChar(Machine& machine);
Status removeFont(Machine& machine);

// text_commands.cpp
Status setFont(Machine& machine);
Status setCharAngle(Machine& machine);
Status setCharScale(Machine& machine);
Status setCharShear(Machine& machine);
Status setCharBoldValue(Machine& machine);
Status setCharAttributes(Machine& machine);
Status setCharSubMode(Machine& machine);
Status text(Machine& machine);
Status textPath(Machine& machine);

// User streams: stream_commands.cpp
Status beginStream(Machine& machine);
Status readStream(Machine& machine);
Status endStream(Machine& machine);
Status execStream(Machine& machine);
Status removeStream(Machine& machine);

} // namespace commands
} // namespace quillrip::pclxl
