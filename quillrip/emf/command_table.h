#pragma once

#include <cstdint>

namespace quillrip::emf {

class Machine;
class Record;

/// What a record of one number does.
struct Command {
    using Handler = void (*)(Machine&, const Record&);

    std::uint32_t number;
    const char* name; ///< as published, without its prefix
    std::uint32_t smallestSize; ///< bytes of the record, below which it is passed over
    bool draws; ///< it marks the page: left out while EMF+ draws the same
    Handler handler; ///< null: it changes nothing that is drawn
    const char* whyIgnored; ///< where there is no handler
};

/// Null for numbers that are not published.
const Command* findCommand(std::uint32_t number);

constexpr std::uint32_t kFirstRecord = 0x01;
constexpr std::uint32_t kLastRecord = 0x7A;

} // namespace quillrip::emf
