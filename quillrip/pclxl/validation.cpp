#include "quillrip/pclxl/command_table.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace quillrip::pclxl {

namespace {

using A = Attribute;

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

const char* nameOf(Attribute attribute)
{
    const AttributeEntry* entry = findAttribute(attribute);
    return entry ? entry->name : "?";
}

Status validate(const CommandEntry& command, const AttributeList& operands, Attribute& ignored)
{
    ignored = Attribute::None;
    std::uint32_t present = 0; // bit n: rule n was met; no operator has more than 18
    for (const Operand& operand : operands.operands()) {
        const AttributeRule* rule = nullptr;
        for (const AttributeRule& candidate : command.rules)
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
        present |= std::uint32_t { 1 } << (rule - command.rules.begin());
    }
    int choices = 0;
    Attribute firstChoice = Attribute::None;
    for (std::size_t i = 0; i < command.rules.count; ++i) {
        const AttributeRule& rule = command.rules.first[i];
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
