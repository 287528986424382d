#pragma once

#include "quillrip/base/bytes.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace quillrip::pcl {

/// Raster compression, without any state of its own: the caller keeps one seed row for each plane and each function
/// turns the seed row into the new row, which is the seed of the next.
///
/// A row never grows: bytes beyond its end are consumed and dropped.

/// Method 0: the bytes as they are; a short row is filled with zeros.
void decodeUncompressed(ByteView data, std::vector<std::uint8_t>& row);
/// Method 1: pairs of repeat count less one and byte.
void decodeRunLength(ByteView data, std::vector<std::uint8_t>& row);
/// Method 2: PackBits.
void decodePackBits(ByteView data, std::vector<std::uint8_t>& row);
/// Method 3: replacement bytes upon the seed row.
void decodeDeltaRow(ByteView data, std::vector<std::uint8_t>& row);
/// Method 9: replacement runs upon the seed row.
void decodeCompressedReplacement(ByteView data, std::vector<std::uint8_t>& row);
/// Method 10: pixels of three bytes, red, green, blue, as differences from the seed row.
void decodeNearLossless(ByteView data, std::vector<std::uint8_t>& row);

/// One of the methods above; false, and the row left alone, when there is no such method.
bool decodeRow(int method, ByteView data, std::vector<std::uint8_t>& row);

/// Method 5: a block of rows, each in a method of its own. `emit` is called with the number of times that the present
/// `row` comes next; it returns false to stop. True when the block was well formed to its end.
bool decodeAdaptive(ByteView data, std::vector<std::uint8_t>& row, const std::function<bool(int)>& emit);
/// Method 1030, of Brother's lasers: a block that counts its rows in two bytes; each row counts its commands, which are
/// those of method 9, or is blank (255). `emit` and the result as in decodeAdaptive().
bool decodeCountedReplacement(ByteView data, std::vector<std::uint8_t>& row, const std::function<bool(int)>& emit);

} // namespace quillrip::pcl
