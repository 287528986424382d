#pragma once

#include "quillrip/fonts/font_library.h"
#include "quillrip/hpgl/host.h"
#include "quillrip/hpgl/interpreter.h"
#include "tests/support/memory_page_device.h"
#include "tests/support/recording_sink.h"

#include <string>
#include <vector>

namespace quillrip::test {

/// A page of one inch by one inch, all picture frame, at ten plotter units the pixel: 1016 units are 102 pixels.
class PlotSheet : public hpgl::Host {
public:
    explicit PlotSheet(PixelFormat format = PixelFormat::Bilevel);

    /// Runs HP-GL/2 and returns how it ended.
    hpgl::Interpreter::End run(const std::string& commands);

    /// Whether the pixel at a place in plotter units (frame's lower left corner 0,0) has ink.
    bool hasInk(double x, double y);
    /// Ink there or a pixel beside it: where a line lies on the edge between pixels.
    bool hasLine(double x, double y);
    Rgb color(double x, double y);
    /// Pixels with ink in the whole page, or in a rectangle of plotter units.
    int inkCount();
    int inkCount(double left, double bottom, double right, double top);
    bool isPageBegun() const { return m_painter != nullptr; }

    hpgl::Interpreter& interpreter() { return m_interpreter; }
    const RecordingSink& diagnostics() const { return m_diagnostics; }

    hpgl::PictureFrame frame;
    std::vector<Rgb> palette { { 255, 255, 255 }, { 0, 0, 0 } };
    std::uint8_t operation = 252;
    bool gridCentred = false;
    std::shared_ptr<const PatternTile> userPattern;

    RunStatus beginMark(PageCanvas& canvas) override;
    PageCanvas previewCanvas() const override;
    hpgl::PictureFrame pictureFrame() const override { return frame; }
    std::size_t paletteSize() const override { return palette.size(); }
    Rgb paletteColor(std::size_t index) const override { return palette.at(index); }
    void newPalette(std::size_t size) override { palette.assign(size, Rgb {}); }
    void resizePalette(std::size_t size) override { palette.resize(size); }
    void setPaletteColor(std::size_t index, Rgb c) override { palette.at(index) = c; }
    std::uint8_t rasterOperation() const override { return operation; }
    void setRasterOperation(std::uint8_t code) override { operation = code; }
    bool isGridCentred() const override { return gridCentred; }
    void setGridCentred(bool isCentred) override { gridCentred = isCentred; }
    std::shared_ptr<const PatternTile> areaPattern(hpgl::AreaPattern kind, int id, const PageCanvas&) override;
    SelectionContext fontContext() const override { return {}; }

private:
    PixelFormat m_format;
    PageBitmap m_page;
    std::unique_ptr<Painter> m_painter;
    RecordingSink m_diagnostics;
    FontLibrary m_fonts;
    hpgl::Interpreter m_interpreter;
};

} // namespace quillrip::test
