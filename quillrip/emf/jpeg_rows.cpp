// JPEG files that lie in bitmaps, read by libjpeg.

#include "quillrip/base/heap_account.h"
#include "quillrip/base/jpeg_coefficients.h"
#include "quillrip/emf/image_rows.h"

#include <csetjmp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillrip::emf {

namespace {

constexpr int kMostScans = 200;
constexpr const char* kDamaged = "its JPEG file is damaged";

/// The library's error handler may not return, so it jumps; what it jumps over is plain data or lies outside.
struct JpegErrors {
    jpeg_error_mgr base;
    std::jmp_buf escape;
};

void onJpegError(j_common_ptr info) { std::longjmp(reinterpret_cast<JpegErrors*>(info->err)->escape, 1); }
void onJpegMessage(j_common_ptr, int) { }
void onJpegOutput(j_common_ptr) { }
/// Each scan of a progressive file passes over the whole picture.
void onJpegProgress(j_common_ptr info)
{
    if (reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > kMostScans)
        onJpegError(info);
}

struct JpegReader {
    jpeg_decompress_struct info {};
    JpegErrors errors {};
    jpeg_progress_mgr progress {};
    HeapClaim coefficients;

    JpegReader()
    {
        info.err = jpeg_std_error(&errors.base);
        errors.base.error_exit = onJpegError;
        errors.base.emit_message = onJpegMessage;
        errors.base.output_message = onJpegOutput;
        progress.progress_monitor = onJpegProgress;
    }
    ~JpegReader() { jpeg_destroy_decompress(&info); }
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;
};

class JpegRows : public SequentialRows {
public:
    JpegRows(ByteView file, std::uint64_t mostPixels, WorkMeter& work)
        : SequentialRows(work, kUnitsPerCodedPixel)
        , m_file(file)
        , m_mostPixels(mostPixels)
    {
    }

    bool begin() override
    {
        m_reader.emplace();
        return start(*m_reader);
    }

private:
    bool next(std::uint8_t* to) override;
    bool start(JpegReader& reader);
    static bool read(JpegReader& reader, std::uint8_t* to);
    bool isCmyk() const { return m_reader->info.num_components == 4; }

    ByteView m_file;
    std::uint64_t m_mostPixels;
    std::optional<JpegReader> m_reader;
    std::vector<std::uint8_t> m_inks; ///< a row in CMYK
};

bool JpegRows::start(JpegReader& reader)
{
    jpeg_decompress_struct& info = reader.info;
    if (setjmp(reader.errors.escape) != 0)
        return false;
    jpeg_create_decompress(&info);
    info.progress = &reader.progress;
    jpeg_mem_src(&info, m_file.data, static_cast<unsigned long>(m_file.size));
    jpeg_read_header(&info, TRUE);
    info.out_color_space = isCmyk() ? JCS_CMYK : JCS_RGB;
    if (std::uint64_t { info.image_width } * info.image_height > m_mostPixels)
        return false;
    const std::uint64_t bytes = coefficientBytes(info);
    HeapAccount::expectPicture(bytes);
    reader.coefficients.add(bytes);
    jpeg_start_decompress(&info);
    m_shape.width = static_cast<int>(info.output_width);
    m_shape.height = static_cast<int>(info.output_height);
    if (isCmyk())
        m_inks.resize(std::size_t { info.output_width } * 4);
    return true;
}

bool JpegRows::read(JpegReader& reader, std::uint8_t* to)
{
    if (setjmp(reader.errors.escape) != 0)
        return false;
    JSAMPROW row = to;
    jpeg_read_scanlines(&reader.info, &row, 1);
    return true;
}

bool JpegRows::next(std::uint8_t* to)
{
    if (!isCmyk())
        return read(*m_reader, to);
    if (!read(*m_reader, m_inks.data()))
        return false;
    // Four channels as the usual writer stores them: inverted.
    for (std::size_t at = 0; at < m_inks.size(); at += 4) {
        for (std::size_t i = 0; i < 3; ++i)
            *to++ = static_cast<std::uint8_t>(m_inks[at + i] * m_inks[at + 3] / 255);
    }
    return true;
}

} // namespace

std::unique_ptr<ImageRows> openJpeg(ByteView file, std::uint64_t mostPixels, WorkMeter& work, std::string& problem)
{
    auto rows = std::make_unique<JpegRows>(file, mostPixels, work);
    if (!rows->begin()) {
        problem = kDamaged;
        return nullptr;
    }
    return rows;
}

} // namespace quillrip::emf
