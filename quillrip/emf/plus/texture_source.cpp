#include "quillrip/emf/plus/color_sources.h"
#include "quillrip/emf/plus/texture_reduction.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>

namespace quillrip::emf::plus {

namespace {

/// An image that goes on over the plane as its wrap mode says.
class TextureSource final : public ColorSource {
public:
    TextureSource(std::shared_ptr<const Pixels> pixels, WrapMode wrap, const Matrix& imageToDevice, bool isSmooth)
        : m_pixels(std::move(pixels))
        , m_wrap(wrap)
        , m_toImage(imageToDevice.inverted())
        , m_isSmooth(isSmooth)
    {
    }

    void row(int y, int left, int right, Rgba* pixels) const override
    {
        for (int x = left; x < right; ++x) {
            const Point at = m_toImage.apply({ x + 0.5, y + 0.5 });
            *pixels++ = m_isSmooth ? smoothAt(at) : nearestAt(at);
        }
    }

private:
    /// The image's column or row for one of the plane; -1 where there is none.
    static int folded(double position, int size, bool isMirrored, bool isClamped)
    {
        const double whole = std::floor(position);
        if (isClamped)
            return whole >= 0 && whole < size ? static_cast<int>(whole) : -1;
        const double period = std::floor(whole / size);
        const int part = std::clamp(static_cast<int>(whole - period * size), 0, size - 1);
        return isMirrored && std::fmod(period, 2) != 0 ? size - 1 - part : part;
    }

    Rgba at(double x, double y) const
    {
        const bool isClamped = m_wrap == WrapMode::Clamp;
        const bool mirrorsX = m_wrap == WrapMode::FlipX || m_wrap == WrapMode::FlipBoth;
        const bool mirrorsY = m_wrap == WrapMode::FlipY || m_wrap == WrapMode::FlipBoth;
        const int column = folded(x, m_pixels->width, mirrorsX, isClamped);
        const int line = folded(y, m_pixels->height, mirrorsY, isClamped);
        if (column < 0 || line < 0)
            return kTransparent;
        const std::uint8_t* pixel = m_pixels->row(line) + static_cast<std::size_t>(column) * 4;
        return { pixel[0], pixel[1], pixel[2], pixel[3] };
    }

    // Positions are sums of rounded numbers; what falls on an edge must not depend on the last bit.
    static constexpr double kBias = 1e-6;
    Rgba nearestAt(Point p) const { return at(p.x + kBias, p.y + kBias); }

    Rgba smoothAt(Point p) const
    {
        const double left = std::floor(p.x - 0.5);
        const double top = std::floor(p.y - 0.5);
        const double partX = p.x - 0.5 - left;
        const double partY = p.y - 0.5 - top;
        struct Weighted {
            Rgba color;
            double weight;
        };
        const std::array<Weighted, 4> corners { Weighted { at(left, top), (1 - partX) * (1 - partY) },
            Weighted { at(left + 1, top), partX * (1 - partY) }, Weighted { at(left, top + 1), (1 - partX) * partY },
            Weighted { at(left + 1, top + 1), partX * partY } };
        double red = 0;
        double green = 0;
        double blue = 0;
        double alpha = 0;
        for (const Weighted& corner : corners) {
            const double shown = corner.weight * corner.color.alpha;
            red += corner.color.red * shown;
            green += corner.color.green * shown;
            blue += corner.color.blue * shown;
            alpha += shown;
        }
        if (!(alpha > 0))
            return kTransparent;
        const auto channel = [](double value) { return static_cast<std::uint8_t>(std::min(255.0, value + 0.5)); };
        return { channel(red / alpha), channel(green / alpha), channel(blue / alpha), channel(alpha) };
    }

    std::shared_ptr<const Pixels> m_pixels;
    WrapMode m_wrap;
    Matrix m_toImage;
    bool m_isSmooth;
};

} // namespace

std::shared_ptr<const ColorSource> textureSource(
    OpenImage& image, WrapMode wrap, const Matrix& imageToDevice, bool isSmooth, WorkMeter& work)
{
    if (!imageToDevice.isInvertible())
        return nullptr;
    Matrix toDevice = imageToDevice;
    int width = image.width();
    int height = image.height();
    int halvings = 0;
    // A texture that shrinks is made smaller first, so that no pixel of it is lost.
    for (; isSmooth && std::abs(toDevice.determinant()) < 0.25 && width > 1 && height > 1; ++halvings) {
        const int halfWidth = width / 2;
        const int halfHeight = height / 2;
        const Matrix toWhole
            = Matrix::scaling(static_cast<double>(width) / halfWidth, static_cast<double>(height) / halfHeight);
        toDevice = toWhole * toDevice;
        width = halfWidth;
        height = halfHeight;
    }
    return std::make_shared<const TextureSource>(reducedPixels(image, halvings, work), wrap, toDevice, isSmooth);
}

} // namespace quillrip::emf::plus
