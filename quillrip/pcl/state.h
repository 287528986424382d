#pragma once

#include "quillrip/fonts/font_library.h"
#include "quillrip/pcl/environment.h"
#include "quillrip/pcl/logical_page.h"
#include "quillrip/pcl/macro_store.h"
#include "quillrip/pcl/palette.h"
#include "quillrip/pcl/pattern_store.h"
#include "quillrip/raster/compose/raster_operation.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace quillrip::pcl {

/// Distances from the logical page's upper left corner, in the axes of the present print direction.
struct TextArea {
    InternalUnits left = 0;
    InternalUnits top = 0;
    InternalUnits right = 0;
    InternalUnits bottom = 0;
};

/// The primary or the secondary font: what was asked for, and what came of it.
struct FontSlot {
    FontRequest request;
    std::optional<ResourceKey> selectedById;
    Font font;
    bool isStale = true; ///< selection is to be run before the font is used
};

enum class Underline { Off, Fixed, Floating };

/// What ESC*t, ESC*r and ESC*b set before a raster starts and what stays after it.
struct RasterSettings {
    double resolution = 75; ///< dots per inch
    bool isResolutionSet = false; ///< by the job
    int presentation = 3;
    std::optional<int> width; ///< source pixels
    std::optional<int> height; ///< source rows
    InternalUnits destinationWidth = 0; ///< 0: unset
    InternalUnits destinationHeight = 0;
    int compression = 0;
    InternalUnits leftMargin = 0;
    double unitResolution = 0; ///< ESC*t#R behind the component data: what widths and rows count in; 0: unsaid
    std::vector<std::uint8_t> componentData; ///< ESC*g#W: overrides resolution and colour planes; empty: none

    void setComponents(ByteView data)
    {
        componentData.assign(data.begin(), data.end());
        unitResolution = 0;
    }
};

/// The HP-GL/2 picture frame, in the orientation's own axes.
struct FrameSettings {
    InternalUnits width = 0; ///< 0: default
    InternalUnits height = 0;
    std::optional<Position> anchor;
    double plotWidth = 0; ///< inches; 0: default
    double plotHeight = 0;
};

/// The modified print environment: everything that a macro call saves and restores, and nothing else. Copying it is
/// the save. The cursor's stack, soft fonts, macros, patterns and symbol sets are not part of it.
struct State {
    LogicalPage page;
    bool wantsCustomSheet = false; ///< page size 101 was selected and nothing said its size: the page length may yet
    InternalUnits customLength = 0; ///< what the page length said then; 0: nothing
    InternalUnits registrationX = 0;
    InternalUnits registrationY = 0;
    int direction = 0; ///< print direction in quarter turns counter-clockwise
    TextArea text;
    bool isTopMarginSet = false; ///< by the job, since the page was laid out
    bool skipsPerforation = true;
    InternalUnits lineSpacing = 1200; ///< VMI
    InternalUnits columnWidth = 720; ///< HMI
    int unitsPerInch = 300; ///< PCL units
    bool isUnitSet = false; ///< by the job
    int lineTermination = 0;
    bool wrapsLines = false;
    bool isMonochrome = false; ///< ESC&b1M
    int duplex = 0; ///< as in ESC&l#S

    std::array<FontSlot, 2> fonts; ///< primary, secondary
    std::size_t activeFont = 0;
    std::shared_ptr<const Typeface> hmiFace; ///< the face that the column width was last set for
    double hmiHeight = 0;
    double hmiPitch = 0;
    double hmiScale = 1;
    Underline underline = Underline::Off;
    int textParsing = 0;
    bool isVerticalText = false;

    ResourceKey fontKey;
    std::uint32_t characterCode = 0;
    int symbolSetCode = 0;
    ResourceKey macroKey;
    int patternId = 0;

    PatternChoice pattern;
    bool sourceTransparent = true;
    bool patternTransparent = true;
    std::uint8_t rasterOperation = rop::kTextureOrSource;
    bool isGridCentred = false;
    Position patternReference; ///< direction 0
    bool patternFollowsDirection = true;
    InternalUnits rectangleWidth = 0;
    InternalUnits rectangleHeight = 0;

    RasterSettings raster;
    PaletteStore palettes;
    int paletteControlId = 0;
    Components colorComponents { 0, 0, 0 };
    Rgb foreground { 0, 0, 0 };

    FrameSettings frame;
};

/// Resolutions that only the earliest colour ink-jets have, of 180 dots to the inch.
inline bool isOfEarliestInkjets(double resolution) { return resolution == 90 || resolution == 180; }
/// What the job has said of its resolution, dots per inch; nothing when it has said nothing.
std::optional<double> jobResolution(const State& state);
/// User defaults: what a reset leaves.
State defaultState(const Environment& environment);
/// The default text area of a page in direction 0: half an inch free above and below where there is text at all.
TextArea defaultTextArea(const LogicalPage& page);
/// What ESC&l#E leaves for text: down to half an inch above the end of the page, where there is that much.
InternalUnits defaultTextBottom(InternalUnits top, InternalUnits pageLength);
InternalUnits defaultLineSpacing(const Environment& environment, const LogicalPage& page);

} // namespace quillrip::pcl
