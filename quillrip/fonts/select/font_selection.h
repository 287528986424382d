#pragma once

#include "quillrip/fonts/font_library.h"

#include <cstdint>
#include <vector>

namespace quillrip {

/// A face that takes part in selection by characteristics.
struct SelectionCandidate {
    const FontTraits* traits = nullptr;
    bool isSoft = false;
    /// Lower goes first among equals: IDs of soft fonts, places in the list of built-in faces.
    int order = 0;
    bool isAddOn = false; ///< built-in face of later devices: only when its family is asked for
};

/// Whether a face can print a symbol set: bound faces only their own, unbound ones by their complement.
bool canPrint(const FontTraits& traits, std::uint16_t symbolSetNumber, const SymbolSet* set);

/// The printer's order of priority after the symbol set: spacing, pitch, height, style, weight, typeface, resolution,
/// location, orientation. `left` are indices into `candidates` and not empty; one of them is the result.
std::size_t selectByCharacteristics(const std::vector<SelectionCandidate>& candidates, std::vector<std::size_t> left,
    const FontRequest& request, const SelectionContext& context);

} // namespace quillrip
