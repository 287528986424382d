#include "quillrip/emf/plus/image_object.h"

#include "quillrip/emf/plus/field_reader.h"
#include "quillrip/emf/plus/image_files.h"
#include "quillrip/emf/plus/pixel_formats.h"

namespace quillrip::emf::plus {

namespace {

enum ImageType : std::uint32_t { kBitmap = 1, kMetafile = 2 };
constexpr std::uint32_t kFirstEnhanced = 3; ///< of the metafile types; those before are of the 16-bit kind

std::optional<ImageObject> readBitmap(FieldReader& fields)
{
    constexpr std::uint32_t compressed = 1;
    ImageObject image;
    image.width = fields.i32();
    image.height = fields.i32();
    image.stride = fields.i32();
    image.format = fields.u32();
    image.kind = fields.u32() == compressed ? ImageObject::Kind::File : ImageObject::Kind::Pixels;
    const ByteView data = fields.rest();
    if (fields.hasFailed() || data.empty())
        return std::nullopt;
    image.bytes.assign(data.begin(), data.end());
    return image;
}

std::optional<ImageObject> readMetafile(FieldReader& fields)
{
    ImageObject image;
    image.kind = fields.u32() < kFirstEnhanced ? ImageObject::Kind::OldMetafile : ImageObject::Kind::Metafile;
    const std::uint32_t size = fields.u32();
    if (fields.hasFailed())
        return std::nullopt;
    const ByteView data = fields.rest().sub(0, size);
    image.bytes.assign(data.begin(), data.end());
    return image;
}

} // namespace

std::optional<ImageObject> readImage(ByteView object)
{
    FieldReader fields(object);
    fields.u32(); // version
    switch (fields.u32()) {
    case kBitmap:
        return readBitmap(fields);
    case kMetafile:
        return readMetafile(fields);
    default:
        return std::nullopt;
    }
}

std::unique_ptr<ImageRows> openImage(const ImageObject& image, WorkMeter& work, std::string& problem)
{
    switch (image.kind) {
    case ImageObject::Kind::Pixels:
        return openPixels(image, work, problem);
    case ImageObject::Kind::File:
        return openImageFile(image.bytes, work, problem);
    case ImageObject::Kind::Metafile:
    case ImageObject::Kind::OldMetafile:
        break;
    }
    problem = "a metafile has no pixels";
    return nullptr;
}

std::optional<ImageAttributesObject> readImageAttributes(ByteView object)
{
    FieldReader fields(object);
    fields.u32(); // version
    fields.u32(); // reserved
    ImageAttributesObject attributes;
    attributes.wrap = fields.i32();
    attributes.clampColor = fields.color();
    return fields.hasFailed() ? std::nullopt : std::optional { attributes };
}

} // namespace quillrip::emf::plus
