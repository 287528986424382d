#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/page_bitmap.h"
#include "quillrip/raster/compose/paint_state.h"
#include "quillrip/raster/page_device.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace quillrip {

struct SelectionContext;

namespace hpgl {

/// Where the plot lies on the page. Lengths in decipoints (1/720 inch), places in page space (the sheet in reading
/// order, y down).
struct PictureFrame {
    double left = 180; ///< upper left corner of the frame (the anchor)
    double top = 360;
    double width = 5760;
    double height = 7200;
    double plotWidth = 0; ///< size that the plot was made for; 0: the frame's own, so that nothing is scaled
    double plotHeight = 0;
    /// Quarter turns clockwise of the plot within the page: 1 when the plotter's x axis runs down it, so that a plot
    /// made with RO90 stands upright. Width and height above are those on the page; plot sizes are the plot's own.
    int quarterTurns = 0;
    bool cutsAtFrame = true; ///< nothing is drawn outside the frame
    double clipLeft = 180; ///< nothing is drawn beyond: logical page and printable area
    double clipTop = 0;
    double clipRight = 5940;
    double clipBottom = 7920;
};

/// The pattern stores that fills and screened vectors choose from.
enum class AreaPattern {
    CrossHatch, ///< by number, 1 to 6
    User, ///< by the ID of a user-defined pattern
};

/// What HP-GL/2 shares with whoever runs it: PCL 5 on a page of its own, or a plot file's page.
class Host {
public:
    virtual ~Host() = default;

    /// The page's canvas; begins the page when it has none yet. Called before the first mark of every run and never
    /// without a mark to make. Anything but Done ends the run with End::Failed.
    [[nodiscard]] virtual RunStatus beginMark(PageCanvas& canvas) = 0;
    /// The canvas as beginMark() would give it, its painter perhaps null; begins no page.
    virtual PageCanvas previewCanvas() const = 0;
    /// Asked at the start of a run and after Interpreter::frameChanged() and plotSizeChanged().
    virtual PictureFrame pictureFrame() const = 0;

    /// The active palette: pen n is entry n. At least two entries.
    virtual std::size_t paletteSize() const = 0;
    virtual Rgb paletteColor(std::size_t index) const = 0;
    /// IN: another palette of that size, all black, takes the active one's place. It can be changed.
    virtual void newPalette(std::size_t size) = 0;
    /// NP: entries beyond the old size are black until set. Ignored for palettes that cannot be changed.
    virtual void resizePalette(std::size_t size) = 0;
    /// PC. Ignored for palettes that cannot be changed.
    virtual void setPaletteColor(std::size_t index, Rgb color) = 0;

    /// The logical operation that MC and ESC*l#O share.
    virtual std::uint8_t rasterOperation() const = 0;
    virtual void setRasterOperation(std::uint8_t operation) = 0;
    /// The pixel placement that PP and ESC*l#R share: false grid intersection, true grid centred.
    virtual bool isGridCentred() const = 0;
    virtual void setGridCentred(bool isCentred) = 0;

    /// A tile in device pixels of the canvas, upright on the page; null when there is none of that kind and number.
    virtual std::shared_ptr<const PatternTile> areaPattern(AreaPattern kind, int id, const PageCanvas& canvas) = 0;

    /// What font selection looks at besides the attributes (resolution of the job, orientation, default set).
    virtual SelectionContext fontContext() const = 0;
};

} // namespace hpgl
} // namespace quillrip
