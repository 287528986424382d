#pragma once

#include "quillrip/base/work_meter.h"
#include "quillrip/hpgl/surface.h"
#include "quillrip/pcl/logical_page.h"
#include "quillrip/pcl/raster_layout.h"
#include "quillrip/raster/painter.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quillrip::pcl {

/// One raster from its start to its end: takes transfers, keeps seed rows, hands rows of pixels to the painter.
class RasterSession {
public:
    struct Setup {
        RasterLayout layout;
        int direction = 0; ///< axes that the rows run along, as LogicalPage counts them
        Position origin; ///< of the first pixel, in those axes
        double pixelWidth = 24; ///< internal units
        double pixelHeight = 24;
        std::optional<int> height; ///< rows; what comes after is clipped
        /// Width and height were declared: the whole area counts as zero pixels at first.
        bool hasDeclaredArea = false;
        InternalUnits pageEnd = 0; ///< rows that start below are not painted
        Matrix unitsToDevice; ///< internal units in those axes to device pixels
        PaintState paint;
        bool needsPixels = true; ///< false: nothing is painted, rows are only counted
        WorkMeter* work = nullptr; ///< charged for each row, also where no page is; null: nobody counts
    };

    /// `painter` gives the page's painter, beginning the page when needed; null when that fails.
    RasterSession(Setup setup, std::function<Painter*()> painter);
    /// What finish() has not painted stays unpainted.
    ~RasterSession();

    enum class Outcome {
        Fine,
        UnknownMethod, ///< the data were skipped
        BadBlock, ///< a block of rows was cut or held an unknown record
    };
    /// ESC*b#V: one plane of a row.
    Outcome transferPlane(ByteView data, int method);
    /// ESC*b#W: the last or only plane of a row, or a block of rows.
    Outcome transferRow(ByteView data, int method);
    /// ESC*b#Y. The seed rows become zero, even when no row is skipped.
    void skipRows(int count);
    /// Of all planes, as they are after the last row; empty while they are as at a raster's start.
    RasterLayout::Planes seeds() const { return m_seedsAreFresh ? RasterLayout::Planes {} : m_planes; }
    /// Goes on with another raster's seed rows, where they have the same planes. Before the first row.
    void takeSeeds(RasterLayout::Planes seeds);
    /// Lets go of the painter. Returns where the cursor then is, in the raster's axes.
    Position interrupt();
    /// Pads a declared area and lets go of the painter. Returns where the cursor then is, in the raster's axes.
    Position finish();

    int direction() const { return m_setup.direction; }
    int width() const { return m_setup.layout.width(); }
    Position cursor() const;
    /// Rows were transferred.
    bool hasRows() const { return m_hasRows; }
    /// Planes or rows were transferred.
    bool hasBegun() const { return m_hasBegun; }
    /// Transfers were made that were not empty.
    bool hasData() const { return m_hasData; }
    /// Where the rows lie, in the raster's axes and decipoints: up to the cursor and not beyond the declared height.
    Rect area() const;
    /// Other planes; only before there are data.
    void replaceLayout(RasterLayout layout);

private:
    void makePlanes();
    Outcome decodePlane(ByteView data, int method);
    bool hasWorkForRow();
    void emitSet();
    void emitRow(const std::uint8_t* pixels, int count);
    const std::uint8_t* composed(int subRow);
    void emitZeroRows(int count);
    void clearSeeds();
    bool zeroRowsLeaveMarks() const;
    int rowsUntilPageEnd() const;
    void startImage();
    void stopImage();

    Setup m_setup;
    std::function<Painter*()> m_painter;
    RasterLayout::Planes m_planes;
    std::vector<std::uint8_t> m_pixels;
    std::size_t m_nextTransfer = 0;
    bool m_seedsAreFresh = true;
    bool m_hasRows = false;
    bool m_hasBegun = false;
    bool m_hasData = false;
    std::int64_t m_row = 0; ///< rows done, painted or not
    std::unique_ptr<ImagePainter> m_image;
    bool m_imageStarted = false;
};

} // namespace quillrip::pcl
