#include "quillrip/pclxl/machine.h"

#include <algorithm>
#include <cmath>

namespace quillrip::pclxl {

namespace {

constexpr std::uint8_t kCopySource = 204;
constexpr std::uint8_t kTextureOrSource = 252;

} // namespace

/// SourceWidth and SourceHeight, which every image has.
Status Machine::readSourceSize(BlockLayout& layout) const
{
    const int width = m_operands.integer(Attribute::SourceWidth);
    const int height = m_operands.integer(Attribute::SourceHeight);
    if (width < 1)
        return { Error::IllegalAttributeValue, Attribute::SourceWidth };
    if (height < 1)
        return { Error::IllegalAttributeValue, Attribute::SourceHeight };
    layout.width = static_cast<std::uint32_t>(width);
    layout.height = static_cast<std::uint32_t>(height);
    // A row takes three bytes a pixel at most, and padding.
    return std::uint64_t { layout.width } * 3 + 256 > m_limits.imageRowBytes ? Status(Error::LimitExceeded) : Status();
}

/// Layout and pixel conversion from the attributes that images and patterns have in common.
Status Machine::describeImage(ImageInProgress& image, PixelFormat target)
{
    BlockLayout& layout = image.layout;
    const Status size = readSourceSize(layout);
    if (!size.isOk())
        return size;
    int depth = 0;
    if (m_operands.has(Attribute::ColorDepth)) {
        depth = m_operands.integer(Attribute::ColorDepth);
    } else {
        // One depth for each component; they are all alike in all that is known.
        const ArrayView depths = m_operands.array(Attribute::ColorDepthArray);
        if (depths.empty())
            return { Error::MissingAttribute, Attribute::ColorDepth };
        if (depths.at(0) > 2)
            return { Error::IllegalAttributeValue, Attribute::ColorDepthArray };
        depth = static_cast<int>(depths.at(0));
    }

    PixelMeaning meaning;
    meaning.space = m_state.colorSpace;
    meaning.bitsPerComponent = depth == 0 ? 1 : depth == 1 ? 4 : 8;
    meaning.isIndexed = m_operands.integer(Attribute::ColorMapping) == 1;
    if (meaning.isIndexed) {
        if (!m_state.palette)
            return { Error::MissingPalette, Attribute::ColorMapping };
        if (m_state.palette->size() < std::size_t { 1 } << meaning.bitsPerComponent)
            return { Error::ImagePaletteMismatch, Attribute::ColorDepth };
        meaning.palette = m_state.palette.get();
    }
    layout.components = meaning.isIndexed ? 1 : componentsOf(meaning.space);
    layout.bitsPerComponent = meaning.bitsPerComponent;
    const std::uint64_t bits
        = std::uint64_t { layout.width } * static_cast<std::uint64_t>(layout.components * layout.bitsPerComponent);
    layout.rowBytes = static_cast<std::size_t>((bits + 7) / 8);
    image.converter = PixelConverter(meaning, layout.width, target, m_state.rop == kCopySource);
    return {};
}

Status Machine::beginImage()
{
    if (!m_state.cursor && !m_operands.has(Attribute::DestinationBox))
        return Error::CurrentCursorUndefined;
    m_image = {};
    const Status status = describeImage(m_image, m_page.canvas.format);
    if (!status.isOk())
        return status;

    Point corner;
    Point size;
    if (const Operand* box = m_operands.find(Attribute::DestinationBox)) {
        corner = { std::min(box->numbers[0], box->numbers[2]), std::min(box->numbers[1], box->numbers[3]) };
        size = { std::abs(box->numbers[2] - box->numbers[0]), std::abs(box->numbers[3] - box->numbers[1]) };
    } else {
        corner = *m_state.cursor;
        size = m_operands.point(Attribute::DestinationSize);
    }
    if (size.x < 0 || size.y < 0)
        return { Error::IllegalAttributeValue, Attribute::DestinationSize };
    preparePaint(m_image, corner, size);
    m_definition = Definition::Image;
    return {};
}

/// Where the image goes, in user units, and how its pixels are painted there.
void Machine::preparePaint(ImageInProgress& image, Point corner, Point size)
{
    image.imageToDevice = Matrix::scaling(size.x / image.layout.width, size.y / image.layout.height)
        * Matrix::translation(corner.x, corner.y) * m_state.userToDevice;
    image.isVisible = size.x > 0 && size.y > 0 && image.imageToDevice.isInvertible();

    PaintState& paint = image.paint;
    paint.rop = m_state.rop;
    paint.sourceTransparent = m_state.sourceTransparent;
    paint.patternTransparent = m_state.paintTransparent;
    paint.clip = m_state.clip;
    if (image.converter.hasInk()) {
        // A copy of a two-coloured source is the same as its ink painted in that colour.
        paint.rop = kTextureOrSource;
        paint.texture.color = image.converter.ink();
    } else if (m_state.brush.kind != Ink::Kind::None) {
        paint.texture = textureOf(m_state.brush);
    }
}

/// A painter for the rows from `row` on: the image's first, or those behind a gap.
void Machine::beginImagePainter(ImageInProgress& image, std::int64_t row)
{
    finishPainter(image);
    image.nextRow = row;
    if (!image.isVisible)
        return;
    ImageGeometry geometry;
    geometry.format = image.converter.format();
    geometry.width = static_cast<int>(image.layout.width);
    geometry.height = static_cast<int>(image.layout.height - row);
    geometry.imageToDevice = Matrix::translation(0, static_cast<double>(row)) * image.imageToDevice;
    geometry.smooth = geometry.format != ImageFormat::Mono;
    image.painter = m_page.canvas.painter->beginImage(geometry, image.paint);
}

void Machine::finishPainter(ImageInProgress& image)
{
    if (image.painter)
        image.painter->finish();
    image.painter.reset();
}

void Machine::paintRow(ImageInProgress& image, const std::uint8_t* pixels)
{
    ++image.nextRow;
    if (image.painter)
        image.painter->row(image.converter.convert(pixels));
}

Status Machine::readImage()
{
    return readBlock(
        [this](std::int64_t row) {
            if (m_image.nextRow != row)
                beginImagePainter(m_image, row);
        },
        [this](const std::uint8_t* pixels) { paintRow(m_image, pixels); });
}

/// The block's rows have to lie within the image.
Status Machine::checkBlock(const BlockLayout& layout) const
{
    const int start = m_operands.integer(Attribute::StartLine);
    const int rows = m_operands.integer(Attribute::BlockHeight);
    if (start < 0 || static_cast<std::uint32_t>(start) >= layout.height)
        return { Error::IllegalAttributeValue, Attribute::StartLine };
    if (rows < 0 || static_cast<std::uint32_t>(rows) > layout.height - static_cast<std::uint32_t>(start))
        return { Error::IllegalAttributeValue, Attribute::BlockHeight };
    return {};
}

/// Checks the block against the image, then decodes it: `begin` hears of its first row, `each` gets the rows.
Status Machine::readBlock(
    const std::function<void(std::int64_t)>& begin, const std::function<void(const std::uint8_t*)>& each)
{
    BlockLayout& layout = m_image.layout;
    const Status status = checkBlock(layout);
    if (!status.isOk())
        return status;
    const int start = m_operands.integer(Attribute::StartLine);
    const int rows = m_operands.integer(Attribute::BlockHeight);
    const int padding = m_operands.integer(Attribute::PadBytesMultiple, 4);
    if (padding < 1 || padding > 255)
        return { Error::IllegalAttributeValue, Attribute::PadBytesMultiple };
    layout.padding = static_cast<std::uint32_t>(padding);
    const Compression compression = static_cast<Compression>(m_operands.integer(Attribute::CompressMode));
    const bool isJpegPossible = layout.bitsPerComponent == 8;
    if (compression == Compression::Jpeg && !isJpegPossible)
        return { Error::IllegalAttributeCombination, Attribute::CompressMode };
    if (rows == 0)
        return {};
    if (!m_dataSourceIsOpen)
        warn("pclxl.no-data-source", "image data come without an open data source (DataSourceNotOpen)");
    begin(start);
    CallingSink sink(each);
    return decodeBlock(compression, data(), layout, static_cast<std::uint32_t>(rows), m_image.seed, sink);
}

Status Machine::endImage()
{
    finishPainter(m_image);
    m_image = {};
    m_definition = Definition::None;
    return {};
}

Status Machine::beginRastPattern()
{
    m_image = {};
    const Status status = describeImage(m_image, PixelFormat::Rgb24);
    if (!status.isOk())
        return status;
    const Point size = m_operands.point(Attribute::DestinationSize);
    if (!(size.x > 0) || !(size.y > 0))
        return { Error::IllegalAttributeValue, Attribute::DestinationSize };
    // A pattern keeps its colours: bits stand for black and white only.
    PatternTile& tile = m_image.pattern.tile;
    tile.width = static_cast<int>(m_image.layout.width);
    tile.height = static_cast<int>(m_image.layout.height);
    tile.isColor = m_image.converter.format() != ImageFormat::Mono || m_image.converter.ink() != Rgb {};
    const std::uint64_t bytes
        = std::uint64_t { m_image.layout.width } * m_image.layout.height * (tile.isColor ? 3u : 1u);
    if (bytes > m_limits.patternBytes || m_patternBytes > m_limits.patternBytes - bytes)
        return Error::InsufficientMemory;
    // Rows that never come stay white.
    tile.pixels.assign(static_cast<std::size_t>(bytes), tile.isColor ? 255 : 0);
    m_image.pattern.size = size;
    m_image.patternId = m_operands.integer(Attribute::PatternDefineID);
    m_image.endsWithPage = m_operands.integer(Attribute::PatternPersistence) != 2;
    m_definition = Definition::Pattern;
    return {};
}

Status Machine::readRastPattern()
{
    return readBlock([this](std::int64_t row) { m_image.nextRow = row; },
        [this](const std::uint8_t* pixels) { storePatternRow(m_image.converter.convert(pixels)); });
}

void Machine::storePatternRow(const std::uint8_t* row)
{
    PatternTile& tile = m_image.pattern.tile;
    const std::size_t width = static_cast<std::size_t>(tile.width);
    const Rgb ink = m_image.converter.ink();
    std::uint8_t* to = tile.pixels.data() + static_cast<std::size_t>(m_image.nextRow) * width * (tile.isColor ? 3 : 1);
    ++m_image.nextRow;
    for (std::size_t x = 0; x < width; ++x) {
        Rgb color;
        switch (m_image.converter.format()) {
        case ImageFormat::Mono: {
            const bool isInk = (row[x / 8] >> (7 - x % 8) & 1) != 0;
            if (!tile.isColor) {
                *to++ = isInk;
                continue;
            }
            color = isInk ? ink : Rgb { 255, 255, 255 };
            break;
        }
        case ImageFormat::Gray8:
            color = { row[x], row[x], row[x] };
            break;
        case ImageFormat::Rgb24:
            color = { row[3 * x], row[3 * x + 1], row[3 * x + 2] };
            break;
        case ImageFormat::Rgba32:
            break; // the language has no alpha
        }
        to[0] = color.red;
        to[1] = color.green;
        to[2] = color.blue;
        to += 3;
    }
}

Status Machine::endRastPattern()
{
    const std::size_t bytes = m_image.pattern.tile.pixels.size();
    StoredPattern& stored = m_patterns[m_image.patternId];
    if (stored.pattern)
        m_patternBytes -= stored.pattern->tile.pixels.size();
    stored.pattern = std::make_shared<const RasterPattern>(std::move(m_image.pattern));
    stored.endsWithPage = m_image.endsWithPage;
    m_patternBytes += bytes;
    m_image = {};
    m_definition = Definition::None;
    return {};
}

} // namespace quillrip::pclxl
