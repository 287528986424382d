#include "quillrip/emf/image_rows.h"

#include "quillrip/emf/dib_reader.h"
#include "quillrip/emf/record.h"

#include <cstring>

namespace quillrip::emf {

namespace {

class DibRows : public ImageRows {
public:
    DibRows(DibReader reader, WorkMeter& work)
        : ImageRows(work, kUnitsPerPixel)
        , m_reader(std::move(reader))
    {
        m_shape = m_reader.shape();
    }

    void row(int y, std::uint8_t* to) override
    {
        if (mayMake(static_cast<std::uint64_t>(m_shape.width)))
            m_reader.row(y, to);
        else
            whiten(to);
    }

private:
    static constexpr std::uint32_t kUnitsPerPixel = 1;

    DibReader m_reader;
};

} // namespace

void ImageRows::whiten(std::uint8_t* row) const { std::memset(row, 0xFF, m_shape.rowBytes()); }

void SequentialRows::row(int y, std::uint8_t* to)
{
    if (y < m_next) {
        m_next = 0;
        setDamaged(!begin());
    }
    while (m_next <= y) {
        if (isDamaged() || !mayMake(static_cast<std::uint64_t>(m_shape.width)))
            return whiten(to);
        setDamaged(!next(to));
        ++m_next;
    }
    if (isDamaged())
        whiten(to);
}

std::unique_ptr<ImageRows> openDib(
    ByteView header, ByteView bits, const DibContext& context, WorkMeter& work, std::string& problem)
{
    problem.clear();
    if (const auto file = DibReader::imageFile(header, bits))
        return isPngFile(*file) ? openPng(*file, kMostDibPixels, work, problem)
                                : openJpeg(*file, kMostDibPixels, work, problem);
    DibReader reader;
    if (!reader.open(header, bits, context, problem))
        return nullptr;
    return std::make_unique<DibRows>(std::move(reader), work);
}

std::unique_ptr<ImageRows> openBitmapFile(ByteView file, WorkMeter& work, std::string& problem)
{
    constexpr std::size_t kFileHeader = 14;
    const Fields fields(file);
    if (file.size < kFileHeader || fields.u16(0) != 0x4D42) {
        problem = "it is no bitmap file";
        return nullptr;
    }
    return openDib(file.sub(kFileHeader), file.sub(fields.u32(10)), {}, work, problem);
}

Pixels pixelsOf(ImageRows& rows)
{
    const PictureShape& shape = rows.shape();
    Pixels pixels { shape, shape.rowBytes(), {} };
    pixels.bytes.resize(pixels.stride * static_cast<std::size_t>(shape.height));
    for (int y = 0; y < shape.height; ++y)
        rows.row(y, pixels.row(y));
    return pixels;
}

} // namespace quillrip::emf
