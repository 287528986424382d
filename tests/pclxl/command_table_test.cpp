#include "quillrip/pclxl/command_table.h"

#include <gtest/gtest.h>
#include <set>
#include <string>

using namespace quillrip::pclxl;

namespace {

AttributeList listOf(Attribute attribute, Shape shape, Element element, double value)
{
    AttributeList list;
    list.beginValue(shape, element)->numbers[0] = value;
    list.nameValue(attribute);
    return list;
}

struct Named {
    int tag;
    const char* name;
};

TEST(XlOperatorTable, HoldsThePublishedOperatorsInOrder)
{
    int last = 0;
    std::set<std::string> names;
    for (const CommandEntry& entry : commandTable()) {
        const int tag = static_cast<int>(entry.tag);
        EXPECT_GT(tag, last);
        last = tag;
        EXPECT_TRUE(names.insert(entry.name).second) << entry.name;
        EXPECT_NE(entry.run, nullptr) << entry.name;
        EXPECT_EQ(find(static_cast<std::uint8_t>(tag)), &entry);
        EXPECT_LE(entry.rules.count, 32u) << entry.name;
    }
    EXPECT_EQ(commandTable().count, 92u);
}

TEST(XlOperatorTable, FindsOperatorsByNumber)
{
    const Named samples[]
        = { { 0x41, "BeginSession" }, { 0x46, "VendorUnique" }, { 0x5E, "ExecStream" }, { 0x62, "SetClipReplace" },
              { 0x7B, "SetROP" }, { 0x86, "PaintPath" }, { 0x95, "BezierRelPath" }, { 0xA0, "Rectangle" },
              { 0xA8, "Text" }, { 0xB1, "ReadImage" }, { 0xB9, "ScanLineRel" }, { 0xBF, "PassThrough" } };
    for (const Named& sample : samples) {
        const CommandEntry* entry = find(static_cast<std::uint8_t>(sample.tag));
        ASSERT_NE(entry, nullptr) << sample.name;
        EXPECT_STREQ(entry->name, sample.name);
    }
}

TEST(XlOperatorTable, KnowsNoOperatorForUnassignedNumbers)
{
    for (const int tag : { 0x00, 0x40, 0x45, 0x4D, 0x59, 0x82, 0x87, 0x90, 0x9A, 0xA4, 0xAA, 0xB7, 0xBA, 0xC0, 0xFF })
        EXPECT_EQ(find(static_cast<std::uint8_t>(tag)), nullptr) << tag;
}

TEST(XlOperatorTable, NamesEveryAttributeThatAnOperatorTakes)
{
    for (const CommandEntry& entry : commandTable())
        for (const AttributeRule& rule : entry.rules)
            EXPECT_STRNE(nameOf(rule.attribute), "?") << entry.name << ' ' << static_cast<int>(rule.attribute);
    EXPECT_STREQ(nameOf(Attribute::CharBoldValue), "CharBoldValue");
    EXPECT_STREQ(nameOf(static_cast<Attribute>(1)), "?");
    EXPECT_STREQ(nameOf(static_cast<Attribute>(60000)), "?");
}

TEST(XlValidation, MissesARequiredAttribute)
{
    Attribute ignored = Attribute::None;
    const Status status = validate(*find(0x7B), AttributeList(), ignored);
    EXPECT_EQ(status.error, Error::MissingAttribute);
    EXPECT_EQ(status.attribute, Attribute::ROP3);
}

TEST(XlValidation, WantsExactlyOneOfAChoice)
{
    Attribute ignored = Attribute::None;
    EXPECT_EQ(validate(*find(0x63), AttributeList(), ignored).error, Error::MissingAttribute);
    AttributeList both = listOf(Attribute::NullBrush, Shape::Scalar, Element::UByte, 0);
    both.beginValue(Shape::Scalar, Element::UByte);
    both.nameValue(Attribute::GrayLevel);
    EXPECT_EQ(validate(*find(0x63), both, ignored).error, Error::IllegalAttributeCombination);
}

TEST(XlValidation, RejectsTheWrongShape)
{
    Attribute ignored = Attribute::None;
    const Status status = validate(*find(0x6B), listOf(Attribute::Point, Shape::Scalar, Element::SInt16, 1), ignored);
    EXPECT_EQ(status.error, Error::IllegalAttributeDataType);
    EXPECT_EQ(status.attribute, Attribute::Point);
}

TEST(XlValidation, TakesAnyNumberWhereOneBelongs)
{
    Attribute ignored = Attribute::None;
    for (const Element element :
        { Element::UByte, Element::UInt16, Element::UInt32, Element::SInt16, Element::SInt32, Element::Real32 })
        EXPECT_TRUE(validate(*find(0x7A), listOf(Attribute::PenWidth, Shape::Scalar, element, 3), ignored).isOk());
}

TEST(XlValidation, RejectsValuesOutsideAnEnumeration)
{
    Attribute ignored = Attribute::None;
    for (const double value : { 2.0, -1.0, 0.5, 4e9 })
        EXPECT_EQ(
            validate(*find(0x6E), listOf(Attribute::FillMode, Shape::Scalar, Element::Real32, value), ignored).error,
            Error::IllegalAttributeValue)
            << value;
}

TEST(XlValidation, RejectsNumbersThatAreNone)
{
    Attribute ignored = Attribute::None;
    for (const double value : { HUGE_VAL, -HUGE_VAL, std::nan(""), 1e30 })
        EXPECT_EQ(
            validate(*find(0x7A), listOf(Attribute::PenWidth, Shape::Scalar, Element::Real32, value), ignored).error,
            Error::IllegalAttributeValue);
}

TEST(XlValidation, LetsAnUnknownAttributePass)
{
    Attribute ignored = Attribute::None;
    EXPECT_TRUE(validate(*find(0x85), listOf(Attribute::PenWidth, Shape::Scalar, Element::UByte, 3), ignored).isOk());
    EXPECT_EQ(ignored, Attribute::PenWidth);
}

} // namespace
