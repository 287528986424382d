#include "quillrip/emf/plus/operands.h"

#include <cstdint>
#include <string>

namespace quillrip::emf::plus {

namespace {

template <typename Object>
std::shared_ptr<const Object> find(Machine& machine, std::uint32_t id, const char* kind, const char* name)
{
    auto object = machine.objects().find<Object>(id);
    if (!object)
        machine.warn(kind, std::string("a record uses a ") + name + " that is not there");
    return object;
}

} // namespace

std::optional<Paint> readPaint(Machine& machine, const Record& record, FieldReader& fields)
{
    const std::uint32_t number = fields.u32();
    if (fields.hasFailed())
        return std::nullopt;
    Paint paint;
    if (record.flags & kColorInPlaceOfBrush) {
        paint.color = rgbaOf(number);
        return paint;
    }
    paint.brush = find<BrushObject>(machine, number, "emfplus.no-brush", "brush");
    return paint.brush ? std::optional { paint } : std::nullopt;
}

std::shared_ptr<const PenObject> findPen(Machine& machine, std::uint32_t id)
{
    return find<PenObject>(machine, id, "emfplus.no-pen", "pen");
}

std::shared_ptr<const PathObject> findPath(Machine& machine, std::uint32_t id)
{
    return find<PathObject>(machine, id, "emfplus.no-path", "path");
}

std::shared_ptr<const RegionObject> findRegion(Machine& machine, std::uint32_t id)
{
    return find<RegionObject>(machine, id, "emfplus.no-region", "region");
}

std::shared_ptr<const ImageObject> findImage(Machine& machine, std::uint32_t id)
{
    return find<ImageObject>(machine, id, "emfplus.no-image", "picture");
}

std::shared_ptr<const FontObject> findFont(Machine& machine, std::uint32_t id)
{
    return find<FontObject>(machine, id, "emfplus.no-font", "font");
}

} // namespace quillrip::emf::plus
