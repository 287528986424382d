#include "quillrip/emf/plus/image_files.h"

#include <cstdint>
#include <cstring>

namespace quillrip::emf::plus {

namespace {

bool startsWith(ByteView file, const char* signature, std::size_t length)
{
    return file.size >= length && std::memcmp(file.data, signature, length) == 0;
}

/// Rows of one bit or three bytes a pixel, or of a fourth byte that means nothing, with alpha.
class WidenedRows : public ImageRows {
public:
    WidenedRows(std::unique_ptr<ImageRows> rows, WorkMeter& work)
        : ImageRows(work, kUnitsPerPixel)
        , m_rows(std::move(rows))
    {
        m_shape.format = PictureShape::Format::Rgba32;
        m_shape.width = m_rows->shape().width;
        m_shape.height = m_rows->shape().height;
    }

    void row(int y, std::uint8_t* to) override
    {
        if (!mayMake(static_cast<std::uint64_t>(m_shape.width)))
            return whiten(to);
        m_rows->row(y, to);
        setDamaged(m_rows->isDamaged());
        // In place: pixels grow, so the last one comes first.
        const PictureShape& stored = m_rows->shape();
        for (int x = stored.width; x-- > 0;) {
            const Rgb color = stored.color(to, x);
            std::uint8_t* const pixel = to + std::size_t { 4 } * static_cast<std::size_t>(x);
            pixel[0] = color.red;
            pixel[1] = color.green;
            pixel[2] = color.blue;
            pixel[3] = 255;
        }
    }

private:
    static constexpr std::uint32_t kUnitsPerPixel = 1;

    std::unique_ptr<ImageRows> m_rows;
};

/// Decoders that know no alpha give three bytes a pixel, or one bit.
std::unique_ptr<ImageRows> withAlpha(std::unique_ptr<ImageRows> rows, WorkMeter& work)
{
    const bool isWide = rows && rows->shape().format == PictureShape::Format::Rgba32 && rows->shape().hasAlpha;
    return !rows || isWide ? std::move(rows) : std::make_unique<WidenedRows>(std::move(rows), work);
}

} // namespace

bool isDrawableSize(std::int64_t width, std::int64_t height)
{
    return width > 0 && height > 0 && width <= kLongestSide && height <= kLongestSide
        && static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) <= kMostImagePixels;
}

std::unique_ptr<ImageRows> openImageFile(ByteView file, WorkMeter& work, std::string& problem)
{
    if (startsWith(file, "\x89PNG", 4))
        return withAlpha(openPng(file, kMostImagePixels, work, problem), work);
    if (startsWith(file, "\xFF\xD8", 2))
        return withAlpha(openJpeg(file, kMostImagePixels, work, problem), work);
    if (startsWith(file, "GIF8", 4))
        return openGif(file, work, problem);
    if (startsWith(file, "II*\0", 4) || startsWith(file, "MM\0*", 4))
        return openTiff(file, work, problem);
    if (startsWith(file, "BM", 2))
        return withAlpha(openBitmapFile(file, work, problem), work);
    problem = "its file is of a kind that is not known";
    return nullptr;
}

} // namespace quillrip::emf::plus
