#pragma once

#include "quillrip/raster/images/image_axis.h"
#include "quillrip/raster/images/image_lines.h"
#include "quillrip/raster/images/image_painter.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace quillrip {

/// An image whose rows run along the device's axes, reduced to the upright case: columns and lines rise.
struct AlignedGeometry {
    ImageFormat format = ImageFormat::Mono;
    int width = 0;
    int height = -1;
    bool smooth = false;
    bool smoothsBlocks = false;
    bool dropsPixels = false;
    ImageAxis columns;
    ImageAxis lines;
    bool mirrorsColumns = false; ///< rows are reversed before anything else
    bool mirrorsLines = false; ///< line n of the upright case is device line -1 - n
    bool isTurned = false; ///< source rows are device columns

    /// Null result: not aligned. `isVisible` says whether any pixel can be.
    static bool find(const ImageGeometry& image, const PixelRect& bounds, AlignedGeometry& aligned, bool& isVisible);
};

/// What all aligned images share: counting rows, mirroring, blank rows, and which device line is which.
class AlignedImage : public ImagePainter {
public:
    AlignedImage(const AlignedGeometry& geometry, std::unique_ptr<Compositor> compositor);

    void row(const std::uint8_t* pixels) final { rows(pixels, 1); }
    void rows(const std::uint8_t* pixels, int count) final;
    void blankRows(int count) final;
    void finish() final;

protected:
    /// `count` equal source rows from row `index` on.
    virtual void addRows(const std::uint8_t* pixels, std::int64_t index, std::int64_t count, bool isBlank) = 0;
    /// No more rows after the first `count`.
    virtual void end(std::int64_t count) = 0;

    const AlignedGeometry& geometry() const { return m_geometry; }
    Compositor& compositor() { return *m_compositor; }
    ImageLines& lines() { return *m_lines; }
    int deviceLine(std::int64_t line) const { return static_cast<int>(m_geometry.mirrorsLines ? -1 - line : line); }
    /// Of source pixels that are converted, or mixed for a line.
    void charge(std::uint64_t units) { m_compositor->work().charge(Work::Images, units); }
    bool isVisibleLine(std::int64_t line) const
    {
        return line >= m_geometry.lines.visibleBegin && line < m_geometry.lines.visibleEnd;
    }
    /// Paints white lines from `first` to before `end`, where they can be seen and the source is opaque.
    void whiteLines(std::int64_t first, std::int64_t end);

private:
    void feed(const std::uint8_t* pixels, std::int64_t count, bool isBlank);
    const std::uint8_t* reversed(const std::uint8_t* pixels);

    AlignedGeometry m_geometry;
    std::unique_ptr<Compositor> m_compositor;
    std::unique_ptr<ImageLines> m_lines;
    std::int64_t m_nextRow = 0;
    std::vector<std::uint8_t> m_reversed;
    std::vector<std::uint8_t> m_blank;
};

/// A bilevel source that stays bilevel: device pixels are whole blocks, or, where it shrinks, have ink where any of
/// their source pixels has.
std::unique_ptr<ImagePainter> makeBitImage(const AlignedGeometry& geometry, std::unique_ptr<Compositor> compositor);

/// A source in tones, or a bilevel one that becomes coverage: blocks, averages over the area, or linear between pixels.
std::unique_ptr<ImagePainter> makeToneImage(const AlignedGeometry& geometry, std::unique_ptr<Compositor> compositor);

/// An image at any angle: its rows are kept until all pixels that they show in are painted. Pixels
/// are painted when a batch of rows has come, of `mostBatchRows` at most.
std::unique_ptr<ImagePainter> makeAffineImage(
    const ImageGeometry& geometry, std::unique_ptr<Compositor> compositor, std::int64_t mostBatchRows = INT32_MAX);

} // namespace quillrip
