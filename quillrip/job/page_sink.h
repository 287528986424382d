#pragma once

#include "quillrip/base/page_bitmap.h"

#include <string>

namespace quillrip {

/// Where a conversion's finished pages go.
class PageSink {
public:
    virtual ~PageSink() = default;
    /// False when pages cannot be delivered any more; reason() then says why.
    [[nodiscard]] virtual bool addPage(PageBitmap&& page) = 0;
    /// A sentence without full stop.
    virtual std::string reason() const = 0;
};

} // namespace quillrip
