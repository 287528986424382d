#include "quillrip/raster/images/aligned_image.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace quillrip {

namespace {

class BitImage final : public AlignedImage {
public:
    BitImage(const AlignedGeometry& geometry, std::unique_ptr<Compositor> compositor)
        : AlignedImage(geometry, std::move(compositor))
        , m_line((static_cast<std::size_t>(geometry.columns.visible()) + 7) / 8)
    {
    }

private:
    void addRows(const std::uint8_t* pixels, std::int64_t index, std::int64_t count, bool isBlank) override
    {
        if (geometry().lines.shrinks())
            gatherRows(pixels, index, count, isBlank);
        else
            repeatRow(pixels, index, count, isBlank);
    }

    void end(std::int64_t) override { emitGathered(); }

    /// Every row is one or more lines.
    void repeatRow(const std::uint8_t* pixels, std::int64_t index, std::int64_t count, bool isBlank)
    {
        const ImageAxis& axis = geometry().lines;
        const std::int64_t begin = std::max<std::int64_t>(axis.start(index), axis.visibleBegin);
        const std::int64_t end = std::min<std::int64_t>(axis.start(index + count), axis.visibleEnd);
        if (begin >= end)
            return;
        if (isBlank)
            return whiteLines(begin, end);
        if (geometry().columns.isIdentity()) {
            // The row as it came is the line.
            const std::int64_t firstBit = geometry().columns.visibleBegin - geometry().columns.start(0);
            const BitRow row(pixels, geometry().width);
            for (std::int64_t line = begin; line < end; ++line)
                emit(line, row, static_cast<std::ptrdiff_t>(firstBit));
            return;
        }
        std::fill(m_line.begin(), m_line.end(), std::uint8_t { 0 });
        addScaled(pixels);
        for (std::int64_t line = begin; line < end; ++line)
            emit(line, BitRow(m_line.data(), geometry().columns.visible()), 0);
    }

    /// Several rows share a line.
    void gatherRows(const std::uint8_t* pixels, std::int64_t index, std::int64_t count, bool isBlank)
    {
        const ImageAxis& axis = geometry().lines;
        const std::int64_t first = axis.middle(index);
        const std::int64_t last = axis.middle(index + count - 1);
        gatherInto(first);
        if (!isBlank && isVisibleLine(first))
            addScaled(pixels);
        if (last <= first)
            return;
        if (isBlank) {
            emitGathered();
            whiteLines(first + 1, last);
            gatherInto(last);
            return;
        }
        const std::int64_t end = std::min<std::int64_t>(last + 1, axis.visibleEnd);
        for (std::int64_t line = std::max<std::int64_t>(first + 1, axis.visibleBegin); line < end; ++line) {
            gatherInto(line);
            addScaled(pixels);
        }
    }

    void gatherInto(std::int64_t line)
    {
        if (m_isGathering && line == m_gatheredLine)
            return;
        emitGathered();
        m_gatheredLine = line;
        m_isGathering = true;
        std::fill(m_line.begin(), m_line.end(), std::uint8_t { 0 });
    }

    void emitGathered()
    {
        if (m_isGathering)
            emit(m_gatheredLine, BitRow(m_line.data(), geometry().columns.visible()), 0);
        m_isGathering = false;
    }

    void emit(std::int64_t line, const BitRow& bits, std::ptrdiff_t firstBit)
    {
        const ImageAxis& columns = geometry().columns;
        if (isVisibleLine(line))
            lines().bits(deviceLine(line), columns.visibleBegin, bits, firstBit, columns.visible());
    }

    /// Adds a row's ink to m_line, run by run.
    void addScaled(const std::uint8_t* pixels)
    {
        const BitRow row(pixels, geometry().width);
        const std::int64_t width = geometry().width;
        charge(static_cast<std::uint64_t>(width) / 8);
        std::int64_t runStart = 0;
        bool isInk = false;
        for (std::int64_t x = 0; x < width; x += 64) {
            std::uint64_t word = row.wordAt(static_cast<std::ptrdiff_t>(x));
            if (width - x < 64)
                word &= bitsUpTo(static_cast<unsigned>(width - x));
            if (word == (isInk ? kAllBits : 0))
                continue;
            for (unsigned at = 0; at < 64;) {
                const std::uint64_t differing = (isInk ? ~word : word) & bitsFrom(at);
                if (differing == 0)
                    break;
                at = static_cast<unsigned>(__builtin_clzll(differing));
                if (isInk)
                    addRun(runStart, x + at);
                runStart = x + at;
                isInk = !isInk;
            }
        }
        if (isInk)
            addRun(runStart, width);
    }

    /// Source pixels begin <= x < end have ink.
    void addRun(std::int64_t begin, std::int64_t end)
    {
        const ImageAxis& axis = geometry().columns;
        const bool shrinks = axis.shrinks();
        std::int64_t left = shrinks ? axis.middle(begin) : axis.start(begin);
        std::int64_t right = shrinks ? axis.middle(end - 1) + 1 : axis.start(end);
        left = std::max<std::int64_t>(left, axis.visibleBegin) - axis.visibleBegin;
        right = std::min<std::int64_t>(right, axis.visibleEnd) - axis.visibleBegin;
        if (left >= right)
            return;
        const auto firstByte = static_cast<std::size_t>(left / 8);
        const auto lastByte = static_cast<std::size_t>((right - 1) / 8);
        const auto firstMask = static_cast<std::uint8_t>(0xFF >> (left % 8));
        const auto lastMask = static_cast<std::uint8_t>(0xFF << (7 - (right - 1) % 8));
        if (firstByte == lastByte) {
            m_line[firstByte] = static_cast<std::uint8_t>(m_line[firstByte] | (firstMask & lastMask));
            return;
        }
        m_line[firstByte] = static_cast<std::uint8_t>(m_line[firstByte] | firstMask);
        std::memset(m_line.data() + firstByte + 1, 0xFF, lastByte - firstByte - 1);
        m_line[lastByte] = static_cast<std::uint8_t>(m_line[lastByte] | lastMask);
    }

    std::vector<std::uint8_t> m_line; ///< the visible columns
    bool m_isGathering = false;
    std::int64_t m_gatheredLine = 0;
};

} // namespace

std::unique_ptr<ImagePainter> makeBitImage(const AlignedGeometry& geometry, std::unique_ptr<Compositor> compositor)
{
    return std::make_unique<BitImage>(geometry, std::move(compositor));
}

} // namespace quillrip
