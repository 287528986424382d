#pragma once

#include "quillrip/emf/plus/image_cache.h"
#include "quillrip/emf/plus/interpreter.h"
#include "quillrip/emf/plus/object_store.h"
#include "quillrip/emf/plus/state.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace quillrip::emf::plus {

/// What a record paints with: a colour of its own, or a brush.
struct Paint {
    Rgba color;
    std::shared_ptr<const BrushObject> brush; ///< null: the colour
};

/// Draws in world units on the page, with paints, pens and clips of EMF+.
class Canvas {
public:
    using Warn = std::function<void(const char* kind, const std::string& message)>;

    Canvas(const Host& host, const StateStack& states, Warn warn);

    void setDevice(const LogicalDevice& device) { m_device = device; }
    const LogicalDevice& device() const { return m_device; }
    const Host& host() const { return m_host; }
    const GraphicsState& state() const { return m_states.current(); }
    bool hasMarked() const { return m_hasMarked; }

    Matrix worldToDevice() const { return state().worldToReference(m_device) * m_host.referenceToDevice; }
    PixelRect pageBounds() const { return m_host.painter.page().bounds(); }
    /// All that may be painted on: clips of the state, of the containers and of the metafile. Null: the whole page.
    PixelSet clip() const;

    /// What the painter paints with, or nothing when the paint leaves no marks.
    std::optional<PaintState> paintState(const Paint& paint);

    void fill(const Path& worldPath, FillRule rule, const Paint& paint);
    void fillRegion(const RegionObject& region, const Paint& paint);
    void stroke(const Path& worldPath, const std::shared_ptr<const PenObject>& pen);
    void clear(Rgba color);
    /// `source` in pixels of the image; it fills the parallelogram of the upper left, upper right and lower left
    /// corner.
    void image(const std::shared_ptr<const ImageObject>& image, const RectF& source, Point upperLeft, Point upperRight,
        Point lowerLeft);

private:
    std::shared_ptr<const ColorSource> colorsOf(const BrushObject& brush);
    std::shared_ptr<const ColorSource> textureOf(const TextureBrush& brush, const Matrix& worldToDevice);
    void bitmap(const std::shared_ptr<const ImageObject>& image, const RectF& source, const Matrix& imageToDevice);
    void warnOfDamage(const OpenImage& image);

    const Host& m_host;
    const StateStack& m_states;
    Warn m_warn;
    LogicalDevice m_device;
    ImageCache m_images;
    bool m_hasMarked = false;
    /// The gradient or texture of the last brush: it is mostly the next one's too.
    std::shared_ptr<const BrushObject> m_lastBrush;
    Matrix m_lastMatrix;
    Point m_lastOrigin;
    bool m_lastIsSmooth = false;
    std::shared_ptr<const ColorSource> m_lastColors;
};

} // namespace quillrip::emf::plus
