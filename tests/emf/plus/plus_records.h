#pragma once

#include "quillrip/base/bytes.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace quillrip::emf::plus::test {

/// Bytes of records and objects, put together field by field in little-endian order.
class Fields {
public:
    Fields& u8(std::initializer_list<unsigned> values);
    Fields& u16(std::initializer_list<unsigned> values);
    Fields& u32(std::initializer_list<std::uint32_t> values);
    Fields& f32(std::initializer_list<double> values);
    Fields& bytes(const std::vector<std::uint8_t>& bytes);
    Fields& text(const std::u16string& text);
    /// Zeros up to a multiple of 4.
    Fields& padded();

    const std::vector<std::uint8_t>& get() const { return m_bytes; }
    operator const std::vector<std::uint8_t>&() const { return m_bytes; }
    operator ByteView() const { return m_bytes; }

private:
    std::vector<std::uint8_t> m_bytes;
};

constexpr std::uint32_t kVersion = 0xDBC01002;

/// Objects, version and type first.
Fields solidBrush(std::uint32_t argb);
/// Without any of a pen's optional fields.
Fields pen(double width, std::uint32_t argb, std::uint32_t unit = 0);
/// Points as floats, a byte of type for each.
Fields path(const std::vector<std::pair<double, double>>& points, const std::vector<std::uint8_t>& types);

/// The records of a comment.
class Records {
public:
    Records& add(std::uint16_t type, std::uint16_t flags, const std::vector<std::uint8_t>& data = {});
    Records& object(std::uint8_t kind, std::uint8_t id, const std::vector<std::uint8_t>& data);
    /// As they are, also where they are wrong.
    Records& raw(const std::vector<std::uint8_t>& bytes);
    const std::vector<std::uint8_t>& get() const { return m_bytes; }

private:
    std::vector<std::uint8_t> m_bytes;
};

enum class Header { Only, Dual };
/// A header, at 300 dots per inch for a printer, and the page transform that every file begins with: pixels.
Records header(Header kind = Header::Only);

constexpr std::uint16_t kColor = 0x8000; ///< the brush field is a colour
constexpr std::uint16_t kIntegers = 0x4000;

/// FillRects with one rectangle and a colour.
Records& fillRect(Records& records, std::uint32_t argb, double x, double y, double width, double height);

} // namespace quillrip::emf::plus::test
