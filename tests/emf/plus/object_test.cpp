#include "quillrip/emf/plus/brush_object.h"
#include "quillrip/emf/plus/font_object.h"
#include "quillrip/emf/plus/path_object.h"
#include "quillrip/emf/plus/pen_object.h"
#include "quillrip/emf/plus/region_object.h"
#include "tests/emf/plus/plus_job.h"

#include <gtest/gtest.h>

#include <limits>

using namespace quillrip;
using namespace quillrip::emf::plus;
using namespace quillrip::emf::plus::test;

namespace {

constexpr std::uint32_t kRelative = 0x0800;
constexpr std::uint32_t kShortIntegers = 0x4000;

std::vector<Path::Verb> verbsOf(const std::optional<PathObject>& object)
{
    return object ? object->path.verbs() : std::vector<Path::Verb>();
}

} // namespace

TEST(EmfPlusFields, RelativePointsHaveSevenOrFifteenBits)
{
    const Fields bytes = Fields().u8({ 0x05, 0x7F, 0x80, 0x40, 0xFF, 0xC0 });
    FieldReader fields(bytes);
    const std::vector<Point> points = fields.points(PointForm::Relative, 2);
    ASSERT_EQ(points.size(), 2U);
    EXPECT_EQ(points[0], (Point { 5, -1 }));
    EXPECT_EQ(points[1], (Point { 69, -65 }));
    EXPECT_FALSE(fields.hasFailed());
}

TEST(EmfPlusFields, NumbersThatNoDrawingCanUseFail)
{
    for (const double number :
        { 2e9, -2e9, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN() }) {
        const Fields bytes = Fields().f32({ number });
        FieldReader fields(bytes);
        EXPECT_EQ(fields.f32(), 0);
        EXPECT_TRUE(fields.hasFailed()) << number;
    }
}

TEST(EmfPlusFields, CountsAreHeldAgainstTheBytesBeforeMemoryIsTaken)
{
    const Fields bytes = Fields().f32({ 1, 2, 3, 4 });
    for (const PointForm form : { PointForm::Float, PointForm::Integer, PointForm::Relative }) {
        FieldReader fields(bytes);
        EXPECT_TRUE(fields.points(form, 0xFFFFFFFF).empty());
        EXPECT_TRUE(fields.hasFailed());
    }
}

TEST(EmfPlusPath, PlainTypesMakeFiguresAndCurves)
{
    const auto object
        = readPath(path({ { 0, 0 }, { 10, 0 }, { 10, 5 }, { 5, 10 }, { 0, 10 }, { 7, 7 } }, { 0, 1, 3, 3, 0x83, 0 }));
    using Verb = Path::Verb;
    EXPECT_EQ(verbsOf(object), (std::vector<Verb> { Verb::Move, Verb::Line, Verb::Cubic, Verb::Close, Verb::Move }));
    EXPECT_EQ(object->rule, FillRule::EvenOdd);
}

TEST(EmfPlusPath, RunsOfTypesAreSpelledOut)
{
    Fields fields;
    fields.u32({ kVersion, 6, kRelative }).u8({ 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6 });
    fields.u8({ 0x41, 0x00, 0x42, 0x01, 0xC3, 0x03 }).padded();
    using Verb = Path::Verb;
    EXPECT_EQ(verbsOf(readPath(fields)), (std::vector<Verb> { Verb::Move, Verb::Line, Verb::Line, Verb::Cubic }));
}

TEST(EmfPlusPath, PlainTypesBehindRelativePointsMayBeAligned)
{
    for (const bool isAligned : { false, true }) {
        Fields fields;
        fields.u32({ kVersion, 3, kRelative }).u8({ 1, 1, 2, 2, 3, 3 });
        if (isAligned)
            fields.padded();
        fields.u8({ 0x00, 0x01, 0x81 }).padded();
        using Verb = Path::Verb;
        EXPECT_EQ(verbsOf(readPath(fields)), (std::vector<Verb> { Verb::Move, Verb::Line, Verb::Line, Verb::Close }))
            << isAligned;
    }
}

TEST(EmfPlusPath, ShortIntegersAreTaken)
{
    const Fields fields
        = Fields().u32({ kVersion, 2, kShortIntegers }).u16({ 1, 0xFFFE, 300, 4 }).u8({ 0, 1 }).padded();
    const auto object = readPath(fields);
    ASSERT_TRUE(object);
    EXPECT_EQ(object->path.points()[0], (Point { 1, -2 }));
    EXPECT_EQ(object->path.points()[1], (Point { 300, 4 }));
}

TEST(EmfPlusPath, WhatDoesNotFitIsRefused)
{
    EXPECT_FALSE(readPath(Fields().u32({ kVersion })));
    EXPECT_FALSE(readPath(Fields().u32({ kVersion, 0xFFFFFFFF, 0 })));
    EXPECT_FALSE(readPath(Fields().u32({ kVersion, 2, 0 }).f32({ 1, 1, 2, 2 }).u8({ 0 })));
    EXPECT_FALSE(readPath(Fields().u32({ kVersion, 2, 0 }).f32({ 1, 1, 2, 2 }).u8({ 0, 7, 0, 0 })));
    // Runs without a length would never fill the points.
    EXPECT_FALSE(readPath(Fields().u32({ kVersion, 2, kRelative }).u8({ 1, 1, 1, 1, 0x40, 0x07, 0x40, 0x07 })));
}

TEST(EmfPlusRegion, TreesThatAreDeepOnTheLeftTakeNoRoom)
{
    constexpr std::uint32_t unions = 5000;
    Fields fields;
    fields.u32({ kVersion, 2 * unions });
    for (std::uint32_t i = 0; i < unions; ++i)
        fields.u32({ 2 });
    fields.u32({ 0x10000000 }).f32({ 0, 0, 1, 1 });
    for (std::uint32_t i = 0; i < unions; ++i)
        fields.u32({ 0x10000000 }).f32({ static_cast<double>(i % 10), 2, 1, 1 });
    const auto region = readRegion(fields);
    ASSERT_TRUE(region);
    const PixelSet pixels = region->pixels(Matrix(), { 0, 0, 20, 20 });
    ASSERT_TRUE(pixels);
    EXPECT_TRUE(pixels->contains(0, 0));
    EXPECT_TRUE(pixels->contains(9, 2));
    EXPECT_FALSE(pixels->contains(10, 2));
    EXPECT_FALSE(pixels->contains(0, 1));
}

TEST(EmfPlusRegion, NodesThatAreNoTreeAreRefused)
{
    EXPECT_FALSE(readRegion(Fields().u32({ kVersion, 2, 1, 0x10000002 })));
    EXPECT_FALSE(readRegion(Fields().u32({ kVersion, 0, 1, 0x10000002, 0x10000002 })));
    EXPECT_FALSE(readRegion(Fields().u32({ kVersion, 0, 0x12345678 })));
    EXPECT_FALSE(readRegion(Fields().u32({ kVersion, 0xFFFFFFFF, 1, 1, 1 })));
    EXPECT_FALSE(readRegion(Fields().u32({ kVersion, 0, 0x10000001, 0xFFFFFFFF })));
}

TEST(EmfPlusRegion, UniversesCombineToo)
{
    const PixelRect universe { 0, 0, 10, 10 };
    const PixelSet part = ClipRegion::ofRect({ 0, 0, 5, 10 });
    EXPECT_FALSE(combine(part, nullptr, CombineMode::Union, universe));
    EXPECT_TRUE(combine(nullptr, part, CombineMode::Exclude, universe)->contains(7, 3));
    EXPECT_FALSE(combine(nullptr, part, CombineMode::Exclude, universe)->contains(2, 3));
    EXPECT_TRUE(combine(nullptr, part, CombineMode::Xor, universe)->contains(7, 3));
    EXPECT_TRUE(combine(part, nullptr, CombineMode::Complement, universe)->contains(7, 3));
    EXPECT_FALSE(combine(part, nullptr, CombineMode::Exclude, universe)->contains(2, 3));
    EXPECT_EQ(combine(part, nullptr, CombineMode::Intersect, universe), part);
}

TEST(EmfPlusPen, OptionalFieldsComeInTheirOrder)
{
    Fields fields;
    fields.u32({ kVersion, 0, 0x07FF, 2 }).f32({ 3 }).f32({ 1, 0, 0, 2, 0, 0 }).u32({ 1, 2, 1 }).f32({ 4 });
    fields.u32({ 5, 2 }).f32({ 1.5 }).u32({ 2 }).f32({ 6, 7 }).u32({ 1, 2 }).f32({ 0.25, 0.75 });
    fields.bytes(solidBrush(0x80112233));
    const auto object = readPen(fields);
    ASSERT_TRUE(object);
    EXPECT_EQ(object->width, 3);
    EXPECT_EQ(object->unit, Unit::Pixel);
    EXPECT_EQ(object->shape.d, 2);
    EXPECT_EQ(object->startCap, Cap::Square);
    EXPECT_EQ(object->endCap, Cap::Round);
    EXPECT_EQ(object->join, Join::Bevel);
    EXPECT_EQ(object->miterLimit, 4);
    EXPECT_EQ(object->dashCap, Cap::Round);
    EXPECT_EQ(object->dashOffset, 1.5);
    EXPECT_EQ(object->dashes, (std::vector<double> { 6, 7 }));
    EXPECT_EQ(object->alignment, PenAlignment::Inset);
    EXPECT_EQ(object->compound, (std::vector<double> { 0.25, 0.75 }));
    ASSERT_TRUE(std::holds_alternative<Rgba>(object->brush));
    EXPECT_EQ(std::get<Rgba>(object->brush), (Rgba { 0x11, 0x22, 0x33, 0x80 }));
}

TEST(EmfPlusPen, DashesThatMakeNoLineAreLeftOut)
{
    const auto dashed = [](std::initializer_list<double> dashes) {
        Fields fields;
        fields.u32({ kVersion, 0, 0x0100, 0 })
            .f32({ 3 })
            .u32({ static_cast<std::uint32_t>(dashes.size()) })
            .f32(dashes);
        return readPen(fields.bytes(solidBrush(0xFF000000)));
    };
    EXPECT_TRUE(dashed({ 0, 0 })->dashes.empty());
    EXPECT_TRUE(dashed({ -1, -2 })->dashes.empty());
    EXPECT_EQ(dashed({ -1, 2 })->dashes, (std::vector<double> { 0, 2 }));
}

TEST(EmfPlusPen, ACompoundOfTheWholeWidthIsNone)
{
    const auto compound = [](std::initializer_list<double> parts) {
        Fields fields;
        fields.u32({ kVersion, 0, 0x0400, 0 }).f32({ 3 }).u32({ static_cast<std::uint32_t>(parts.size()) }).f32(parts);
        return readPen(fields.bytes(solidBrush(0xFF000000)))->compound.size();
    };
    EXPECT_EQ(compound({ 0, 1 }), 0U);
    EXPECT_EQ(compound({ 0, 0.3, 0.6, 1 }), 4U);
    EXPECT_EQ(compound({ 0, 0.3, 0.6 }), 0U);
    EXPECT_EQ(compound({ 0.6, 0.3 }), 0U);
}

TEST(EmfPlusBrush, LinearGradientsKeepTheirBlend)
{
    Fields fields;
    fields.u32({ kVersion, 4, 0x04, 1 }).f32({ 0, 0, 100, 1 }).u32({ 0xFF000000, 0xFFFFFFFF, 0, 0 });
    fields.u32({ 3 }).f32({ 0, 0.5, 1 }).u32({ 0xFFFF0000, 0xFF00FF00, 0xFF0000FF });
    const auto brush = readBrush(fields);
    ASSERT_TRUE(brush);
    const auto& gradient = std::get<LinearGradientBrush>(*brush);
    EXPECT_EQ(gradient.wrap, WrapMode::FlipX);
    EXPECT_EQ(gradient.blend.at(0.25), (Rgba { 128, 128, 0, 255 }));
    EXPECT_EQ(gradient.blend.at(1), (Rgba { 0, 0, 255, 255 }));
}

TEST(EmfPlusBrush, FactorsBeginWithTheFirstColour)
{
    Blend blend;
    blend.start = { 0, 0, 0, 255 };
    blend.end = { 200, 200, 200, 255 };
    blend.factors = { { 0, 0 }, { 0.5, 1 }, { 1, 0 } };
    EXPECT_EQ(blend.at(0), blend.start);
    EXPECT_EQ(blend.at(0.25), (Rgba { 100, 100, 100, 255 }));
    EXPECT_EQ(blend.at(0.5), blend.end);
}

TEST(EmfPlusBrush, CountsBeyondTheObjectAreRefused)
{
    const Fields stops
        = Fields().u32({ kVersion, 4, 0x04, 0 }).f32({ 0, 0, 1, 1 }).u32({ 0, 0, 0, 0, 0x20000000 }).f32({ 0 });
    EXPECT_FALSE(readBrush(stops));
    EXPECT_FALSE(readBrush(Fields().u32({ kVersion, 3, 0, 4, 0xFF000000 }).f32({ 0, 0 }).u32({ 0xFFFFFFFF })));
    EXPECT_FALSE(readBrush(Fields().u32({ kVersion, 99, 0 })));
    EXPECT_FALSE(readBrush(Fields().u32({ kVersion })));
}

TEST(EmfPlusFont, FamilyAndStyleAreRead)
{
    const Fields fields = Fields().u32({ kVersion }).f32({ 12 }).u32({ 3, 1 | 4, 0, 5 }).text(u"Ar\u00EFal").padded();
    const auto font = readFont(fields);
    ASSERT_TRUE(font);
    EXPECT_EQ(font->family, "Ar\u00EFal");
    EXPECT_EQ(font->unit, Unit::Point);
    EXPECT_TRUE(font->isBold && font->isUnderlined);
    EXPECT_FALSE(font->isItalic || font->isStruckOut);
    EXPECT_FALSE(readFont(Fields().u32({ kVersion }).f32({ 12 }).u32({ 3, 0, 0, 0x80000000 })));
}
