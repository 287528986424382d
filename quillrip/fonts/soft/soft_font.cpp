#include "quillrip/fonts/soft/soft_font.h"

#include "quillrip/fonts/soft/bitmap_soft_font.h"
#include "quillrip/fonts/soft/intellifont_soft_font.h"
#include "quillrip/fonts/soft/truetype_soft_font.h"

#include <optional>

namespace quillrip {

namespace {

std::shared_ptr<SoftFont> make(std::optional<SoftFontHeader> header, const Reporter& reporter)
{
    if (!header)
        return nullptr;
    switch (header->technology) {
    case SoftFontTechnology::Bitmap:
        return std::make_shared<BitmapSoftFont>(std::move(*header));
    case SoftFontTechnology::TrueType:
        return TrueTypeSoftFont::create(std::move(*header), reporter);
    case SoftFontTechnology::Intellifont:
        return std::make_shared<IntellifontSoftFont>(std::move(*header));
    }
    return nullptr;
}

} // namespace

std::shared_ptr<SoftFont> SoftFont::fromPclHeader(ByteView header, const Reporter& reporter)
{
    return make(readPclFontHeader(header, reporter), reporter);
}

std::shared_ptr<SoftFont> SoftFont::fromPclXlHeader(ByteView header, const Reporter& reporter)
{
    return make(readPclXlFontHeader(header, reporter), reporter);
}

} // namespace quillrip
