#include "quillrip/emf/plus/color_sources.h"

#include "quillrip/emf/plus/hatch_styles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace quillrip::emf::plus {

namespace {

class HatchSource final : public ColorSource {
public:
    HatchSource(const HatchBrush& brush, Point origin, double scaleX, double scaleY)
        : m_pattern(hatchPattern(brush.style))
        , m_foreground(brush.foreground)
        , m_background(brush.background)
        , m_origin(origin)
        , m_scaleX(scaleX)
        , m_scaleY(scaleY)
    {
    }

    void row(int y, int left, int right, Rgba* pixels) const override
    {
        const int line = cell(y, m_origin.y, m_scaleY);
        const auto bits = static_cast<std::uint8_t>(m_pattern >> (56 - 8 * line));
        for (int x = left; x < right; ++x)
            *pixels++ = bits >> (7 - cell(x, m_origin.x, m_scaleX)) & 1 ? m_foreground : m_background;
    }

private:
    static int cell(int pixel, double origin, double scale)
    {
        return static_cast<int>(static_cast<std::int64_t>(std::floor((pixel + 0.5 - origin) / scale)) & 7);
    }

    std::uint64_t m_pattern;
    Rgba m_foreground;
    Rgba m_background;
    Point m_origin;
    double m_scaleX;
    double m_scaleY;
};

class LinearGradientSource final : public ColorSource {
public:
    LinearGradientSource(const LinearGradientBrush& brush, const Matrix& deviceToBrush)
        : m_isMirrored(
            brush.wrap == WrapMode::FlipX || brush.wrap == WrapMode::FlipBoth || brush.wrap == WrapMode::Clamp)
        , m_perColumn(deviceToBrush.a / brush.rect.width)
        , m_perRow(deviceToBrush.c / brush.rect.width)
        , m_atOrigin((deviceToBrush.e - brush.rect.x) / brush.rect.width)
    {
        for (std::size_t i = 0; i < m_colors.size(); ++i)
            m_colors[i] = brush.blend.at((static_cast<double>(i) + 0.5) / static_cast<double>(m_colors.size()));
    }

    void row(int y, int left, int right, Rgba* pixels) const override
    {
        const double atRow = m_atOrigin + m_perRow * (y + 0.5);
        for (int x = left; x < right; ++x)
            *pixels++ = colorAt(atRow + m_perColumn * (x + 0.5));
    }

private:
    Rgba colorAt(double position) const
    {
        const double period = std::floor(position);
        double part = position - period;
        if (m_isMirrored && std::fmod(period, 2) != 0)
            part = 1 - part;
        const auto index = static_cast<std::size_t>(part * static_cast<double>(m_colors.size()));
        return m_colors[std::min(index, m_colors.size() - 1)];
    }

    bool m_isMirrored;
    double m_perColumn; ///< of the way along the gradient
    double m_perRow;
    double m_atOrigin;
    std::array<Rgba, 4096> m_colors {};
};

class OverWhiteSource final : public ColorSource {
public:
    explicit OverWhiteSource(std::shared_ptr<const ColorSource> source)
        : m_source(std::move(source))
    {
    }

    void row(int y, int left, int right, Rgba* pixels) const override
    {
        m_source->row(y, left, right, pixels);
        for (int x = left; x < right; ++x, ++pixels)
            *pixels = overWhite(*pixels);
    }

private:
    std::shared_ptr<const ColorSource> m_source;
};

} // namespace

std::shared_ptr<const ColorSource> hatchSource(const HatchBrush& brush, Point origin, double scaleX, double scaleY)
{
    return std::make_shared<const HatchSource>(brush, origin, std::max(1.0, scaleX), std::max(1.0, scaleY));
}

std::shared_ptr<const ColorSource> linearGradientSource(const LinearGradientBrush& brush, const Matrix& worldToDevice)
{
    const Matrix brushToDevice = brush.toWorld * worldToDevice;
    if (brush.rect.width == 0 || !brushToDevice.isInvertible())
        return nullptr;
    return std::make_shared<const LinearGradientSource>(brush, brushToDevice.inverted());
}

std::shared_ptr<const ColorSource> overWhiteSource(std::shared_ptr<const ColorSource> source)
{
    return std::make_shared<const OverWhiteSource>(std::move(source));
}

Rgba overWhite(Rgba color)
{
    const auto channel = [alpha = color.alpha](unsigned value) {
        return static_cast<std::uint8_t>((value * alpha + 255U * (255U - alpha) + 127) / 255);
    };
    return { channel(color.red), channel(color.green), channel(color.blue), 255 };
}

} // namespace quillrip::emf::plus
