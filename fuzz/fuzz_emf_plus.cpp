#include "fuzz/fuzz_page_device.h"
#include "fuzz/token_mutator.h"

#include "quillrip/emf/plus/interpreter.h"
#include "quillrip/fonts/glyph_painter.h"
#include "quillrip/fonts/select/windows_fonts.h"

#include <vector>

/// The input is what follows the header in a comment; page units are pixels of a small page.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quillrip;
    static const std::vector<std::uint8_t> header { 0x01, 0x40, 0, 0, 28, 0, 0, 0, 16, 0, 0, 0, 0x02, 0x10, 0xC0, 0xDB,
        0, 0, 0, 0, 96, 0, 0, 0, 96, 0, 0, 0, 0x30, 0x40, 2, 0, 16, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0x80, 0x3F };
    constexpr int pageSide = 64;
    constexpr Resolution resolution { 96, 96 };
    const Limits limits = fuzz::smallLimits();
    fuzz::NoDiagnostics diagnostics;
    PageBitmap page(fuzz::smallPages(size).format, pageSide, pageSide, resolution);
    Painter painter(page, limits.work);
    static WindowsFonts fonts;
    static GlyphPainter glyphs;
    const auto noMetafiles = [](ByteView, const Matrix&, const std::shared_ptr<const ClipRegion>&) {};
    emf::plus::Interpreter interpreter(
        { painter, page.format(), Matrix(), resolution, nullptr, fonts, glyphs, limits, diagnostics, noMetafiles });
    interpreter.comment(header, 0, true);
    interpreter.comment({ data, size }, 0, false);
    return 0;
}

QUILLRIP_FUZZ_COMMANDS(quillrip::fuzz::kEmfPlusRecords)
