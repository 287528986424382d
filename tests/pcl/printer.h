#pragma once

#include "quillrip/pcl/interpreter.h"
#include "tests/support/memory_page_device.h"

#include <string>
#include <vector>

namespace quillrip::test {

/// ESC and what follows it.
std::string e(const std::string& sequence);
/// ESC *p #x #Y.
std::string at(int x, int y);
/// Numbers as bytes.
std::string bytes(std::initializer_list<int> values);
/// A command with its data, its byte count filled in: command("*b", "W", data).
std::string command(const std::string& prefix, const std::string& terminator, const std::string& data);

/// Reset, Letter, portrait, no top margin: place (0, 0) of ESC*p is the logical page's corner, at pixel 75, 0 of 300
/// dpi.
extern const std::string kStart;
constexpr int kLeft = 75;

/// What came out of a job.
struct Printed {
    RunStatus status = RunStatus::Done;
    std::vector<PageBitmap> pages;
    std::vector<SheetRequest> sheets;
    std::vector<Diagnostic> diagnostics;
    int universalExits = 0; ///< that ended a stretch and were left in the input

    bool warnedOf(const std::string& kind) const;
    bool isBlack(int x, int y, std::size_t page = 0) const;
    Rgb color(int x, int y, std::size_t page = 0) const;
    std::size_t blackPixels(std::size_t page = 0) const;
    /// The smallest rectangle around all ink; empty when there is none.
    PixelRect ink(std::size_t page = 0) const;
    std::string art(const PixelRect& rect, std::size_t page = 0) const;
};

/// A printer's settings for a test.
struct PrinterSettings {
    PixelFormat format = PixelFormat::Bilevel;
    double dotsPerInch = 300;
    pcl::Environment environment;
    Limits limits;
};

/// Prints a whole job, one stretch of PCL after the other; universal exits between them are skipped.
Printed print(const std::string& job, const PrinterSettings& settings = {});
Printed printColor(const std::string& job);

} // namespace quillrip::test
