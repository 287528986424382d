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

} // namespace

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
    header.handles = fields.u16(56);
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
