// Text records: alignment and strings in all their forms.

#include "quillrip/emf/handlers.h"
#include "quillrip/emf/machine.h"
#include "quillrip/emf/record.h"
#include "quillrip/emf/text.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace quillrip::emf {

namespace {

constexpr std::uint32_t kCompatible = 1;
constexpr double kLargestAdvance = 1 << 27;

enum class TextCoding { Bytes, Utf16 };

std::vector<TextRun::Unit> readUnits(const DeviceContext& dc, ByteView bytes, TextCoding coding, bool isIndices)
{
    if (coding == TextCoding::Bytes && !isIndices)
        return unitsOfBytes(bytes, std::get<LogicalFont>(*dc.font).charset);
    if (coding == TextCoding::Utf16 && !isIndices)
        return unitsOfUtf16(bytes);
    const Fields fields(bytes);
    const std::size_t size = coding == TextCoding::Bytes ? 1 : 2;
    std::vector<TextRun::Unit> units(bytes.size / size);
    for (std::size_t i = 0; i < units.size(); ++i)
        units[i].code = size == 1 ? fields.u8(i) : fields.u16(2 * i);
    return units;
}

void readAdvances(const Record& record, std::size_t at, TextRun& run)
{
    const bool isPairs = (run.options & kTextPairs) != 0;
    const std::size_t each = isPairs ? 8 : 4;
    if (at == 0 || !record.has(at, std::uint64_t { run.units.size() } * each))
        return;
    run.hasAdvances = true;
    const auto bounded
        = [&](std::size_t place) { return std::clamp(double(record.i32(place)), -kLargestAdvance, kLargestAdvance); };
    for (std::size_t i = 0; i < run.units.size(); ++i) {
        run.units[i].dx = bounded(at + i * each);
        run.units[i].dy = isPairs ? bounded(at + i * each + 4) : 0;
    }
}

/// A string's fields from `at` on; its offsets count from the record's start.
void drawString(Machine& machine, const Record& record, std::size_t at, TextCoding coding)
{
    TextRun run;
    run.reference = record.point(at);
    const std::uint64_t count = record.u32(at + 8);
    run.options = record.u32(at + 16);
    run.box = record.box(at + 20);
    run.isCompatible = record.u32(24) == kCompatible;
    const ByteView bytes = record.part(record.u32(at + 12), count * (coding == TextCoding::Bytes ? 1 : 2));
    if (bytes.empty() && count > 0)
        return machine.warn("emf.text", "text that goes beyond its record, left out");
    run.units = readUnits(machine.dc(), bytes, coding, (run.options & kTextGlyphIndex) != 0);
    readAdvances(record, record.u32(at + 36), run);
    drawText(machine, run);
}

void drawStrings(Machine& machine, const Record& record, TextCoding coding)
{
    constexpr std::size_t kFirst = 40;
    constexpr std::size_t kEach = 40;
    const std::uint64_t count = std::min<std::uint64_t>(record.u32(36), (record.size() - kFirst) / kEach);
    for (std::uint64_t i = 0; i < count; ++i)
        drawString(machine, record, kFirst + static_cast<std::size_t>(i) * kEach, coding);
}

} // namespace

void setTextAlign(Machine& machine, const Record& record) { machine.dc().textAlign = record.u32(8); }

void setTextJustification(Machine& machine, const Record& record)
{
    machine.dc().justificationExtra = record.i32(8);
    machine.dc().justificationCount = record.i32(12);
}

void extTextOutA(Machine& machine, const Record& record) { drawString(machine, record, 36, TextCoding::Bytes); }
void extTextOutW(Machine& machine, const Record& record) { drawString(machine, record, 36, TextCoding::Utf16); }
void polyTextOutA(Machine& machine, const Record& record) { drawStrings(machine, record, TextCoding::Bytes); }
void polyTextOutW(Machine& machine, const Record& record) { drawStrings(machine, record, TextCoding::Utf16); }

void smallTextOut(Machine& machine, const Record& record)
{
    TextRun run;
    run.reference = record.point(8);
    const std::uint64_t count = record.u32(16);
    run.options = record.u32(20);
    run.isCompatible = record.u32(24) == kCompatible;
    std::size_t at = 36;
    if ((run.options & kTextNoBox) == 0) {
        run.box = record.box(at);
        at += 16;
    } else {
        run.options &= ~std::uint32_t { kTextOpaque | kTextClipped };
    }
    const bool isSmall = (run.options & kTextSmallCharacters) != 0;
    const ByteView bytes = record.part(at, count * (isSmall ? 1 : 2));
    if (bytes.empty() && count > 0)
        return machine.warn("emf.text", "text that goes beyond its record, left out");
    // Small characters are the low bytes of Unicode, not of a code page.
    if (isSmall) {
        for (const std::uint8_t byte : bytes)
            run.units.push_back({ byte, 0, 0 });
    } else {
        run.units = readUnits(machine.dc(), bytes, TextCoding::Utf16, (run.options & kTextGlyphIndex) != 0);
    }
    drawText(machine, run);
}

void forceUfiMapping(Machine& machine, const Record& record) { machine.dc().fontChecksum = record.u32(8); }

} // namespace quillrip::emf
