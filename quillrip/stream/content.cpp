#include "quillrip/stream/content.h"

#include "quillrip/emf/recognition.h"
#include "quillrip/stream/signatures.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string_view>

namespace quillrip::stream {

namespace {

constexpr std::size_t kTextLookedAt = 8192;
constexpr std::size_t kHeaderSearch = 1024;

// Device alignment, serial lines and block padding leave these around jobs.
bool isPadding(std::uint8_t byte)
{
    return byte == 0 || byte == 0x04 || byte == 0x1A || byte == '\t' || byte == '\n' || byte == '\f' || byte == '\r'
        || byte == ' ';
}

// Of those, the ones that move nothing on a page: a text may begin with blank lines that count.
bool isInvisiblePadding(std::uint8_t byte) { return byte == 0 || byte == 0x04 || byte == 0x1A; }

template <typename Test> std::size_t lengthOf(ByteView bytes, std::size_t from, Test isPart)
{
    std::size_t at = from;
    for (;;) {
        while (at < bytes.size && isPart(bytes[at]))
            ++at;
        if (!hasAt(bytes, at, "\xEF\xBB\xBF"))
            return at - from;
        at += 3;
    }
}

bool startsWithPjl(ByteView bytes)
{
    if (!hasAt(bytes, 0, "@PJL") && !hasAt(bytes, 0, "@pjl"))
        return false;
    return bytes.size == 4 || bytes[4] == ' ' || bytes[4] == '\t' || bytes[4] == '\r' || bytes[4] == '\n';
}

bool startsWithPostScript(ByteView bytes)
{
    return hasAt(bytes, 0, "%!") || hasAt(bytes, 0, "\xC5\xD0\xD3\xC6") || hasAt(bytes, 0, "\1M%!");
}

// An escape sequence by PCL's strict grammar: two characters, or parameterised with any number of combined commands.
bool startsWithPclSequence(ByteView bytes)
{
    if (bytes.size < 2 || bytes[0] != kEscape)
        return false;
    if (bytes[1] == 'E' || bytes[1] == '9' || bytes[1] == '=' || bytes[1] == 'Y' || bytes[1] == 'Z')
        return true;
    // Terminals select a mode by ESC%8 and nothing more; printers drop that when the next sequence comes.
    if (bytes.size > 3 && bytes[1] == '%' && isDigit(bytes[2]) && bytes[3] == kEscape)
        return startsWithPclSequence(bytes.sub(3));
    // Commands may be combined without an end; a hundred bytes of them prove enough.
    constexpr std::size_t kEnough = 100;
    EscapeReader reader(bytes.sub(0, kEnough));
    if (!reader.open())
        return false;
    while (const auto parameter = reader.next()) {
        // Only changes of language begin so; other printers have commands of their own here.
        if (parameter->prefix == '%' && std::strchr("ABX", parameter->letter) == nullptr)
            return false;
        if (!reader.isOpen())
            return true;
    }
    return reader.atEnd() && bytes.size >= kEnough;
}

/// What the escape sequences within a text belong to.
struct EscapeCount {
    std::size_t pcl = 0;
    std::size_t foreign = 0; ///< of ESC/P and of receipt printers
    std::size_t firstForeign = 0; ///< where the first of these is
};

// Of the sequences that those languages have and PCL has not, the frequent ones. ESC E, ESC 9, ESC Y and the like mean
// something in both.
bool startsWithForeignSequence(ByteView bytes)
{
    if (bytes.size > 2 && bytes[1] == '%')
        return bytes[2] > ' ' && bytes[2] < 0x7F && !startsWithPclSequence(bytes);
    return bytes.size > 1 && std::strchr("@!-GFHJKLMNOPQRSTUVWadgijklmprstvx0123467", bytes[1]) != nullptr
        && bytes[1] != 0 && !startsWithPclSequence(bytes);
}

EscapeCount countSequences(ByteView bytes)
{
    EscapeCount count;
    const std::size_t looked = std::min(bytes.size, kTextLookedAt);
    for (std::size_t at = 0; at < looked; ++at) {
        if (bytes[at] != kEscape)
            continue;
        const ByteView sequence = bytes.sub(at);
        if (startsWithUniversalExit(sequence))
            break;
        count.pcl += startsWithPclSequence(sequence);
        if (startsWithForeignSequence(sequence) && count.foreign++ == 0)
            count.firstForeign = at;
    }
    return count;
}

// Whether these bytes can stand before the first command of ESC/P: letters, and controls that move, switch a face or
// begin a command there. Any noise has an ESC and one of their letters sooner or later, and other controls before that.
bool canPrecedeForeignSequence(ByteView bytes)
{
    constexpr std::string_view kControls = "\a\b\t\n\v\f\r\x0E\x0F\x11\x12\x13\x14\x18\x1B\x1C\x1D";
    constexpr std::size_t kParameters = 2; // of sequences that are not told apart here
    std::size_t others = 0;
    for (std::size_t at = 0; at < bytes.size; ++at) {
        const std::uint8_t c = bytes[at];
        others += c == 0x7F || (c < 0x20 && kControls.find(static_cast<char>(c)) == std::string_view::npos);
    }
    return others <= kParameters + bytes.size / 50;
}

// Trailing padding of a whole input says nothing about its text.
ByteView withoutTrailingPadding(ByteView bytes)
{
    while (!bytes.empty() && isInvisiblePadding(bytes[bytes.size - 1]))
        --bytes.size;
    return bytes;
}

// Letters and the controls that move the paper or print over, nothing else; high bytes count as letters of some code
// page or of UTF-8. An ESC counts as what it begins.
bool isText(ByteView bytes)
{
    std::size_t controls = 0;
    const std::size_t looked = std::min(bytes.size, kTextLookedAt);
    std::size_t at = 0;
    for (; at < looked; ++at) {
        const std::uint8_t c = bytes[at];
        if (c == 0)
            return false;
        const ByteView rest = bytes.sub(at);
        if (startsWithUniversalExit(rest))
            break;
        const bool movesPaper = c == '\t' || c == '\n' || c == '\f' || c == '\r';
        const bool isOverstrike = c == '\b' && at > 0 && bytes[at - 1] >= ' ';
        const auto isShift = [](std::uint8_t byte) { return byte == 0x0E || byte == 0x0F; };
        const bool shiftsFont = isShift(c) && !(at > 0 && isShift(bytes[at - 1]));
        // Terminals' colours come out as odd letters, on printers too.
        const bool isSequence = c == kEscape && (startsWithPclSequence(rest) || hasAt(rest, 1, "["));
        const bool isLetter = c >= 0x20 && c != 0x7F;
        controls += !(isLetter || movesPaper || isOverstrike || shiftsFont || isSequence);
    }
    return at > 0 && controls * 100 <= at;
}

std::string hexadecimal(ByteView bytes)
{
    std::string text;
    for (std::size_t at = 0; at < bytes.size && at < 16; ++at) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%s%02X", at == 0 ? "" : " ", bytes[at]);
        text += digits;
    }
    return text;
}

// What the bytes themselves say, without padding in front and without the doubtful cases.
std::optional<Content> byMark(ByteView bytes, const RecognitionContext& context, std::size_t padding)
{
    // Only the first bytes of an input are believed: NUL padding before other jobs looks alike.
    if (context.isStartOfInput && padding == 0 && (emf::looksLikeSpoolFile(bytes) || emf::looksLikeMetafile(bytes)))
        return Content { ContentKind::Emf, padding, {} };
    if (startsWithUniversalExit(bytes) || startsWithPjl(bytes))
        return Content { ContentKind::Pjl, padding, {} };
    if (startsWithPclXlHeader(bytes))
        return Content { ContentKind::PclXl, padding, {} };
    if (startsWithPostScript(bytes))
        return Content { ContentKind::PostScript, padding, {} };
    if (hasAt(bytes, 0, "!R!"))
        return Content { ContentKind::Prescribe, padding, {} };
    if (startsWithXpsPackage(bytes))
        return Content { ContentKind::Xps, padding, {} };
    if (auto name = foreignFormatByMark(bytes, context.isStartOfInput && padding == 0))
        return Content { ContentKind::Foreign, padding, std::move(*name) };
    if (hasAt(bytes, 0, "%PDF-"))
        return Content { ContentKind::Pdf, padding, {} };
    if (auto name = foreignEscapeLanguage(bytes))
        return Content { ContentKind::Foreign, padding, std::move(*name) };
    if (context.isPlot && context.isPlot(bytes))
        return Content { ContentKind::Plot, padding, {} };
    return std::nullopt;
}

} // namespace

bool isBelievableUniversalExit(ByteView bytes)
{
    if (!startsWithUniversalExit(bytes))
        return false;
    const ByteView rest = bytes.sub(kUniversalExitLength);
    const ByteView next = rest.sub(lengthOf(rest, 0, isPadding));
    return next.empty() || startsWithPjl(next) || next[0] == kEscape || startsWithPostScript(next)
        || startsWithPclXlHeader(next) || hasAt(next, 0, "%PDF-") || hasAt(next, 0, ",XQX");
}

bool startsWithPclXlHeader(ByteView bytes)
{
    return bytes.size > 12 && bytes[0] >= 0x27 && bytes[0] <= 0x29 && hasAt(bytes, 1, " HP-PCL XL;");
}

Content recognise(ByteView window, const RecognitionContext& context)
{
    // Some formats begin with bytes that are padding elsewhere.
    if (context.isStartOfInput) {
        if (auto content = byMark(window, context, 0))
            return *content;
    }

    std::size_t at = lengthOf(window, 0, isPadding);
    if (at == window.size)
        return { ContentKind::Nothing, at, {} };
    if (auto content = byMark(window.sub(at), context, at))
        return *content;

    // A reset proves only that a printer is meant: many drivers send one before anything else, whatever follows.
    std::size_t behindResets = at;
    while (hasAt(window, behindResets,
        "\x1B"
        "E")) {
        behindResets += 2;
        behindResets += lengthOf(window, behindResets, isPadding);
    }
    if (behindResets > at) {
        if (behindResets == window.size)
            return context.isWholeInput ? Content { ContentKind::Nothing, behindResets, {} }
                                        : Content { ContentKind::Pcl, at, {} };
        const auto content = byMark(window.sub(behindResets), context, behindResets);
        if (content && content->kind != ContentKind::Foreign)
            return *content;
        if (auto name = pclLookAlike(window.sub(at)))
            return { ContentKind::Foreign, at, std::move(*name) };
        return { ContentKind::Pcl, at, {} };
    }

    // From here on a page's first line may be blank, so only what cannot be seen is dropped.
    const std::size_t invisible = lengthOf(window, 0, isInvisiblePadding);
    const ByteView rest = window.sub(at);
    if (startsWithPclSequence(rest)) {
        if (auto name = pclLookAlike(rest))
            return { ContentKind::Foreign, at, std::move(*name) };
        return { ContentKind::Pcl, invisible, {} };
    }
    // Mail and operating systems put lines before these, and printers look for them further on.
    for (std::size_t from = 0; !context.isNamed && from < std::min(rest.size, kHeaderSearch); ++from) {
        if (startsWithUniversalExit(rest.sub(from)))
            break;
        if (rest[from] != '\n')
            continue;
        const ByteView line = rest.sub(from + 1);
        if (startsWithPclXlHeader(line))
            return { ContentKind::PclXl, at + from + 1, {} };
        if (hasAt(line, 0, "%PDF-"))
            return { ContentKind::Pdf, at + from + 1, {} };
    }
    if (auto name = receiptLanguage(rest))
        return { ContentKind::Foreign, at, std::move(*name) };
    const EscapeCount sequences = countSequences(rest);
    if (sequences.foreign > sequences.pcl && canPrecedeForeignSequence(rest.sub(0, sequences.firstForeign)))
        return { ContentKind::Foreign, at, "text with the commands of ESC/P or ESC/POS, languages of other printers" };
    const bool isPrintable = isText(context.isWholeInput ? withoutTrailingPadding(rest) : rest);
    if (rest[0] == kEscape && rest.size > 1 && !isPrintable)
        return { ContentKind::Unknown, at, "an unknown language of escape sequences (" + hexadecimal(rest) + ")" };
    if (isPrintable)
        return { ContentKind::Text, invisible, {} };
    return { ContentKind::Unknown, at, "data of an unknown kind (" + hexadecimal(rest) + ")" };
}

} // namespace quillrip::stream
