#include "quillrip/pclxl/operator_table.h"

#include "quillrip/pclxl/machine.h"

#include <array>
#include <cmath>

namespace quillrip::pclxl {

namespace {

using A = Attribute;
using O = Operator;
using S = Subsystem;
using D = Definition;
using M = Machine;

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
constexpr OperatorEntry kOperators[] = {
    { O::BeginSession, "BeginSession", S::Kernel, kOutside, D::None, false, &M::beginSession, rules(kBeginSession) },
    { O::EndSession, "EndSession", S::Kernel, kInSession, D::None, false, &M::endSession, kNone },
    { O::BeginPage, "BeginPage", S::Kernel, kInSession, D::None, false, &M::beginPage, rules(kBeginPage) },
    { O::EndPage, "EndPage", S::Kernel, kInPage, D::None, false, &M::endPage, rules(kEndPage) },
    { O::VendorUnique, "VendorUnique", S::Kernel, kSessionOrPage, D::None, false, &M::vendorUnique,
        rules(kVendorUnique) },
    { O::Comment, "Comment", S::Kernel, kAnywhere, D::Any, false, &M::ignoreOperator, rules(kComment) },
    { O::OpenDataSource, "OpenDataSource", S::Kernel, kSessionOrPage, D::None, false, &M::openDataSource,
        rules(kOpenDataSource) },
    { O::CloseDataSource, "CloseDataSource", S::Kernel, kSessionOrPage, D::None, false, &M::closeDataSource, kNone },
    { O::EchoComment, "EchoComment", S::Kernel, kAnywhere, D::Any, false, &M::ignoreOperator, rules(kComment) },
    { O::Query, "Query", S::Kernel, kAnywhere, D::Any, false, &M::ignoreOperator, rules(kQuery) },
    { O::Diagnostic3, "Diagnostic3", S::Kernel, kAnywhere, D::Any, false, &M::ignoreOperator, kNone },
    { O::BeginFontHeader, "BeginFontHeader", S::Text, kSessionOrPage, D::None, false, &M::beginFontHeader,
        rules(kBeginFontHeader) },
    { O::ReadFontHeader, "ReadFontHeader", S::Text, kSessionOrPage, D::FontHeader, true, &M::readFontHeader,
        rules(kReadFontHeader) },
    { O::EndFontHeader, "EndFontHeader", S::Text, kSessionOrPage, D::FontHeader, false, &M::endFontHeader, kNone },
    { O::BeginChar, "BeginChar", S::Text, kSessionOrPage, D::None, false, &M::beginChar, rules(kFontName) },
    { O::ReadChar, "ReadChar", S::Text, kSessionOrPage, D::Character, true, &M::readChar, rules(kReadChar) },
    { O::EndChar, "EndChar", S::Text, kSessionOrPage, D::Character, false, &M::endChar, kNone },
    { O::RemoveFont, "RemoveFont", S::Text, kSessionOrPage, D::None, false, &M::removeFont, rules(kFontName) },
    { O::SetCharAttributes, "SetCharAttributes", S::Text, kInPage, D::None, false, &M::setCharAttributes,
        rules(kSetCharAttributes) },
    { O::SetDefaultGS, "SetDefaultGS", S::Kernel, kInPage, D::None, false, &M::setDefaultGS, kNone },
    { O::SetColorTreatment, "SetColorTreatment", S::Paint, kSessionOrPage, D::None, false, &M::ignoreOnce,
        rules(kSetColorTreatment) },
    { O::BeginStream, "BeginStream", S::Kernel, kSessionOrPage, D::None, false, &M::beginStream, rules(kStreamName) },
    { O::ReadStream, "ReadStream", S::Kernel, kSessionOrPage, D::Stream, true, &M::readStream, rules(kReadStream) },
    { O::EndStream, "EndStream", S::Kernel, kSessionOrPage, D::Stream, false, &M::endStream, kNone },
    { O::ExecStream, "ExecStream", S::Kernel, kSessionOrPage, D::None, false, &M::execStream, rules(kStreamName) },
    { O::RemoveStream, "RemoveStream", S::Kernel, kSessionOrPage, D::None, false, &M::removeStream,
        rules(kStreamName) },
    { O::PopGS, "PopGS", S::Kernel, kInPage, D::None, false, &M::popGS, kNone },
    { O::PushGS, "PushGS", S::Kernel, kInPage, D::None, false, &M::pushGS, kNone },
    { O::SetClipReplace, "SetClipReplace", S::Paint, kInPage, D::None, false, &M::setClipReplace, rules(kClipRegion) },
    { O::SetBrushSource, "SetBrushSource", S::Paint, kInPage, D::None, false, &M::setBrushSource,
        rules(kSetBrushSource) },
    { O::SetCharAngle, "SetCharAngle", S::Text, kInPage, D::None, false, &M::setCharAngle, rules(kSetCharAngle) },
    { O::SetCharScale, "SetCharScale", S::Text, kInPage, D::None, false, &M::setCharScale, rules(kSetCharScale) },
    { O::SetCharShear, "SetCharShear", S::Text, kInPage, D::None, false, &M::setCharShear, rules(kSetCharShear) },
    { O::SetClipIntersect, "SetClipIntersect", S::Paint, kInPage, D::None, false, &M::setClipIntersect,
        rules(kClipRegion) },
    { O::SetClipRectangle, "SetClipRectangle", S::Paint, kInPage, D::None, false, &M::setClipRectangle,
        rules(kSetClipRectangle) },
    { O::SetClipToPage, "SetClipToPage", S::Paint, kInPage, D::None, false, &M::setClipToPage, kNone },
    { O::SetColorSpace, "SetColorSpace", S::Paint, kSessionOrPage, D::None, false, &M::setColorSpace,
        rules(kSetColorSpace) },
    { O::SetCursor, "SetCursor", S::Paint, kInPage, D::None, false, &M::setCursor, rules(kPoint) },
    { O::SetCursorRel, "SetCursorRel", S::Paint, kInPage, D::None, false, &M::setCursorRel, rules(kPoint) },
    { O::SetHalftoneMethod, "SetHalftoneMethod", S::Paint, kSessionOrPage, D::None, true, &M::setHalftoneMethod,
        rules(kSetHalftoneMethod) },
    { O::SetFillMode, "SetFillMode", S::Paint, kInPage, D::None, false, &M::setFillMode, rules(kSetFillMode) },
    { O::SetFont, "SetFont", S::Text, kInPage, D::None, false, &M::setFont, rules(kSetFont) },
    { O::SetLineDash, "SetLineDash", S::Paint, kInPage, D::None, false, &M::setLineDash, rules(kSetLineDash) },
    { O::SetLineCap, "SetLineCap", S::Paint, kInPage, D::None, false, &M::setLineCap, rules(kSetLineCap) },
    { O::SetLineJoin, "SetLineJoin", S::Paint, kInPage, D::None, false, &M::setLineJoin, rules(kSetLineJoin) },
    { O::SetMiterLimit, "SetMiterLimit", S::Paint, kInPage, D::None, false, &M::setMiterLimit, rules(kSetMiterLimit) },
    { O::SetPageDefaultCTM, "SetPageDefaultCTM", S::Paint, kInPage, D::None, false, &M::setPageDefaultCTM, kNone },
    { O::SetPageOrigin, "SetPageOrigin", S::Paint, kInPage, D::None, false, &M::setPageOrigin, rules(kSetPageOrigin) },
    { O::SetPageRotation, "SetPageRotation", S::Paint, kInPage, D::None, false, &M::setPageRotation,
        rules(kSetPageRotation) },
    { O::SetPageScale, "SetPageScale", S::Paint, kInPage, D::None, false, &M::setPageScale, rules(kSetPageScale) },
    { O::SetPaintTxMode, "SetPaintTxMode", S::Paint, kInPage, D::None, false, &M::setPaintTxMode, rules(kTxMode) },
    { O::SetPenSource, "SetPenSource", S::Paint, kInPage, D::None, false, &M::setPenSource, rules(kSetPenSource) },
    { O::SetPenWidth, "SetPenWidth", S::Paint, kInPage, D::None, false, &M::setPenWidth, rules(kSetPenWidth) },
    { O::SetROP, "SetROP", S::Paint, kInPage, D::None, false, &M::setROP, rules(kSetROP) },
    { O::SetSourceTxMode, "SetSourceTxMode", S::Paint, kInPage, D::None, false, &M::setSourceTxMode, rules(kTxMode) },
    { O::SetCharBoldValue, "SetCharBoldValue", S::Text, kInPage, D::None, false, &M::setCharBoldValue,
        rules(kSetCharBoldValue) },
    { O::SetNeutralAxis, "SetNeutralAxis", S::Paint, kSessionOrPage, D::None, false, &M::ignoreOnce,
        rules(kObjectTypes) },
    { O::SetClipMode, "SetClipMode", S::Paint, kInPage, D::None, false, &M::setClipMode, rules(kSetClipMode) },
    { O::SetPathToClip, "SetPathToClip", S::Paint, kInPage, D::None, false, &M::setPathToClip, kNone },
    { O::SetCharSubMode, "SetCharSubMode", S::Text, kInPage, D::None, false, &M::setCharSubMode,
        rules(kSetCharSubMode) },
    { O::CloseSubPath, "CloseSubPath", S::Paint, kInPage, D::None, false, &M::closeSubPath, kNone },
    { O::NewPath, "NewPath", S::Paint, kInPage, D::None, false, &M::newPath, kNone },
    { O::PaintPath, "PaintPath", S::Paint, kInPage, D::None, false, &M::paintPath, kNone },
    { O::ArcPath, "ArcPath", S::Paint, kInPage, D::None, false, &M::arcPath, rules(kArcPath) },
    { O::SetColorTrapping, "SetColorTrapping", S::Paint, kSessionOrPage, D::None, false, &M::ignoreOnce,
        rules(kObjectTypes) },
    { O::BezierPath, "BezierPath", S::Paint, kInPage, D::None, true, &M::bezierPath, rules(kBezierPath) },
    { O::SetAdaptiveHalftoning, "SetAdaptiveHalftoning", S::Paint, kSessionOrPage, D::None, false, &M::ignoreOnce,
        rules(kObjectTypes) },
    { O::BezierRelPath, "BezierRelPath", S::Paint, kInPage, D::None, true, &M::bezierRelPath, rules(kBezierPath) },
    { O::Chord, "Chord", S::Paint, kInPage, D::None, false, &M::chord, rules(kArcPath) },
    { O::ChordPath, "ChordPath", S::Paint, kInPage, D::None, false, &M::chordPath, rules(kArcPath) },
    { O::Ellipse, "Ellipse", S::Paint, kInPage, D::None, false, &M::ellipse, rules(kBoundingBox) },
    { O::EllipsePath, "EllipsePath", S::Paint, kInPage, D::None, false, &M::ellipsePath, rules(kBoundingBox) },
    { O::LinePath, "LinePath", S::Paint, kInPage, D::None, true, &M::linePath, rules(kLinePath) },
    { O::LineRelPath, "LineRelPath", S::Paint, kInPage, D::None, true, &M::lineRelPath, rules(kLinePath) },
    { O::Pie, "Pie", S::Paint, kInPage, D::None, false, &M::pie, rules(kArcPath) },
    { O::PiePath, "PiePath", S::Paint, kInPage, D::None, false, &M::piePath, rules(kArcPath) },
    { O::Rectangle, "Rectangle", S::Paint, kInPage, D::None, false, &M::rectangle, rules(kBoundingBox) },
    { O::RectanglePath, "RectanglePath", S::Paint, kInPage, D::None, false, &M::rectanglePath, rules(kBoundingBox) },
    { O::RoundRectangle, "RoundRectangle", S::Paint, kInPage, D::None, false, &M::roundRectangle,
        rules(kRoundRectangle) },
    { O::RoundRectanglePath, "RoundRectanglePath", S::Paint, kInPage, D::None, false, &M::roundRectanglePath,
        rules(kRoundRectangle) },
    { O::Text, "Text", S::Text, kInPage, D::None, false, &M::text, rules(kText) },
    { O::TextPath, "TextPath", S::Text, kInPage, D::None, false, &M::textPath, rules(kText) },
    { O::BeginImage, "BeginImage", S::Image, kInPage, D::None, false, &M::beginImage, rules(kBeginImage) },
    { O::ReadImage, "ReadImage", S::Image, kInPage, D::Image, true, &M::readImage, rules(kReadImage) },
    { O::EndImage, "EndImage", S::Image, kInPage, D::Image, false, &M::endImage, kNone },
    { O::BeginRastPattern, "BeginRastPattern", S::Image, kSessionOrPage, D::None, false, &M::beginRastPattern,
        rules(kBeginRastPattern) },
    { O::ReadRastPattern, "ReadRastPattern", S::Image, kSessionOrPage, D::Pattern, true, &M::readRastPattern,
        rules(kReadImage) },
    { O::EndRastPattern, "EndRastPattern", S::Image, kSessionOrPage, D::Pattern, false, &M::endRastPattern, kNone },
    { O::BeginScan, "BeginScan", S::Image, kInPage, D::None, false, &M::beginScan, kNone },
    { O::EndScan, "EndScan", S::Image, kInPage, D::Scan, false, &M::endScan, kNone },
    { O::ScanLineRel, "ScanLineRel", S::Image, kInPage, D::Scan, true, &M::scanLineRel, rules(kScanLineRel) },
    { O::PassThrough, "PassThrough", S::Kernel, kInPage, D::None, true, &M::passThrough, kNone },
};
constexpr std::size_t kOperatorCount = sizeof kOperators / sizeof kOperators[0];

constexpr std::array<std::uint8_t, 256> indexByTag()
{
    std::array<std::uint8_t, 256> index {};
    for (std::size_t i = 0; i < kOperatorCount; ++i)
        index[static_cast<std::size_t>(kOperators[i].tag)] = static_cast<std::uint8_t>(i + 1);
    return index;
}

constexpr std::array<std::uint8_t, 256> kIndexByTag = indexByTag();

struct AttributeEntry {
    Attribute attribute;
    const char* name;
    std::uint32_t values; ///< bit n set: n is a value of the enumeration; 0: any number
};

constexpr AttributeEntry kAttributes[] = {
    { A::PaletteDepth, "PaletteDepth", 0x7 },
    { A::ColorSpace, "ColorSpace", 0x1E7 },
    { A::NullBrush, "NullBrush", 0 },
    { A::NullPen, "NullPen", 0 },
    { A::PaletteData, "PaletteData", 0 },
    { A::PaletteIndex, "PaletteIndex", 0 },
    { A::PatternSelectID, "PatternSelectID", 0 },
    { A::GrayLevel, "GrayLevel", 0 },
    { A::RGBColor, "RGBColor", 0 },
    { A::PatternOrigin, "PatternOrigin", 0 },
    { A::NewDestinationSize, "NewDestinationSize", 0 },
    { A::PrimaryArray, "PrimaryArray", 0 },
    { A::PrimaryDepth, "PrimaryDepth", 0x7 },
    { A::ColorimetricColorSpace, "ColorimetricColorSpace", 0 },
    { A::XYChromaticities, "XYChromaticities", 0 },
    { A::WhiteReferencePoint, "WhiteReferencePoint", 0 },
    { A::CRGBMinMax, "CRGBMinMax", 0 },
    { A::GammaGain, "GammaGain", 0 },
    { A::AllObjectTypes, "AllObjectTypes", 0 },
    { A::TextObjects, "TextObjects", 0 },
    { A::VectorObjects, "VectorObjects", 0 },
    { A::RasterObjects, "RasterObjects", 0 },
    { A::DeviceMatrix, "DeviceMatrix", 0 },
    { A::DitherMatrixDataType, "DitherMatrixDataType", 0xF },
    { A::DitherOrigin, "DitherOrigin", 0 },
    { A::MediaDestination, "MediaDestination", 0 },
    { A::MediaSize, "MediaSize", 0 },
    { A::MediaSource, "MediaSource", 0 },
    { A::MediaType, "MediaType", 0 },
    { A::Orientation, "Orientation", 0 },
    { A::PageAngle, "PageAngle", 0 },
    { A::PageOrigin, "PageOrigin", 0 },
    { A::PageScale, "PageScale", 0 },
    { A::ROP3, "ROP3", 0 },
    { A::TxMode, "TxMode", 0x3 },
    { A::CustomMediaSize, "CustomMediaSize", 0 },
    { A::CustomMediaSizeUnits, "CustomMediaSizeUnits", 0x7 },
    { A::PageCopies, "PageCopies", 0 },
    { A::DitherMatrixSize, "DitherMatrixSize", 0 },
    { A::DitherMatrixDepth, "DitherMatrixDepth", 0x7 },
    { A::SimplexPageMode, "SimplexPageMode", 0 },
    { A::DuplexPageMode, "DuplexPageMode", 0 },
    { A::DuplexPageSide, "DuplexPageSide", 0 },
    { A::ArcDirection, "ArcDirection", 0x3 },
    { A::BoundingBox, "BoundingBox", 0 },
    { A::DashOffset, "DashOffset", 0 },
    { A::EllipseDimension, "EllipseDimension", 0 },
    { A::EndPoint, "EndPoint", 0 },
    { A::FillMode, "FillMode", 0x3 },
    { A::LineCapStyle, "LineCapStyle", 0xF },
    { A::LineJoinStyle, "LineJoinStyle", 0xF },
    { A::MiterLength, "MiterLength", 0 },
    { A::LineDashStyle, "LineDashStyle", 0 },
    { A::PenWidth, "PenWidth", 0 },
    { A::Point, "Point", 0 },
    { A::NumberOfPoints, "NumberOfPoints", 0 },
    { A::SolidLine, "SolidLine", 0 },
    { A::StartPoint, "StartPoint", 0 },
    { A::PointType, "PointType", 0xF },
    { A::ControlPoint1, "ControlPoint1", 0 },
    { A::ControlPoint2, "ControlPoint2", 0 },
    { A::ClipRegion, "ClipRegion", 0x3 },
    { A::ClipMode, "ClipMode", 0x3 },
    { A::ColorDepthArray, "ColorDepthArray", 0 },
    { A::ColorDepth, "ColorDepth", 0x7 },
    { A::BlockHeight, "BlockHeight", 0 },
    { A::ColorMapping, "ColorMapping", 0x3 },
    { A::CompressMode, "CompressMode", 0xF },
    { A::DestinationBox, "DestinationBox", 0 },
    { A::DestinationSize, "DestinationSize", 0 },
    { A::PatternPersistence, "PatternPersistence", 0x7 },
    { A::PatternDefineID, "PatternDefineID", 0 },
    { A::SourceHeight, "SourceHeight", 0 },
    { A::SourceWidth, "SourceWidth", 0 },
    { A::StartLine, "StartLine", 0 },
    { A::PadBytesMultiple, "PadBytesMultiple", 0 },
    { A::BlockByteLength, "BlockByteLength", 0 },
    { A::NumberOfScanLines, "NumberOfScanLines", 0 },
    { A::PrintableArea, "PrintableArea", 0 },
    { A::TumbleMode, "TumbleMode", 0 },
    { A::ContentOrientation, "ContentOrientation", 0 },
    { A::FeedOrientation, "FeedOrientation", 0 },
    { A::ColorTreatment, "ColorTreatment", 0 },
    { A::CommentData, "CommentData", 0 },
    { A::DataOrg, "DataOrg", 0x3 },
    { A::Measure, "Measure", 0x7 },
    { A::SourceType, "SourceType", 0x1 },
    { A::UnitsPerMeasure, "UnitsPerMeasure", 0 },
    { A::QueryKey, "QueryKey", 0 },
    { A::StreamName, "StreamName", 0 },
    { A::StreamDataLength, "StreamDataLength", 0 },
    { A::PCLSelectFont, "PCLSelectFont", 0 },
    { A::ErrorReport, "ErrorReport", 0 },
    { A::IOReadTimeOut, "IOReadTimeOut", 0 },
    { A::VUExtension, "VUExtension", 0 },
    { A::VUDataLength, "VUDataLength", 0 },
    { A::VUAttr1, "VUAttr1", 0 },
    { A::VUAttr2, "VUAttr2", 0 },
    { A::VUAttr3, "VUAttr3", 0 },
    { A::VUAttr4, "VUAttr4", 0 },
    { A::VUAttr5, "VUAttr5", 0 },
    { A::VUAttr6, "VUAttr6", 0 },
    { A::VUAttr7, "VUAttr7", 0 },
    { A::VUAttr8, "VUAttr8", 0 },
    { A::VUAttr9, "VUAttr9", 0 },
    { A::VUAttr10, "VUAttr10", 0 },
    { A::VUAttr11, "VUAttr11", 0 },
    { A::VUAttr12, "VUAttr12", 0 },
    { A::CharAngle, "CharAngle", 0 },
    { A::CharCode, "CharCode", 0 },
    { A::CharDataSize, "CharDataSize", 0 },
    { A::CharScale, "CharScale", 0 },
    { A::CharShear, "CharShear", 0 },
    { A::CharSize, "CharSize", 0 },
    { A::FontHeaderLength, "FontHeaderLength", 0 },
    { A::FontName, "FontName", 0 },
    { A::FontFormat, "FontFormat", 0x1 },
    { A::SymbolSet, "SymbolSet", 0 },
    { A::TextData, "TextData", 0 },
    { A::CharSubModeArray, "CharSubModeArray", 0 },
    { A::WritingMode, "WritingMode", 0x3 },
    { A::BitmapCharScaling, "BitmapCharScaling", 0 },
    { A::XSpacingData, "XSpacingData", 0 },
    { A::YSpacingData, "YSpacingData", 0 },
    { A::CharBoldValue, "CharBoldValue", 0 },
};

constexpr std::size_t kAttributeCount = sizeof kAttributes / sizeof kAttributes[0];
constexpr std::size_t kLargestAttribute = 178;

constexpr std::array<std::uint8_t, kLargestAttribute> indexByAttribute()
{
    std::array<std::uint8_t, kLargestAttribute> index {};
    for (std::size_t i = 0; i < kAttributeCount; ++i)
        index[static_cast<std::size_t>(kAttributes[i].attribute)] = static_cast<std::uint8_t>(i + 1);
    return index;
}

constexpr std::array<std::uint8_t, kLargestAttribute> kIndexByAttribute = indexByAttribute();

const AttributeEntry* findAttribute(Attribute attribute)
{
    const std::size_t number = static_cast<std::size_t>(attribute);
    const std::uint8_t at = number < kIndexByAttribute.size() ? kIndexByAttribute[number] : std::uint8_t { 0 };
    return at == 0 ? nullptr : &kAttributes[at - 1];
}

/// Beyond any sheet in any unit, and small enough that products of a few of them stay finite.
constexpr double kLargestNumber = 1e12;

Status validateValue(const Operand& operand)
{
    if (operand.shape == Shape::Array)
        return {};
    const std::size_t count = operand.shape == Shape::Scalar ? 1 : operand.shape == Shape::Xy ? 2 : 4;
    if (operand.element == Element::Real32)
        for (std::size_t i = 0; i < count; ++i)
            if (!std::isfinite(operand.numbers[i]) || std::abs(operand.numbers[i]) > kLargestNumber)
                return { Error::IllegalAttributeValue, operand.attribute };
    const AttributeEntry* entry = findAttribute(operand.attribute);
    if (!entry || entry->values == 0 || operand.shape != Shape::Scalar)
        return {};
    const double value = operand.numbers[0];
    const bool isValue = value >= 0 && value < 32 && value == std::floor(value)
        && (entry->values >> static_cast<unsigned>(value) & 1) != 0;
    return isValue ? Status() : Status(Error::IllegalAttributeValue, operand.attribute);
}

} // namespace

OperatorTable operatorTable() { return { kOperators, kOperatorCount }; }

const OperatorEntry* findOperator(std::uint8_t tag)
{
    const std::uint8_t at = kIndexByTag[tag];
    return at == 0 ? nullptr : &kOperators[at - 1];
}

const char* nameOf(Attribute attribute)
{
    const AttributeEntry* entry = findAttribute(attribute);
    return entry ? entry->name : "?";
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

Status validate(const OperatorEntry& entry, const AttributeList& operands, Attribute& ignored)
{
    ignored = Attribute::None;
    std::uint32_t present = 0; // bit n: rule n was met; no operator has more than 18
    for (const Operand& operand : operands.operands()) {
        const AttributeRule* rule = nullptr;
        for (const AttributeRule& candidate : entry.rules)
            if (candidate.attribute == operand.attribute) {
                rule = &candidate;
                break;
            }
        if (!rule) {
            ignored = operand.attribute;
            continue;
        }
        if (!(rule->types & typeBit(operand.shape, operand.element)))
            return { Error::IllegalAttributeDataType, operand.attribute };
        const Status value = validateValue(operand);
        if (!value.isOk())
            return value;
        present |= std::uint32_t { 1 } << (rule - entry.rules.begin());
    }
    int choices = 0;
    Attribute firstChoice = Attribute::None;
    for (std::size_t i = 0; i < entry.rules.count; ++i) {
        const AttributeRule& rule = entry.rules.first[i];
        const bool isPresent = (present >> i & 1) != 0;
        if (rule.need == Need::Required && !isPresent)
            return { Error::MissingAttribute, rule.attribute };
        if (rule.need == Need::Choice) {
            if (firstChoice == Attribute::None)
                firstChoice = rule.attribute;
            choices += isPresent;
            if (choices > 1)
                return { Error::IllegalAttributeCombination, rule.attribute };
        }
    }
    if (firstChoice != Attribute::None && choices == 0)
        return { Error::MissingAttribute, firstChoice };
    return {};
}

} // namespace quillrip::pclxl
