#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/emf/metafile_header.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillrip::emf {

/// What the print settings of a job (DEVMODE of MS-RPRN) tell of the sheet.
struct Devmode {
    bool isLandscape = false;
    int paper = 0; ///< DMPAPER number; 0: not told
    Size ownSize; ///< mm, as given beside the number; 0: not told
    int scale = 100; ///< percent
    std::string form; ///< the form's name; may be empty

    /// Nothing when the bytes hold no DEVMODE of either kind (two or one bytes a character).
    static std::optional<Devmode> read(ByteView data);

    /// Sheet sizes in mm that it may mean, the surest first, turned where it says landscape.
    std::vector<Size> sheets() const;
};

/// Sheet of a DMPAPER number in mm; 0 x 0 for unknown ones.
Size sheetOfPaperNumber(int number);
/// Sheet of a form's name, such as "Letter" or "A4"; 0 x 0 for unknown ones.
Size sheetOfForm(const std::string& name);

} // namespace quillrip::emf
