#pragma once

#include "quillrip/pclxl/image_decoders.h"

#include <cstdint>

namespace quillrip::pclxl {

/// Rows as changes of the row above: commands that skip what stays and then put one pixel, or a run of one, from one of
/// four sources. Much like PCL's compression method 10, but that pixels are whole, that a row ends where its width is
/// reached, and that the pixel put last is kept from row to row.
///
/// Decodes `rows` rows of a strip into RGB bytes, or gray ones with 255 for white. Needs memory for one row.
/// MissingData when the data end too soon; rows decoded before have gone to the sink.
Status decodeReplacementStrip(EmbeddedData& data, bool isColor, std::uint32_t width, std::uint32_t rows, RowSink& sink);

} // namespace quillrip::pclxl
