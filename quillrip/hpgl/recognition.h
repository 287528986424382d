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

/// Whether bytes are the start of a plot with raster in it, which begins with the plotter's raster language (HP RTL)
/// and enters HP-GL/2 from there: by ESC%0B and ESC%1B, as PCL 5 does. What tells it from PCL is that nothing of PCL
/// stands in front but what the raster language has too, that the plot asks for its page (PS, or BP), which PCL's
/// HP-GL/2 does not obey, and that raster follows; or that PS gives both edges of the page and BP stands there; or that
/// the page or the raster is larger than a printer's. `window`: as much as can be had, up to some 64 KiB.
bool looksLikeRasterPlot(ByteView window);

} // namespace quillrip::hpgl
