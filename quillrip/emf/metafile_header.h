#pragma once

#include "quillrip/emf/record.h"

#include <cstdint>
#include <optional>

namespace quillrip::emf {

/// Of the screens that metafiles are made on.
constexpr double kScreenDotsPerInch = 96;

struct Size {
    double width = 0;
    double height = 0;
};

/// The first record of a metafile (MS-EMF 2.3.4.2): what it was recorded for.
struct MetafileHeader {
    Box bounds; ///< reference pixels, inclusive; right < left for an empty picture
    Box frame; ///< 0.01 mm
    Size device; ///< pixels of the reference device
    Size millimeters; ///< of the reference device, whole numbers
    Size micrometers; ///< of the reference device; 0: not told, or not believable
    std::uint32_t size = 0; ///< bytes of the record

    /// Nothing when the bytes are not the beginning of a metafile.
    static std::optional<MetafileHeader> read(ByteView metafile);

    /// Of the reference device; whole where the header is exact enough to tell.
    Size dotsPerInch() const;
    /// The device's printable area in mm.
    Size printableArea() const;
    /// Reference pixels of a millimetre by the header's whole millimetres, which the mapping modes count with.
    Size pixelsPerMillimeter() const;
    bool hasFrame() const { return frame.right > frame.left && frame.bottom > frame.top; }
    bool hasBounds() const { return bounds.right >= bounds.left && bounds.bottom >= bounds.top; }

private:
    void mendLogicalBounds(ByteView metafile);
};

} // namespace quillrip::emf
