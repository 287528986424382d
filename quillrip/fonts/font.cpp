#include "quillrip/fonts/font.h"

#include <cstdint>

namespace quillrip {

Font::Lookup Font::find(std::uint32_t code) const
{
    Lookup result;
    if (!face)
        return result;
    if (!symbolSet) {
        result.isPrintable = isPrintableCode(face->traits().codeRange, code);
        result.faceCode = code;
    } else {
        result.isPrintable = symbolSet->isPrintable(code);
        const bool isListed = face->traits().domain == CodeDomain::MasterSymbolList;
        const std::uint32_t none = isListed ? kNoMasterSymbol : 0;
        result.faceCode = isListed ? symbolSet->masterSymbol(code) : symbolSet->unicode(code);
        if (result.faceCode == none)
            return result;
    }
    if (result.isPrintable)
        result.glyph = face->glyph(result.faceCode);
    return result;
}

double Font::advanceInches(GlyphId glyph) const
{
    if (!face)
        return 0;
    const FontTraits& traits = face->traits();
    if (!traits.isProportional && pitch > 0)
        return bitmapScale / pitch;
    return (glyph == kNoGlyph ? traits.spaceAdvance : face->advance(glyph)) * unitInches();
}

double Font::defaultHmiInches() const
{
    if (!face)
        return 0;
    if (!face->traits().isProportional && pitch > 0)
        return bitmapScale / pitch;
    return face->traits().spaceAdvance * unitInches();
}

} // namespace quillrip
