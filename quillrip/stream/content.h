#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/escape_sequence.h"

#include <cstdint>
#include <string>

namespace quillrip::stream {

using quillrip::kUniversalExitLength;
using quillrip::startsWithUniversalExit;

/// What a place of the input holds, found from its bytes alone; a file's name never counts.
enum class ContentKind : std::uint8_t {
    Nothing, ///< only padding up to the end of the input
    Pjl, ///< a Universal Exit Language, or a line that begins with @PJL
    Pcl, ///< PCL 5
    PclXl,
    Emf, ///< a spool file of metafiles, or a metafile alone, of Windows
    Plot, ///< HP-GL or HP-GL/2 without PCL around it
    Text, ///< plain text, which a printer prints by its PCL 5 defaults
    PostScript,
    Pdf,
    Xps, ///< XPS or OpenXPS
    Prescribe, ///< a control block that ends with EXIT; and may stand before another language
    Foreign, ///< known, and not for quillrip: `name` says what it is
    Unknown,
};

struct Content {
    ContentKind kind = ContentKind::Unknown;
    std::size_t padding = 0; ///< bytes in front that belong to nothing and may be dropped
    std::string name; ///< with Foreign and Unknown: for a message, such as "a PNG image"
};

/// Whether bytes are a plot of their own; the plotter language knows it best.
using PlotTest = bool (*)(ByteView);

struct RecognitionContext {
    bool isWholeInput = false; ///< the window reaches to the end of the input
    bool isStartOfInput = false; ///< the window begins with the input's first byte
    bool isNamed = false; ///< the job language named the language: only the very beginning can speak against it
    PlotTest isPlot = nullptr; ///< null: nothing is a plot
};

/// Whether the Universal Exit at the start of `bytes` is meant as one: `bytes` holds what a job can go on with behind
/// it, or ends there. Binary data can hold the nine bytes by accident.
bool isBelievableUniversalExit(ByteView bytes);

/// Whether the bytes begin with the line that opens a PCL XL stream, such as `) HP-PCL XL;2;0;`.
bool startsWithPclXlHeader(ByteView bytes);

/// Says what `window` begins with. The more of the input it shows (some 64 KiB), the more padding is seen through.
Content recognise(ByteView window, const RecognitionContext& context);

} // namespace quillrip::stream
