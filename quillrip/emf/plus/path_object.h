#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/raster/painter.h"

#include <optional>

namespace quillrip::emf::plus {

/// A path in world units ([MS-EMFPLUS] 2.2.1.6).
struct PathObject {
    Path path;
    FillRule rule = FillRule::EvenOdd;
};

/// Nothing when the bytes hold no path: points that are not all there, or types that do not fit them.
std::optional<PathObject> readPath(ByteView object);

} // namespace quillrip::emf::plus
