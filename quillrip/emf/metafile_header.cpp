#include "quillrip/emf/metafile_header.h"

#include "quillrip/base/units.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace quillrip::emf {

namespace {

constexpr std::uint32_t kSignature = 0x464D4520; // " EMF"
constexpr std::size_t kBaseSize = 88;
constexpr std::size_t kFirstExtension = 100;
constexpr std::size_t kSecondExtension = 108;

// How far the header reaches: what follows it lies behind its fixed part, and the fixed part has grown over time.
std::size_t fixedSize(const Fields& fields, std::size_t recordSize)
{
    std::size_t size = recordSize;
    const std::uint64_t description = fields.u32(64);
    if (description >= kBaseSize && description + 2 * std::uint64_t { fields.u32(60) } <= recordSize)
        size = static_cast<std::size_t>(description);
    if (size >= kFirstExtension) {
        const std::uint64_t format = fields.u32(92);
        if (format >= kFirstExtension && format < size && format + fields.u32(88) <= recordSize)
            size = static_cast<std::size_t>(format);
    }
    return size;
}

bool agree(double micrometers, double millimeters)
{
    constexpr double kTolerance = 0.02;
    return std::abs(micrometers / 1000 - millimeters) <= kTolerance * millimeters;
}

// Whole millimetres make the resolution rough: 360.23 is meant to be 360.
double snapped(double dotsPerInch)
{
    static const std::array s_usual { 72.0, 75.0, 96.0, 100.0, 120.0, 144.0, 150.0, 180.0, 200.0, 203.0, 240.0, 300.0,
        360.0, 400.0, 600.0, 720.0, 1200.0, 1440.0, 2400.0, 2880.0 };
    constexpr double kTolerance = 0.01;
    double best = dotsPerInch;
    double least = kTolerance * dotsPerInch;
    for (const double usual : s_usual) {
        if (std::abs(usual - dotsPerInch) <= least) {
            least = std::abs(usual - dotsPerInch);
            best = usual;
        }
    }
    return best;
}

/// How many reference pixels the logical units have that the first drawing counts in; 1 when nothing is said at once.
Size firstScale(ByteView metafile)
{
    constexpr std::uint32_t kSetWindowExtent = 9;
    constexpr std::uint32_t kSetViewportExtent = 11;
    constexpr std::size_t kSmallestRecord = 8;
    constexpr int kPreamble = 32; // records
    const Fields fields(metafile);
    Size window;
    Size viewport;
    std::size_t at = 0;
    for (int i = 0; i < kPreamble && fields.has(at, kSmallestRecord); ++i) {
        const std::uint32_t size = fields.u32(at + 4);
        const Size extent { std::abs(double(fields.i32(at + 8))), std::abs(double(fields.i32(at + 12))) };
        if (fields.u32(at) == kSetWindowExtent)
            window = extent;
        else if (fields.u32(at) == kSetViewportExtent)
            viewport = extent;
        if (size < kSmallestRecord || size > metafile.size - at)
            break;
        at += size;
    }
    const bool isKnown = window.width > 0 && window.height > 0 && viewport.width > 0 && viewport.height > 0;
    return isKnown ? Size { viewport.width / window.width, viewport.height / window.height } : Size { 1, 1 };
}

Box scaled(const Box& box, Size scale)
{
    const auto across = [&](double x) { return static_cast<std::int32_t>(std::lround(x * scale.width)); };
    const auto down = [&](double y) { return static_cast<std::int32_t>(std::lround(y * scale.height)); };
    return { across(box.left), down(box.top), across(box.right), down(box.bottom) };
}

bool isWithin(const Box& bounds, Size device)
{
    // Drawings may go beyond the screen that they were made on, but not by a multiple of it.
    constexpr double kReach = 2;
    return std::max(std::abs(double(bounds.left)), std::abs(double(bounds.right))) <= kReach * device.width
        && std::max(std::abs(double(bounds.top)), std::abs(double(bounds.bottom))) <= kReach * device.height;
}

} // namespace

// A library that many programs write metafiles with (libEMF) counts bounds and frame in logical units. Where a drawing
// in many units to the pixel follows, nothing of it would lie within such a frame.
void MetafileHeader::mendLogicalBounds(ByteView metafile)
{
    if (!hasBounds() || !hasFrame() || isWithin(bounds, device))
        return;
    const Size scale = firstScale(metafile);
    const bool isFiner = scale.width < 1 && scale.height < 1;
    if (!isFiner || !isWithin(scaled(bounds, scale), device))
        return;
    bounds = scaled(bounds, scale);
    frame = scaled(frame, scale);
}

std::optional<MetafileHeader> MetafileHeader::read(ByteView metafile)
{
    const Fields fields(metafile);
    const std::uint32_t size = fields.u32(4);
    if (metafile.size < kBaseSize || fields.u32(0) != 1 || fields.u32(40) != kSignature || size < kBaseSize)
        return std::nullopt;
    MetafileHeader header;
    header.size = size;
    header.bounds = fields.box(8);
    header.frame = fields.box(24);
    header.device = { double(fields.i32(72)), double(fields.i32(76)) };
    header.millimeters = { double(fields.i32(80)), double(fields.i32(84)) };
    if (header.device.width <= 0 || header.device.height <= 0 || header.millimeters.width <= 0
        || header.millimeters.height <= 0) {
        // A header with impossible sizes is taken for a screen.
        header.device = { kScreenDotsPerInch * 10, kScreenDotsPerInch * 10 };
        header.millimeters = { kMillimetresPerInch * 10, kMillimetresPerInch * 10 };
    }
    if (fixedSize(fields, std::min<std::size_t>(size, metafile.size)) >= kSecondExtension) {
        const Size micrometers { double(fields.i32(100)), double(fields.i32(104)) };
        if (agree(micrometers.width, header.millimeters.width) && agree(micrometers.height, header.millimeters.height))
            header.micrometers = micrometers;
    }
    header.mendLogicalBounds(metafile);
    return header;
}

Size MetafileHeader::dotsPerInch() const
{
    const bool isExact = micrometers.width > 0 && micrometers.height > 0;
    const Size length = isExact ? Size { micrometers.width / 1000, micrometers.height / 1000 } : Size { millimeters };
    return { snapped(device.width * kMillimetresPerInch / length.width),
        snapped(device.height * kMillimetresPerInch / length.height) };
}

Size MetafileHeader::printableArea() const
{
    const Size resolution = dotsPerInch();
    return { device.width * kMillimetresPerInch / resolution.width,
        device.height * kMillimetresPerInch / resolution.height };
}

Size MetafileHeader::pixelsPerMillimeter() const
{
    return { device.width / millimeters.width, device.height / millimeters.height };
}

} // namespace quillrip::emf
