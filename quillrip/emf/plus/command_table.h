#pragma once

#include <cstddef>
#include <cstdint>

namespace quillrip::emf::plus {

class FieldReader;
class Machine;
struct Record;

constexpr std::uint16_t kFirstRecord = 0x4001;
constexpr std::uint16_t kLastRecord = 0x403A;

enum RecordNumber : std::uint16_t {
    kHeaderRecord = 0x4001,
    kEndOfFileRecord = 0x4002,
    kObjectRecord = 0x4008,
};

/// Of the header record: the same drawing stands in plain records as well.
constexpr std::uint16_t kDualFlag = 1;

/// What a record of one number does ([MS-EMFPLUS] 2.1.1.1, RecordType).
struct Command {
    /// Reads its operands first and does nothing when that failed.
    using Handler = void (*)(Machine&, const Record&, FieldReader&);

    std::uint16_t number;
    const char* name; ///< as published, without its prefix
    Handler handler; ///< null: it changes nothing that is drawn
    const char* whyIgnored; ///< where there is no handler
};

/// Null for numbers that are not published.
const Command* findCommand(std::uint16_t number);

} // namespace quillrip::emf::plus
