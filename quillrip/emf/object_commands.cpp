// Pens, brushes, fonts and palettes: made, selected, deleted.

#include "quillrip/emf/handlers.h"
#include "quillrip/emf/image_rows.h"
#include "quillrip/emf/machine.h"
#include "quillrip/emf/record.h"
#include "quillrip/emf/utf16.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quillrip::emf {

namespace {

// Pen styles: one nibble for the line, others for ends, joins and kind.
constexpr std::uint32_t kStyleMask = 0xF;
constexpr std::uint32_t kCapMask = 0xF00;
constexpr std::uint32_t kCapSquare = 0x100;
constexpr std::uint32_t kCapFlat = 0x200;
constexpr std::uint32_t kJoinMask = 0xF000;
constexpr std::uint32_t kJoinBevel = 0x1000;
constexpr std::uint32_t kJoinMiter = 0x2000;
constexpr std::uint32_t kGeometric = 0x10000;
constexpr std::uint32_t kMostDashes = 16;

enum : std::uint32_t { kBrushSolid, kBrushNull, kBrushHatched, kBrushPattern, kBrushIndexed, kBrushDib, kBrushDibPt };

void put(Machine& machine, const Record& record, Object object)
{
    if (!machine.objects().put(record.u32(8), std::move(object), machine.job().limits.patternBytes))
        machine.warn("emf.handle", "an object with an impossible number or beyond the room for patterns, left out");
}

std::vector<Rgb> readEntries(const Record& record, std::size_t at, std::size_t count)
{
    const std::size_t room = record.size() > at ? (record.size() - at) / 4 : 0;
    std::vector<Rgb> entries(std::min(count, room));
    for (std::size_t i = 0; i < entries.size(); ++i)
        entries[i] = { record.u8(at + 4 * i), record.u8(at + 4 * i + 1), record.u8(at + 4 * i + 2) };
    return entries;
}

std::shared_ptr<const Pattern> readPattern(
    Machine& machine, const Record& record, std::uint32_t usage, std::size_t fields, bool takesTextColors)
{
    DibContext context;
    context.usage = static_cast<ColorUsage>(std::min<std::uint32_t>(usage, 2));
    context.palette = &std::get<Palette>(*machine.dc().palette).entries;
    std::string problem;
    const auto rows = openDib(record.part(record.u32(fields), record.u32(fields + 4)),
        record.part(record.u32(fields + 8), record.u32(fields + 12)), context, *machine.job().limits.work, problem);
    if (rows
        && rows->shape().rowBytes() * static_cast<std::size_t>(rows->shape().height)
            > machine.job().limits.patternBytes) {
        machine.warn("emf.pattern-size", "pattern of a brush too large, left out");
        return nullptr;
    }
    auto pattern = std::make_shared<Pattern>();
    if (rows) {
        pattern->pixels = pixelsOf(*rows);
        if (rows->isDamaged())
            problem = kDamagedImageFile;
    }
    if (!problem.empty())
        machine.warn("emf.pattern", "pattern of a brush: " + problem);
    if (!rows)
        return nullptr;
    pattern->takesTextColors = takesTextColors && pattern->pixels.format == Pixels::Format::Mono;
    return pattern;
}

Brush patternBrush(std::shared_ptr<const Pattern> pattern)
{
    Brush brush;
    brush.style = pattern ? Brush::Style::Pattern : Brush::Style::Null;
    brush.pattern = std::move(pattern);
    return brush;
}

void setEnds(LogicalPen& pen, std::uint32_t style)
{
    pen.cap = (style & kCapMask) == kCapSquare ? LogicalPen::Cap::Square
        : (style & kCapMask) == kCapFlat       ? LogicalPen::Cap::Flat
                                               : LogicalPen::Cap::Round;
    pen.join = (style & kJoinMask) == kJoinBevel ? LogicalPen::Join::Bevel
        : (style & kJoinMask) == kJoinMiter      ? LogicalPen::Join::Miter
                                                 : LogicalPen::Join::Round;
}

} // namespace

void selectObject(Machine& machine, const Record& record)
{
    const auto object = machine.objects().find(record.u32(8));
    if (!object)
        return machine.warn("emf.select", "an object is selected that does not exist, ignored");
    DeviceContext& dc = machine.dc();
    if (std::holds_alternative<LogicalPen>(*object)) {
        dc.pen = object;
    } else if (std::holds_alternative<Brush>(*object)) {
        dc.brush = object;
    } else if (std::holds_alternative<LogicalFont>(*object)) {
        dc.font = object;
        dc.fontChecksum = 0;
    } else if (std::holds_alternative<Palette>(*object)) {
        dc.palette = object;
    }
}

void selectPalette(Machine& machine, const Record& record)
{
    const auto object = machine.objects().find(record.u32(8));
    if (object && std::holds_alternative<Palette>(*object))
        machine.dc().palette = object;
}

void deleteObject(Machine& machine, const Record& record) { machine.objects().remove(record.u32(8)); }

void createPen(Machine& machine, const Record& record)
{
    LogicalPen pen;
    const std::uint32_t style = record.u32(12) & kStyleMask;
    pen.style = static_cast<LogicalPen::Style>(
        std::min<std::uint32_t>(style, static_cast<std::uint32_t>(LogicalPen::Style::Alternate)));
    setEnds(pen, record.u32(12));
    pen.width = std::abs(double(record.i32(16)));
    pen.brush.color = record.u32(24);
    put(machine, record, pen);
}

void extCreatePen(Machine& machine, const Record& record)
{
    LogicalPen pen;
    pen.isSimple = false;
    const std::uint32_t style = record.u32(28);
    pen.style = static_cast<LogicalPen::Style>(
        std::min<std::uint32_t>(style & kStyleMask, static_cast<std::uint32_t>(LogicalPen::Style::Alternate)));
    pen.isGeometric = (style & kGeometric) != 0;
    pen.width = record.u32(32);
    setEnds(pen, style);
    if (pen.style == LogicalPen::Style::User) {
        const std::size_t room = (record.size() - 52) / 4;
        const std::size_t count = std::min<std::size_t>(std::min(record.u32(48), kMostDashes), room);
        double sum = 0;
        for (std::size_t i = 0; i < count; ++i) {
            pen.dashes.push_back(record.u32(52 + 4 * i));
            sum += pen.dashes.back();
        }
        if (sum <= 0)
            pen.dashes.clear();
    }
    pen.brush.color = record.u32(40);
    switch (record.u32(36)) {
    case kBrushNull:
        pen.brush.style = Brush::Style::Null;
        break;
    case kBrushHatched:
        pen.brush.style = Brush::Style::Hatched;
        pen.brush.hatch = record.u32(44);
        break;
    case kBrushPattern:
    case kBrushDib:
    case kBrushDibPt: {
        const bool isMono = record.u32(36) == kBrushPattern;
        // Offset and size of the header, then of the bits.
        pen.brush = patternBrush(readPattern(machine, record, record.u32(40) & 0xFFFF, 12, isMono));
        break;
    }
    default:
        break;
    }
    put(machine, record, pen);
}

void createBrush(Machine& machine, const Record& record)
{
    Brush brush;
    brush.color = record.u32(16);
    switch (record.u32(12)) {
    case kBrushSolid:
        break;
    case kBrushNull:
        brush.style = Brush::Style::Null;
        break;
    case kBrushHatched:
        brush.style = Brush::Style::Hatched;
        brush.hatch = record.u32(20);
        break;
    default:
        machine.warn("emf.brush-style", "a brush of a style that its record cannot hold, taken as solid");
        break;
    }
    put(machine, record, brush);
}

void createMonoBrush(Machine& machine, const Record& record)
{
    put(machine, record, patternBrush(readPattern(machine, record, record.u32(12), 16, true)));
}

void createPatternBrush(Machine& machine, const Record& record)
{
    const bool hasTable = record.u32(12) != static_cast<std::uint32_t>(ColorUsage::PaletteIndices);
    put(machine, record, patternBrush(readPattern(machine, record, record.u32(12), 16, !hasTable)));
}

void createFont(Machine& machine, const Record& record)
{
    LogicalFont font;
    font.height = record.i32(12);
    font.width = record.i32(16);
    font.escapement = record.i32(20);
    font.orientation = record.i32(24);
    font.weight = record.i32(28);
    font.isItalic = record.u8(32) != 0;
    font.isUnderlined = record.u8(33) != 0;
    font.isStruckOut = record.u8(34) != 0;
    font.charset = record.u8(35);
    font.pitchAndFamily = record.u8(39);
    constexpr std::size_t kFace = 40;
    constexpr std::size_t kMostCharacters = 32;
    std::u16string face;
    for (std::size_t i = 0; i < kMostCharacters; ++i) {
        const auto unit = static_cast<char16_t>(record.u16(kFace + 2 * i));
        if (unit == 0)
            break;
        face.push_back(unit);
    }
    font.face = toUtf8(face);
    put(machine, record, font);
}

void createPalette(Machine& machine, const Record& record)
{
    put(machine, record, Palette { readEntries(record, 16, record.u16(14)) });
}

void setPaletteEntries(Machine& machine, const Record& record)
{
    Palette* const palette = machine.objects().palette(record.u32(8));
    if (!palette)
        return;
    const std::vector<Rgb> entries = readEntries(record, 20, record.u32(16));
    const std::uint64_t start = record.u32(12);
    for (std::size_t i = 0; i < entries.size() && start + i < palette->entries.size(); ++i)
        palette->entries[static_cast<std::size_t>(start) + i] = entries[i];
}

void resizePalette(Machine& machine, const Record& record)
{
    constexpr std::uint32_t kMostEntries = 1024;
    if (Palette* const palette = machine.objects().palette(record.u32(8)))
        palette->entries.resize(std::min(record.u32(12), kMostEntries));
}

void createColorSpace(Machine& machine, const Record& record) { put(machine, record, Placeholder {}); }

} // namespace quillrip::emf
