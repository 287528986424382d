#include "quillrip/fonts/select/symbol_set.h"
#include "quillrip/fonts/soft/soft_font.h"

#include <algorithm>
#include <vector>

namespace {

using namespace quillrip;

void draw(const SoftFont& font, std::uint32_t code)
{
    const GlyphId glyph = font.glyph(code);
    font.advance(glyph);
    Path path;
    font.outline(glyph, path);
    GlyphMask mask;
    font.rasterise(glyph, Matrix { 41.7, 0, 0, -41.7, 0, 0 }, GlyphMask::Depth::Bits, {}, mask);
    font.rasterise(glyph, Matrix { 20, 3, -3, -20, 0.25, 0.5 }, GlyphMask::Depth::Coverage, { 0.02 }, mask);
}

} // namespace

/// A header and characters, each after its length in two bytes. The first byte chooses the language.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 3)
        return 0;
    const bool isPclXl = data[0] & 1;
    std::size_t at = 1;
    const auto next = [&] {
        if (at + 2 > size)
            return ByteView();
        const std::size_t length = static_cast<std::size_t>(data[at] << 8 | data[at + 1]);
        at += 2;
        const ByteView block(data + at, std::min(length, size - at));
        at += block.size;
        return block;
    };
    const ByteView header = next();
    SymbolSet::parse(header, {});
    const auto font = isPclXl ? SoftFont::fromPclXlHeader(header, {}) : SoftFont::fromPclHeader(header, {});
    if (!font)
        return 0;
    for (int i = 0; i < 64 && at < size; ++i) {
        const auto code = static_cast<std::uint32_t>('A' + i / 2);
        const ByteView block = next();
        if (isPclXl)
            font->addPclXlCharacter(code, block, {});
        else
            font->addPclCharacter(code, block, {});
        draw(*font, code);
    }
    draw(*font->copy(), 'A');
    return 0;
}
