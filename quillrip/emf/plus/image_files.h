#pragma once

#include "quillrip/emf/image_rows.h"

#include <cstdint>
#include <memory>
#include <string>

namespace quillrip::emf::plus {

/// Width times height of the largest image that is drawn.
constexpr std::uint64_t kMostImagePixels = std::uint64_t { 1 } << 27;
/// Pixels in a row and rows, at most.
constexpr int kLongestSide = 65535;

bool isDrawableSize(std::int64_t width, std::int64_t height);

/// An image file by its content (PNG, JPEG, GIF, TIFF, BMP) as openImage() gives it. Null, with the reason in
/// `problem`, when it is none of these or cannot be read.
std::unique_ptr<ImageRows> openImageFile(ByteView file, WorkMeter& work, std::string& problem);

/// The first picture of a GIF file on its screen. What it does not cover is transparent.
std::unique_ptr<ImageRows> openGif(ByteView file, WorkMeter& work, std::string& problem);

/// Bytes of decoded rows that are made at once, where no strip and no tile of the file takes more.
constexpr std::size_t kTiffBandBytes = std::size_t { 4 } << 20;
/// The first picture of a TIFF file, upright. Throws std::bad_alloc where the account has no room for a strip or a
/// tile.
std::unique_ptr<ImageRows> openTiff(
    ByteView file, WorkMeter& work, std::string& problem, std::size_t bandBytes = kTiffBandBytes);

} // namespace quillrip::emf::plus
