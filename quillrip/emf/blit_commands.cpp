// Bitmaps: copied, stretched, masked, turned and blended.

#include "quillrip/emf/blit.h"
#include "quillrip/emf/handlers.h"
#include "quillrip/emf/machine.h"
#include "quillrip/emf/record.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillrip::emf {

namespace {

// The same places in all records but PLGBLT and the two of DIBs.
constexpr std::size_t kDestination = 24;
constexpr std::size_t kOperation = 40;
constexpr std::size_t kSource = 44;
constexpr std::size_t kBackground = 76;
constexpr std::size_t kUsage = 80;
constexpr std::size_t kBitmap = 84;
constexpr std::size_t kSourceSize = 100;

constexpr std::uint8_t kCopySource = 0xCC;

std::uint8_t operationOf(std::uint32_t code) { return static_cast<std::uint8_t>(code >> 16); }
bool needsSource(std::uint8_t operation) { return ((operation >> 2) & 0x33) != (operation & 0x33); }
bool needsPattern(std::uint8_t operation) { return (operation >> 4) != (operation & 0x0F); }

Extent extentAt(const Record& record, std::size_t position, std::size_t size)
{
    return { double(record.i32(position)), double(record.i32(position + 4)), double(record.i32(size)),
        double(record.i32(size + 4)) };
}

/// Operation and pattern; nothing when the pattern is needed and there is none.
std::optional<PaintState> stateOf(Machine& machine, std::uint8_t operation)
{
    Canvas& canvas = machine.canvas();
    if (needsPattern(operation))
        return canvas.paints().brush(machine.dc(), canvas.brush(), operation);
    PaintState state = PaintMaker::solid({});
    state.rop = operation;
    return state;
}

struct BitmapFields {
    std::size_t usage;
    std::size_t offsets; ///< offset and size of the header, then of the bits
};

/// A bitmap's bytes, and what it takes from the device context.
struct Dib {
    ByteView header;
    ByteView bits;
    DibContext context;
};

Dib dibAt(Machine& machine, const Record& record, BitmapFields fields, std::uint32_t background)
{
    const DeviceContext& dc = machine.dc();
    const std::size_t at = fields.offsets;
    Dib dib;
    dib.header = record.part(record.u32(at), record.u32(at + 4));
    dib.bits = record.part(record.u32(at + 8), record.u32(at + 12));
    dib.context.usage = static_cast<ColorUsage>(std::min<std::uint32_t>(record.u32(fields.usage), 2));
    dib.context.palette = &std::get<Palette>(*dc.palette).entries;
    dib.context.monoColors = { colorOf(dc.textColor, dc), colorOf(background, dc) };
    return dib;
}

Picture pictureOf(Machine& machine, const Dib& dib)
{
    std::string problem;
    Picture picture(dib.header, dib.bits, dib.context, *machine.job().limits.work, problem);
    if (!problem.empty())
        machine.warn("emf.bitmap", "a bitmap: " + problem);
    return picture;
}

Picture readPicture(
    Machine& machine, const Record& record, BitmapFields fields, std::uint32_t background, int storedRows = -1)
{
    Dib dib = dibAt(machine, record, fields, background);
    dib.context.storedRows = storedRows;
    return pictureOf(machine, dib);
}

/// Enlarging smoothly would make edges where masks and pictures meet.
void chooseFilter(Blit& blit, const DeviceContext& dc, std::uint8_t operation)
{
    blit.isSmooth = operation == kCopySource && dc.stretchMode == StretchMode::Halftone
        && blit.picture.shape().format != PictureShape::Format::Mono;
    blit.dropsPixels = dc.stretchMode == StretchMode::Delete;
}

/// Opacity of pixels means something to blends only.
void dropAlpha(Picture& picture)
{
    if (picture.shape().format == PictureShape::Format::Rgba32)
        picture.leaveOutAlpha();
}

void blit(Machine& machine, const Record& record, bool hasSourceSize)
{
    const std::uint8_t operation = operationOf(record.u32(kOperation));
    const auto state = stateOf(machine, operation);
    if (!state)
        return;
    if (!needsSource(operation))
        return fillTarget(
            machine.canvas(), targetOf(machine.canvas(), extentAt(record, kDestination, kDestination + 8)), *state);
    Blit blit = readBlit(machine, record, hasSourceSize);
    dropAlpha(blit.picture);
    chooseFilter(blit, machine.dc(), operation);
    draw(machine, blit, *state);
}

/// The mask's bits as a picture in the place of the source: (x, y) of the mask falls on its upper left corner.
class Mask {
public:
    Mask() = default;
    Mask(Picture bits, std::int64_t x, std::int64_t y)
        : m_bits(std::move(bits))
        , m_x(x)
        , m_y(y)
    {
    }

    bool isNull() const { return m_bits.isNull(); }
    /// Outside the mask it is repeated. Cells are asked for row by row.
    bool isSet(std::int64_t column, std::int64_t row)
    {
        const auto wrapped = [](std::int64_t value, std::int64_t size) { return ((value % size) + size) % size; };
        const std::int64_t atX = wrapped(column + m_x, m_bits.shape().width);
        const std::int64_t atY = wrapped(row + m_y, m_bits.shape().height);
        if (atY != m_rowAt) {
            m_row = m_bits.row(static_cast<int>(atY), m_line);
            m_rowAt = atY;
        }
        return (m_row[atX / 8] >> (7 - atX % 8) & 1) != 0;
    }

private:
    Picture m_bits; ///< Mono
    std::int64_t m_x = 0;
    std::int64_t m_y = 0;
    std::vector<std::uint8_t> m_line;
    const std::uint8_t* m_row = nullptr;
    std::int64_t m_rowAt = -1;
};

Mask readMask(Machine& machine, const Record& record, std::size_t position, BitmapFields fields)
{
    if (record.u32(fields.offsets + 4) == 0)
        return {};
    Picture bits = pictureOf(machine, dibAt(machine, record, fields, 0));
    if (bits.shape().format != PictureShape::Format::Mono)
        return {};
    return { std::move(bits), record.i32(position), record.i32(position + 4) };
}

/// One cell for each pixel of a mask, over the target.
struct MaskGrid {
    int width;
    int height;
    Matrix toDevice;
};

MaskGrid gridOver(const Blit& blit)
{
    constexpr double kMost = 4096;
    MaskGrid grid { static_cast<int>(std::clamp(std::abs(blit.source.width), 1.0, kMost)),
        static_cast<int>(std::clamp(std::abs(blit.source.height), 1.0, kMost)), {} };
    Blit cells;
    cells.source = { 0, 0, double(grid.width), double(grid.height) };
    cells.target = blit.target;
    grid.toDevice = cells.pictureToDevice();
    return grid;
}

void drawThrough(Machine& machine, const Blit& blit, std::uint8_t operation, const Region& region)
{
    auto state = stateOf(machine, operation);
    if (!state)
        return;
    Canvas& canvas = machine.canvas();
    ClipState& clip = machine.dc().clip;
    const Region kept = clip.clip;
    clip.clip = intersection(kept, region);
    if (needsSource(operation))
        draw(machine, blit, *state);
    else
        fillTarget(canvas, blit.target, *state);
    clip.clip = kept;
}

/// Two operations, chosen by the mask's bits.
void drawMasked(Machine& machine, const Blit& blit, Mask& mask, std::uint8_t whereSet, std::uint8_t whereClear)
{
    constexpr std::uint8_t kKeep = 0xAA;
    const MaskGrid grid = gridOver(blit);
    machine.spend(static_cast<std::uint64_t>(grid.width) * static_cast<std::uint64_t>(grid.height));
    Canvas& canvas = machine.canvas();
    const auto cells = [&](bool areSet) {
        return regionOfCells(
            canvas, grid.width, grid.height, grid.toDevice, [&](int x, int y) { return mask.isSet(x, y) == areSet; });
    };
    if (whereSet != kKeep)
        drawThrough(machine, blit, whereSet, cells(true));
    if (whereClear != kKeep)
        drawThrough(machine, blit, whereClear, cells(false));
}

} // namespace

Blit readBlit(Machine& machine, const Record& record, bool hasSourceSize)
{
    Blit blit;
    blit.target = targetOf(machine.canvas(), extentAt(record, kDestination, kDestination + 8));
    blit.source
        = extentAt(record, kSource, hasSourceSize && record.size() >= kSourceSize + 8 ? kSourceSize : kDestination + 8);
    // The source's own transform: what is ever met of it is a scale and a shift.
    const Matrix transform = record.matrix(kSource + 8);
    if (transform.b == 0 && transform.c == 0 && transform.a != 0 && transform.d != 0 && std::isfinite(transform.a)
        && std::isfinite(transform.d) && std::isfinite(transform.e) && std::isfinite(transform.f)) {
        const Point corner = transform.apply({ blit.source.x, blit.source.y });
        blit.source = { corner.x, corner.y, blit.source.width * transform.a, blit.source.height * transform.d };
    }
    if (record.u32(kBitmap + 4) == 0) {
        machine.warn("emf.no-bitmap", "a bitmap is copied that is not there, left out");
        return blit;
    }
    blit.picture = readPicture(machine, record, { kUsage, kBitmap }, record.u32(kBackground));
    return blit;
}

void bitBlt(Machine& machine, const Record& record) { blit(machine, record, false); }
void stretchBlt(Machine& machine, const Record& record) { blit(machine, record, true); }

void maskBlt(Machine& machine, const Record& record)
{
    Blit blit;
    blit.target = targetOf(machine.canvas(), extentAt(record, kDestination, kDestination + 8));
    blit.source = extentAt(record, kSource, kDestination + 8);
    const std::uint32_t code = record.u32(kOperation);
    const auto whereClear = static_cast<std::uint8_t>(code >> 24);
    const std::uint8_t whereSet = operationOf(code);
    if (record.u32(kBitmap + 4) > 0) {
        blit.picture = readPicture(machine, record, { kUsage, kBitmap }, record.u32(kBackground));
        dropAlpha(blit.picture);
    } else if (needsSource(whereSet) || needsSource(whereClear)) {
        return machine.warn("emf.no-bitmap", "a bitmap is copied that is not there, left out");
    }
    Mask mask = readMask(machine, record, kSourceSize, { 108, 112 });
    if (mask.isNull()) {
        if (const auto state = stateOf(machine, whereSet))
            needsSource(whereSet) ? draw(machine, blit, *state) : fillTarget(machine.canvas(), blit.target, *state);
        return;
    }
    drawMasked(machine, blit, mask, whereSet, whereClear);
}

void plgBlt(Machine& machine, const Record& record)
{
    constexpr std::uint8_t kKeep = 0xAA;
    const Matrix toDevice = machine.canvas().logicalToDevice();
    Blit blit;
    blit.target
        = { toDevice.apply(record.point(24)), toDevice.apply(record.point(32)), toDevice.apply(record.point(40)) };
    blit.source = extentAt(record, 48, 56);
    blit.picture = readPicture(machine, record, { 92, 96 }, record.u32(88));
    if (blit.picture.isNull() || blit.source.width == 0 || blit.source.height == 0)
        return;
    dropAlpha(blit.picture);
    chooseFilter(blit, machine.dc(), kCopySource);
    Mask mask = readMask(machine, record, 112, { 120, 124 });
    if (!mask.isNull())
        return drawMasked(machine, blit, mask, kCopySource, kKeep);
    if (const auto state = stateOf(machine, kCopySource))
        draw(machine, blit, *state);
}

void stretchDibits(Machine& machine, const Record& record)
{
    const std::uint8_t operation = operationOf(record.u32(68));
    const auto state = stateOf(machine, operation);
    if (!state)
        return;
    Blit blit;
    blit.target = targetOf(machine.canvas(), extentAt(record, kDestination, 72));
    if (!needsSource(operation))
        return fillTarget(machine.canvas(), blit.target, *state);
    blit.source = extentAt(record, 32, 40);
    blit.picture = readPicture(machine, record, { 64, 48 }, machine.dc().backgroundColor);
    dropAlpha(blit.picture);
    // Rows count from the bottom, also of bitmaps that start at their top.
    blit.source.y = blit.picture.shape().height - blit.source.y - blit.source.height;
    chooseFilter(blit, machine.dc(), operation);
    draw(machine, blit, *state);
}

void setDibitsToDevice(Machine& machine, const Record& record)
{
    const std::int64_t firstScan = record.u32(68);
    const std::int64_t scans = std::min<std::int64_t>(record.u32(72), 65535);
    const auto state = stateOf(machine, kCopySource);
    if (!state || scans < 1)
        return;
    Blit blit;
    blit.picture = readPicture(machine, record, { 64, 48 }, machine.dc().backgroundColor, static_cast<int>(scans));
    if (blit.picture.isNull())
        return;
    dropAlpha(blit.picture);
    const Extent wanted = extentAt(record, 32, 40);
    const double stored = blit.picture.shape().height;
    // Rows of the stored part's picture: scans count from the bitmap's origin.
    blit.source = wanted;
    blit.source.y = wanted.y - static_cast<double>(firstScan);
    if (blit.picture.shape().isBottomUp)
        blit.source.y = stored - blit.source.y - wanted.height;
    // A pixel of the source is one of the reference device, whatever the transforms.
    const Point at = machine.dc().coordinates.toReference().apply(record.point(kDestination));
    blit.target = targetOf(machine.canvas().toDevice(), std::abs(machine.canvas().toDevice().a),
        { at.x, at.y, wanted.width, wanted.height });
    chooseFilter(blit, machine.dc(), kCopySource);
    draw(machine, blit, *state);
}

} // namespace quillrip::emf
