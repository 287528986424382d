#pragma once

#include "quillrip/image/output_file.h"

#include <cstdint>

namespace quillrip {

// What has to be changed in a TIFF file after its directories were written: those have their lowest byte first.

/// Writes the number of pages into each page's tag PageNumber; `isSinglePage` makes the only page no page of several.
/// TIFF 6.0 and BigTIFF. False when the file fails or is none.
[[nodiscard]] bool fillInPageCount(OutputFile& file, std::uint16_t total, bool isSinglePage);

/// Turns a TIFF file with at least one page into a BigTIFF: every directory is written again, in the form with offsets
/// of 64 bits, and all that they point to stays where it is, but for the first strip, whose place the longer header
/// needs. False when the file fails or is none, or is too long for that strip to be moved.
[[nodiscard]] bool makeBigTiff(OutputFile& file);

} // namespace quillrip
