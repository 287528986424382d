#include "quillrip/emf/dib.h"

#include "quillrip/base/heap_account.h"
#include "quillrip/emf/dib_reader.h"
#include "quillrip/emf/record.h"

namespace quillrip::emf {

Rgb PictureShape::color(const std::uint8_t* row, int x) const
{
    if (format == Format::Mono)
        return table[row[x / 8] >> (7 - x % 8) & 1];
    const std::uint8_t* const pixel = row + static_cast<std::size_t>(x) * (format == Format::Rgb24 ? 3 : 4);
    return { pixel[0], pixel[1], pixel[2] };
}

Pixels Pixels::toRgb() &&
{
    if (format == Format::Rgb24 || isNull())
        return std::move(*this);
    Pixels result;
    result.width = width;
    result.height = height;
    result.isBottomUp = isBottomUp;
    result.stride = static_cast<std::size_t>(width) * 3;
    result.bytes.resize(result.stride * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y) {
        std::uint8_t* to = result.row(y);
        for (int x = 0; x < width; ++x, to += 3) {
            const Rgb pixel = color(x, y);
            to[0] = pixel.red;
            to[1] = pixel.green;
            to[2] = pixel.blue;
        }
    }
    return result;
}

void expectPixels(std::uint64_t width, std::uint64_t height, std::uint64_t otherBytes)
{
    // Four bytes a pixel, and as many in the form that it is decoded to at first.
    HeapAccount::expectPicture(width * height * 8 + otherBytes);
}

Pixels decodeImageFile(ByteView file, std::string& problem)
{
    return isPngFile(file) ? decodePng(file, kMostDibPixels, problem) : decodeJpeg(file, kMostDibPixels, problem);
}

Pixels decodeDib(ByteView header, ByteView bits, const DibContext& context, std::string& problem)
{
    problem.clear();
    if (const auto file = DibReader::imageFile(header, bits))
        return decodeImageFile(*file, problem);
    DibReader reader;
    if (!reader.open(header, bits, context, problem))
        return {};
    if (reader.isRunLengthCoded())
        expectPixels(
            static_cast<std::uint64_t>(reader.shape().width), static_cast<std::uint64_t>(reader.shape().height));
    Pixels pixels { reader.shape(), reader.shape().rowBytes(), {} };
    pixels.bytes.resize(pixels.stride * static_cast<std::size_t>(pixels.height));
    for (int y = 0; y < pixels.height; ++y)
        reader.row(y, pixels.row(y));
    return pixels;
}

Pixels decodeBitmapFile(ByteView file, std::string& problem)
{
    constexpr std::size_t kFileHeader = 14;
    const Fields fields(file);
    if (file.size < kFileHeader || fields.u16(0) != 0x4D42) {
        problem = "it is no bitmap file";
        return {};
    }
    return decodeDib(file.sub(kFileHeader), file.sub(fields.u32(10)), {}, problem);
}

} // namespace quillrip::emf
