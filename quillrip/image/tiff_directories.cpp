#include "quillrip/image/tiff_directories.h"

#include "quillrip/image/header_bytes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include <tiff.h>

namespace quillrip {

namespace {

constexpr std::uint32_t kBigVersion = 43;
constexpr std::size_t kBigHeaderBytes = 16;
constexpr std::uint64_t kMostEntries = 0xFFFF;

std::uint64_t numberAt(const std::uint8_t* at, std::size_t bytes)
{
    std::uint64_t number = 0;
    for (std::size_t i = bytes; i-- > 0;)
        number = number << 8 | at[i];
    return number;
}

void putNumber(std::uint8_t* at, std::size_t bytes, std::uint64_t number)
{
    for (std::size_t i = 0; i < bytes; ++i)
        at[i] = static_cast<std::uint8_t>(number >> (8 * i));
}

/// The sizes of what differs between the two forms.
struct Form {
    std::size_t countBytes; ///< of the number of entries
    std::size_t entryBytes;
    std::size_t offsetBytes; ///< also of an entry's count and its value
};
constexpr Form kClassic { 2, 12, 4 };
constexpr Form kBig { 8, 20, 8 };

/// A directory, read as it lies in the file.
struct Directory {
    std::uint64_t at = 0;
    std::vector<std::uint8_t> entries;
    std::uint64_t next = 0;
};

bool readNumber(OutputFile& file, std::uint64_t at, std::size_t bytes, std::uint64_t& number)
{
    std::array<std::uint8_t, 8> word {};
    if (!file.readAt(at, word.data(), bytes))
        return false;
    number = numberAt(word.data(), bytes);
    return true;
}

bool readDirectory(OutputFile& file, const Form& form, std::uint64_t at, Directory& directory)
{
    std::uint64_t count = 0;
    if (!readNumber(file, at, form.countBytes, count) || count > kMostEntries)
        return false;
    directory.at = at;
    directory.entries.resize(static_cast<std::size_t>(count) * form.entryBytes);
    const std::uint64_t first = at + form.countBytes;
    return file.readAt(first, directory.entries.data(), directory.entries.size())
        && readNumber(file, first + directory.entries.size(), form.offsetBytes, directory.next);
}

/// Where the first directory's offset stands.
constexpr std::uint64_t firstLink(const Form& form) { return form.offsetBytes; }

std::uint64_t bytesOfType(std::uint64_t type)
{
    switch (type) {
    case TIFF_SHORT:
    case TIFF_SSHORT:
        return 2;
    case TIFF_LONG:
    case TIFF_SLONG:
    case TIFF_FLOAT:
    case TIFF_IFD:
        return 4;
    case TIFF_RATIONAL:
    case TIFF_SRATIONAL:
    case TIFF_DOUBLE:
        return 8;
    default:
        return 1;
    }
}

/// The numbers of an entry of shorts or longs, which stand in it or where it points to.
bool readNumbers(OutputFile& file, const std::uint8_t* entry, std::vector<std::uint32_t>& numbers)
{
    const auto size = static_cast<std::size_t>(bytesOfType(numberAt(entry + 2, 2)));
    const auto count = static_cast<std::size_t>(numberAt(entry + 4, 4));
    std::vector<std::uint8_t> bytes(entry + 8, entry + kClassic.entryBytes);
    if (size * count > bytes.size()) {
        bytes.resize(size * count);
        if (!file.readAt(numberAt(entry + 8, 4), bytes.data(), bytes.size()))
            return false;
    }
    for (std::size_t i = 0; i < count; ++i)
        numbers.push_back(static_cast<std::uint32_t>(numberAt(&bytes[i * size], size)));
    return count > 0;
}

/// Where something can be added; 0 when classic offsets do not reach there.
std::uint64_t classicEnd(const OutputFile& file)
{
    const std::uint64_t end = file.size() + file.size() % 2;
    return end <= UINT32_MAX ? end : 0;
}

/// Moves the first strip to the end and says so in its page's directory.
bool moveFirstStrip(OutputFile& file, Directory& directory)
{
    std::uint8_t* entry = nullptr;
    std::vector<std::uint32_t> strips;
    std::vector<std::uint32_t> sizes;
    for (std::size_t i = 0; i < directory.entries.size(); i += kClassic.entryBytes) {
        const std::uint64_t tag = numberAt(&directory.entries[i], 2);
        if (tag == TIFFTAG_STRIPOFFSETS) {
            entry = &directory.entries[i];
            if (!readNumbers(file, entry, strips))
                return false;
        }
        if (tag == TIFFTAG_STRIPBYTECOUNTS && !readNumbers(file, &directory.entries[i], sizes))
            return false;
    }
    if (strips.empty() || sizes.empty())
        return false;
    if (strips[0] >= kBigHeaderBytes)
        return true;
    std::vector<std::uint8_t> bytes(sizes[0]);
    const std::uint64_t moved = classicEnd(file);
    if (moved == 0 || !file.readAt(strips[0], bytes.data(), bytes.size()) || !file.writeAt(moved, bytes))
        return false;
    strips[0] = static_cast<std::uint32_t>(moved);
    putNumber(entry + 2, 2, TIFF_LONG);
    if (strips.size() == 1) {
        putNumber(entry + 8, 4, moved);
        return true;
    }
    std::vector<std::uint8_t> list;
    LittleEndianWriter writer { list };
    for (const std::uint32_t strip : strips)
        writer.u32(strip);
    const std::uint64_t listAt = classicEnd(file);
    putNumber(entry + 8, 4, listAt);
    return listAt != 0 && file.writeAt(listAt, list);
}

/// Appends the directory in the longer form; its link to the next one stays 0 until that has its place.
bool appendBig(OutputFile& file, const Directory& directory, std::uint64_t& at)
{
    const std::size_t count = directory.entries.size() / kClassic.entryBytes;
    std::vector<std::uint8_t> bytes(kBig.countBytes + count * kBig.entryBytes + kBig.offsetBytes);
    putNumber(bytes.data(), kBig.countBytes, count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t* from = &directory.entries[i * kClassic.entryBytes];
        std::uint8_t* to = &bytes[kBig.countBytes + i * kBig.entryBytes];
        std::copy_n(from, 4, to);
        const std::uint64_t values = numberAt(from + 4, 4);
        putNumber(to + 4, 8, values);
        const std::uint64_t size = bytesOfType(numberAt(from + 2, 2)) * values;
        // What was too long for the entry and is not any more has to be in it.
        if (size > kClassic.offsetBytes && size <= kBig.offsetBytes) {
            if (!file.readAt(numberAt(from + 8, 4), to + 12, static_cast<std::size_t>(size)))
                return false;
        } else {
            std::copy_n(from + 8, 4, to + 12);
        }
    }
    at = file.size() + file.size() % 2;
    return file.writeAt(at, bytes);
}

} // namespace

bool fillInPageCount(OutputFile& file, std::uint16_t total, bool isSinglePage)
{
    std::uint64_t version = 0;
    if (!readNumber(file, 2, 2, version))
        return false;
    const Form& form = version == kBigVersion ? kBig : kClassic;
    std::uint64_t at = 0;
    if (!readNumber(file, firstLink(form), form.offsetBytes, at))
        return false;
    while (at != 0) {
        Directory directory;
        if (!readDirectory(file, form, at, directory))
            return false;
        const std::size_t valueAt = 4 + form.offsetBytes;
        for (std::size_t i = 0; i < directory.entries.size(); i += form.entryBytes) {
            std::uint8_t* entry = &directory.entries[i];
            if (numberAt(entry, 2) == TIFFTAG_SUBFILETYPE && isSinglePage)
                entry[valueAt] = 0;
            if (numberAt(entry, 2) == TIFFTAG_PAGENUMBER)
                putNumber(entry + valueAt + 2, 2, total);
        }
        if (!file.writeAt(at + form.countBytes, directory.entries))
            return false;
        at = directory.next;
    }
    return true;
}

bool makeBigTiff(OutputFile& file)
{
    std::uint64_t from = 0;
    if (!readNumber(file, firstLink(kClassic), kClassic.offsetBytes, from))
        return false;
    std::vector<std::uint8_t> header;
    LittleEndianWriter writer { header };
    header.insert(header.end(), { 'I', 'I' });
    writer.u16(kBigVersion);
    writer.u16(kBig.offsetBytes);
    writer.u16(0);
    header.resize(kBigHeaderBytes);
    std::uint64_t link = 0; // where the offset of the next directory goes; 0: into the header
    while (from != 0) {
        Directory directory;
        if (!readDirectory(file, kClassic, from, directory) || (link == 0 && !moveFirstStrip(file, directory)))
            return false;
        std::uint64_t at = 0;
        if (!appendBig(file, directory, at))
            return false;
        std::array<std::uint8_t, 8> offset {};
        putNumber(offset.data(), offset.size(), at);
        if (link == 0)
            std::copy(offset.begin(), offset.end(), header.begin() + 8);
        else if (!file.writeAt(link, { offset.data(), offset.size() }))
            return false;
        link = file.size() - kBig.offsetBytes;
        from = directory.next;
    }
    return file.writeAt(0, header);
}

} // namespace quillrip
