#include "tests/support/text_art.h"

namespace quillrip::test {

std::string textArt(const PageBitmap& page, const PixelRect& rect)
{
    std::string art;
    for (int y = rect.top; y < rect.bottom; ++y) {
        for (int x = rect.left; x < rect.right; ++x) {
            const bool isInside = x >= 0 && y >= 0 && x < page.width() && y < page.height();
            const Rgb color = isInside ? page.pixel(x, y) : Rgb {};
            const bool isWhite = color == Rgb { 255, 255, 255 };
            const bool isBlack = color == Rgb { 0, 0, 0 };
            art += !isInside ? ' ' : isWhite ? '.' : isBlack ? '#' : '+';
        }
        art += '\n';
    }
    return art;
}

std::string textArt(const PageBitmap& page) { return textArt(page, page.bounds()); }

std::size_t blackPixelCount(const PageBitmap& page)
{
    std::size_t count = 0;
    for (int y = 0; y < page.height(); ++y) {
        for (int x = 0; x < page.width(); ++x)
            count += page.pixel(x, y) == Rgb { 0, 0, 0 };
    }
    return count;
}

} // namespace quillrip::test
