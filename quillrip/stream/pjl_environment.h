#pragma once

#include "quillrip/stream/pjl_line.h"

#include <optional>
#include <string>

namespace quillrip::stream {

/// The variables of the Printer Job Language that change what a page looks like: what SET lines left behind. A value
/// that was not set, or that makes no sense, is absent.
struct PjlEnvironment {
    std::optional<int> paperCode; ///< PAPER, as the number of PCL's page size command; 101 is custom
    std::optional<double> customWidth; ///< PAPERWIDTH, decipoints
    std::optional<double> customLength; ///< PAPERLENGTH, decipoints
    std::optional<int> orientation; ///< ORIENTATION: 0 portrait, 1 landscape
    std::optional<int> formLines; ///< FORMLINES, 5 to 128
    std::optional<int> resolution; ///< RESOLUTION, dots per inch
    bool hasFineRaster = false; ///< RAS1200MODE: raster of 1200 dots per inch, whatever RESOLUTION says
    std::optional<int> symbolSet; ///< LPARM:PCL SYMSET, as PCL's kind value: number * 32 + letter - 64
    std::optional<int> fontNumber; ///< LPARM:PCL FONTNUMBER
    std::optional<double> pitch; ///< LPARM:PCL PITCH, characters to the inch
    std::optional<double> pointSize; ///< LPARM:PCL PTSIZE, points
    std::optional<int> lineTermination; ///< LPARM:PCL LINETERMINATION, 0 to 3
    bool isGray = false; ///< RENDERMODE=GRAYSCALE and its vendors' forms
    std::string personality; ///< PERSONALITY, upper case; empty or AUTO: find out

    /// What `@PJL SET [LPARM:language] name=value` does; names that change no page are taken without effect.
    void set(const std::string& language, const std::string& name, const std::string& value);
};

/// Width and height of a page size by PCL's number, in decipoints, portrait; nothing for one that has no name here.
struct PaperSize {
    double width = 0;
    double height = 0;
};
std::optional<PaperSize> paperSizeOfCode(int code);

} // namespace quillrip::stream
