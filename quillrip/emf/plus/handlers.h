#pragma once

// The handlers that the command table names, by subject. Each is given its record and a reader of the record's data.

namespace quillrip::emf::plus {

class FieldReader;
class Machine;
struct Record;

// control_commands.cpp
void getDc(Machine&, const Record&, FieldReader&);
void serializableObject(Machine&, const Record&, FieldReader&);

// shape_commands.cpp
void clear(Machine&, const Record&, FieldReader&);
void fillRects(Machine&, const Record&, FieldReader&);
void drawRects(Machine&, const Record&, FieldReader&);
void fillPolygon(Machine&, const Record&, FieldReader&);
void drawLines(Machine&, const Record&, FieldReader&);
void fillEllipse(Machine&, const Record&, FieldReader&);
void drawEllipse(Machine&, const Record&, FieldReader&);
void fillPie(Machine&, const Record&, FieldReader&);
void drawPie(Machine&, const Record&, FieldReader&);
void drawArc(Machine&, const Record&, FieldReader&);
void fillRegion(Machine&, const Record&, FieldReader&);
void fillPath(Machine&, const Record&, FieldReader&);
void drawPath(Machine&, const Record&, FieldReader&);
void strokeFillPath(Machine&, const Record&, FieldReader&);

// curve_commands.cpp
void fillClosedCurve(Machine&, const Record&, FieldReader&);
void drawClosedCurve(Machine&, const Record&, FieldReader&);
void drawCurve(Machine&, const Record&, FieldReader&);
void drawBeziers(Machine&, const Record&, FieldReader&);

// image_commands.cpp
void drawImage(Machine&, const Record&, FieldReader&);
void drawImagePoints(Machine&, const Record&, FieldReader&);

// text_commands.cpp
void drawString(Machine&, const Record&, FieldReader&);
void drawDriverString(Machine&, const Record&, FieldReader&);

// state_commands.cpp
void setRenderingOrigin(Machine&, const Record&, FieldReader&);
void setInterpolationMode(Machine&, const Record&, FieldReader&);
void setCompositingMode(Machine&, const Record&, FieldReader&);
void save(Machine&, const Record&, FieldReader&);
void restore(Machine&, const Record&, FieldReader&);
void beginContainer(Machine&, const Record&, FieldReader&);
void beginContainerNoParams(Machine&, const Record&, FieldReader&);
void endContainer(Machine&, const Record&, FieldReader&);

// transform_commands.cpp
void setWorldTransform(Machine&, const Record&, FieldReader&);
void resetWorldTransform(Machine&, const Record&, FieldReader&);
void multiplyWorldTransform(Machine&, const Record&, FieldReader&);
void translateWorldTransform(Machine&, const Record&, FieldReader&);
void scaleWorldTransform(Machine&, const Record&, FieldReader&);
void rotateWorldTransform(Machine&, const Record&, FieldReader&);
void setPageTransform(Machine&, const Record&, FieldReader&);

// clip_commands.cpp
void resetClip(Machine&, const Record&, FieldReader&);
void setClipRect(Machine&, const Record&, FieldReader&);
void setClipPath(Machine&, const Record&, FieldReader&);
void setClipRegion(Machine&, const Record&, FieldReader&);
void offsetClip(Machine&, const Record&, FieldReader&);

} // namespace quillrip::emf::plus
