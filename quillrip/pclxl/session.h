#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/pclxl/media.h"
#include "quillrip/pclxl/tags.h"

namespace quillrip::pclxl {

/// What BeginSession sets, and what ends with it.
struct Session {
    bool isOpen = false;
    Point unitsPerInch { 300, 300 };
    // A page that leaves them out has those of the page before it.
    Medium medium;
    int orientation = 0; ///< as in SheetRequest
};

/// Where embedded data come from.
struct DataSource {
    bool isOpen = false;
    ByteOrder order = ByteOrder::LittleEndian; ///< of the data; the stream's own until a source is opened
};

} // namespace quillrip::pclxl
