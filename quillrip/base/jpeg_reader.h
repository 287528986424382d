#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/heap_account.h"
#include "quillrip/base/jpeg_coefficients.h"
#include "quillrip/base/work_meter.h"

#include <array>
#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <forward_list>

namespace quillrip {

/// The bytes of a JPEG file.
class JpegSource {
public:
    virtual ~JpegSource() = default;
    /// Those behind the last; empty at the end. They stay until the next call.
    virtual ByteView next() = 0;
};

/// Reads a JPEG file by libjpeg, in memory that is in proportion to the file's bytes and to one row. Each pass over the
/// picture is charged to the job's work, as a file of a few bytes can have many.
///
/// Exceptions of the source, and std::bad_alloc, come out of every function: none crosses the library.
class JpegReader {
public:
    JpegReader(JpegSource& source, WorkMeter& work, std::size_t plainCoefficientBytes = PlainRowAllowance::kDefault);
    ~JpegReader();
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    /// False when the file is damaged, or the work has no more: so with the others, and nothing more can be read then.
    bool readHeader();
    /// What the file has, from readHeader() on; how it is decoded may be changed before start().
    jpeg_decompress_struct& info() { return m_info; }
    /// Of a file of several scans this reads all.
    bool start();
    /// One row of info().output_width pixels.
    bool readRow(std::uint8_t* to);

    /// Whether the source has no more, and the library was told that the file ends there.
    bool isAtEnd() const { return m_isAtEnd; }
    /// Whether something was wrong that the library made up for.
    bool hasWarned() const { return m_hasWarned; }

private:
    static JpegReader& of(j_common_ptr info) { return *static_cast<JpegReader*>(info->client_data); }
    static JpegReader& of(j_decompress_ptr info) { return of(reinterpret_cast<j_common_ptr>(info)); }
    static void leave(j_common_ptr info);
    static void noteMessage(j_common_ptr info, int level);
    static boolean fill(j_decompress_ptr info);
    static void skip(j_decompress_ptr info, long count);
    static void chargeStep(j_common_ptr info);
    static JSAMPARRAY takeRows(j_common_ptr info, int pool, JDIMENSION samplesInRow, JDIMENSION rows);
    static jvirt_barray_ptr requestCoefficients(
        j_common_ptr info, int pool, boolean isZeroed, JDIMENSION blocksInRow, JDIMENSION rows, JDIMENSION mostInUse);
    static JBLOCKARRAY accessCoefficients(
        j_common_ptr info, jvirt_barray_ptr array, JDIMENSION first, JDIMENSION count, boolean willBeWritten);

    /// Calls into the library. False when that has left by leave().
    template <typename Step> bool run(Step step);
    /// Something that the library has called. False when it throws; run() throws it on.
    template <typename Step> bool attempt(Step step) noexcept;
    void readOn();

    jpeg_decompress_struct m_info {};
    jpeg_error_mgr m_errors {};
    jpeg_source_mgr m_reading {};
    jpeg_progress_mgr m_progress {};
    std::jmp_buf m_escape {};
    std::exception_ptr m_thrown;
    decltype(jpeg_memory_mgr::alloc_sarray) m_takeRows = nullptr; ///< the library's own
    JpegSource& m_source;
    WorkMeter& m_work;
    HeapClaim m_rows; ///< of pixels, which the library takes
    PlainRowAllowance m_plainCoefficients;
    std::forward_list<JpegCoefficients> m_coefficients;
    std::array<JOCTET, 2> m_end {};
    std::uint64_t m_given = 0; ///< bytes
    std::uint64_t m_charged = 0; ///< of these
    bool m_isStarted = false;
    bool m_isAtEnd = false;
    bool m_hasWarned = false;
};

} // namespace quillrip
