#include "quillrip/pclxl/image_decoders.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace quillrip::pclxl {

namespace {

Status decodeUncompressed(
    EmbeddedData& data, const BlockLayout& layout, std::uint32_t rows, SeedRow& row, RowSink& sink)
{
    const std::size_t rowBytes = layout.paddedRowBytes();
    row.resize(rowBytes);
    for (std::uint32_t y = 0; y < rows; ++y) {
        const ByteView at = data.chunk();
        // All but the last row, which a row of the next block may build on, need no copy.
        if (at.size >= rowBytes && y + 1 < rows) {
            sink.row(at.data);
            data.take(rowBytes);
            continue;
        }
        const std::size_t got = data.read(row.data(), rowBytes);
        // The padding of the last row may be left out: nothing of the picture lacks then.
        if (got < layout.rowBytes)
            return Error::MissingData;
        sink.row(row.data());
    }
    return {};
}

/// Runs and literals may cross the ends of rows.
Status decodeRunLength(EmbeddedData& data, const BlockLayout& layout, std::uint32_t rows, SeedRow& row, RowSink& sink)
{
    const std::size_t rowBytes = layout.paddedRowBytes();
    row.resize(rowBytes);
    std::size_t literal = 0; // bytes left of the command
    std::size_t run = 0;
    std::uint8_t value = 0;
    for (std::uint32_t y = 0; y < rows; ++y) {
        std::size_t at = 0;
        while (at < rowBytes) {
            if (run > 0) {
                const std::size_t count = std::min(run, rowBytes - at);
                std::memset(row.data() + at, value, count);
                run -= count;
                at += count;
            } else if (literal > 0) {
                const std::size_t count = std::min(literal, rowBytes - at);
                if (data.read(row.data() + at, count) != count)
                    return Error::MissingData;
                literal -= count;
                at += count;
            } else {
                const int code = data.get();
                if (code < 0) {
                    if (y + 1 < rows || at < layout.rowBytes)
                        return Error::MissingData;
                    break;
                }
                if (code < 128) {
                    literal = static_cast<std::size_t>(code) + 1;
                } else if (code > 128) {
                    const int byte = data.get();
                    if (byte < 0)
                        return Error::MissingData;
                    value = static_cast<std::uint8_t>(byte);
                    run = static_cast<std::size_t>(257 - code);
                }
            }
        }
        sink.row(row.data());
    }
    return {};
}

/// Replacement bytes beyond the padded row are dropped.
Status decodeDeltaRow(EmbeddedData& data, const BlockLayout& layout, std::uint32_t rows, SeedRow& row, RowSink& sink)
{
    const std::size_t rowBytes = layout.paddedRowBytes();
    row.resize(rowBytes);
    for (std::uint32_t y = 0; y < rows; ++y) {
        double count = 0;
        if (!data.readNumber(Element::UInt16, count))
            return Error::MissingData;
        std::size_t left = static_cast<std::size_t>(count);
        std::size_t at = 0;
        const auto next = [&]() -> int {
            if (left == 0)
                return -1;
            --left;
            return data.get();
        };
        while (left > 0) {
            const int command = next();
            if (command < 0)
                return Error::MissingData;
            std::size_t offset = static_cast<std::size_t>(command & 31);
            if (offset == 31) {
                int more = 0;
                do {
                    more = next();
                    if (more < 0)
                        return Error::MissingData;
                    offset += static_cast<std::size_t>(more);
                } while (more == 255);
            }
            at = std::min(at + offset, rowBytes);
            for (int n = (command >> 5) + 1; n > 0; --n) {
                const int byte = next();
                if (byte < 0)
                    return Error::MissingData;
                if (at < rowBytes)
                    row[at++] = static_cast<std::uint8_t>(byte);
            }
        }
        sink.row(row.data());
    }
    return {};
}

} // namespace

Status decodeBlock(Compression compression, EmbeddedData& data, const BlockLayout& layout, std::uint32_t rows,
    SeedRow& seed, RowSink& sink, WorkMeter& work)
{
    switch (compression) {
    case Compression::None:
        return decodeUncompressed(data, layout, rows, seed, sink);
    case Compression::RunLength:
        return decodeRunLength(data, layout, rows, seed, sink);
    case Compression::Jpeg:
        return decodeJpegBlock(data, layout, rows, sink, work);
    case Compression::DeltaRow:
        return decodeDeltaRow(data, layout, rows, seed, sink);
    }
    return {};
}

} // namespace quillrip::pclxl
