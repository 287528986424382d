#include "quillrip/emf/recognition.h"

#include "quillrip/emf/record.h"

#include <cstdint>

namespace quillrip::emf {

namespace {

constexpr std::uint32_t kVersion = 0x00010000;
constexpr std::size_t kSmallestHeader = 16;
constexpr std::uint32_t kLargestHeader = 0x10000;
constexpr std::uint32_t kLastRecord = 0x15;
constexpr std::uint32_t kPage = 1;
constexpr std::uint32_t kPageData = 0x0C;

bool isNameOffset(std::uint32_t offset, std::uint32_t headerSize)
{
    return offset == 0 || (offset >= kSmallestHeader && offset < headerSize && offset % 2 == 0);
}

} // namespace

bool looksLikeSpoolFile(ByteView window)
{
    const Fields fields(window);
    const std::uint32_t size = fields.u32(4);
    if (!fields.has(0, kSmallestHeader) || fields.u32(0) != kVersion || size < kSmallestHeader || size >= kLargestHeader
        || size % 4 != 0 || !isNameOffset(fields.u32(8), size) || !isNameOffset(fields.u32(12), size))
        return false;
    if (!fields.has(size, 8))
        return window.size <= size; // a job without a page
    const std::uint32_t record = fields.u32(size);
    if (record < 1 || record > kLastRecord || fields.u32(size + 4) % 4 != 0)
        return false;
    const bool isPage = record == kPage || record == kPageData;
    constexpr std::size_t kSignature = 44;
    return !isPage || !fields.has(size + 8, kSignature) || looksLikeMetafile(window.sub(size + 8));
}

bool looksLikeMetafile(ByteView window)
{
    constexpr std::uint32_t kSignature = 0x464D4520; // " EMF"
    const Fields fields(window);
    return fields.u32(0) == 1 && fields.u32(40) == kSignature;
}

} // namespace quillrip::emf
