#pragma once

#include "quillrip/emf/plus/field_reader.h"
#include "quillrip/emf/plus/path_object.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace quillrip::emf::plus {

/// How a clip or a part of a region meets what is there already ([MS-EMFPLUS] 2.1.1.5, CombineMode).
enum class CombineMode : std::uint8_t {
    Replace,
    Intersect,
    Union,
    Xor,
    Exclude, ///< the old without the new
    Complement, ///< the new without the old
};

/// A set of device pixels; null: all of them.
using PixelSet = std::shared_ptr<const ClipRegion>;

/// `universe` is what "all pixels" means where it has to be spelled out.
PixelSet combine(const PixelSet& old, const PixelSet& added, CombineMode mode, const PixelRect& universe);
/// The pixels whose centres lie in the rectangle.
PixelSet pixelsOf(const RectF& rect, const Matrix& toDevice, const PixelRect& universe);
PixelSet pixelsOf(const PathObject& path, const Matrix& toDevice, const PixelRect& universe);

/// A region in world units ([MS-EMFPLUS] 2.2.1.8): shapes and how they combine, in prefix order.
struct RegionObject {
    enum class Kind : std::uint8_t { Combination, Rectangle, Path, Empty, Infinite };

    struct Node {
        Kind kind = Kind::Empty;
        CombineMode mode = CombineMode::Intersect; ///< a combination's; its two operands follow, the left one first
        RectF rect;
        PathObject path;
    };

    std::vector<Node> nodes;

    PixelSet pixels(const Matrix& toDevice, const PixelRect& universe) const;
};

/// Nothing when the nodes are no tree, or too many.
std::optional<RegionObject> readRegion(ByteView object);

} // namespace quillrip::emf::plus
