#include "quillrip/pclxl/image_decoders.h"

#include "quillrip/base/jpeg_reader.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace quillrip::pclxl {

namespace {

/// The headers that the stream leaves out, then its chunks.
class EmbeddedJpeg final : public JpegSource {
public:
    EmbeddedJpeg(ByteView headers, EmbeddedData& data)
        : m_headers(headers)
        , m_data(data)
    {
    }

    ByteView next() override
    {
        if (!m_headers.empty())
            return std::exchange(m_headers, {});
        m_data.take(m_given);
        const ByteView chunk = m_data.chunk();
        m_given = chunk.size;
        return chunk;
    }

private:
    ByteView m_headers;
    EmbeddedData& m_data;
    std::size_t m_given = 0; ///< bytes of the chunk that the reader has in hand
};

} // namespace

Status decodeJpegBlock(EmbeddedData& data, const BlockLayout& layout, std::uint32_t rows, RowSink& sink,
    WorkMeter& work, const JpegForm& form)
{
    EmbeddedJpeg source(form.headers, data);
    JpegReader reader(source, work);
    const auto failure = [&]() -> Status {
        if (work.isExhausted())
            return Error::LimitExceeded;
        return reader.isAtEnd() ? Error::MissingData : Error::IllegalDataValue;
    };
    if (!reader.readHeader())
        return failure();
    jpeg_decompress_struct& info = reader.info();
    info.out_color_space = layout.components == 1 ? JCS_GRAYSCALE : JCS_RGB;
    // With another number of components the library finds this an error.
    if (form.hasPlainComponents)
        info.jpeg_color_space = info.out_color_space;
    if (!reader.start())
        return failure();

    // A row may be shorter than the layout's.
    const std::size_t decodedBytes
        = static_cast<std::size_t>(info.output_width) * static_cast<std::size_t>(info.output_components);
    std::vector<std::uint8_t> row(std::max<std::size_t>({ decodedBytes, layout.rowBytes, 1 }), 0xFF);
    for (std::uint32_t y = 0; y < rows && info.output_scanline < info.output_height; ++y) {
        if (!reader.readRow(row.data()))
            return failure();
        // Behind the end of its data the library makes rows up.
        if (reader.isAtEnd() && reader.hasWarned())
            return Error::MissingData;
        sink.row(row.data());
    }
    return {};
}

} // namespace quillrip::pclxl
