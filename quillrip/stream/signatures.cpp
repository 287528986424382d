#include "quillrip/stream/signatures.h"

#include "quillrip/base/escape_sequence.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace quillrip::stream {

bool hasAt(ByteView bytes, std::size_t at, const char* text, std::size_t length)
{
    return bytes.size >= length && at <= bytes.size - length && std::memcmp(bytes.data + at, text, length) == 0;
}

namespace {

struct Mark {
    std::size_t at;
    const char* text;
    std::size_t length;
    const char* name;
};

template <std::size_t N> constexpr Mark mark(std::size_t at, const char (&text)[N], const char* name)
{
    return { at, text, N - 1, name };
}

// In order of trial: what is special stands before what is general (PCLm is also PDF, PWG raster also CUPS raster).
const std::array s_marks {
    mark(0, "%PDF-1.7\n%PCLm", "a PCLm page image of driverless printing"),
    mark(4, "PwgRaster", "PWG raster, page images of driverless printing"),
    mark(0, "UNIRAST", "URF raster, page images of driverless printing"),
    mark(0, "RaSt", "CUPS raster, page images before their driver"),
    mark(0, "RaS2", "CUPS raster, page images before their driver"),
    mark(0, "RaS3", "CUPS raster, page images before their driver"),
    mark(0, "tSaR", "CUPS raster, page images before their driver"),
    mark(0, "2SaR", "CUPS raster, page images before their driver"),
    mark(0, "3SaR", "CUPS raster, page images before their driver"),
    mark(0, "JZJZ", "ZjStream, a host-based raster"),
    mark(0, "ZJZJ", "ZjStream, a host-based raster"),
    mark(0, ",XQX", "XQX, a host-based raster"),
    mark(0, "OAKT", "OAKT, a host-based raster"),
    mark(0, "\xA5SLX", "SLX, a host-based raster"),
    mark(0, "$\0\x10\0", "LIDIL, a host-based raster"),
    mark(0, "$\1\0\0\7\0", "LIDIL, a host-based raster"),
    mark(0, "\x1B%-98765X", "a host-based raster of dot-matrix and LED printers"),
    mark(0, "@document(", "imPRESS, a printer language"),
    mark(0, "\xCD\xCA", "CPCA, a host-based printer language"),
    mark(0, "@EJL", "EJL, the job language of ESC/P and ESC/Page printers"),
    mark(0, "=UDK=", "XES, a printer language"),
    mark(0, "=XES", "XES, a printer language"),
    mark(0, "\x1B+X\n", "XES, a printer language"),
    mark(3, "\xD3\xA8\xA8", "AFP (MO:DCA), a printer language"),
    mark(0, "\xD7\xCD\xC6\x9A", "a Windows metafile (WMF)"),
    mark(0, "PK\3\4", "a ZIP archive or an office document"),
    mark(0, "EP*\0", "a document image (MDI)"),
    mark(0, "II*\0", "a TIFF image"),
    mark(0, "MM\0*", "a TIFF image"),
    mark(0, "\xFF\xD8\xFF", "a JPEG image"),
    mark(0, "\x89PNG\r\n\x1A\n", "a PNG image"),
    mark(0, "GIF8", "a GIF image"),
    mark(8, "WEBPVP8", "a WebP image"),
    mark(0, "\x1F\x8B", "gzip-compressed data"),
    mark(0, "BZh", "bzip2-compressed data"),
    mark(0,
        "\xFD"
        "7zXZ\0",
        "xz-compressed data"),
    mark(0, "\x28\xB5\x2F\xFD", "zstd-compressed data"),
    mark(0, "^XA", "ZPL, a label printer's language"),
    mark(0, "~DG", "ZPL, a label printer's language"),
    mark(0, "CT~~CD", "ZPL, a label printer's language"),
    mark(0, "! 0 200 200", "CPCL, a label printer's language"),
    mark(0, "\2L\r", "DPL, a label printer's language"),
    mark(0, "\xF7\x02", "a TeX DVI document"),
    mark(0, "\xD0\xCF\x11\xE0", "an office document"),
    mark(0,
        "\x7F"
        "ELF",
        "a program"),
    mark(0, "FWS", "a Flash animation"),
    mark(0, "CWS\x08", "a Flash animation"),
    mark(0, "<!DOCTYPE", "an HTML or XML document"),
    mark(0, "<!doctype", "an HTML or XML document"),
    mark(0, "<html", "an HTML document"),
    mark(0, "<HTML", "an HTML document"),
    mark(0, "<?xml", "an XML document"),
    mark(0, "{\\rtf", "an RTF document"),
    mark(0, "begin 644 ", "uuencoded mail data"),
    mark(0, "(This file must be converted", "a BinHex file"),
    mark(0, "MIME-Version:", "a mail message"),
    mark(0, "\xFF\xFE", "UTF-16 text"),
    mark(0, "\xFE\xFF", "UTF-16 text"),
};

// Marks that begin with NUL, or with bytes so common that only the first bytes of an input are believed.
const std::array s_marksAtStart {
    mark(0, "\0\0\0\x1B\1@EJL", "ESC/P, a raster printer's language"),
    mark(0, "\0\5\x16\0", "an AppleSingle file"),
    mark(0, "\0\5\x16\7", "an AppleDouble file"),
    mark(0, "KI\0\0", "a Windows job description (.shd); its data is in the .spl file beside it"),
    mark(0, "fI\0\0", "a Windows job description (.shd); its data is in the .spl file beside it"),
    mark(0, "gI\0\0", "a Windows job description (.shd); its data is in the .spl file beside it"),
    mark(0, "hI\0\0", "a Windows job description (.shd); its data is in the .spl file beside it"),
    mark(0, "#Q\0\0", "a Windows job description (.shd); its data is in the .spl file beside it"),
    mark(0, "MZ\x90\0", "a program"),
};

std::optional<std::string> named(const Mark* begin, const Mark* end, ByteView bytes)
{
    for (const Mark* entry = begin; entry != end; ++entry) {
        if (hasAt(bytes, entry->at, entry->text, entry->length))
            return std::string(entry->name);
    }
    return std::nullopt;
}

std::uint32_t u32LittleEndian(ByteView bytes, std::size_t at)
{
    return bytes[at] | std::uint32_t { bytes[at + 1] } << 8 | std::uint32_t { bytes[at + 2] } << 16
        | std::uint32_t { bytes[at + 3] } << 24;
}

// A bitmap file has two letters for a mark; what follows must fit: reserved zeros and a known size of the header.
bool isBitmapFile(ByteView bytes)
{
    if (!hasAt(bytes, 0, "BM") || bytes.size < 18 || u32LittleEndian(bytes, 6) != 0)
        return false;
    const std::uint32_t headerSize = u32LittleEndian(bytes, 14);
    return headerSize == 12 || headerSize == 40 || headerSize == 56 || headerSize == 64 || headerSize == 108
        || headerSize == 124;
}

// Paintbrush: manufacturer, version, run-length encoding, bits of a pixel.
bool isPcxFile(ByteView bytes)
{
    return bytes.size >= 128 && bytes[0] == 0x0A && (bytes[1] == 0 || (bytes[1] >= 2 && bytes[1] <= 5)) && bytes[2] == 1
        && (bytes[3] == 1 || bytes[3] == 2 || bytes[3] == 4 || bytes[3] == 8) && bytes[64] == 0;
}

// Every second byte NUL: text of two bytes a character without its mark.
bool isUtf16WithoutMark(ByteView bytes)
{
    if (bytes.size < 32)
        return false;
    for (std::size_t low = 0; low < 2; ++low) {
        bool matches = true;
        for (std::size_t at = 0; at < 32 && matches; at += 2)
            matches = bytes[at + 1 - low] == 0 && bytes[at + low] >= 9 && bytes[at + low] < 0x7F;
        if (matches)
            return true;
    }
    return false;
}

// TSPL begins with the label's size and goes on line by line; the words alone could begin a letter.
bool isTspl(ByteView bytes)
{
    if (!hasAt(bytes, 0, "SIZE ") || bytes.size < 6 || !(isDigit(bytes[5]) || bytes[5] == '.'))
        return false;
    constexpr std::size_t kSearched = 1024;
    for (std::size_t at = 5; at < std::min(bytes.size, kSearched); ++at) {
        if (bytes[at] == '\n' && hasAt(bytes, at + 1, "CLS") && bytes.size > at + 4
            && (bytes[at + 4] == '\r' || bytes[at + 4] == '\n'))
            return true;
    }
    return false;
}

// MO:DCA: records of 5A, a length and an identifier that begins with D3, one behind the other.
bool isAfp(ByteView bytes)
{
    if (bytes.size < 9 || bytes[0] != 0x5A || bytes[3] != 0xD3)
        return false;
    const std::size_t next = 1u + (std::size_t { bytes[1] } << 8 | bytes[2]);
    return next >= 9 && (next >= bytes.size || bytes[next] == 0x5A);
}

bool isHexListing(ByteView bytes)
{
    std::size_t digits = 0;
    const std::size_t looked = bytes.size < 512 ? bytes.size : 512;
    for (std::size_t at = 0; at < looked; ++at) {
        const std::uint8_t c = bytes[at];
        const bool isHexDigit = isDigit(c) || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
        if (!isHexDigit && c != ' ' && c != '\n' && c != '\r')
            return false;
        digits += isHexDigit;
    }
    // The escape character that nearly every job begins with, written as two digits.
    return digits >= 64 && (hasAt(bytes, 0, "1B") || hasAt(bytes, 0, "1b"));
}

} // namespace

std::optional<std::string> foreignFormatByMark(ByteView bytes, bool isStartOfInput)
{
    if (isStartOfInput) {
        if (auto name = named(s_marksAtStart.data(), s_marksAtStart.data() + s_marksAtStart.size(), bytes))
            return name;
        if (isPcxFile(bytes))
            return std::string("a PCX image");
    }
    if (isBitmapFile(bytes))
        return std::string("a BMP image");
    if (auto name = named(s_marks.data(), s_marks.data() + s_marks.size(), bytes))
        return name;
    if (isUtf16WithoutMark(bytes))
        return std::string("UTF-16 text");
    if (isTspl(bytes))
        return std::string("TSPL, a label printer's language");
    if (isAfp(bytes))
        return std::string("AFP (MO:DCA), a printer language");
    if (isHexListing(bytes))
        return std::string("a listing of hexadecimal digits");
    return std::nullopt;
}

bool startsWithXpsPackage(ByteView bytes)
{
    constexpr std::size_t kHeader = 30; // of a part, before its name
    if (!hasAt(bytes, 0, "PK\3\4"))
        return false;
    // The lengths of parts may stand behind their data, so the headers are looked for by their mark.
    for (std::size_t at = 0; at + kHeader < bytes.size; ++at) {
        if (bytes[at] != 'P' || !hasAt(bytes, at, "PK\3\4"))
            continue;
        const std::size_t length = bytes[at + 26] | std::size_t { bytes[at + 27] } << 8;
        const ByteView view = bytes.sub(at + kHeader, length);
        std::string name(reinterpret_cast<const char*>(view.data), view.size);
        std::transform(name.begin(), name.end(), name.begin(),
            [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
        for (const char* part : { ".fdseq", ".fdoc", ".fpage", ".odttf" }) {
            if (name.find(part) != std::string::npos)
                return true;
        }
    }
    return false;
}

// Receipt printers: ESC @ and then commands that begin with GS, or one of those alone.
std::optional<std::string> receiptLanguage(ByteView bytes)
{
    constexpr std::uint8_t kGroupSeparator = 0x1D;
    constexpr std::size_t kSearched = 4096;
    const std::string name = "ESC/POS, the language of receipt printers";
    const auto isReceiptCommand = [&](std::size_t at) {
        return at + 1 < bytes.size && bytes[at] == kGroupSeparator && bytes[at + 1] != 0
            && std::strchr("!$(*/:BHILPTVWZ\\^abcfghjkrvwz", bytes[at + 1]) != nullptr;
    };
    if (isReceiptCommand(0) || hasAt(bytes, 0, "\x10\x04") || hasAt(bytes, 0, "\x10\x14"))
        return name;
    if (bytes.size < 2 || bytes[0] != kEscape
        || (bytes[1] == 0 || (bytes[1] != '@' && !std::strchr("!-2GJMRVadrt{p", bytes[1]))))
        return std::nullopt;
    for (std::size_t at = 2; at < std::min(bytes.size, kSearched); ++at) {
        if (startsWithUniversalExit(bytes.sub(at)))
            break;
        if (isReceiptCommand(at))
            return name;
    }
    return std::nullopt;
}

// Rows of rasters that the host has compressed its own way, in the clothes of a method number that PCL does not have.
std::optional<std::string> pclLookAlike(ByteView bytes)
{
    constexpr int kLargestMethodOfPcl = 1000;
    constexpr std::size_t kSearched = 8192;
    const ByteView looked = bytes.sub(0, kSearched);
    EscapeReader reader(looked);
    while (!reader.atEnd()) {
        if (!reader.open()) {
            reader.skip(1);
            continue;
        }
        while (const auto parameter = reader.next()) {
            if (parameter->prefix == '*' && parameter->group == 'b' && parameter->letter == 'M'
                && parameter->value.integer() >= kLargestMethodOfPcl)
                return std::string("a host-based raster in sequences that look like PCL");
            if (parameter->letter == 'W' || parameter->letter == 'V')
                reader.skip(static_cast<std::uint64_t>(std::max(0, parameter->value.integer())));
        }
    }
    return std::nullopt;
}

// A device control string of numbers that ends with q.
bool isSixelString(ByteView bytes)
{
    if (!hasAt(bytes, 1, "P"))
        return false;
    std::size_t at = 2;
    while (at < bytes.size && (isDigit(bytes[at]) || bytes[at] == ';'))
        ++at;
    return hasAt(bytes, at, "q");
}

std::optional<std::string> foreignEscapeLanguage(ByteView bytes)
{
    if (bytes.size < 2 || bytes[0] != 0x1B)
        return std::nullopt;
    if (hasAt(bytes, 1, "\x01@EJL"))
        return std::string("EJL, the job language of ESC/P and ESC/Page printers");
    if (auto name = receiptLanguage(bytes))
        return name;
    if (bytes[1] == '@')
        return std::string("ESC/P, a raster printer's language");
    if (hasAt(bytes, 1, "[K\2\0\0\x0F"))
        return std::string("BJ raster, an ink printer's language");
    if (bytes[1] == '[')
        return std::string("IBM Proprinter or BJ data");
    if (isSixelString(bytes))
        return std::string("sixels, the raster of terminals and their printers");
    // ESC P alone is a pitch of ESC/P; as a control string of LIPS it has numbers and an end.
    if (hasAt(bytes, 1, "%@") || bytes[1] == '<' || (bytes[1] == 'P' && bytes.size > 2 && isDigit(bytes[2])))
        return std::string("LIPS, a printer language");
    if (bytes[1] == 'P')
        return std::string("ESC/P, a raster printer's language");
    // PCL has a digit, a sign, a point or a letter behind "(" and a letter; ESC/P has a count in binary.
    if (bytes[1] == '(' && bytes.size >= 5
        && ((bytes[2] >= 'A' && bytes[2] <= 'Z') || (bytes[2] >= 'a' && bytes[2] <= 'z')) && bytes[3] < 0x20
        && bytes[4] < 0x20)
        return std::string("ESC/P2, a raster printer's language");
    return std::nullopt;
}

} // namespace quillrip::stream
