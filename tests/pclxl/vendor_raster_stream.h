#pragma once

#include "tests/pclxl/xl_job.h"

#include <array>
#include <cstdint>
#include <vector>

namespace quillrip::test {

/// Divisors of a block of coefficients, row by row.
using Divisors = std::array<unsigned, 64>;
/// Of a strip's three components.
using DivisorTables = std::array<Divisors, 3>;

DivisorTables flatTables(unsigned divisor);

/// A piece of a payload: its code, its length, its contents.
std::vector<std::uint8_t> chunk(int tag, const std::vector<std::uint8_t>& contents);

/// The two chunks of an image's beginning: divisors and the factors of the colour conversion.
std::vector<std::uint8_t> imageHeader(
    const DivisorTables& tables, const std::array<int, 9>& conversion = { 8192, 0, 0, 8192, -8192, 0, 8192, 0, -8192 });

/// A JPEG stream of components as they are, without subsampling, each with a table of its own.
std::vector<std::uint8_t> wholeJpeg(
    const std::vector<std::uint8_t>& samples, int width, int height, int components, const DivisorTables& tables);
/// What a strip carries: the stream from behind its scan's header on.
std::vector<std::uint8_t> withoutHeaders(const std::vector<std::uint8_t>& jpeg);
/// RGB pixels as the components of a colour strip.
std::vector<std::uint8_t> asComponents(const std::vector<std::uint8_t>& rgb);
/// RGB pixels as a strip's chunk.
std::vector<std::uint8_t> colorStrip(
    const std::vector<std::uint8_t>& rgb, int width, int height, const DivisorTables& tables);
/// `count` RGB pixels of one colour.
std::vector<std::uint8_t> flat(Rgb color, int count);

/// The vendor's operator with one of its commands.
XlStream& vendor(XlStream& to, int command, const std::vector<std::uint8_t>& payload);
XlStream& beginRaster(XlStream& to, bool isColor, int width, int height, const std::vector<std::uint8_t>& payload);
XlStream& strip(XlStream& to, int start, int rows, const std::vector<std::uint8_t>& payload);
XlStream& endRaster(XlStream& to);

/// A page of so many pixels, drawn.
struct DrawnPage {
    XlJob job { PixelFormat::Rgb24 };
    DrawnPage(int width, int height, const XlStream& contents) { job.run(onePage(width, height, contents)); }
    Rgb at(int x, int y) const { return job.pixel(0, x, y); }
};

bool isNear(Rgb a, Rgb b, int distance);

} // namespace quillrip::test
