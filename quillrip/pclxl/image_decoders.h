#pragma once

#include "quillrip/base/work_meter.h"
#include "quillrip/pclxl/status.h"
#include "quillrip/pclxl/tag_reader.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace quillrip::pclxl {

enum class Compression : std::uint8_t { None = 0, RunLength = 1, Jpeg = 2, DeltaRow = 3 };

/// The rows of one block of an image, before compression.
struct BlockLayout {
    std::uint32_t width = 0; ///< pixels
    std::uint32_t height = 0; ///< rows of the whole image
    int components = 1; ///< 1 for indexed pixels
    int bitsPerComponent = 8;
    std::size_t rowBytes = 0; ///< of the pixels alone
    std::uint32_t padding = 4; ///< rows are padded to a multiple of this many bytes

    std::size_t paddedRowBytes() const { return (rowBytes + padding - 1) / padding * padding; }
};

/// Gets each decoded row: rowBytes bytes that are valid during the call.
class RowSink {
public:
    virtual ~RowSink() = default;
    virtual void row(const std::uint8_t* pixels) = 0;
};

/// Hands the rows to a function.
class CallingSink final : public RowSink {
public:
    explicit CallingSink(std::function<void(const std::uint8_t*)> call)
        : m_call(std::move(call))
    {
    }
    void row(const std::uint8_t* pixels) override { m_call(pixels); }

private:
    std::function<void(const std::uint8_t*)> m_call;
};

/// The row before, on which a row in delta row code builds. It runs on from block to block of an image and is zero,
/// which is to say empty, only where the image begins: drivers send an image in bands and code each band's first row as
/// what differs from the last row of the band above. JPEG blocks, which nobody could build on exactly, leave it alone.
using SeedRow = std::vector<std::uint8_t>;

/// Decodes `rows` rows of a block from its embedded data. Needs memory for one row, whatever the block's height. Rows
/// decoded before an error have gone to the sink. MissingData when the data end too soon, IllegalDataValue when they
/// are no JPEG stream, LimitExceeded when a JPEG stream asks for more work than there is.
Status decodeBlock(Compression compression, EmbeddedData& data, const BlockLayout& layout, std::uint32_t rows,
    SeedRow& seed, RowSink& sink, WorkMeter& work);

/// What a JPEG stream leaves out, and what its components are.
struct JpegForm {
    ByteView headers; ///< stand before the data, which begin with their first scan; empty: the stream is complete
    bool hasPlainComponents = false; ///< the components go to the sink as they are, without YCbCr conversion
};

/// One JPEG stream. Its pixels count as the layout says: gray or RGB; a row is cut or padded with white, and rows
/// beyond the stream's height do not come. IllegalDataValue where plain components are not as many as the layout's.
Status decodeJpegBlock(EmbeddedData& data, const BlockLayout& layout, std::uint32_t rows, RowSink& sink,
    WorkMeter& work, const JpegForm& form = {});

} // namespace quillrip::pclxl
