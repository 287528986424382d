#include "quillrip/emf/plus/dual_choice.h"

#include "quillrip/emf/plus/command_table.h"
#include "quillrip/emf/plus/field_reader.h"
#include "quillrip/emf/plus/record_reader.h"
#include "quillrip/emf/record.h"

#include <cstdint>

namespace quillrip::emf::plus {

namespace {

bool isOldPicture(const Record& record)
{
    constexpr std::uint16_t imageKind = 5;
    constexpr std::size_t pieceTotal = 4;
    if (record.type != kObjectRecord || (record.flags >> 8U & 0x7F) != imageKind)
        return false;
    for (const ByteView object : { record.data, record.data.sub(pieceTotal) }) {
        FieldReader fields(object);
        constexpr std::uint32_t anyVersion = 0xDBC01;
        constexpr std::uint32_t metafile = 2;
        constexpr std::uint32_t lastOldKind = 2;
        if (fields.u32() >> 12U == anyVersion && fields.u32() == metafile)
            return fields.u32() <= lastOldKind;
    }
    return false;
}

} // namespace

bool isPlainHalfFuller(ByteView records)
{
    bool hasHeader = false;
    constexpr std::size_t commentHead = 16; // type, size, size of the data, identifier
    for (std::size_t at = 0; records.size - at >= commentHead;) {
        FieldReader head(records.sub(at, commentHead));
        const std::uint32_t type = head.u32();
        const std::uint32_t size = head.u32();
        const std::uint32_t dataSize = head.u32();
        if (size < 8 || size > records.size - at)
            return false;
        if (type == kCommentRecord && size >= commentHead && head.u32() == kEmfPlusIdentifier && dataSize >= 4) {
            const ByteView comment = records.sub(at + commentHead, size - commentHead).sub(0, dataSize - 4);
            RecordReader reader(comment);
            for (Record record; reader.next(record) == RecordReader::Step::Record;) {
                if (!hasHeader && (record.type != kHeaderRecord || !(record.flags & kDualFlag)))
                    return false;
                hasHeader = true;
                if (isOldPicture(record))
                    return true;
            }
        }
        at += size;
    }
    return false;
}

} // namespace quillrip::emf::plus
