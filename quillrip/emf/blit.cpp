#include "quillrip/emf/blit.h"

#include "quillrip/emf/machine.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace quillrip::emf {

namespace {

/// First and end of the whole source pixels that lie in both.
struct Span {
    int first;
    int end;
};

Span visible(double start, double length, int size)
{
    const double low = std::max(0.0, std::floor(std::min(start, start + length) + 1e-6));
    const double high = std::min(double(size), std::ceil(std::max(start, start + length) - 1e-6));
    return { static_cast<int>(low), static_cast<int>(std::max(low, high)) };
}

bool isBlackAndWhite(const PictureShape& shape, bool& isInkSet)
{
    constexpr Rgb kBlack { 0, 0, 0 };
    constexpr Rgb kWhite { 255, 255, 255 };
    isInkSet = shape.table[1] == kBlack;
    return (shape.table[0] == kWhite && shape.table[1] == kBlack)
        || (shape.table[0] == kBlack && shape.table[1] == kWhite);
}

} // namespace

Matrix Blit::pictureToDevice() const
{
    const Point across = (target.right - target.origin) * (1 / source.width);
    const Point along = (target.down - target.origin) * (1 / source.height);
    const Matrix fromSource { across.x, across.y, along.x, along.y, target.origin.x, target.origin.y };
    return Matrix::translation(-source.x, -source.y) * fromSource;
}

Parallelogram targetOf(const Matrix& toDevice, double pixel, const Extent& destination)
{
    Parallelogram target { toDevice.apply({ destination.x, destination.y }),
        toDevice.apply({ destination.x + destination.width, destination.y }),
        toDevice.apply({ destination.x, destination.y + destination.height }) };
    if (toDevice.b != 0 || toDevice.c != 0)
        return target;
    // A picture that runs backwards begins with the pixel that its corner names.
    const auto backwards = [&](double size, double scale) { return size < 0 ? pixel * (scale < 0 ? -1 : 1) : 0; };
    const Point shift { backwards(destination.width, toDevice.a), backwards(destination.height, toDevice.d) };
    for (Point* corner : { &target.origin, &target.right, &target.down })
        *corner = *corner + shift;
    const auto nearest = [](double value) { return std::floor(value + 0.5); };
    for (Point* corner : { &target.origin, &target.right, &target.down })
        *corner = { nearest(corner->x), nearest(corner->y) };
    // What is thinner than a pixel still shows.
    if (target.right.x == target.origin.x && destination.width != 0)
        target.right.x += destination.width * toDevice.a > 0 ? 1 : -1;
    if (target.down.y == target.origin.y && destination.height != 0)
        target.down.y += destination.height * toDevice.d > 0 ? 1 : -1;
    return target;
}

Parallelogram targetOf(const Canvas& canvas, const Extent& destination)
{
    return targetOf(canvas.logicalToDevice(), std::abs(canvas.toDevice().a), destination);
}

void fillTarget(Canvas& canvas, const Parallelogram& target, PaintState state)
{
    state.clip = canvas.clip();
    const Point corner = target.right + target.down - target.origin;
    const bool isAligned = target.origin.y == target.right.y && target.origin.x == target.down.x;
    if (isAligned)
        return canvas.painter().fillRect(nearestPixels(target.origin, corner), state);
    Path path;
    path.moveTo(target.origin);
    path.lineTo(target.right);
    path.lineTo(corner);
    path.lineTo(target.down);
    path.close();
    canvas.painter().fillPath(path, FillRule::NonZero, state);
}

void draw(Machine& machine, const Blit& blit, PaintState state)
{
    Canvas& canvas = machine.canvas();
    const PictureShape& shape = blit.picture.shape();
    if (blit.picture.isNull() || blit.source.width == 0 || blit.source.height == 0)
        return;
    const Span columns = visible(blit.source.x, blit.source.width, shape.width);
    const Span rows = visible(blit.source.y, blit.source.height, shape.height);
    if (columns.first >= columns.end || rows.first >= rows.end)
        return;

    ImageGeometry geometry;
    bool isInkSet = false;
    // Black and white may stay bits where whole bytes can be handed on.
    const bool staysMono = shape.format == PictureShape::Format::Mono && isBlackAndWhite(shape, isInkSet)
        && columns.first % 8 == 0 && (isInkSet || columns.end == shape.width);
    geometry.format = staysMono                        ? ImageFormat::Mono
        : shape.format == PictureShape::Format::Rgba32 ? ImageFormat::Rgba32
                                                       : ImageFormat::Rgb24;
    geometry.width = columns.end - columns.first;
    geometry.height = rows.end - rows.first;
    geometry.imageToDevice = Matrix::translation(columns.first, rows.first) * blit.pictureToDevice();
    geometry.smooth = blit.isSmooth;
    geometry.dropsPixels = blit.dropsPixels && !staysMono;
    state.sourceTransparent = false;
    state.patternTransparent = false;
    state.clip = canvas.clip();
    const auto image = canvas.painter().beginImage(geometry, state);
    if (!image)
        return;
    std::vector<std::uint8_t> stored;
    std::vector<std::uint8_t> line;
    for (int y = rows.first; y < rows.end; ++y) {
        const std::uint8_t* const row = blit.picture.row(y, stored);
        if (staysMono) {
            line.assign(row + columns.first / 8, row + shape.rowBytes());
            if (!isInkSet) {
                for (std::uint8_t& byte : line)
                    byte = static_cast<std::uint8_t>(~byte);
            }
            image->row(line.data());
        } else if (shape.format == PictureShape::Format::Mono) {
            line.clear();
            for (int x = columns.first; x < columns.end; ++x) {
                const Rgb color = shape.color(row, x);
                line.insert(line.end(), { color.red, color.green, color.blue });
            }
            image->row(line.data());
        } else {
            const std::size_t bytes = shape.format == PictureShape::Format::Rgba32 ? 4 : 3;
            image->row(row + bytes * static_cast<std::size_t>(columns.first));
        }
    }
    image->finish();
    if (const std::string damage = blit.picture.damage(); !damage.empty())
        machine.warn("emf.bitmap", "a bitmap: " + damage);
}

} // namespace quillrip::emf
