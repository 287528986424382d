#include "quillrip/pclxl/machine.h"

#include <cstdio>

namespace quillrip::pclxl {

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

} // namespace

/// The payload stands right behind the operator, without a data tag. It is taken whole whatever becomes of it, since
/// what stands in it may look like any tag.
Status Machine::vendorUnique()
{
    const double length = m_operands.number(Attribute::VUDataLength);
    if (length < 0)
        return { Error::IllegalAttributeValue, Attribute::VUDataLength };
    const std::uint64_t bytes = static_cast<std::uint64_t>(length);
    InputStream& input = m_reader->input();
    const std::uint64_t end = input.offset() + bytes;

    const double number = m_operands.number(Attribute::VUExtension);
    const std::uint32_t extension = number < 0 ? 0 : static_cast<std::uint32_t>(number);
    Status status;
    if (extension >> 16 == kRasterVendor)
        status = runVendorCommand(static_cast<VendorCommand>(extension & 0xFFFF), bytes);
    else
        warn("pclxl.vendor-unique", "vendor command " + hexadecimal(extension) + " is not known and is passed over");
    const std::uint64_t rest = end - input.offset();
    if (input.skip(rest) != rest && !status.endsJob())
        return Error::PrematureEnd;
    return status;
}

Status Machine::runVendorCommand(VendorCommand command, std::uint64_t length)
{
    switch (command) {
    case VendorCommand::BeginImage: {
        const Status status = beginVendorImage();
        if (!status.isOk())
            return status;
        break;
    }
    case VendorCommand::ReadStrip:
        break;
    case VendorCommand::EndImage:
        endVendorImage();
        return {};
    case VendorCommand::SetUpFastRaster:
    case VendorCommand::FastRaster:
        warn("pclxl.vendor-unique", "fast raster, a vendor's code for bits, is not supported and is passed over");
        return {};
    default:
        warn("pclxl.vendor-unique",
            "vendor command " + hexadecimal(kRasterVendor << 16 | static_cast<std::uint32_t>(command))
                + " is not known and is passed over");
        return {};
    }
    if (!m_vendorImage) {
        warn("pclxl.vendor-unique", "vendor raster that no image has begun, or of an unknown form, is passed over");
        return {};
    }

    while (length >= kChunkHeader) {
        EmbeddedData header(m_reader->input(), kChunkHeader, m_reader->byteOrder());
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
        EmbeddedData chunk(m_reader->input(), bytes, m_reader->byteOrder());
        const VendorChunk tag = static_cast<VendorChunk>(static_cast<std::uint16_t>(kind));
        const Status status
            = command == VendorCommand::BeginImage ? readVendorHeader(tag, chunk, bytes) : readVendorStrip(tag, chunk);
        chunk.skipRest();
        if (chunk.isTruncated())
            return Error::PrematureEnd;
        if (!status.isOk())
            return status;
    }
    return {};
}

/// The image's upper left corner is the cursor, and each of its pixels is a user unit wide and high.
Status Machine::beginVendorImage()
{
    endVendorImage();
    const int kind = m_operands.integer(Attribute::VUAttr5, -1);
    if (!m_page.isOpen || (kind != kColorStrips && kind != kGrayStrips))
        return {};
    if (!m_state.cursor)
        return Error::CurrentCursorUndefined;
    auto vendor = std::make_unique<VendorImage>();
    vendor->coding.isColor = kind == kColorStrips;
    BlockLayout& layout = vendor->image.layout;
    const Status size = readSourceSize(layout);
    if (!size.isOk())
        return size;
    layout.components = vendor->coding.components();
    layout.rowBytes = layout.width * static_cast<std::size_t>(layout.components);
    PixelMeaning meaning;
    meaning.space = vendor->coding.isColor ? ColorSpace::Srgb : ColorSpace::Gray;
    vendor->image.converter = PixelConverter(meaning, layout.width, m_page.canvas.format, false);
    preparePaint(
        vendor->image, *m_state.cursor, { static_cast<double>(layout.width), static_cast<double>(layout.height) });
    m_vendorImage = std::move(vendor);
    return {};
}

Status Machine::readVendorHeader(VendorChunk kind, EmbeddedData& chunk, std::uint32_t length)
{
    switch (kind) {
    case VendorChunk::QuantizationTables:
        return readQuantizationTables(chunk, length, m_vendorImage->coding);
    case VendorChunk::ColorConversion:
        return readColorConversion(chunk, length, m_vendorImage->coding);
    default:
        warn("pclxl.vendor-chunk", "a part of a vendor raster's beginning is not known and is passed over");
        return {};
    }
}

Status Machine::readVendorStrip(VendorChunk kind, EmbeddedData& chunk)
{
    if (kind != VendorChunk::JpegStrip && kind != VendorChunk::ReplacementStrip) {
        warn("pclxl.vendor-chunk", "a strip of vendor raster in an unknown code is passed over");
        return {};
    }
    ImageInProgress& image = m_vendorImage->image;
    const Status status = checkBlock(image.layout);
    if (!status.isOk())
        return status;
    const int start = m_operands.integer(Attribute::StartLine);
    const int rows = m_operands.integer(Attribute::BlockHeight);
    if (rows == 0)
        return {};
    if (image.nextRow != start)
        beginImagePainter(image, start);
    CallingSink sink([&](const std::uint8_t* pixels) { paintRow(image, pixels); });
    return decodeVendorStrip(kind, chunk, m_vendorImage->coding, image.layout, static_cast<std::uint32_t>(rows), sink);
}

void Machine::endVendorImage()
{
    if (m_vendorImage)
        finishPainter(m_vendorImage->image);
    m_vendorImage.reset();
}

} // namespace quillrip::pclxl
