#pragma once

#include "quillrip/base/page_bitmap.h"

#include <cstdint>
#include <string>

namespace quillrip {

/// Where a conversion's finished pages go.
class PageSink {
public:
    virtual ~PageSink() = default;
    /// False when pages cannot be delivered any more; reason() then says why.
    [[nodiscard]] virtual bool addPage(PageBitmap&& page) = 0;
    /// A page of so many bytes is about to be taken from memory, where no more than `mostBytes` may be in use for
    /// pages: a sink that still holds some waits until it has let go of enough.
    virtual void waitForRoom(std::uint64_t /*bytes*/, std::uint64_t /*mostBytes*/) { }
    /// A sentence without full stop.
    virtual std::string reason() const = 0;
};

} // namespace quillrip
