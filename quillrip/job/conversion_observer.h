#pragma once

#include "quillrip/base/page_bitmap.h"

#include <cstdint>
#include <string>

namespace quillrip {

/// Hears how a conversion goes on, in this order, on the thread that asked for it. Whoever does not care leaves out
/// what it does not care for.
class ConversionObserver {
public:
    virtual ~ConversionObserver() = default;

    /// The input is open and about to be read; what the process was to give up it has given up. The descriptor stays
    /// the conversion's.
    virtual void readingBegins(int /*input*/) { }
    /// A stretch of one language was found, by its published name, such as "PCL XL".
    virtual void partFound(const std::string& /*language*/) { }
    /// A page is whole, and on its way into its file: its size in device pixels.
    virtual void pageAdded(int /*width*/, int /*height*/, Resolution /*resolution*/) { }
    /// So many bytes of the input were taken.
    virtual void readingEnded(std::uint64_t /*bytes*/) { }
    /// All is drawn, and the files are about to appear.
    virtual void publishing() { }
};

} // namespace quillrip
