#pragma once

#include "quillrip/base/heap_account.h"

namespace quillrip::test {

/// For its life, new gives out no more than so many bytes at once beyond what was in use before, and throws
/// std::bad_alloc above. Pages are not counted: their memory is mapped. For programs that link quillrip_counted_heap;
/// with a sanitizer it bounds nothing.
class SpareHeap {
public:
    explicit SpareHeap(std::uint64_t bytes)
        : m_bound({ HeapAccount::used() + bytes, 0, 0 })
    {
    }

private:
    HeapBound m_bound;
};

} // namespace quillrip::test
