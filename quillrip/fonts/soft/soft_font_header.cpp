#include "quillrip/fonts/soft/soft_font_header.h"

#include "quillrip/fonts/select/symbol_set.h"
#include "quillrip/fonts/soft/header_fields.h"

#include <algorithm>
#include <string>

namespace quillrip {

namespace {

constexpr std::size_t kCommonHeader = 64;
constexpr int kLargestResolution = 4800;
constexpr std::uint8_t kTechnologyTrueType = 1;
constexpr std::uint8_t kTechnologyBitmap = 254;

constexpr std::uint16_t tag(char a, char b)
{
    return static_cast<std::uint16_t>(static_cast<unsigned char>(a) << 8 | static_cast<unsigned char>(b));
}

/// Fields at fixed places; the callers have checked the size.
/// A sum of bytes that makes the whole 0 modulo 256, in fields written by the checksum's rule.
bool checksumHolds(ByteView data)
{
    unsigned sum = 0;
    for (const std::uint8_t byte : data)
        sum += byte;
    return (sum & 0xFF) == 0;
}

std::string trimmed(ByteView name)
{
    std::string text;
    for (const std::uint8_t byte : name)
        text += byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : ' ';
    const std::size_t end = text.find_last_not_of(' ');
    return end == std::string::npos ? std::string() : text.substr(0, end + 1);
}

bool setResolution(SoftFontHeader& header, int x, int y, const Reporter& reporter)
{
    if (x < 1 || y < 1 || x > kLargestResolution || y > kLargestResolution) {
        reporter.damage("font.resolution", "font header with an impossible resolution, ignored");
        return false;
    }
    header.resolutionX = x;
    header.resolutionY = y;
    header.traits.resolution = x;
    return true;
}

void readCommonFields(ByteView data, FontTraits& traits, bool& isUnbound)
{
    const std::uint8_t type = data[3];
    isUnbound = type == 10 || type == 11;
    traits.domain = type == 10 ? CodeDomain::MasterSymbolList : type == 11 ? CodeDomain::Unicode : CodeDomain::Bound;
    traits.isBoundToSet = !isUnbound;
    traits.codeRange = type <= 3 ? static_cast<CodeRange>(type) : CodeRange::Wide;
    traits.style = static_cast<std::uint16_t>(data[4] << 8 | data[23]);
    traits.isProportional = data[13] != 0;
    traits.symbolSet = u16At(data, 14);
    traits.weight = std::clamp<int>(static_cast<std::int8_t>(data[24]), -7, 7);
    traits.family = static_cast<std::uint16_t>(data[25] | data[26] << 8); // least significant byte first
    traits.name = trimmed(data.sub(48, 16));
}

void readBitmapMetrics(ByteView data, SoftFontHeader& header)
{
    FontTraits& traits = header.traits;
    const double dot = 1.0 / header.resolutionX;
    const double dotY = 1.0 / header.resolutionY;
    const double pitchQuarters = u16At(data, 16) + data[40] / 256.0;
    const double heightQuarters = u16At(data, 18) + data[41] / 256.0;
    traits.isScalable = false;
    traits.isFixedSize = true;
    traits.orientation = data[12] & 3;
    traits.spaceAdvance = pitchQuarters / 4 * dot;
    traits.pitch = traits.spaceAdvance > 0 ? 1 / traits.spaceAdvance : 0;
    traits.height = heightQuarters / 4 * 72 * dotY;
    traits.capHeight = u16At(data, 42) / 65535.0 * traits.height / 72;
    if (traits.capHeight <= 0)
        traits.capHeight = 0.7 * traits.height / 72;
    traits.xHeight = u16At(data, 20) / 4.0 * dotY;
    traits.ascent = u16At(data, 6) * dotY;
    traits.descent = std::max(0.0, (u16At(data, 10) - u16At(data, 6)) * dotY);
    traits.hasUnderline = data[31] != 0;
    if (traits.hasUnderline) {
        traits.underlineTop = static_cast<std::int8_t>(data[30]) * dotY;
        traits.underlineThickness = data[31] * dotY;
    } else {
        traits.underlineTop = -0.2 * traits.height / 72;
        traits.underlineThickness = 0.05 * traits.height / 72;
    }
}

void readScalableMetrics(ByteView data, SoftFontHeader& header, int underlineTop, int underlineThickness)
{
    FontTraits& traits = header.traits;
    const double unit = 1.0 / header.unitsPerEm;
    traits.isScalable = true;
    traits.spaceAdvance = u16At(data, 16) * unit;
    traits.xHeight = u16At(data, 20) > 0 ? u16At(data, 20) * unit : traits.xHeight;
    if (u16At(data, 42) > 0)
        traits.capHeight = u16At(data, 42) / 65535.0;
    traits.hasUnderline = underlineThickness > 0;
    if (traits.hasUnderline) {
        traits.underlineTop = underlineTop * unit;
        traits.underlineThickness = underlineThickness * unit;
    }
}

void readGalley(ByteView data, SoftFontHeader& header)
{
    if (data.size < 6)
        return;
    header.galleyDefault = u16At(data, 2);
    const std::size_t count = std::min<std::size_t>(u16At(data, 4), (data.size - 6) / 6);
    for (std::size_t i = 0; i < count; ++i)
        header.galley.push_back({ u16At(data, 6 + 6 * i), u16At(data, 8 + 6 * i), u16At(data, 10 + 6 * i) });
}

/// PCL 5 counts the ranges in a byte after a byte of format, PCL XL in two after two; the size tells which.
void readVerticalExceptions(ByteView data, SoftFontHeader& header)
{
    const bool isWide = data.size >= 4 && data.size == 4u + 4u * u16At(data, 2);
    const std::size_t start = isWide ? 4 : 2;
    if (data.size < start)
        return;
    const std::size_t wanted = isWide ? u16At(data, 2) : data[1];
    const std::size_t count = std::min(wanted, (data.size - start) / 4);
    for (std::size_t i = 0; i < count; ++i)
        header.uprightCodes.push_back({ u16At(data, start + 4 * i), u16At(data, start + 2 + 4 * i) });
}

void readVerticalForms(ByteView data, SoftFontHeader& header)
{
    for (std::size_t at = 0; at + 4 <= data.size; at += 4) {
        const VerticalPair pair { u16At(data, at), u16At(data, at + 2) };
        if (pair.horizontal == 0xFFFF && pair.vertical == 0xFFFF)
            break;
        header.verticalForms.push_back(pair);
    }
}

/// Segments up to the null segment. False when the list is broken or a resolution in it makes no sense.
bool readSegments(ByteView data, bool hasWideSizes, SoftFontHeader& header, const Reporter& reporter)
{
    constexpr std::uint16_t kNull = 0xFFFF;
    ByteReader reader(data);
    for (;;) {
        const auto id = reader.readU16BigEndian();
        std::optional<std::uint32_t> size;
        if (hasWideSizes)
            size = reader.readU32BigEndian();
        else if (const auto narrow = reader.readU16BigEndian())
            size = *narrow;
        if (!id || !size) {
            reporter.damage("font.segments", "font header ends without its null segment");
            // What came before it may well be all that the font needs.
            return true;
        }
        if (*id == kNull)
            return true;
        const ByteView segment = reader.takeUpTo(*size);
        if (segment.size < *size)
            reporter.damage("font.segment-short", "segment of a font header shorter than its size");
        switch (*id) {
        case tag('B', 'R'):
            if (segment.size >= 4 && !setResolution(header, u16At(segment, 0), u16At(segment, 2), reporter))
                return false;
            break;
        case tag('C', 'C'):
            if (segment.size >= 8)
                header.traits.complement = u64At(segment, 0);
            break;
        case tag('C', 'E'):
            if (segment.size >= 6) {
                constexpr std::uint8_t kPseudoItalic = 2;
                header.isPseudoItalic = segment[3] & kPseudoItalic;
                header.pseudoBold = std::min<int>(u16At(segment, 4), 7) / 60.0;
            }
            break;
        case tag('G', 'C'):
            readGalley(segment, header);
            break;
        case tag('G', 'T'):
            header.trueTypeData.assign(segment.begin(), segment.end());
            break;
        case tag('V', 'E'):
            readVerticalExceptions(segment, header);
            break;
        case tag('V', 'R'):
            if (segment.size >= 4 && header.unitsPerEm > 0)
                header.verticalDescender = -static_cast<double>(s16At(segment, 2)) / header.unitsPerEm;
            break;
        case tag('V', 'T'):
            readVerticalForms(segment, header);
            break;
        default:
            break;
        }
    }
}

bool isUsable(const SoftFontHeader& header, const Reporter& reporter)
{
    if (header.technology == SoftFontTechnology::TrueType && header.trueTypeData.empty()) {
        reporter.damage("font.no-data", "TrueType font header without TrueType data, ignored");
        return false;
    }
    return true;
}

/// Units per em from the head table of a TrueType directory; 0 when it cannot be found.
int unitsPerEmOf(ByteView data)
{
    if (data.size < 12)
        return 0;
    const std::size_t tables = std::min<std::size_t>(u16At(data, 4), (data.size - 12) / 16);
    for (std::size_t i = 0; i < tables; ++i) {
        const ByteView entry = data.sub(12 + 16 * i, 16);
        if (!std::equal(entry.begin(), entry.begin() + 4, "head"))
            continue;
        const std::size_t offset = static_cast<std::size_t>(u16At(entry, 8)) << 16 | u16At(entry, 10);
        const ByteView head = data.sub(offset, 54);
        return head.size >= 20 ? u16At(head, 18) : 0;
    }
    return 0;
}

} // namespace

std::optional<SoftFontHeader> readPclFontHeader(ByteView data, const Reporter& reporter)
{
    if (data.size < kCommonHeader) {
        reporter.damage("font.header-short", "font header shorter than its descriptor, ignored");
        return std::nullopt;
    }
    SoftFontHeader header;
    const std::size_t descriptorSize = u16At(data, 0);
    const std::uint8_t format = data[2];
    std::size_t needed = kCommonHeader;
    switch (format) {
    case 0:
        break;
    case 20:
        needed = 68;
        break;
    case 15:
    case 16:
        needed = 72;
        break;
    case 10:
        needed = 80;
        break;
    case 11:
        needed = 88;
        break;
    default:
        reporter.damage("font.header-format", "font header format " + std::to_string(format) + " unknown, ignored");
        return std::nullopt;
    }
    if (data.size < needed) {
        reporter.damage("font.header-short", "font header shorter than its descriptor, ignored");
        return std::nullopt;
    }
    bool isUnbound = false;
    readCommonFields(data, header.traits, isUnbound);

    if (format == 0 || format == 20) {
        if (!setResolution(
                header, format == 20 ? u16At(data, 64) : 300, format == 20 ? u16At(data, 66) : 300, reporter))
            return std::nullopt;
        readBitmapMetrics(data, header);
        return header;
    }
    if (format == 10 || format == 11) {
        header.technology = SoftFontTechnology::Intellifont;
        header.unitsPerEm = u16At(data, 64) > 0 ? u16At(data, 64) : 8782;
        readScalableMetrics(data, header, s16At(data, 70), u16At(data, 72));
        if (format == 11)
            header.traits.complement = u64At(data, 78);
        if (!checksumHolds(data.sub(64)))
            reporter.warn("font.checksum", "font header with a wrong checksum, used all the same");
        return header;
    }

    header.technology = data[70] == kTechnologyBitmap ? SoftFontTechnology::Bitmap : SoftFontTechnology::TrueType;
    if (header.technology == SoftFontTechnology::TrueType && data[70] != kTechnologyTrueType)
        reporter.warn("font.technology", "font header with an unknown scaling technology, taken for TrueType");
    header.unitsPerEm = u16At(data, 64);
    if (!readSegments(data.sub(std::max(descriptorSize, needed)), format == 16, header, reporter)
        || !isUsable(header, reporter))
        return std::nullopt;
    if (header.technology == SoftFontTechnology::Bitmap) {
        readBitmapMetrics(data, header);
    } else {
        if (const int units = unitsPerEmOf(header.trueTypeData); units > 0)
            header.unitsPerEm = units;
        if (header.unitsPerEm <= 0)
            header.unitsPerEm = 2048;
        readScalableMetrics(data, header, s16At(data, 66), u16At(data, 68));
    }
    if (!checksumHolds(data.sub(64)))
        reporter.warn("font.checksum", "font header with a wrong checksum, used all the same");
    return header;
}

std::optional<SoftFontHeader> readPclXlFontHeader(ByteView data, const Reporter& reporter)
{
    constexpr std::size_t kFixedPart = 8;
    if (data.size < kFixedPart) {
        reporter.damage("font.header-short", "font header shorter than its fixed part, ignored");
        return std::nullopt;
    }
    SoftFontHeader header;
    const std::uint8_t technology = data[4];
    if (technology != kTechnologyTrueType && technology != kTechnologyBitmap) {
        reporter.damage("font.technology", "font header with an unknown scaling technology, ignored");
        return std::nullopt;
    }
    header.technology = technology == kTechnologyBitmap ? SoftFontTechnology::Bitmap : SoftFontTechnology::TrueType;
    header.traits.name = "PCL XL font";
    header.traits.isScalable = header.technology == SoftFontTechnology::TrueType;
    header.traits.isFixedSize = !header.traits.isScalable;
    header.traits.orientation = data[1] & 3;
    header.traits.symbolSet = u16At(data, 2);
    // The em is needed by segments that may come before the data that tell it.
    header.unitsPerEm = 2048;
    if (!readSegments(data.sub(kFixedPart), true, header, reporter) || !isUsable(header, reporter))
        return std::nullopt;
    if (const int units = unitsPerEmOf(header.trueTypeData); units > 0) {
        if (header.verticalDescender)
            *header.verticalDescender *= static_cast<double>(header.unitsPerEm) / units;
        header.unitsPerEm = units;
    }
    return header;
}

} // namespace quillrip
