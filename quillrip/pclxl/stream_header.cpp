#include "quillrip/pclxl/stream_header.h"

#include <cstdint>
#include <cstring>

namespace quillrip::pclxl {

namespace {

constexpr char kClassName[] = " HP-PCL XL;";
constexpr std::size_t kClassNameLength = sizeof kClassName - 1;
// The comment is free text; no generator fills more than a few dozen bytes.
constexpr std::size_t kLongestHeader = 4096;

} // namespace

bool standsOnStreamHeader(InputStream& input)
{
    const int byte = input.peek();
    return byte == '\'' || byte == '(' || byte == ')';
}

Status readStreamHeader(InputStream& input, ByteOrder& order)
{
    const ByteView ahead = input.window(1 + kClassNameLength);
    if (ahead.size < 1 + kClassNameLength)
        return Error::PrematureEnd;
    if (std::memcmp(ahead.data + 1, kClassName, kClassNameLength) != 0)
        return Error::IllegalStreamHeader;
    const std::uint8_t binding = ahead[0];
    // The comment may hold any byte but the line feed, also NUL.
    for (std::size_t taken = 0;; ++taken) {
        const int byte = input.get();
        if (byte < 0)
            return Error::PrematureEnd;
        if (byte == '\n')
            break;
        if (taken == kLongestHeader)
            return Error::IllegalStreamHeader;
    }
    if (binding == '\'')
        return Error::UnsupportedBinding;
    order = binding == '(' ? ByteOrder::BigEndian : ByteOrder::LittleEndian;
    return {};
}

ByteOrder guessByteOrder(InputStream& input)
{
    const ByteView ahead = input.window(64);
    for (std::size_t i = 0; i + 2 < ahead.size; ++i) {
        const std::uint8_t tag = ahead[i];
        if (tag == 0xC0 || tag == 0xF8) {
            ++i;
        } else if (tag == 0xC1 || tag == 0xC3 || tag == 0xD1 || tag == 0xD3) {
            const unsigned little = ahead[i + 1] | static_cast<unsigned>(ahead[i + 2]) << 8;
            const unsigned big = static_cast<unsigned>(ahead[i + 1]) << 8 | ahead[i + 2];
            return little <= big ? ByteOrder::LittleEndian : ByteOrder::BigEndian;
        } else if (tag == 0xD5) {
            // The high byte of a real's exponent is 0x3F to 0x44 for the numbers in question.
            const bool isBig = ahead[i + 1] >= 0x3F && ahead[i + 1] <= 0x46;
            return isBig ? ByteOrder::BigEndian : ByteOrder::LittleEndian;
        } else if (tag < kFirstOperator || tag > kLastOperator) {
            break;
        }
    }
    return ByteOrder::LittleEndian;
}

} // namespace quillrip::pclxl
