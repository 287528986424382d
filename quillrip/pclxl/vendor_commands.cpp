#include "quillrip/base/color.h"
#include "quillrip/base/reporter.h"
#include "quillrip/base/units.h"
#include "quillrip/pclxl/commands.h"
#include "quillrip/pclxl/fast_raster.h"
#include "quillrip/pclxl/machine.h"
#include "quillrip/pclxl/page_image.h"
#include "quillrip/pclxl/session.h"
#include "quillrip/pclxl/vendor_image.h"
#include "quillrip/pclxl/vendor_raster.h"
#include "quillrip/raster/compose/raster_operation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace quillrip::pclxl::commands {

namespace {

constexpr std::uint64_t kChunkHeader = 6;

// VUAttr5 of the image's beginning.
constexpr int kGrayStrips = 0;
constexpr int kColorStrips = 4;

std::string hexadecimal(std::uint32_t number)
{
    char text[11];
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(number));
    return text;
}

void passOver(Machine& machine, const std::string& what)
{
    machine.reporter().warn("pclxl.vendor-unique", what + " is passed over");
}

/// The image's upper left corner is the cursor, and each of its pixels is a user unit wide and high.
Status beginVendorImage(Machine& machine)
{
    machine.endVendorImages();
    const AttributeList& operands = machine.operands();
    const int kind = operands.integer(Attribute::VUAttr5, -1);
    if (!machine.page().isOpen() || (kind != kColorStrips && kind != kGrayStrips))
        return {};
    const GraphicsState& state = machine.state();
    if (!state.path.cursor())
        return Error::CurrentCursorUndefined;
    StripCoding coding;
    coding.isColor = kind == kColorStrips;
    ImageSource source;
    BlockLayout& layout = source.layout;
    const Status status = readSourceSize(operands, machine.limits(), layout);
    if (!status.isOk())
        return status;
    layout.components = coding.components();
    layout.rowBytes = layout.width * static_cast<std::size_t>(layout.components);
    PixelMeaning meaning;
    meaning.model = coding.isColor ? ColorModel::Srgb : ColorModel::Gray;
    source.converter = PixelConverter(meaning, layout.width, machine.page().format(), false);
    const Point size { static_cast<double>(layout.width), static_cast<double>(layout.height) };
    machine.vendorImage() = std::make_unique<VendorImage>(VendorImage {
        PageImage(std::move(source), *state.path.cursor(), size, state, machine.page(), machine.drawing()), coding });
    return {};
}

Status readHeader(Machine& machine, VendorChunk kind, EmbeddedData& chunk, std::uint32_t length)
{
    switch (kind) {
    case VendorChunk::QuantizationTables:
        return readQuantizationTables(chunk, length, machine.vendorImage()->coding);
    case VendorChunk::ColorConversion:
        return readColorConversion(chunk, length, machine.vendorImage()->coding);
    default:
        machine.reporter().warn(
            "pclxl.vendor-chunk", "a part of a vendor raster's beginning is not known and is passed over");
        return {};
    }
}

Status readStrip(Machine& machine, VendorChunk kind, EmbeddedData& chunk)
{
    if (kind != VendorChunk::JpegStrip && kind != VendorChunk::ReplacementStrip) {
        machine.reporter().warn("pclxl.vendor-chunk", "a strip of vendor raster in an unknown code is passed over");
        return {};
    }
    VendorImage& vendor = *machine.vendorImage();
    const BlockLayout& layout = vendor.image.source().layout;
    // Drivers end some images with a strip of blank paper below them.
    if (static_cast<std::uint32_t>(std::max(0, machine.operands().integer(Attribute::StartLine))) == layout.height)
        return {};
    RowSpan rows;
    const Status status = readRowSpan(machine.operands(), layout, rows);
    if (!status.isOk() || rows.count == 0)
        return status;
    vendor.image.goToRow(rows.first);
    CallingSink sink([&](const std::uint8_t* pixels) { vendor.image.paintRow(pixels); });
    return decodeVendorStrip(kind, chunk, vendor.coding, layout, rows.count, sink, *machine.limits().work);
}

/// What the image's beginning or a strip carries: chunks, each with a tag and its length.
Status readChunks(Machine& machine, VendorCommand command, std::uint64_t length)
{
    TagReader& reader = machine.reader();
    while (length >= kChunkHeader) {
        EmbeddedData header(reader.input(), kChunkHeader, reader.byteOrder());
        double kind = 0;
        double size = 0;
        if (!header.readNumber(Element::UInt16, kind) || !header.readNumber(Element::UInt32, size))
            return Error::PrematureEnd;
        header.skipRest();
        length -= kChunkHeader;
        const std::uint32_t bytes = static_cast<std::uint32_t>(size);
        if (bytes > length)
            return { Error::IllegalDataLength, Attribute::VUDataLength };
        length -= bytes;
        EmbeddedData chunk(reader.input(), bytes, reader.byteOrder());
        const VendorChunk tag = static_cast<VendorChunk>(static_cast<std::uint16_t>(kind));
        const Status status = command == VendorCommand::BeginImage ? readHeader(machine, tag, chunk, bytes)
                                                                   : readStrip(machine, tag, chunk);
        chunk.skipRest();
        if (chunk.isTruncated())
            return Error::PrematureEnd;
        if (!status.isOk())
            return status;
    }
    return {};
}

/// One image for all strips of the page, as wide and high as the sheet at the strips' resolution.
std::unique_ptr<FastRasterImage> makeFastRaster(Machine& machine, const FastRasterStrip& strip)
{
    static const std::vector<Rgb> s_inks { kWhite, kBlack };
    const SheetRequest& sheet = machine.page().sheet();
    const bool isTurned = (sheet.orientation & 1) != 0;
    const auto dots = [&](double decipoints) {
        return static_cast<std::uint32_t>(std::max(1.0, std::ceil(decipoints / kDecipointsPerInch * strip.resolution)));
    };
    ImageSource source;
    BlockLayout& layout = source.layout;
    layout.width = std::min(dots(isTurned ? sheet.height : sheet.width),
        static_cast<std::uint32_t>(std::max<std::size_t>(strip.rowBytes, 1) * 8));
    layout.height = dots(isTurned ? sheet.width : sheet.height);
    layout.bitsPerComponent = 1;
    layout.rowBytes = strip.rowBytes;
    PixelMeaning meaning;
    meaning.isIndexed = true;
    meaning.bitsPerComponent = 1;
    meaning.palette = &s_inks;
    source.converter
        = PixelConverter(meaning, layout.width, machine.page().format(), machine.state().rop == rop::kSource);
    const Point units = machine.session().unitsPerInch;
    const Point unitsPerDot = units * (1.0 / strip.resolution);
    const Point corner { units.x / FastRasterStrip::kMarginsPerInch + strip.x * unitsPerDot.x,
        units.y / FastRasterStrip::kMarginsPerInch };
    const Point size { layout.width * unitsPerDot.x, layout.height * unitsPerDot.y };
    return std::make_unique<FastRasterImage>(FastRasterImage {
        PageImage(std::move(source), corner, size, machine.state(), machine.page(), machine.drawing()),
        strip.resolution, strip.rowBytes, strip.x });
}

Status readFastRaster(Machine& machine, std::uint64_t length)
{
    if (!machine.page().isOpen())
        return {};
    EmbeddedData data(machine.reader().input(), length, ByteOrder::BigEndian);
    FastRasterStrip strip;
    Status status = readFastRasterHeader(data, strip);
    if (!status.isOk())
        return status;
    if (!strip.isKnown()) {
        passOver(machine, "a strip of fast raster in an unknown code");
    } else {
        std::unique_ptr<FastRasterImage>& page = machine.fastRaster();
        if (!page || !page->takes(strip)) {
            machine.endVendorImages();
            page = makeFastRaster(machine, strip);
        }
        const std::uint32_t first = static_cast<std::uint32_t>(strip.y);
        const std::uint32_t height = page->image.source().layout.height;
        if (first < height && strip.rowBytes > 0) {
            page->image.goToRow(first);
            CallingSink sink([&](const std::uint8_t* pixels) { page->image.paintRow(pixels); });
            status = decodeFastRaster(data, strip, std::min(strip.rows, height - first), sink);
        }
    }
    data.skipRest();
    return status;
}

Status runCommand(Machine& machine, VendorCommand command, std::uint64_t length)
{
    switch (command) {
    case VendorCommand::BeginImage: {
        const Status status = beginVendorImage(machine);
        if (!status.isOk())
            return status;
        break;
    }
    case VendorCommand::ReadStrip:
        break;
    case VendorCommand::EndImage:
        machine.endVendorImages();
        return {};
    case VendorCommand::SetUpFastRaster:
        return {};
    case VendorCommand::FastRaster:
        return readFastRaster(machine, length);
    default:
        passOver(machine,
            "vendor command " + hexadecimal(kRasterVendor << 16 | static_cast<std::uint32_t>(command))
                + " is not known and");
        return {};
    }
    if (!machine.vendorImage()) {
        passOver(machine, "vendor raster that no image has begun, or of an unknown form,");
        return {};
    }
    return readChunks(machine, command, length);
}

} // namespace

/// The payload stands right behind the operator, without a data tag. It is taken whole whatever becomes of it, since
/// what stands in it may look like any tag.
Status vendorUnique(Machine& machine)
{
    const double length = machine.operands().number(Attribute::VUDataLength);
    if (length < 0)
        return { Error::IllegalAttributeValue, Attribute::VUDataLength };
    const std::uint64_t bytes = static_cast<std::uint64_t>(length);
    InputStream& input = machine.reader().input();
    const std::uint64_t end = input.offset() + bytes;

    const double number = machine.operands().number(Attribute::VUExtension);
    const std::uint32_t extension = number < 0 ? 0 : static_cast<std::uint32_t>(number);
    Status status;
    if (extension >> 16 == kRasterVendor)
        status = runCommand(machine, static_cast<VendorCommand>(extension & 0xFFFF), bytes);
    else
        passOver(machine, "vendor command " + hexadecimal(extension) + " is not known and");
    const std::uint64_t rest = end - input.offset();
    if (input.skip(rest) != rest && !status.endsJob())
        return Error::PrematureEnd;
    return status;
}

} // namespace quillrip::pclxl::commands
