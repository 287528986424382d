#pragma once

#include "quillrip/base/bytes.h"

#include <cstdint>

namespace quillrip::emf::plus {

/// One record of an EMF+ comment.
struct Record {
    std::uint16_t type = 0;
    std::uint16_t flags = 0;
    ByteView data; ///< behind the twelve bytes of its header, without the padding
    /// Data and padding, for objects in pieces, whose writers disagree on the order of the sizes.
    ByteView body; ///< from the DataSize field on
    std::uint64_t offset = 0; ///< of its first byte, counted from the comment's records

    std::uint8_t id() const { return static_cast<std::uint8_t>(flags & 0xFF); }
};

/// Cuts the bytes of a comment into records.
class RecordReader {
public:
    explicit RecordReader(ByteView records)
        : m_records(records)
    {
    }

    enum class Step : std::uint8_t {
        Record, ///< there is one
        End, ///< no bytes are left, or too few for a record's header
        Damaged, ///< the sizes cannot be right
    };
    Step next(Record& record);

private:
    ByteView m_records;
    std::size_t m_at = 0;
};

} // namespace quillrip::emf::plus
