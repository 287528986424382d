#include "quillrip/emf/plus/object_store.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace quillrip::emf::plus {

namespace {

constexpr std::uint16_t kContinues = 0x8000;

enum ObjectKind : std::uint8_t {
    kBrush = 1,
    kPen,
    kPath,
    kRegion,
    kImage,
    kFont,
    kStringFormat,
    kImageAttributes,
    kCustomLineCap,
};

std::uint8_t kindOf(std::uint16_t flags) { return static_cast<std::uint8_t>(flags >> 8 & 0x7F); }

const char* nameOf(std::uint8_t kind)
{
    constexpr std::array<const char*, 10> names { "object", "brush", "pen", "path", "region", "image", "font",
        "string format", "image attributes", "line cap" };
    return kind < names.size() ? names[kind] : names[0];
}

/// Stores what a reader gave. False when it gave nothing.
template <typename Slot, typename Object> bool put(Slot& slot, std::optional<Object> object)
{
    if (!object)
        return false;
    slot = std::make_shared<const Object>(std::move(*object));
    return true;
}

/// A piece's total size and data. Writers put the total behind the size of the data, the published text before it.
struct Piece {
    std::uint64_t total;
    ByteView data;
};

Piece pieceOf(const Record& record)
{
    FieldReader fields(record.body);
    const std::uint32_t first = fields.u32();
    const std::uint32_t second = fields.u32();
    constexpr std::size_t sizes = 8;
    constexpr std::size_t total = 4; // counts as data where it comes behind the size
    constexpr std::size_t padding = 4;
    const std::uint64_t room = record.body.size;
    const bool dataSizeComesFirst = first >= total && first + total <= room && room - first - total < padding;
    if (dataSizeComesFirst)
        return { second, record.body.sub(sizes, first - total) };
    return { first, record.body.sub(sizes, second) };
}

} // namespace

std::string ObjectStore::define(const Record& record)
{
    if (record.id() >= kSlots)
        return "has a number beyond 63";
    if (record.flags & kContinues || (m_pieces.isOpen && m_pieces.key == (record.flags & ~kContinues)))
        return addPiece(record);
    std::string problem = interrupt();
    std::string own = finish(record.flags, record.data);
    return own.empty() ? problem : own;
}

std::string ObjectStore::interrupt()
{
    if (!m_pieces.isOpen)
        return {};
    std::string problem = std::string(nameOf(kindOf(m_pieces.key))) + " in pieces never came to its end";
    m_pieces = {};
    return problem;
}

std::string ObjectStore::addPiece(const Record& record)
{
    const auto key = static_cast<std::uint16_t>(record.flags & ~kContinues);
    const bool isLast = !(record.flags & kContinues);
    std::string problem;
    if (m_pieces.isOpen && m_pieces.key != key)
        problem = interrupt();
    ByteView data;
    if (isLast) {
        // The last piece has no total in the published form; some writers repeat it.
        const Piece piece = pieceOf(record);
        const bool repeatsTotal
            = piece.total == m_pieces.total && piece.data.size >= m_pieces.total - m_pieces.bytes.size();
        data = repeatsTotal ? piece.data : record.data;
    } else {
        const Piece piece = pieceOf(record);
        if (!m_pieces.isOpen) {
            if (piece.total > kMostBytes)
                return "is larger than any drawing needs";
            m_pieces.isOpen = true;
            m_pieces.key = key;
            m_pieces.total = piece.total;
        }
        data = piece.data;
    }
    const std::uint64_t missing = m_pieces.total - m_pieces.bytes.size();
    data = data.sub(0, static_cast<std::size_t>(std::min<std::uint64_t>(missing, data.size)));
    m_pieces.bytes.insert(m_pieces.bytes.end(), data.begin(), data.end());
    if (m_pieces.bytes.size() < m_pieces.total && !isLast)
        return problem;
    const std::vector<std::uint8_t> bytes = std::move(m_pieces.bytes);
    m_pieces = {};
    std::string own = finish(key, bytes);
    return own.empty() ? problem : own;
}

std::string ObjectStore::finish(std::uint16_t flags, ByteView object)
{
    Slot& slot = m_objects[flags & 0xFF];
    slot = {};
    bool isRead = false;
    switch (kindOf(flags)) {
    case kBrush:
        isRead = put(slot, readBrush(object));
        break;
    case kPen:
        isRead = put(slot, readPen(object));
        break;
    case kPath:
        isRead = put(slot, readPath(object));
        break;
    case kRegion:
        isRead = put(slot, readRegion(object));
        break;
    case kImage:
        isRead = put(slot, readImage(object));
        break;
    case kFont:
        isRead = put(slot, readFont(object));
        break;
    case kStringFormat:
        isRead = put(slot, readStringFormat(object));
        break;
    case kImageAttributes:
        isRead = put(slot, readImageAttributes(object));
        break;
    case kCustomLineCap:
        isRead = put(slot, readCustomCap(object));
        break;
    default:
        return "is of an unknown kind";
    }
    return isRead ? std::string() : std::string(nameOf(kindOf(flags))) + " cannot be read";
}

} // namespace quillrip::emf::plus
