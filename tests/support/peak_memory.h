#pragma once

#include <cstddef>

namespace quillrip::test {

/// The most memory that operator new has given out at once since this object was made, beyond what was in use then.
/// Pages are not counted: their memory comes from the system.
class PeakMemory {
public:
    PeakMemory();
    std::size_t bytes() const;
    std::size_t megabytes() const { return bytes() >> 20; }

private:
    std::size_t m_before;
};

} // namespace quillrip::test
