#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/base/page_bitmap.h"
#include "quillrip/fonts/font.h"
#include "quillrip/pclxl/raster_pattern.h"
#include "quillrip/raster/painter.h"
#include "quillrip/raster/paths/path.h"
#include "quillrip/raster/paths/stroke_style.h"
#include "quillrip/raster/scan/clip_region.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace quillrip::pclxl {

/// What a brush or a pen paints with.
struct Ink {
    enum class Kind : std::uint8_t { None, Solid, Pattern };

    Kind kind = Kind::Solid;
    Rgb color;
    std::shared_ptr<const RasterPattern> pattern;
    Point patternOrigin; ///< user space
    std::optional<Point> patternSize; ///< user units, in place of the pattern's own
};

/// 7 and 8 are gray like 1; streams with vendor raster name them.
enum class ColorSpace : std::uint8_t {
    BiLevel = 0,
    Gray = 1,
    Rgb = 2,
    Crgb = 5,
    Srgb = 6,
    MonochromeGray = 7,
    VendorGray = 8
};

constexpr int componentsOf(ColorSpace space)
{
    return space == ColorSpace::Rgb || space == ColorSpace::Crgb || space == ColorSpace::Srgb ? 3 : 1;
}

enum class CharTransform : std::uint8_t { Scale, Shear, Angle };

struct CharacterState {
    Font font;
    double size = 0; ///< user units per em
    Point scale { 1, 1 };
    Point shear;
    double angle = 0; ///< degrees, counter-clockwise
    double bold = 0; ///< share of the em
    bool isVertical = false;
    bool substitutesVertically = false;
    /// As the operators were used: the one used last is applied last.
    std::array<CharTransform, 3> order { CharTransform::Scale, CharTransform::Shear, CharTransform::Angle };
};

/// A path that states share until one of them changes it.
class SharedPath {
public:
    const Path& operator*() const { return m_path ? *m_path : empty(); }
    const Path* operator->() const { return &**this; }
    Path& edit()
    {
        if (!m_path)
            m_path = std::make_shared<Path>();
        else if (m_path.use_count() > 1)
            m_path = std::make_shared<Path>(*m_path);
        return *m_path;
    }
    void clear()
    {
        if (m_path && m_path.use_count() == 1)
            m_path->clear();
        else
            m_path.reset();
    }

private:
    static const Path& empty()
    {
        static const Path s_empty;
        return s_empty;
    }

    std::shared_ptr<Path> m_path;
};

/// Everything that PushGS saves and PopGS restores, and nothing else. Copying it is the push; the defaults are those
/// of a new page.
struct GraphicsState {
    Matrix userToDevice;
    int quarterTurns = 0; ///< counter-clockwise turns of the user axes since the page's start
    std::optional<Point> cursor; ///< user space
    SharedPath path; ///< user space
    bool pathIsOpenAtCursor = false; ///< the next segment continues the last subpath

    std::shared_ptr<const ClipRegion> clip; ///< null: the whole page
    std::shared_ptr<const Path> clipOutline; ///< device pixels; null: the page's edge, or not kept
    FillRule clipRule = FillRule::NonZero;
    FillRule fillRule = FillRule::NonZero;

    ColorSpace colorSpace = ColorSpace::Gray;
    std::shared_ptr<const std::vector<Rgb>> palette;
    Ink brush;
    Ink pen;
    StrokeStyle stroke;
    std::uint8_t rop = 252;
    bool sourceTransparent = false;
    bool paintTransparent = false;

    CharacterState character;
};

} // namespace quillrip::pclxl
