#pragma once

#include "quillrip/base/input_stream.h"
#include "quillrip/pclxl/status.h"

namespace quillrip::pclxl {

/// Takes the line `) HP-PCL XL;class;revision;comment<LF>` on which the input stands, and says what byte order it
/// announces. Any protocol class is accepted, as the number tells little of what a stream uses. Errors:
/// IllegalStreamHeader, UnsupportedBinding (ASCII), PrematureEnd.
Status readStreamHeader(InputStream& input, ByteOrder& order);

/// True when the input stands on a byte that only a header line can start with.
bool standsOnStreamHeader(InputStream& input);

/// The byte order of a stream whose header is gone, from the first two-byte operand: units, sizes and points are far
/// more often small numbers than large ones.
ByteOrder guessByteOrder(InputStream& input);

} // namespace quillrip::pclxl
