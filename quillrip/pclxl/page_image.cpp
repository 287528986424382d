#include "quillrip/pclxl/page_image.h"

#include <utility>

namespace quillrip::pclxl {

PageImage::PageImage(
    ImageSource source, Point corner, Point size, const GraphicsState& state, const Page& page, Drawing& drawing)
    : m_source(std::move(source))
    , m_painter(page.painter())
    , m_imageToDevice(Matrix::scaling(size.x / m_source.layout.width, size.y / m_source.layout.height)
          * Matrix::translation(corner.x, corner.y) * state.userToDevice)
    , m_paint(drawing.imagePaint(m_source.converter))
    , m_isVisible(size.x > 0 && size.y > 0 && m_imageToDevice.isInvertible())
{
}

void PageImage::goToRow(std::uint32_t row)
{
    if (m_nextRow == row)
        return;
    finish();
    m_nextRow = row;
    if (!m_isVisible)
        return;
    ImageGeometry geometry;
    geometry.format = m_source.converter.format();
    geometry.width = static_cast<int>(m_source.layout.width);
    geometry.height = static_cast<int>(m_source.layout.height - row);
    geometry.imageToDevice = Matrix::translation(0, static_cast<double>(row)) * m_imageToDevice;
    geometry.smooth = geometry.format != ImageFormat::Mono;
    m_rows = m_painter.beginImage(geometry, m_paint);
}

void PageImage::paintRow(const std::uint8_t* pixels)
{
    ++m_nextRow;
    WorkMeter& work = m_painter.work();
    if (!m_rows || work.isExhausted())
        return;
    work.charge(Work::Decoding, m_source.layout.width);
    m_rows->row(m_source.converter.convert(pixels));
}

void PageImage::finish()
{
    if (m_rows)
        m_rows->finish();
    m_rows.reset();
}

} // namespace quillrip::pclxl
