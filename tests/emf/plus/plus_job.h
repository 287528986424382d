#pragma once

#include "quillrip/emf/plus/interpreter.h"
#include "quillrip/fonts/glyph_painter.h"
#include "quillrip/fonts/select/windows_fonts.h"
#include "tests/emf/plus/plus_records.h"
#include "tests/support/recording_sink.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace quillrip::emf::plus::test {

/// A page whose pixels are those of the recording device, and an interpreter that draws on it.
class Sheet {
public:
    explicit Sheet(
        int width = 40, int height = 40, PixelFormat format = PixelFormat::Rgb24, const WorkBudget& budget = {});
    Sheet(const Sheet&) = delete;
    Sheet& operator=(const Sheet&) = delete;

    Sheet& play(const Records& records, bool mayStart = true);

    Interpreter& interpreter() { return *m_interpreter; }
    const quillrip::test::RecordingSink& diagnostics() const { return m_diagnostics; }
    const PageBitmap& page() const { return m_page; }
    Rgb pixel(int x, int y) const { return m_page.pixel(x, y); }
    bool isWhite(int x, int y) const { return pixel(x, y) == Rgb { 255, 255, 255 }; }
    /// The pixels that are not white: left, top, right, bottom, half open; all 0 when there are none.
    PixelRect marked() const;
    std::size_t markedCount() const;

    struct Metafile {
        std::vector<std::uint8_t> bytes;
        Matrix unitSquareToDevice;
    };
    const std::vector<Metafile>& metafiles() const { return m_metafiles; }

private:
    PageBitmap m_page;
    Painter m_painter;
    WindowsFonts m_fonts;
    GlyphPainter m_glyphs;
    Limits m_limits;
    quillrip::test::RecordingSink m_diagnostics;
    std::vector<Metafile> m_metafiles;
    std::unique_ptr<Interpreter> m_interpreter;
};

} // namespace quillrip::emf::plus::test
