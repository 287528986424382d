#include "quillrip/emf/embedded_fonts.h"

#include "quillrip/emf/record.h"

#include <cstring>

namespace quillrip::emf {

namespace {

/// Bytes in front of a record's data, which alignment counts from.
constexpr std::size_t kRecordHead = 8;
constexpr std::size_t kUniqueId = 8;
constexpr std::uint32_t kMostFiles = 256;

std::size_t aligned(std::size_t at) { return (at + 7) / 8 * 8; }

bool isFontFile(ByteView data)
{
    static const char s_marks[][5] { { 0, 1, 0, 0, 0 }, "true", "OTTO", "ttcf" };
    for (const auto& mark : s_marks) {
        if (data.size > 4 && std::memcmp(data.data, mark, 4) == 0)
            return true;
    }
    return false;
}

void takeFile(WindowsFonts& fonts, ByteView file, const Reporter& reporter)
{
    if (isFontFile(file))
        fonts.embed(file, reporter);
    else
        reporter.warn("font.compressed", "compressed embedded font: its text is drawn by the font's name");
}

// Files one after the other, each on a multiple of eight bytes from the record's start.
void takeEngineFont(WindowsFonts& fonts, ByteView data, const Reporter& reporter)
{
    const Fields fields(data);
    const std::uint32_t count = fields.u32(4);
    if (count > kMostFiles || !fields.has(8, std::uint64_t { count } * 4))
        return reporter.warn("font.embedded", "embedded font that cannot be opened, left out");
    std::size_t at = aligned(kRecordHead + 8 + std::size_t { count } * 4) - kRecordHead;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t size = fields.u32(8 + 4 * std::size_t { i });
        const ByteView file = data.sub(at, size);
        if (file.size < size)
            return reporter.warn("font.embedded", "embedded font that cannot be opened, left out");
        takeFile(fonts, file, reporter);
        at = aligned(kRecordHead + at + size) - kRecordHead;
    }
}

} // namespace

bool isFontRecord(std::uint32_t id)
{
    switch (static_cast<FontRecord>(id)) {
    case FontRecord::Engine:
    case FontRecord::Type1:
    case FontRecord::DesignVector:
    case FontRecord::Subset:
    case FontRecord::Delta:
        return true;
    }
    return false;
}

void takeFontRecord(WindowsFonts& fonts, std::uint32_t id, ByteView data, const Reporter& reporter)
{
    switch (static_cast<FontRecord>(id)) {
    case FontRecord::Engine:
        return takeEngineFont(fonts, data, reporter);
    case FontRecord::Subset:
    case FontRecord::Delta:
        return takeFile(fonts, data.sub(kUniqueId), reporter);
    case FontRecord::Type1:
        return reporter.warn("font.type1", "embedded Type 1 font: its text is drawn by the font's name");
    case FontRecord::DesignVector:
        return;
    }
}

void takeFontRecords(WindowsFonts& fonts, ByteView records, const Reporter& reporter)
{
    const Fields fields(records);
    std::size_t at = 0;
    while (fields.has(at, kRecordHead)) {
        const std::uint32_t id = fields.u32(at);
        const std::uint32_t size = fields.u32(at + 4);
        if (!isFontRecord(id))
            return;
        takeFontRecord(fonts, id, records.sub(at + kRecordHead, size), reporter);
        if (!fields.has(at + kRecordHead, size))
            return;
        at += kRecordHead + size;
    }
}

} // namespace quillrip::emf
