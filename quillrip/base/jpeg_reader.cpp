#include "quillrip/base/jpeg_reader.h"

#include <algorithm>
#include <new>
#include <utility>

#include <jerror.h>

namespace quillrip {

JpegReader::JpegReader(JpegSource& source, WorkMeter& work, std::size_t plainCoefficientBytes)
    : m_source(source)
    , m_work(work)
    , m_plainCoefficients(plainCoefficientBytes)
    , m_end { 0xFF, JPEG_EOI }
{
    m_info.err = jpeg_std_error(&m_errors);
    m_errors.error_exit = leave;
    m_errors.emit_message = noteMessage;
    m_errors.output_message = [](j_common_ptr) {};
    m_reading.init_source = [](j_decompress_ptr) {};
    m_reading.fill_input_buffer = fill;
    m_reading.skip_input_data = skip;
    m_reading.resync_to_restart = jpeg_resync_to_restart;
    m_reading.term_source = [](j_decompress_ptr) {};
    m_progress.progress_monitor = chargeStep;
    m_info.client_data = this;
}

JpegReader::~JpegReader() { jpeg_destroy_decompress(&m_info); }

template <typename Step> bool JpegReader::run(Step step)
{
    // What the library jumps over is its own plain data.
    if (setjmp(m_escape) == 0) {
        step();
        return true;
    }
    if (m_thrown)
        std::rethrow_exception(std::exchange(m_thrown, nullptr));
    if (m_errors.msg_code == JERR_OUT_OF_MEMORY)
        throw std::bad_alloc {};
    return false;
}

template <typename Step> bool JpegReader::attempt(Step step) noexcept
{
    try {
        step();
        return true;
    } catch (...) {
        m_thrown = std::current_exception();
        return false;
    }
}

void JpegReader::leave(j_common_ptr info) { std::longjmp(of(info).m_escape, 1); }

void JpegReader::noteMessage(j_common_ptr info, int level)
{
    if (level < 0)
        of(info).m_hasWarned = true;
}

void JpegReader::readOn()
{
    ByteView bytes = m_source.next();
    m_isAtEnd = bytes.empty();
    if (m_isAtEnd)
        bytes = { m_end.data(), m_end.size() };
    m_given += bytes.size;
    m_reading.next_input_byte = bytes.data;
    m_reading.bytes_in_buffer = bytes.size;
}

boolean JpegReader::fill(j_decompress_ptr info)
{
    JpegReader& reader = of(info);
    if (!reader.attempt([&] { reader.readOn(); }))
        leave(reinterpret_cast<j_common_ptr>(info));
    return TRUE;
}

void JpegReader::skip(j_decompress_ptr info, long count)
{
    JpegReader& reader = of(info);
    while (count > 0) {
        if (reader.m_reading.bytes_in_buffer == 0) {
            fill(info);
            if (reader.m_isAtEnd)
                return;
        }
        const std::size_t step = std::min(static_cast<std::size_t>(count), reader.m_reading.bytes_in_buffer);
        reader.m_reading.next_input_byte += step;
        reader.m_reading.bytes_in_buffer -= step;
        count -= static_cast<long>(step);
    }
}

void JpegReader::chargeStep(j_common_ptr info)
{
    constexpr std::uint64_t kUnitsPerStep = 1000;
    constexpr std::uint64_t kUnitsPerByte = 40; // of a scan; a block costs what it does without any
    constexpr std::uint64_t kUnitsPerBlock = 15;
    constexpr std::uint64_t kUnitsPerPixel = 5;
    JpegReader& reader = of(info);
    const jpeg_decompress_struct& file = reader.m_info;
    std::uint64_t units = kUnitsPerStep;
    if (reader.m_isStarted) {
        units += kUnitsPerPixel * file.output_width;
    } else {
        const std::uint64_t taken = reader.m_given - reader.m_reading.bytes_in_buffer;
        units += kUnitsPerByte * (taken - std::exchange(reader.m_charged, taken));
        // A component by itself has several rows in the line of MCUs that a step is.
        const int rows = file.comps_in_scan == 1 ? file.cur_comp_info[0]->v_samp_factor : 1;
        units += kUnitsPerBlock * file.MCUs_per_row * static_cast<std::uint64_t>(file.blocks_in_MCU * rows);
    }
    if (!reader.m_work.allows(Work::Decoding, units))
        leave(info);
}

JSAMPARRAY JpegReader::takeRows(j_common_ptr info, int pool, JDIMENSION samplesInRow, JDIMENSION rows)
{
    JpegReader& reader = of(info);
    if (!reader.attempt([&] { reader.m_rows.add(std::uint64_t { samplesInRow } * rows); }))
        leave(info);
    return reader.m_takeRows(info, pool, samplesInRow, rows);
}

jvirt_barray_ptr JpegReader::requestCoefficients(
    j_common_ptr info, int, boolean, JDIMENSION blocksInRow, JDIMENSION rows, JDIMENSION mostInUse)
{
    JpegReader& reader = of(info);
    const auto add
        = [&] { reader.m_coefficients.emplace_front(blocksInRow, rows, mostInUse, reader.m_plainCoefficients); };
    if (!reader.attempt(add))
        leave(info);
    // The library looks into no array.
    return reinterpret_cast<jvirt_barray_ptr>(&reader.m_coefficients.front());
}

JBLOCKARRAY JpegReader::accessCoefficients(
    j_common_ptr info, jvirt_barray_ptr array, JDIMENSION first, JDIMENSION count, boolean willBeWritten)
{
    auto& coefficients = *reinterpret_cast<JpegCoefficients*>(array);
    if (std::uint64_t { first } + count > coefficients.rowCount())
        leave(info);
    // Where a file is cut off, the library smooths the edges of blocks. Release 2.1.5, in the second line of MCUs, asks
    // for rows from the first on and looks at more of them, which it finds where it holds all.
    std::size_t given = count;
    if (first == 0 && willBeWritten == FALSE)
        given = std::min(std::max(given, coefficients.mostInUse()), coefficients.rowCount());
    JBLOCKARRAY rows = nullptr;
    if (!of(info).attempt([&] { rows = coefficients.rows(first, given, willBeWritten != FALSE); }))
        leave(info);
    return rows;
}

bool JpegReader::readHeader()
{
    return run([&] {
        jpeg_create_decompress(&m_info);
        m_info.src = &m_reading;
        m_info.progress = &m_progress;
        m_takeRows = std::exchange(m_info.mem->alloc_sarray, takeRows);
        m_info.mem->request_virt_barray = requestCoefficients;
        m_info.mem->access_virt_barray = accessCoefficients;
        jpeg_read_header(&m_info, TRUE);
    });
}

bool JpegReader::start()
{
    m_isStarted = run([&] { jpeg_start_decompress(&m_info); });
    return m_isStarted;
}

bool JpegReader::readRow(std::uint8_t* to)
{
    return run([&] {
        JSAMPROW row = to;
        jpeg_read_scanlines(&m_info, &row, 1);
    });
}

} // namespace quillrip
