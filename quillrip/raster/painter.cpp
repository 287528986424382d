#include "quillrip/raster/painter.h"

namespace quillrip {

Painter::Painter(PageBitmap& page)
    : m_page(page)
{
}

} // namespace quillrip
