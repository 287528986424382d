#include "quillrip/emf/image_rows.h"

#include "quillrip/emf/dib_reader.h"

#include <cstring>

namespace quillrip::emf {

void ImageRows::row(int y, std::uint8_t* to)
{
    if (y < m_next) {
        m_next = 0;
        m_isDamaged = !begin();
    }
    for (; m_next <= y && !m_isDamaged; ++m_next)
        m_isDamaged = !next(to);
    if (m_isDamaged)
        std::memset(to, 0xFF, m_shape.rowBytes());
}

std::unique_ptr<ImageRows> openImageFile(ByteView file, std::string& problem)
{
    return isPngFile(file) ? openPng(file, kMostDibPixels, problem) : openJpeg(file, kMostDibPixels, problem);
}

} // namespace quillrip::emf
