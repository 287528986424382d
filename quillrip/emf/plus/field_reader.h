#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/geometry.h"
#include "quillrip/emf/plus/colors.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quillrip::emf::plus {

/// Left, top, width and height in the units of the drawing.
struct RectF {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double right() const { return x + width; }
    double bottom() const { return y + height; }
    /// GDI+ draws no rectangle without area.
    bool isEmpty() const { return !(width > 0 && height > 0); }
};

/// How points and rectangles are stored ([MS-EMFPLUS] 2.2.2, EmfPlusPoint, EmfPlusPointF, EmfPlusPointR).
enum class PointForm : std::uint8_t {
    Float, ///< 32-bit floating point
    Integer, ///< 16-bit integers
    Relative, ///< differences to the point before, of 7 or 15 bits
};

/// Reads the fields of a record or an object, one after the other. What lies past the end reads as 0 and makes the
/// reader fail, as does a number that no drawing can use: not finite, or beyond 1e9. So a caller reads all fields and
/// asks once.
class FieldReader {
public:
    explicit FieldReader(ByteView bytes)
        : m_bytes(bytes)
    {
    }

    bool hasFailed() const { return m_hasFailed; }
    void fail() { m_hasFailed = true; }
    std::size_t offset() const { return m_offset; }
    std::size_t remaining() const { return m_bytes.size - m_offset; }

    std::uint8_t u8();
    std::uint16_t u16();
    std::int16_t i16() { return static_cast<std::int16_t>(u16()); }
    std::uint32_t u32();
    std::int32_t i32() { return static_cast<std::int32_t>(u32()); }
    double f32();
    Rgba color() { return rgbaOf(u32()); }
    Point pointF();
    RectF rectF();
    RectF rect(PointForm form);
    Matrix matrix();
    /// A point with integers of 7 or 15 bits: its distance to the point before.
    Point relativePoint();
    /// `count` points. Fails, and gives none, when fewer can be there.
    std::vector<Point> points(PointForm form, std::uint32_t count);
    /// `count` numbers; the same.
    std::vector<double> numbers(std::uint32_t count);
    /// UTF-16; fails, and gives none, when fewer than `count` units are there.
    std::u16string text(std::uint32_t count);
    /// A count and that many numbers.
    std::vector<double> countedNumbers() { return numbers(u32()); }

    /// Whether `count` elements of `size` bytes can still be read; fails otherwise. To be asked before memory is.
    bool has(std::uint64_t count, std::uint64_t size);
    /// The next `count` bytes; fails, and gives none, when there are fewer.
    ByteView take(std::size_t count);
    ByteView rest() { return take(remaining()); }

private:
    ByteView m_bytes;
    std::size_t m_offset = 0;
    bool m_hasFailed = false;
};

} // namespace quillrip::emf::plus
