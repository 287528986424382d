#pragma once

#include "quillrip/emf/plus/brush_object.h"
#include "quillrip/emf/plus/font_object.h"
#include "quillrip/emf/plus/image_object.h"
#include "quillrip/emf/plus/path_object.h"
#include "quillrip/emf/plus/pen_object.h"
#include "quillrip/emf/plus/record_reader.h"
#include "quillrip/emf/plus/region_object.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace quillrip::emf::plus {

/// The objects of a metafile by their numbers, 0 to 63, all kinds together. Those that are too long for a record come
/// in pieces.
class ObjectStore {
public:
    static constexpr std::size_t kSlots = 64;
    static constexpr std::uint64_t kMostBytes = std::uint64_t { 256 } << 20; ///< of one object

    /// Takes an Object record. Anything amiss is told in one clause; the slot is empty then.
    std::string define(const Record& record);
    /// A record of any other kind came: an object that is still in pieces stays unfinished. Says so.
    std::string interrupt();

    /// Null when the slot is empty or holds another kind. What is given stays whole when the slot is filled anew.
    template <typename Object> std::shared_ptr<const Object> find(std::uint32_t id) const
    {
        const auto* object = id < kSlots ? std::get_if<std::shared_ptr<const Object>>(&m_objects[id]) : nullptr;
        return object ? *object : nullptr;
    }

private:
    using Slot = std::variant<std::monostate, std::shared_ptr<const BrushObject>, std::shared_ptr<const PenObject>,
        std::shared_ptr<const PathObject>, std::shared_ptr<const RegionObject>, std::shared_ptr<const ImageObject>,
        std::shared_ptr<const FontObject>, std::shared_ptr<const StringFormatObject>,
        std::shared_ptr<const ImageAttributesObject>, std::shared_ptr<const CustomCap>>;

    struct Pieces {
        bool isOpen = false;
        std::uint16_t key = 0; ///< kind and number
        std::uint64_t total = 0;
        std::vector<std::uint8_t> bytes;
    };

    std::string addPiece(const Record& record);
    std::string finish(std::uint16_t flags, ByteView object);

    std::array<Slot, kSlots> m_objects;
    Pieces m_pieces;
};

} // namespace quillrip::emf::plus
