#pragma once

// The handlers that the command table names, one for a record or a family of records, by subject. Each has been given
// a record of at least the smallest size that its entry names.

namespace quillrip::emf {

class Machine;
class Record;

// state_commands.cpp
void setWindowExtent(Machine&, const Record&);
void setWindowOrigin(Machine&, const Record&);
void setViewportExtent(Machine&, const Record&);
void setViewportOrigin(Machine&, const Record&);
void scaleWindow(Machine&, const Record&);
void scaleViewport(Machine&, const Record&);
void setMapMode(Machine&, const Record&);
void setWorldTransform(Machine&, const Record&);
void modifyWorldTransform(Machine&, const Record&);
void setLayout(Machine&, const Record&);
void setBrushOrigin(Machine&, const Record&);
void setBackgroundMode(Machine&, const Record&);
void setBackgroundColor(Machine&, const Record&);
void setTextColor(Machine&, const Record&);
void setPolyFillMode(Machine&, const Record&);
void setRop2(Machine&, const Record&);
void setStretchMode(Machine&, const Record&);
void setArcDirection(Machine&, const Record&);
void setMiterLimit(Machine&, const Record&);
void setColorAdjustment(Machine&, const Record&);
void saveContext(Machine&, const Record&);
void restoreContext(Machine&, const Record&);

// object_commands.cpp
void selectObject(Machine&, const Record&);
void selectPalette(Machine&, const Record&);
void deleteObject(Machine&, const Record&);
void createPen(Machine&, const Record&);
void extCreatePen(Machine&, const Record&);
void createBrush(Machine&, const Record&);
void createMonoBrush(Machine&, const Record&);
void createPatternBrush(Machine&, const Record&);
void createFont(Machine&, const Record&);
void createPalette(Machine&, const Record&);
void setPaletteEntries(Machine&, const Record&);
void resizePalette(Machine&, const Record&);
void createColorSpace(Machine&, const Record&);

// line_commands.cpp
void moveTo(Machine&, const Record&);
void lineTo(Machine&, const Record&);
void polyline(Machine&, const Record&);
void polyline16(Machine&, const Record&);
void polygon(Machine&, const Record&);
void polygon16(Machine&, const Record&);
void polylineTo(Machine&, const Record&);
void polylineTo16(Machine&, const Record&);
void polyBezier(Machine&, const Record&);
void polyBezier16(Machine&, const Record&);
void polyBezierTo(Machine&, const Record&);
void polyBezierTo16(Machine&, const Record&);
void polyPolyline(Machine&, const Record&);
void polyPolyline16(Machine&, const Record&);
void polyPolygon(Machine&, const Record&);
void polyPolygon16(Machine&, const Record&);
void polyDraw(Machine&, const Record&);
void polyDraw16(Machine&, const Record&);

// shape_commands.cpp
void setPixel(Machine&, const Record&);
void rectangle(Machine&, const Record&);
void roundRectangle(Machine&, const Record&);
void ellipse(Machine&, const Record&);
void arc(Machine&, const Record&);
void arcTo(Machine&, const Record&);
void chord(Machine&, const Record&);
void pie(Machine&, const Record&);
void angleArc(Machine&, const Record&);
void floodFill(Machine&, const Record&);

// path_commands.cpp
void beginPath(Machine&, const Record&);
void endPath(Machine&, const Record&);
void abortPath(Machine&, const Record&);
void closeFigure(Machine&, const Record&);
void widenPath(Machine&, const Record&);
void fillPath(Machine&, const Record&);
void strokePath(Machine&, const Record&);
void strokeAndFillPath(Machine&, const Record&);

// region_commands.cpp
void intersectClipRect(Machine&, const Record&);
void excludeClipRect(Machine&, const Record&);
void offsetClip(Machine&, const Record&);
void setMetaRegion(Machine&, const Record&);
void selectClipRegion(Machine&, const Record&);
void selectClipPath(Machine&, const Record&);
void fillRegion(Machine&, const Record&);
void frameRegion(Machine&, const Record&);
void invertRegion(Machine&, const Record&);
void paintRegion(Machine&, const Record&);

// blit_commands.cpp
void bitBlt(Machine&, const Record&);
void stretchBlt(Machine&, const Record&);
void maskBlt(Machine&, const Record&);
void plgBlt(Machine&, const Record&);
void setDibitsToDevice(Machine&, const Record&);
void stretchDibits(Machine&, const Record&);
void alphaBlend(Machine&, const Record&);
void transparentBlt(Machine&, const Record&);

// gradient_commands.cpp
void gradientFill(Machine&, const Record&);

// text_commands.cpp
void setTextAlign(Machine&, const Record&);
void setTextJustification(Machine&, const Record&);
void extTextOutA(Machine&, const Record&);
void extTextOutW(Machine&, const Record&);
void polyTextOutA(Machine&, const Record&);
void polyTextOutW(Machine&, const Record&);
void smallTextOut(Machine&, const Record&);
void forceUfiMapping(Machine&, const Record&);

// comment_commands.cpp
void comment(Machine&, const Record&);
void escape(Machine&, const Record&);
void namedEscape(Machine&, const Record&);
void openGl(Machine&, const Record&);

} // namespace quillrip::emf
