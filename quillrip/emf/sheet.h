#pragma once

#include "quillrip/emf/devmode.h"
#include "quillrip/emf/metafile_header.h"
#include "quillrip/raster/page_device.h"

#include <optional>

namespace quillrip::emf {

/// The sheet of a page and where the reference device's pixels lie on it.
struct SheetPlan {
    SheetRequest request;
    Matrix referenceToPage; ///< reference pixels to decipoints of page space
    bool isGuessed = false; ///< the settings name no sheet that the picture has room on
};

/// A single picture: its frame is the sheet. Nothing when it is empty.
std::optional<SheetPlan> planFrame(const MetafileHeader& header);

/// A page of a spool file: the sheet that its settings name, with the printable area in the middle; where the printable
/// area does not fit, the standard sheet that it fits best; without settings, the printable area alone. The picture
/// decides whether the sheet lies across.
SheetPlan planSheet(const MetafileHeader& header, const std::optional<Devmode>& settings);

} // namespace quillrip::emf
