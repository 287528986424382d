#pragma once

#include <cstdint>

namespace quillrip::pcl {

/// Whose sheets, margins and habits a job counts on.
enum class PrinterFamily : std::uint8_t {
    Laser,
    Inkjet, ///< PCL 3 with text and raster
    InkjetRaster, ///< PCL 3 as a raster language: no text margins, and text is a broken command, never printed
};

/// What a printer's panel or the job control language sets before a PCL job starts: the user default environment.
/// Every reset returns to it.
struct Environment {
    int pageSize = 2; ///< page size code as in ESC&l#A: 2 Letter, 26 A4; 101 takes the custom size below
    bool isPaperNamed = false; ///< false: pageSize is a guess, and the sheet may turn out longer
    double customWidth = 6120; ///< decipoints, short edge; for page size 101
    double customLength = 7920; ///< decipoints, long edge; for page size 101
    int orientation = 0; ///< 0 portrait, 1 landscape, 2 reverse portrait, 3 reverse landscape
    int formLines = 0; ///< lines on a page at the default spacing; 0: six lines to the inch
    double resolution = 0; ///< dots per inch; 0: the job's own commands tell
    int symbolSet = 277; ///< number * 32 + letter - 64; 277 is Roman-8 (8U)
    int fontNumber = 0; ///< internal font: 0 Courier, else the built-in face of that place in the font list, from 1
    double pitch = 10; ///< characters to the inch
    double pointSize = 12; ///< points
    int lineTermination = 0; ///< as in ESC&k#G
    bool wrapLines = false; ///< ESC&s0C from the start
    /// As the job language named it; a job can show later that it is an ink-jet's.
    PrinterFamily family = PrinterFamily::Laser;
    bool isLanguageNamed = false; ///< the job language entered PCL: its lines within the job are no text
    /// The raster language of plotters (HP RTL): a subset without text and without pages of its own.
    bool isPlotterRaster = false;
};

} // namespace quillrip::pcl
