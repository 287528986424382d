#include "quillrip/emf/picture.h"

#include <algorithm>

namespace quillrip::emf {

namespace {

/// In place: rows grow or shrink pixel by pixel.
void toRgb(const PictureShape& stored, std::uint8_t* line)
{
    const auto put = [&](int x) {
        const Rgb color = stored.color(line, x);
        std::uint8_t* const to = line + std::size_t { 3 } * static_cast<std::size_t>(x);
        to[0] = color.red;
        to[1] = color.green;
        to[2] = color.blue;
    };
    if (stored.format == PictureShape::Format::Mono) {
        for (int x = stored.width; x-- > 0;)
            put(x);
    } else {
        for (int x = 0; x < stored.width; ++x)
            put(x);
    }
}

void unmultiplyRow(int width, std::uint8_t* pixel)
{
    for (int x = 0; x < width; ++x, pixel += 4) {
        const unsigned alpha = pixel[3];
        if (alpha == 0 || alpha == 255)
            continue;
        for (int channel = 0; channel < 3; ++channel)
            pixel[channel] = static_cast<std::uint8_t>(std::min(255u, (pixel[channel] * 255u + alpha / 2) / alpha));
    }
}

void hideInRow(const PictureShape& stored, Rgb hidden, std::uint8_t* line)
{
    for (int x = stored.width; x-- > 0;) {
        const Rgb color = stored.color(line, x);
        std::uint8_t* const to = line + std::size_t { 4 } * static_cast<std::size_t>(x);
        to[0] = color.red;
        to[1] = color.green;
        to[2] = color.blue;
        to[3] = color == hidden ? 0 : 255;
    }
}

} // namespace

Picture::Picture(ByteView header, ByteView bits, const DibContext& context, WorkMeter& work, std::string& problem)
    : m_rows(openDib(header, bits, context, work, problem))
{
    if (m_rows)
        m_shape = m_stored = m_rows->shape();
}

std::string Picture::damage() const { return m_rows && m_rows->isDamaged() ? kDamagedImageFile : ""; }

void Picture::leaveOutAlpha()
{
    if (m_stored.format == PictureShape::Format::Rgb24)
        return;
    m_view = View::WithoutAlpha;
    m_shape.format = PictureShape::Format::Rgb24;
}

void Picture::unmultiply() { m_view = View::Unmultiplied; }

void Picture::hide(Rgb color)
{
    m_view = View::OneColorHidden;
    m_hidden = color;
    m_shape.format = PictureShape::Format::Rgba32;
}

const std::uint8_t* Picture::row(int y, std::vector<std::uint8_t>& line) const
{
    line.resize(std::max(m_stored.rowBytes(), m_shape.rowBytes()));
    m_rows->row(y, line.data());
    switch (m_view) {
    case View::Stored:
        break;
    case View::WithoutAlpha:
        toRgb(m_stored, line.data());
        break;
    case View::Unmultiplied:
        unmultiplyRow(m_stored.width, line.data());
        break;
    case View::OneColorHidden:
        hideInRow(m_stored, m_hidden, line.data());
        break;
    }
    return line.data();
}

} // namespace quillrip::emf
