#pragma once

#include "quillrip/emf/plus/brush_object.h"
#include "quillrip/emf/plus/image_cache.h"
#include "quillrip/raster/compose/color_source.h"

#include <memory>

namespace quillrip::emf::plus {

// What brushes look like on the page, pixel by pixel. Matrices take world units to device pixels and can be inverted.

/// A hatch with its origin at a device pixel; each of its pixels takes `scaleX` by `scaleY` device pixels.
std::shared_ptr<const ColorSource> hatchSource(const HatchBrush& brush, Point origin, double scaleX, double scaleY);

/// Null where the gradient has no width.
std::shared_ptr<const ColorSource> linearGradientSource(const LinearGradientBrush& brush, const Matrix& worldToDevice);

/// Null where the boundary surrounds nothing.
std::shared_ptr<const ColorSource> pathGradientSource(const PathGradientBrush& brush, const Matrix& worldToDevice);

/// It holds the image, as far as it is not reduced. Throws std::bad_alloc where there is no room for it.
std::shared_ptr<const ColorSource> textureSource(
    OpenImage& image, WrapMode wrap, const Matrix& imageToDevice, bool isSmooth, WorkMeter& work);

/// The colours of another one as they look on white paper: a page cannot become transparent.
std::shared_ptr<const ColorSource> overWhiteSource(std::shared_ptr<const ColorSource> source);
Rgba overWhite(Rgba color);

} // namespace quillrip::emf::plus
