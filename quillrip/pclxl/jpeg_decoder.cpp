#include "quillrip/pclxl/image_decoders.h"

#include "quillrip/base/heap_account.h"
#include "quillrip/base/jpeg_coefficients.h"

#include <algorithm>
#include <csetjmp>
#include <cstdint>
#include <vector>

namespace quillrip::pclxl {

namespace {

// Each scan of a progressive stream passes over the whole picture.
constexpr int kMaxScans = 200;

/// The library's error handler may not return, so it jumps; everything it jumps over is plain data or lives outside.
struct ErrorManager {
    jpeg_error_mgr base;
    std::jmp_buf escape;
    bool hasWarned = false;
};

struct Source {
    jpeg_source_mgr base;
    EmbeddedData* data;
    std::size_t given = 0; ///< bytes of the chunk that the library has in hand
    JOCTET end[2] = { 0xFF, JPEG_EOI };
    bool isAtEnd = false;
};

void onError(j_common_ptr info) { std::longjmp(reinterpret_cast<ErrorManager*>(info->err)->escape, 1); }

void onMessage(j_common_ptr info, int level)
{
    ErrorManager* errors = reinterpret_cast<ErrorManager*>(info->err);
    if (level < 0)
        errors->hasWarned = true;
}

void onOutput(j_common_ptr) { }

void initSource(j_decompress_ptr) { }

boolean fillBuffer(j_decompress_ptr info)
{
    Source* source = reinterpret_cast<Source*>(info->src);
    source->data->take(source->given);
    const ByteView chunk = source->data->chunk();
    source->given = chunk.size;
    if (chunk.empty()) {
        source->isAtEnd = true;
        source->base.next_input_byte = source->end;
        source->base.bytes_in_buffer = sizeof source->end;
    } else {
        source->base.next_input_byte = chunk.data;
        source->base.bytes_in_buffer = chunk.size;
    }
    return TRUE;
}

void skipInput(j_decompress_ptr info, long count)
{
    Source* source = reinterpret_cast<Source*>(info->src);
    while (count > 0) {
        if (source->base.bytes_in_buffer == 0) {
            fillBuffer(info);
            if (source->isAtEnd)
                return;
        }
        const std::size_t step = std::min(static_cast<std::size_t>(count), source->base.bytes_in_buffer);
        source->base.next_input_byte += step;
        source->base.bytes_in_buffer -= step;
        count -= static_cast<long>(step);
    }
}

void termSource(j_decompress_ptr) { }

void onProgress(j_common_ptr info)
{
    if (reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > kMaxScans)
        onError(info);
}

/// All that the library's jump passes over lives here, outside of the function that it jumps into.
struct Decoding {
    jpeg_decompress_struct info {};
    ErrorManager errors {};
    Source source {};
    jpeg_progress_mgr progress {};
    std::vector<std::uint8_t> decoded;
    std::vector<std::uint8_t> row;
    HeapClaim coefficients;

    Decoding() = default;
    ~Decoding() { jpeg_destroy_decompress(&info); }
    Decoding(const Decoding&) = delete;
    Decoding& operator=(const Decoding&) = delete;
};

Status decode(Decoding& state, const BlockLayout& layout, std::uint32_t rows, RowSink& sink, bool hasPlainComponents)
{
    if (setjmp(state.errors.escape))
        return state.source.isAtEnd ? Error::MissingData : Error::IllegalDataValue;
    jpeg_decompress_struct& info = state.info;
    jpeg_create_decompress(&info);
    info.src = &state.source.base;
    info.progress = &state.progress;
    jpeg_read_header(&info, TRUE);
    info.out_color_space = layout.components == 1 ? JCS_GRAYSCALE : JCS_RGB;
    // With another number of components the library finds this an error.
    if (hasPlainComponents)
        info.jpeg_color_space = info.out_color_space;
    const std::uint64_t coefficients = coefficientBytes(info);
    HeapAccount::expectPicture(coefficients);
    state.coefficients.add(coefficients);
    jpeg_start_decompress(&info);

    state.decoded.resize(static_cast<std::size_t>(info.output_width) * static_cast<std::size_t>(layout.components));
    const std::size_t shared = std::min(state.decoded.size(), layout.rowBytes);
    for (std::uint32_t y = 0; y < rows && info.output_scanline < info.output_height; ++y) {
        JSAMPROW line = state.decoded.data();
        jpeg_read_scanlines(&info, &line, 1);
        // Behind the end of its data the library makes rows up.
        if (state.source.isAtEnd && state.errors.hasWarned)
            return Error::MissingData;
        if (state.decoded.size() >= layout.rowBytes) {
            sink.row(state.decoded.data());
        } else {
            std::copy_n(state.decoded.begin(), shared, state.row.begin());
            sink.row(state.row.data());
        }
    }
    return {};
}

} // namespace

Status decodeJpegBlock(
    EmbeddedData& data, const BlockLayout& layout, std::uint32_t rows, RowSink& sink, const JpegForm& form)
{
    Decoding state;
    state.info.err = jpeg_std_error(&state.errors.base);
    state.errors.base.error_exit = onError;
    state.errors.base.emit_message = onMessage;
    state.errors.base.output_message = onOutput;
    state.source.data = &data;
    state.source.base.next_input_byte = form.headers.data;
    state.source.base.bytes_in_buffer = form.headers.size;
    state.source.base.init_source = initSource;
    state.source.base.fill_input_buffer = fillBuffer;
    state.source.base.skip_input_data = skipInput;
    state.source.base.resync_to_restart = jpeg_resync_to_restart;
    state.source.base.term_source = termSource;
    state.progress.progress_monitor = onProgress;
    state.row.assign(std::max<std::size_t>(layout.rowBytes, 1), 0xFF);
    return decode(state, layout, rows, sink, form.hasPlainComponents);
}

} // namespace quillrip::pclxl
