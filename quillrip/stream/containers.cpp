#include "quillrip/stream/containers.h"

#include "quillrip/emf/recognition.h"
#include "quillrip/stream/content.h"
#include "quillrip/stream/section_input_stream.h"
#include "quillrip/stream/signatures.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace quillrip::stream {

namespace {

constexpr std::size_t kMacBinaryHeader = 128;
constexpr std::size_t kLongestHeaderLine = 1024;
constexpr std::size_t kMostAttributes = 10000;

std::string takeHeaderLine(InputStream& input)
{
    std::string line;
    for (int c = input.get(); c >= 0 && c != '\n'; c = input.get()) {
        if (line.size() < kLongestHeaderLine)
            line.push_back(static_cast<char>(c));
    }
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return line;
}

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
        [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return text;
}

// MacBinary I to III: a NUL, the name's length, two NULs at fixed places, the data fork's length.
bool unwrapMacBinary(InputStream& input, Container& container)
{
    const ByteView head = input.window(kMacBinaryHeader);
    if (head.size < kMacBinaryHeader || head[0] != 0 || head[1] < 1 || head[1] > 63 || head[74] != 0 || head[82] != 0)
        return false;
    for (std::size_t at = 2; at < std::size_t { 2 } + head[1]; ++at) {
        if (head[at] < 0x20)
            return false;
    }
    const std::uint32_t length = std::uint32_t { head[83] } << 24 | std::uint32_t { head[84] } << 16
        | std::uint32_t { head[85] } << 8 | head[86];
    if (length == 0 || length > 0x7FFFFFFF)
        return false;
    input.skip(kMacBinaryHeader);
    container.layers.push_back(std::make_unique<SectionInputStream>(input, length));
    return true;
}

// RFC 1179: <02> queue LF opens a job; then control files (<02> count SP cfA...) and data files (<03> count SP
// dfA...), each ended by a NUL, in either order. A count of 0 means up to the end.
bool unwrapLpd(InputStream& input, Container& container)
{
    const ByteView head = input.window(kLongestHeaderLine);
    if (head.empty() || (head[0] != 2 && head[0] != 3))
        return false;
    const auto* lineEnd = static_cast<const std::uint8_t*>(std::memchr(head.data, '\n', head.size));
    if (!lineEnd)
        return false;
    const auto lineLength = static_cast<std::size_t>(lineEnd - head.data);
    for (std::size_t at = 1; at < lineLength; ++at) {
        if (head[at] < 0x20 || head[at] >= 0x7F)
            return false;
    }
    const auto isFileLine = [](const std::string& line) {
        return line.find(" cfA") != std::string::npos || line.find(" dfA") != std::string::npos;
    };
    const std::string first(reinterpret_cast<const char*>(head.data), lineLength);
    if (!isFileLine(first)) {
        const std::uint8_t next = head.sub(lineLength + 1).empty() ? std::uint8_t { 0xFF } : head[lineLength + 1];
        if (head[0] != 2 || next > 3 || next < 2)
            return false;
        takeHeaderLine(input);
    }
    for (int files = 0; files < 1000; ++files) {
        const int kind = input.peek();
        if (kind != 2 && kind != 3)
            break;
        const std::string line = takeHeaderLine(input);
        std::uint64_t count = 0;
        for (std::size_t at = 1; at < line.size() && line[at] >= '0' && line[at] <= '9' && count < (1ull << 40); ++at)
            count = count * 10 + static_cast<std::uint64_t>(line[at] - '0');
        if (kind == 3) {
            container.layers.push_back(std::make_unique<SectionInputStream>(input, count > 0 ? count : UINT64_MAX));
            return true;
        }
        input.skip(count);
        if (input.peek() == 0)
            input.get();
    }
    container.refusal = "an LPD control file without print data";
    return true;
}

// RFC 8010, section 3: version, operation, request, then attributes up to the end tag 03.
bool isIppHeader(ByteView bytes)
{
    return bytes.size >= 9 && (bytes[0] == 1 || bytes[0] == 2) && bytes[1] <= 2 && bytes[2] == 0 && bytes[3] < 0x40
        && bytes[8] == 1;
}

void skipIppAttributes(InputStream& input)
{
    input.skip(8);
    for (std::size_t count = 0; count < kMostAttributes; ++count) {
        const int tag = input.get();
        if (tag < 0 || tag == 3)
            return;
        if (tag < 0x10)
            continue;
        for (int field = 0; field < 2; ++field) {
            const int high = input.get();
            const int low = input.get();
            if (low < 0)
                return;
            input.skip(static_cast<std::uint64_t>(high << 8 | low));
        }
    }
}

bool unwrapIpp(InputStream& input, Container& container)
{
    InputStream* body = &input;
    if (hasAt(input.window(5), 0, "POST ")) {
        bool isIpp = false;
        bool isChunked = false;
        std::string line = lower(takeHeaderLine(input));
        for (int lines = 0; lines < 200 && !line.empty(); ++lines) {
            isIpp = isIpp || line.find("application/ipp") != std::string::npos;
            isChunked = isChunked || line.rfind("transfer-encoding: chunked", 0) == 0;
            line = lower(takeHeaderLine(input));
        }
        if (!isIpp) {
            container.refusal = "an HTTP request that carries no print job";
            return true;
        }
        if (isChunked) {
            container.layers.push_back(std::make_unique<ChunkedInputStream>(input));
            body = container.layers.back().get();
        }
    } else if (!isIppHeader(input.window(9))) {
        return false;
    }
    skipIppAttributes(*body);
    if (body->atEnd())
        container.refusal = "an IPP request without a document";
    return true;
}

// A data file of a line printer's queue may be preceded by lines of its control file: one letter and a value.
bool unwrapControlLines(InputStream& input, Container& container)
{
    const ByteView head = input.window(8192);
    std::size_t at = 0;
    bool hasHost = false;
    bool hasUser = false;
    bool hasDataFile = false;
    while (at < head.size) {
        const auto* end = static_cast<const std::uint8_t*>(std::memchr(head.data + at, '\n', head.size - at));
        const std::size_t length = (end ? static_cast<std::size_t>(end - head.data) : head.size) - at;
        if (length < 2 || length > 131 || !std::strchr("HPJCLUNMSTIW1234cdfghklnoprtvz", head[at])
            || head[at + 1] == ' ')
            break;
        if (std::any_of(head.data + at, head.data + at + length, [](std::uint8_t c) { return c < 0x20; }))
            break;
        hasHost = hasHost || head[at] == 'H';
        hasUser = hasUser || head[at] == 'P';
        hasDataFile = hasDataFile || hasAt(head.sub(at, length), 1, "dfA");
        at += length + 1;
    }
    if (!hasHost || !hasUser || !hasDataFile)
        return false;
    if (at >= head.size) {
        container.refusal = "a line printer's control file without print data";
        return true;
    }
    input.skip(at);
    return true;
}

} // namespace

Container unwrap(InputStream& input)
{
    Container container;
    // A metafile's first bytes are those of an IPP request too.
    if (emf::looksLikeMetafile(input.window(kMacBinaryHeader)))
        return container;
    if (!unwrapMacBinary(input, container) && !unwrapLpd(input, container) && !unwrapIpp(input, container))
        unwrapControlLines(input, container);
    return container;
}

} // namespace quillrip::stream
