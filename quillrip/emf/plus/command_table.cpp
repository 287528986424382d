#include "quillrip/emf/plus/command_table.h"

#include "quillrip/emf/plus/handlers.h"

#include <iterator>

namespace quillrip::emf::plus {

namespace {

constexpr const char* kNoHardware = "what a display is asked for: pages are painted as well as they can be";

const Command s_commands[] {
    { 0x4001, "Header", nullptr, "read before the records" },
    { 0x4002, "EndOfFile", nullptr, "ends the loop over the records" },
    { 0x4003, "Comment", nullptr, "private data of a program" },
    { 0x4004, "GetDC", getDc, nullptr },
    { 0x4005, "MultiFormatStart", nullptr, "reserved, never written" },
    { 0x4006, "MultiFormatSection", nullptr, "reserved, never written" },
    { 0x4007, "MultiFormatEnd", nullptr, "reserved, never written" },
    { 0x4008, "Object", nullptr, "stored before the records are looked up, since it may come in pieces" },
    { 0x4009, "Clear", clear, nullptr },
    { 0x400A, "FillRects", fillRects, nullptr },
    { 0x400B, "DrawRects", drawRects, nullptr },
    { 0x400C, "FillPolygon", fillPolygon, nullptr },
    { 0x400D, "DrawLines", drawLines, nullptr },
    { 0x400E, "FillEllipse", fillEllipse, nullptr },
    { 0x400F, "DrawEllipse", drawEllipse, nullptr },
    { 0x4010, "FillPie", fillPie, nullptr },
    { 0x4011, "DrawPie", drawPie, nullptr },
    { 0x4012, "DrawArc", drawArc, nullptr },
    { 0x4013, "FillRegion", fillRegion, nullptr },
    { 0x4014, "FillPath", fillPath, nullptr },
    { 0x4015, "DrawPath", drawPath, nullptr },
    { 0x4016, "FillClosedCurve", fillClosedCurve, nullptr },
    { 0x4017, "DrawClosedCurve", drawClosedCurve, nullptr },
    { 0x4018, "DrawCurve", drawCurve, nullptr },
    { 0x4019, "DrawBeziers", drawBeziers, nullptr },
    { 0x401A, "DrawImage", drawImage, nullptr },
    { 0x401B, "DrawImagePoints", drawImagePoints, nullptr },
    { 0x401C, "DrawString", drawString, nullptr },
    { 0x401D, "SetRenderingOrigin", setRenderingOrigin, nullptr },
    { 0x401E, "SetAntiAliasMode", nullptr, kNoHardware },
    { 0x401F, "SetTextRenderingHint", nullptr, kNoHardware },
    { 0x4020, "SetTextContrast", nullptr, kNoHardware },
    { 0x4021, "SetInterpolationMode", setInterpolationMode, nullptr },
    { 0x4022, "SetPixelOffsetMode", nullptr,
        "half a pixel of the recording device, which images would lose to frames" },
    { 0x4023, "SetCompositingMode", setCompositingMode, nullptr },
    { 0x4024, "SetCompositingQuality", nullptr, kNoHardware },
    { 0x4025, "Save", save, nullptr },
    { 0x4026, "Restore", restore, nullptr },
    { 0x4027, "BeginContainer", beginContainer, nullptr },
    { 0x4028, "BeginContainerNoParams", beginContainerNoParams, nullptr },
    { 0x4029, "EndContainer", endContainer, nullptr },
    { 0x402A, "SetWorldTransform", setWorldTransform, nullptr },
    { 0x402B, "ResetWorldTransform", resetWorldTransform, nullptr },
    { 0x402C, "MultiplyWorldTransform", multiplyWorldTransform, nullptr },
    { 0x402D, "TranslateWorldTransform", translateWorldTransform, nullptr },
    { 0x402E, "ScaleWorldTransform", scaleWorldTransform, nullptr },
    { 0x402F, "RotateWorldTransform", rotateWorldTransform, nullptr },
    { 0x4030, "SetPageTransform", setPageTransform, nullptr },
    { 0x4031, "ResetClip", resetClip, nullptr },
    { 0x4032, "SetClipRect", setClipRect, nullptr },
    { 0x4033, "SetClipPath", setClipPath, nullptr },
    { 0x4034, "SetClipRegion", setClipRegion, nullptr },
    { 0x4035, "OffsetClip", offsetClip, nullptr },
    { 0x4036, "DrawDriverString", drawDriverString, nullptr },
    { 0x4037, "StrokeFillPath", strokeFillPath, nullptr },
    { 0x4038, "SerializableObject", serializableObject, nullptr },
    { 0x4039, "SetTSGraphics", nullptr, "state of a terminal server, never written to a file" },
    { 0x403A, "SetTSClip", nullptr, "clip of a terminal server, never written to a file" },
};

static_assert(std::size(s_commands) == kLastRecord - kFirstRecord + 1);

} // namespace

const Command* findCommand(std::uint16_t number)
{
    return number >= kFirstRecord && number <= kLastRecord ? &s_commands[number - kFirstRecord] : nullptr;
}

} // namespace quillrip::emf::plus
