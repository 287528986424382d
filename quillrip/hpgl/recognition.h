#pragma once

#include "quillrip/base/bytes.h"

namespace quillrip::hpgl {

/// Whether bytes are the start of a plot that stands on its own. `window` is the start of the data (4 KiB are enough;
/// less only when there is no more).
///
/// ESC%-1B and ESC. decide at once. ESC%0B and ESC%1B are PCL 5's way into HP-GL/2, so they are no plot of their own.
/// Otherwise the first commands must all be known ones with believable operands, drawn from those that plots start
/// with: prose, listings and tables of capital letters fail that.
bool looksLikePlot(ByteView window);

} // namespace quillrip::hpgl
