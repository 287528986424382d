#pragma once

#include "quillrip/base/input_stream.h"
#include "quillrip/emf/image_rows.h"
#include "quillrip/emf/interpreter.h"
#include "tests/support/memory_page_device.h"
#include "tests/support/recording_sink.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace quillrip::test {

using Bytes = std::vector<std::uint8_t>;

/// Appends little-endian numbers, and other bytes.
Bytes words(std::initializer_list<std::int64_t> values);
std::int64_t bitsOf(float value);
Bytes operator+(Bytes first, const Bytes& second);

/// Records with their size; `tail` follows the numbers and is filled up to a multiple of four.
Bytes record(std::uint32_t number, std::initializer_list<std::int64_t> values = {}, const Bytes& tail = {});
/// With room for a box that nobody looks at in front.
Bytes boundedRecord(std::uint32_t number, std::initializer_list<std::int64_t> values, const Bytes& tail = {});

/// What the header of a metafile tells. The default is 300 dpi on 215.9 x 279.4 mm: reference pixels are the page's.
struct Reference {
    int width = 2550;
    int height = 3300;
    int millimetersX = 216;
    int millimetersY = 279;
    int micrometersX = 215900;
    int micrometersY = 279400;
    int frameRight = 21600; ///< 0.01 mm
    int frameBottom = 27900;
    bool hasMicrometers = true;
    int handles = 16;
};

/// A whole metafile around records.
Bytes metafile(const Bytes& records, const Reference& reference = {});

/// Spool records and their file.
Bytes spoolHeader();
Bytes spoolRecord(std::uint32_t number, const Bytes& data);
/// METAFILE_DATA, what stands behind it, and the record that completes it.
Bytes spoolPage(const Bytes& metafile, const Bytes& between = {});
/// The settings' paper number, sizes in 0.1 mm, and orientation (1 upright, 2 across).
Bytes devmode(int paper, int orientation = 1, int length = 0, int width = 0);

/// The short notation of stock objects: null pen, black brush, null brush, black pen.
Bytes nullPen();
Bytes blackBrush();
Bytes nullBrush();
Bytes blackPen();
Bytes rectangle(int left, int top, int right, int bottom);

/// A 40-byte bitmap header with its colour table (blue, green, red, 0 each).
Bytes bitmapHeader(int width, int height, int bits, int compression = 0, const Bytes& table = {}, int imageSize = 0);

/// All pixels of a bitmap; null ones when it cannot be read. `problem` as openDib() gives it.
emf::Pixels decodedDib(
    const Bytes& header, const Bytes& bits, std::string* problem = nullptr, const emf::DibContext& context = {});

/// Plays a job at 300 dpi.
class Played {
public:
    explicit Played(
        const Bytes& job, PixelFormat format = PixelFormat::Rgb24, double dotsPerInch = 300, const Limits& limits = {});

    std::size_t pages() const { return device.pages().size(); }
    Rgb pixel(int x, int y, std::size_t page = 0) const { return device.pages().at(page).pixel(x, y); }
    bool hasInk(int x, int y, std::size_t page = 0) const { return pixel(x, y, page) != Rgb { 255, 255, 255 }; }
    /// The smallest rectangle around all ink, inclusive: "left,top,right,bottom"; empty without ink.
    std::string ink(std::size_t page = 0) const;
    std::size_t inkCount(std::size_t page = 0) const;

    MemoryPageDevice device;
    RecordingSink report { RecordingSink::Listens::ToTraceToo };
    emf::Interpreter::End end = emf::Interpreter::End::InputEnded;
    RunStatus status = RunStatus::Done;
};

/// Plays records as the only page of a spool file.
inline Played play(const Bytes& records) { return Played(spoolHeader() + spoolPage(metafile(records))); }

constexpr Rgb kWhitePixel { 255, 255, 255 };
constexpr Rgb kBlackPixel { 0, 0, 0 };
constexpr Rgb kRedPixel { 255, 0, 0 };
constexpr Rgb kGreenPixel { 0, 255, 0 };
constexpr Rgb kBluePixel { 0, 0, 255 };

} // namespace quillrip::test
