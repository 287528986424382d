#include "quillrip/pclxl/command_table.h"

#include "quillrip/pclxl/commands.h"

#include <array>

namespace quillrip::pclxl {

namespace {

using A = Attribute;
using O = Operator;
using S = Subsystem;
using D = Definition;

constexpr Need kOptional = Need::Optional;
constexpr Need kRequired = Need::Required;
constexpr Need kChoice = Need::Choice;

template <std::size_t N> constexpr AttributeRules rules(const AttributeRule (&list)[N]) { return { list, N }; }

constexpr AttributeRules kNone {};

constexpr AttributeRule kBeginSession[] = {
    { A::Measure, kScalar, kRequired },
    { A::UnitsPerMeasure, kXy, kRequired },
    { A::ErrorReport, kScalar, kOptional },
};
constexpr AttributeRule kBeginPage[] = {
    { A::Orientation, kScalar, kOptional },
    { A::MediaSize, kScalar | kBytes, kOptional },
    { A::CustomMediaSize, kXy, kOptional },
    { A::CustomMediaSizeUnits, kScalar, kOptional },
    { A::MediaSource, kScalar | kBytes, kOptional },
    { A::MediaType, kScalar | kCodes, kOptional },
    { A::MediaDestination, kScalar, kOptional },
    { A::SimplexPageMode, kScalar, kOptional },
    { A::DuplexPageMode, kScalar, kOptional },
    { A::DuplexPageSide, kScalar, kOptional },
    { A::PrintableArea, kXy | kBox, kOptional },
    { A::ContentOrientation, kScalar, kOptional },
    { A::FeedOrientation, kScalar, kOptional },
    { A::TumbleMode, kScalar, kOptional },
};
constexpr AttributeRule kEndPage[] = { { A::PageCopies, kScalar, kOptional } };
constexpr AttributeRule kVendorUnique[] = {
    { A::VUExtension, kScalar, kRequired },
    { A::VUDataLength, kScalar, kOptional },
    { A::VUAttr1, kAnyType, kOptional },
    { A::VUAttr2, kAnyType, kOptional },
    { A::VUAttr3, kAnyType, kOptional },
    { A::VUAttr4, kAnyType, kOptional },
    { A::VUAttr5, kAnyType, kOptional },
    { A::VUAttr6, kAnyType, kOptional },
    { A::VUAttr7, kAnyType, kOptional },
    { A::VUAttr8, kAnyType, kOptional },
    { A::VUAttr9, kAnyType, kOptional },
    { A::VUAttr10, kAnyType, kOptional },
    { A::VUAttr11, kAnyType, kOptional },
    { A::VUAttr12, kAnyType, kOptional },
    { A::SourceWidth, kScalar, kOptional },
    { A::SourceHeight, kScalar, kOptional },
    { A::StartLine, kScalar, kOptional },
    { A::BlockHeight, kScalar, kOptional },
};
constexpr AttributeRule kComment[] = { { A::CommentData, kAnyType, kOptional } };
constexpr AttributeRule kOpenDataSource[] = {
    { A::SourceType, kScalar, kRequired },
    { A::DataOrg, kScalar, kRequired },
};
constexpr AttributeRule kQuery[] = { { A::QueryKey, kAnyType, kOptional } };
constexpr AttributeRule kBeginFontHeader[] = {
    { A::FontName, kCodes, kRequired },
    { A::FontFormat, kScalar, kRequired },
};
constexpr AttributeRule kReadFontHeader[] = { { A::FontHeaderLength, kScalar, kRequired } };
constexpr AttributeRule kFontName[] = { { A::FontName, kCodes, kRequired } };
constexpr AttributeRule kReadChar[] = {
    { A::CharCode, kScalar, kRequired },
    { A::CharDataSize, kScalar, kRequired },
};
constexpr AttributeRule kSetCharAttributes[] = {
    { A::WritingMode, kScalar, kOptional },
    { A::BitmapCharScaling, kScalar, kOptional },
};
constexpr AttributeRule kSetColorTreatment[] = {
    { A::ColorTreatment, kScalar, kOptional },
    { A::AllObjectTypes, kScalar, kOptional },
    { A::TextObjects, kScalar, kOptional },
    { A::VectorObjects, kScalar, kOptional },
    { A::RasterObjects, kScalar, kOptional },
};
constexpr AttributeRule kStreamName[] = { { A::StreamName, kCodes, kRequired } };
constexpr AttributeRule kReadStream[] = { { A::StreamDataLength, kScalar, kRequired } };
constexpr AttributeRule kClipRegion[] = { { A::ClipRegion, kScalar, kRequired } };
constexpr AttributeRule kSetClipRectangle[] = {
    { A::ClipRegion, kScalar, kRequired },
    { A::BoundingBox, kBox, kRequired },
};
constexpr AttributeRule kSetClipMode[] = { { A::ClipMode, kScalar, kRequired } };
constexpr AttributeRule kSetBrushSource[] = {
    { A::NullBrush, kScalar, kChoice },
    { A::GrayLevel, kScalar, kChoice },
    { A::RGBColor, kColor, kChoice },
    { A::PrimaryArray, kColor, kChoice },
    { A::PaletteIndex, kScalar, kChoice },
    { A::PatternSelectID, kScalar, kChoice },
    { A::PrimaryDepth, kScalar, kOptional },
    { A::PatternOrigin, kXy, kOptional },
    { A::NewDestinationSize, kXy, kOptional },
};
constexpr AttributeRule kSetPenSource[] = {
    { A::NullPen, kScalar, kChoice },
    { A::GrayLevel, kScalar, kChoice },
    { A::RGBColor, kColor, kChoice },
    { A::PrimaryArray, kColor, kChoice },
    { A::PaletteIndex, kScalar, kChoice },
    { A::PatternSelectID, kScalar, kChoice },
    { A::PrimaryDepth, kScalar, kOptional },
    { A::PatternOrigin, kXy, kOptional },
    { A::NewDestinationSize, kXy, kOptional },
};
constexpr AttributeRule kSetCharAngle[] = { { A::CharAngle, kScalar, kRequired } };
constexpr AttributeRule kSetCharScale[] = { { A::CharScale, kXy, kRequired } };
constexpr AttributeRule kSetCharShear[] = { { A::CharShear, kXy, kRequired } };
constexpr AttributeRule kSetCharBoldValue[] = { { A::CharBoldValue, kScalar, kRequired } };
constexpr AttributeRule kSetCharSubMode[] = { { A::CharSubModeArray, kBytes, kRequired } };
constexpr AttributeRule kSetColorSpace[] = {
    { A::ColorSpace, kScalar, kRequired },
    { A::PaletteDepth, kScalar, kOptional },
    { A::PaletteData, kBytes, kOptional },
    { A::ColorimetricColorSpace, kScalar, kOptional },
    { A::XYChromaticities, kNumbers, kOptional },
    { A::WhiteReferencePoint, kNumbers, kOptional },
    { A::CRGBMinMax, kNumbers, kOptional },
    { A::GammaGain, kNumbers, kOptional },
};
constexpr AttributeRule kPoint[] = { { A::Point, kXy, kRequired } };
constexpr AttributeRule kSetHalftoneMethod[] = {
    { A::DitherOrigin, kXy, kOptional },
    { A::DeviceMatrix, kScalar, kOptional },
    { A::DitherMatrixDataType, kScalar, kOptional },
    { A::DitherMatrixSize, kXy, kOptional },
    { A::DitherMatrixDepth, kScalar, kOptional },
    { A::AllObjectTypes, kScalar, kOptional },
    { A::TextObjects, kScalar, kOptional },
    { A::VectorObjects, kScalar, kOptional },
    { A::RasterObjects, kScalar, kOptional },
};
constexpr AttributeRule kObjectTypes[] = {
    { A::AllObjectTypes, kScalar, kOptional },
    { A::TextObjects, kScalar, kOptional },
    { A::VectorObjects, kScalar, kOptional },
    { A::RasterObjects, kScalar, kOptional },
};
constexpr AttributeRule kSetFillMode[] = { { A::FillMode, kScalar, kRequired } };
constexpr AttributeRule kSetFont[] = {
    { A::FontName, kCodes, kChoice },
    { A::PCLSelectFont, kBytes, kChoice },
    { A::CharSize, kScalar, kOptional },
    { A::SymbolSet, kScalar, kOptional },
    { A::BitmapCharScaling, kScalar, kOptional },
};
constexpr AttributeRule kSetLineDash[] = {
    { A::LineDashStyle, kNumbers, kChoice },
    { A::SolidLine, kScalar, kChoice },
    { A::DashOffset, kScalar, kOptional },
};
constexpr AttributeRule kSetLineCap[] = { { A::LineCapStyle, kScalar, kRequired } };
constexpr AttributeRule kSetLineJoin[] = { { A::LineJoinStyle, kScalar, kRequired } };
constexpr AttributeRule kSetMiterLimit[] = { { A::MiterLength, kScalar, kRequired } };
constexpr AttributeRule kSetPageOrigin[] = { { A::PageOrigin, kXy, kRequired } };
constexpr AttributeRule kSetPageRotation[] = { { A::PageAngle, kScalar, kRequired } };
constexpr AttributeRule kSetPageScale[] = {
    { A::PageScale, kXy, kChoice },
    { A::UnitsPerMeasure, kXy, kChoice },
    { A::Measure, kScalar, kOptional },
};
constexpr AttributeRule kTxMode[] = { { A::TxMode, kScalar, kRequired } };
constexpr AttributeRule kSetPenWidth[] = { { A::PenWidth, kScalar, kRequired } };
constexpr AttributeRule kSetROP[] = { { A::ROP3, kScalar, kRequired } };
constexpr AttributeRule kArcPath[] = {
    { A::BoundingBox, kBox, kRequired },
    { A::StartPoint, kXy, kRequired },
    { A::EndPoint, kXy, kRequired },
    { A::ArcDirection, kScalar, kOptional },
};
constexpr AttributeRule kBoundingBox[] = { { A::BoundingBox, kBox, kRequired } };
constexpr AttributeRule kRoundRectangle[] = {
    { A::BoundingBox, kBox, kRequired },
    { A::EllipseDimension, kXy, kRequired },
};
constexpr AttributeRule kLinePath[] = {
    { A::EndPoint, kXy, kChoice },
    { A::NumberOfPoints, kScalar, kChoice },
    { A::PointType, kScalar, kOptional },
};
constexpr AttributeRule kBezierPath[] = {
    { A::EndPoint, kXy, kChoice },
    { A::NumberOfPoints, kScalar, kChoice },
    { A::PointType, kScalar, kOptional },
    { A::ControlPoint1, kXy, kOptional },
    { A::ControlPoint2, kXy, kOptional },
};
constexpr AttributeRule kText[] = {
    { A::TextData, kCodes, kRequired },
    { A::XSpacingData, kNumbers, kOptional },
    { A::YSpacingData, kNumbers, kOptional },
};
constexpr AttributeRule kBeginImage[] = {
    { A::ColorMapping, kScalar, kRequired },
    { A::ColorDepth, kScalar, kOptional },
    { A::ColorDepthArray, kBytes, kOptional },
    { A::SourceWidth, kScalar, kRequired },
    { A::SourceHeight, kScalar, kRequired },
    { A::DestinationSize, kXy, kChoice },
    { A::DestinationBox, kBox, kChoice },
};
constexpr AttributeRule kReadImage[] = {
    { A::StartLine, kScalar, kRequired },
    { A::BlockHeight, kScalar, kRequired },
    { A::CompressMode, kScalar, kRequired },
    { A::PadBytesMultiple, kScalar, kOptional },
    { A::BlockByteLength, kScalar, kOptional },
};
constexpr AttributeRule kBeginRastPattern[] = {
    { A::ColorMapping, kScalar, kRequired },
    { A::ColorDepth, kScalar, kOptional },
    { A::ColorDepthArray, kBytes, kOptional },
    { A::SourceWidth, kScalar, kRequired },
    { A::SourceHeight, kScalar, kRequired },
    { A::DestinationSize, kXy, kRequired },
    { A::PatternDefineID, kScalar, kRequired },
    { A::PatternPersistence, kScalar, kRequired },
};
constexpr AttributeRule kScanLineRel[] = { { A::NumberOfScanLines, kScalar, kOptional } };

// The numbers ascend; a test holds names and numbers against the published list.
constexpr CommandEntry kCommands[] = {
    { O::BeginSession, "BeginSession", S::Kernel, kOutside, D::None, false, commands::beginSession,
        rules(kBeginSession) },
    { O::EndSession, "EndSession", S::Kernel, kInSession, D::None, false, commands::endSession, kNone },
    { O::BeginPage, "BeginPage", S::Kernel, kInSession, D::None, false, commands::beginPage, rules(kBeginPage) },
    { O::EndPage, "EndPage", S::Kernel, kInPage, D::None, false, commands::endPage, rules(kEndPage) },
    { O::VendorUnique, "VendorUnique", S::Kernel, kSessionOrPage, D::None, false, commands::vendorUnique,
        rules(kVendorUnique) },
    { O::Comment, "Comment", S::Kernel, kAnywhere, D::Any, false, commands::ignore, rules(kComment) },
    { O::OpenDataSource, "OpenDataSource", S::Kernel, kSessionOrPage, D::None, false, commands::openDataSource,
        rules(kOpenDataSource) },
    { O::CloseDataSource, "CloseDataSource", S::Kernel, kSessionOrPage, D::None, false, commands::closeDataSource,
        kNone },
    { O::EchoComment, "EchoComment", S::Kernel, kAnywhere, D::Any, false, commands::ignore, rules(kComment) },
    { O::Query, "Query", S::Kernel, kAnywhere, D::Any, false, commands::ignore, rules(kQuery) },
    { O::Diagnostic3, "Diagnostic3", S::Kernel, kAnywhere, D::Any, false, commands::ignore, kNone },
    { O::BeginFontHeader, "BeginFontHeader", S::Text, kSessionOrPage, D::None, false, commands::beginFontHeader,
        rules(kBeginFontHeader) },
    { O::ReadFontHeader, "ReadFontHeader", S::Text, kSessionOrPage, D::FontHeader, true, commands::readFontHeader,
        rules(kReadFontHeader) },
    { O::EndFontHeader, "EndFontHeader", S::Text, kSessionOrPage, D::FontHeader, false, commands::endFontHeader,
        kNone },
    { O::BeginChar, "BeginChar", S::Text, kSessionOrPage, D::None, false, commands::beginChar, rules(kFontName) },
    { O::ReadChar, "ReadChar", S::Text, kSessionOrPage, D::Character, true, commands::readChar, rules(kReadChar) },
    { O::EndChar, "EndChar", S::Text, kSessionOrPage, D::Character, false, commands::endChar, kNone },
    { O::RemoveFont, "RemoveFont", S::Text, kSessionOrPage, D::None, false, commands::removeFont, rules(kFontName) },
    { O::SetCharAttributes, "SetCharAttributes", S::Text, kInPage, D::None, false, commands::setCharAttributes,
        rules(kSetCharAttributes) },
    { O::SetDefaultGS, "SetDefaultGS", S::Kernel, kInPage, D::None, false, commands::setDefaultGS, kNone },
    { O::SetColorTreatment, "SetColorTreatment", S::Paint, kSessionOrPage, D::None, false, commands::ignoreOnce,
        rules(kSetColorTreatment) },
    { O::BeginStream, "BeginStream", S::Kernel, kSessionOrPage, D::None, false, commands::beginStream,
        rules(kStreamName) },
    { O::ReadStream, "ReadStream", S::Kernel, kSessionOrPage, D::Stream, true, commands::readStream,
        rules(kReadStream) },
    { O::EndStream, "EndStream", S::Kernel, kSessionOrPage, D::Stream, false, commands::endStream, kNone },
    { O::ExecStream, "ExecStream", S::Kernel, kSessionOrPage, D::None, false, commands::execStream,
        rules(kStreamName) },
    { O::RemoveStream, "RemoveStream", S::Kernel, kSessionOrPage, D::None, false, commands::removeStream,
        rules(kStreamName) },
    { O::PopGS, "PopGS", S::Kernel, kInPage, D::None, false, commands::popGS, kNone },
    { O::PushGS, "PushGS", S::Kernel, kInPage, D::None, false, commands::pushGS, kNone },
    { O::SetClipReplace, "SetClipReplace", S::Paint, kInPage, D::None, false, commands::setClipReplace,
        rules(kClipRegion) },
    { O::SetBrushSource, "SetBrushSource", S::Paint, kInPage, D::None, false, commands::setBrushSource,
        rules(kSetBrushSource) },
    { O::SetCharAngle, "SetCharAngle", S::Text, kInPage, D::None, false, commands::setCharAngle, rules(kSetCharAngle) },
    { O::SetCharScale, "SetCharScale", S::Text, kInPage, D::None, false, commands::setCharScale, rules(kSetCharScale) },
    { O::SetCharShear, "SetCharShear", S::Text, kInPage, D::None, false, commands::setCharShear, rules(kSetCharShear) },
    { O::SetClipIntersect, "SetClipIntersect", S::Paint, kInPage, D::None, false, commands::setClipIntersect,
        rules(kClipRegion) },
    { O::SetClipRectangle, "SetClipRectangle", S::Paint, kInPage, D::None, false, commands::setClipRectangle,
        rules(kSetClipRectangle) },
    { O::SetClipToPage, "SetClipToPage", S::Paint, kInPage, D::None, false, commands::setClipToPage, kNone },
    { O::SetColorSpace, "SetColorSpace", S::Paint, kSessionOrPage, D::None, false, commands::setColorSpace,
        rules(kSetColorSpace) },
    { O::SetCursor, "SetCursor", S::Paint, kInPage, D::None, false, commands::setCursor, rules(kPoint) },
    { O::SetCursorRel, "SetCursorRel", S::Paint, kInPage, D::None, false, commands::setCursorRel, rules(kPoint) },
    { O::SetHalftoneMethod, "SetHalftoneMethod", S::Paint, kSessionOrPage, D::None, true, commands::setHalftoneMethod,
        rules(kSetHalftoneMethod) },
    { O::SetFillMode, "SetFillMode", S::Paint, kInPage, D::None, false, commands::setFillMode, rules(kSetFillMode) },
    { O::SetFont, "SetFont", S::Text, kInPage, D::None, false, commands::setFont, rules(kSetFont) },
    { O::SetLineDash, "SetLineDash", S::Paint, kInPage, D::None, false, commands::setLineDash, rules(kSetLineDash) },
    { O::SetLineCap, "SetLineCap", S::Paint, kInPage, D::None, false, commands::setLineCap, rules(kSetLineCap) },
    { O::SetLineJoin, "SetLineJoin", S::Paint, kInPage, D::None, false, commands::setLineJoin, rules(kSetLineJoin) },
    { O::SetMiterLimit, "SetMiterLimit", S::Paint, kInPage, D::None, false, commands::setMiterLimit,
        rules(kSetMiterLimit) },
    { O::SetPageDefaultCTM, "SetPageDefaultCTM", S::Paint, kInPage, D::None, false, commands::setPageDefaultCTM,
        kNone },
    { O::SetPageOrigin, "SetPageOrigin", S::Paint, kInPage, D::None, false, commands::setPageOrigin,
        rules(kSetPageOrigin) },
    { O::SetPageRotation, "SetPageRotation", S::Paint, kInPage, D::None, false, commands::setPageRotation,
        rules(kSetPageRotation) },
    { O::SetPageScale, "SetPageScale", S::Paint, kInPage, D::None, false, commands::setPageScale,
        rules(kSetPageScale) },
    { O::SetPaintTxMode, "SetPaintTxMode", S::Paint, kInPage, D::None, false, commands::setPaintTxMode,
        rules(kTxMode) },
    { O::SetPenSource, "SetPenSource", S::Paint, kInPage, D::None, false, commands::setPenSource,
        rules(kSetPenSource) },
    { O::SetPenWidth, "SetPenWidth", S::Paint, kInPage, D::None, false, commands::setPenWidth, rules(kSetPenWidth) },
    { O::SetROP, "SetROP", S::Paint, kInPage, D::None, false, commands::setROP, rules(kSetROP) },
    { O::SetSourceTxMode, "SetSourceTxMode", S::Paint, kInPage, D::None, false, commands::setSourceTxMode,
        rules(kTxMode) },
    { O::SetCharBoldValue, "SetCharBoldValue", S::Text, kInPage, D::None, false, commands::setCharBoldValue,
        rules(kSetCharBoldValue) },
    { O::SetNeutralAxis, "SetNeutralAxis", S::Paint, kSessionOrPage, D::None, false, commands::ignoreOnce,
        rules(kObjectTypes) },
    { O::SetClipMode, "SetClipMode", S::Paint, kInPage, D::None, false, commands::setClipMode, rules(kSetClipMode) },
    { O::SetPathToClip, "SetPathToClip", S::Paint, kInPage, D::None, false, commands::setPathToClip, kNone },
    { O::SetCharSubMode, "SetCharSubMode", S::Text, kInPage, D::None, false, commands::setCharSubMode,
        rules(kSetCharSubMode) },
    { O::CloseSubPath, "CloseSubPath", S::Paint, kInPage, D::None, false, commands::closeSubPath, kNone },
    { O::NewPath, "NewPath", S::Paint, kInPage, D::None, false, commands::newPath, kNone },
    { O::PaintPath, "PaintPath", S::Paint, kInPage, D::None, false, commands::paintPath, kNone },
    { O::ArcPath, "ArcPath", S::Paint, kInPage, D::None, false, commands::arcPath, rules(kArcPath) },
    { O::SetColorTrapping, "SetColorTrapping", S::Paint, kSessionOrPage, D::None, false, commands::ignoreOnce,
        rules(kObjectTypes) },
    { O::BezierPath, "BezierPath", S::Paint, kInPage, D::None, true, commands::bezierPath, rules(kBezierPath) },
    { O::SetAdaptiveHalftoning, "SetAdaptiveHalftoning", S::Paint, kSessionOrPage, D::None, false, commands::ignoreOnce,
        rules(kObjectTypes) },
    { O::BezierRelPath, "BezierRelPath", S::Paint, kInPage, D::None, true, commands::bezierRelPath,
        rules(kBezierPath) },
    { O::Chord, "Chord", S::Paint, kInPage, D::None, false, commands::chord, rules(kArcPath) },
    { O::ChordPath, "ChordPath", S::Paint, kInPage, D::None, false, commands::chordPath, rules(kArcPath) },
    { O::Ellipse, "Ellipse", S::Paint, kInPage, D::None, false, commands::ellipse, rules(kBoundingBox) },
    { O::EllipsePath, "EllipsePath", S::Paint, kInPage, D::None, false, commands::ellipsePath, rules(kBoundingBox) },
    { O::LinePath, "LinePath", S::Paint, kInPage, D::None, true, commands::linePath, rules(kLinePath) },
    { O::LineRelPath, "LineRelPath", S::Paint, kInPage, D::None, true, commands::lineRelPath, rules(kLinePath) },
    { O::Pie, "Pie", S::Paint, kInPage, D::None, false, commands::pie, rules(kArcPath) },
    { O::PiePath, "PiePath", S::Paint, kInPage, D::None, false, commands::piePath, rules(kArcPath) },
    { O::Rectangle, "Rectangle", S::Paint, kInPage, D::None, false, commands::rectangle, rules(kBoundingBox) },
    { O::RectanglePath, "RectanglePath", S::Paint, kInPage, D::None, false, commands::rectanglePath,
        rules(kBoundingBox) },
    { O::RoundRectangle, "RoundRectangle", S::Paint, kInPage, D::None, false, commands::roundRectangle,
        rules(kRoundRectangle) },
    { O::RoundRectanglePath, "RoundRectanglePath", S::Paint, kInPage, D::None, false, commands::roundRectanglePath,
        rules(kRoundRectangle) },
    { O::Text, "Text", S::Text, kInPage, D::None, false, commands::text, rules(kText) },
    { O::TextPath, "TextPath", S::Text, kInPage, D::None, false, commands::textPath, rules(kText) },
    { O::BeginImage, "BeginImage", S::Image, kInPage, D::None, false, commands::beginImage, rules(kBeginImage) },
    { O::ReadImage, "ReadImage", S::Image, kInPage, D::Image, true, commands::readImage, rules(kReadImage) },
    { O::EndImage, "EndImage", S::Image, kInPage, D::Image, false, commands::endImage, kNone },
    { O::BeginRastPattern, "BeginRastPattern", S::Image, kSessionOrPage, D::None, false, commands::beginRastPattern,
        rules(kBeginRastPattern) },
    { O::ReadRastPattern, "ReadRastPattern", S::Image, kSessionOrPage, D::Pattern, true, commands::readRastPattern,
        rules(kReadImage) },
    { O::EndRastPattern, "EndRastPattern", S::Image, kSessionOrPage, D::Pattern, false, commands::endRastPattern,
        kNone },
    { O::BeginScan, "BeginScan", S::Image, kInPage, D::None, false, commands::beginScan, kNone },
    { O::EndScan, "EndScan", S::Image, kInPage, D::Scan, false, commands::endScan, kNone },
    { O::ScanLineRel, "ScanLineRel", S::Image, kInPage, D::Scan, true, commands::scanLineRel, rules(kScanLineRel) },
    { O::PassThrough, "PassThrough", S::Kernel, kInPage, D::None, true, commands::passThrough, kNone },
};
constexpr std::size_t kCommandCount = sizeof kCommands / sizeof kCommands[0];

constexpr std::array<std::uint8_t, 256> indexByTag()
{
    std::array<std::uint8_t, 256> index {};
    for (std::size_t i = 0; i < kCommandCount; ++i)
        index[static_cast<std::size_t>(kCommands[i].tag)] = static_cast<std::uint8_t>(i + 1);
    return index;
}

constexpr std::array<std::uint8_t, 256> kIndexByTag = indexByTag();

} // namespace

CommandTable commandTable() { return { kCommands, kCommandCount }; }

const CommandEntry* find(std::uint8_t tag)
{
    const std::uint8_t at = kIndexByTag[tag];
    return at == 0 ? nullptr : &kCommands[at - 1];
}

const char* nameOf(Subsystem subsystem)
{
    switch (subsystem) {
    case Subsystem::Kernel:
        return "KERNEL";
    case Subsystem::Paint:
        return "PAINT";
    case Subsystem::Text:
        return "TEXT";
    case Subsystem::Image:
        return "IMAGE";
    }
    return "";
}

} // namespace quillrip::pclxl
