#include "quillrip/raster/images/aligned_image.h"
#include "quillrip/raster/images/image_source.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

namespace quillrip {

namespace {

constexpr std::uint64_t kUnitsPerCopiedPixel = 1;
constexpr std::uint64_t kUnitsPerMixedPixel = 6;
/// Source pixels that are converted at a time: whole bytes of a bilevel row.
constexpr int kMostPart = 1 << 16;

/// How source pixels become device pixels along an axis.
enum class Resampling {
    Blocks, ///< device pixels repeat the source pixel that they lie in
    Average, ///< over the area
    Linear, ///< between the two nearest source pixels
};

Resampling resamplingFor(const ImageAxis& axis, const AlignedGeometry& image)
{
    if (axis.shrinks())
        return image.dropsPixels ? Resampling::Blocks : Resampling::Average;
    const bool isSmooth = image.smoothsBlocks ? !axis.isIdentity() : image.smooth && !axis.isWhole();
    return isSmooth ? Resampling::Linear : Resampling::Blocks;
}

/// Source rows to rows of the device's columns, as floating point ink. What a column takes is neighbouring source
/// pixels, of which only the first and the last may count in part, so that a wide row costs no memory.
class ColumnScaler {
public:
    ColumnScaler(const ImageAxis& axis, int sourceWidth, Resampling resampling, int channels)
        : m_channels(static_cast<std::size_t>(channels))
        , m_sourceWidth(sourceWidth)
    {
        m_columns.reserve(static_cast<std::size_t>(axis.visible()));
        for (int column = axis.visibleBegin; column < axis.visibleEnd; ++column) {
            const Column unscaled = columnOf(axis, sourceWidth, resampling, column);
            float sum = 0;
            for (std::int64_t i = 0; i < unscaled.count; ++i)
                sum += unscaled.weight(i);
            Column scaled = unscaled;
            scaled.firstWeight /= sum;
            scaled.innerWeight /= sum;
            scaled.lastWeight /= sum;
            m_columns.push_back(scaled);
        }
    }

    /// Adds the `count` source pixels from `first` on, which follow those of the last call or begin a row. Columns
    /// whose last pixel is among them are done.
    void scale(const std::uint8_t* source, std::int64_t first, std::int64_t count, float* result)
    {
        if (first == 0)
            m_nextColumn = 0;
        switch (m_channels) {
        case 1:
            return scaleChannels<1>(source, first, first + count, result);
        case 2:
            return scaleChannels<2>(source, first, first + count, result);
        case 3:
            return scaleChannels<3>(source, first, first + count, result);
        default:
            return scaleChannels<4>(source, first, first + count, result);
        }
    }

private:
    struct Column {
        std::int64_t first = 0; ///< source pixel
        std::int64_t count = 1;
        std::int64_t step = 1; ///< 0: beyond the image's side the same pixel counts twice
        float firstWeight = 1;
        float innerWeight = 1;
        float lastWeight = 1;

        std::int64_t last() const { return first + (count - 1) * step; }
        float weight(std::int64_t i) const { return i == 0 ? firstWeight : i + 1 == count ? lastWeight : innerWeight; }
    };

    template <std::size_t Channels> static void add(const std::uint8_t* pixel, float weight, float* sums)
    {
        for (std::size_t channel = 0; channel < Channels; ++channel)
            sums[channel] += weight * static_cast<float>(pixel[channel]);
    }

    template <std::size_t Channels>
    void scaleChannels(const std::uint8_t* source, std::int64_t begin, std::int64_t end, float* result)
    {
        if (begin == 0 && end == m_sourceWidth) {
            for (const Column& column : m_columns) {
                addAll<Channels>(column, source + static_cast<std::size_t>(column.first) * Channels, result);
                result += Channels;
            }
            return;
        }
        for (std::size_t at = m_nextColumn; at < m_columns.size() && m_columns[at].first < end; ++at) {
            const Column& column = m_columns[at];
            float* const sums = result + at * Channels;
            if (column.first < begin || column.last() >= end) {
                addPart<Channels>(column, source, begin, end, sums);
            } else {
                const std::uint8_t* const first = source + static_cast<std::size_t>(column.first - begin) * Channels;
                addAll<Channels>(column, first, sums);
            }
            if (column.last() < end && at == m_nextColumn)
                ++m_nextColumn;
        }
    }

    template <std::size_t Channels> static void addAll(const Column& column, const std::uint8_t* pixel, float* result)
    {
        float sums[Channels] = {};
        const auto step = static_cast<std::size_t>(column.step) * Channels;
        add<Channels>(pixel, column.firstWeight, sums);
        for (std::int64_t i = 1; i + 1 < column.count; ++i)
            add<Channels>(pixel += step, column.innerWeight, sums);
        if (column.count > 1)
            add<Channels>(pixel + step, column.lastWeight, sums);
        for (const float sum : sums)
            *result++ = sum;
    }

    /// Of a column that takes pixels beyond those that are there, too.
    template <std::size_t Channels>
    static void addPart(
        const Column& column, const std::uint8_t* source, std::int64_t begin, std::int64_t end, float* sums)
    {
        if (column.first >= begin)
            std::fill(sums, sums + Channels, 0.0F);
        const std::int64_t stop = std::min(column.count, end - column.first);
        for (std::int64_t i = std::max<std::int64_t>(begin - column.first, 0); i < stop; ++i)
            add<Channels>(
                source + static_cast<std::size_t>(column.first + i - begin) * Channels, column.weight(i), sums);
    }

    static Column columnOf(const ImageAxis& axis, int sourceWidth, Resampling resampling, int column)
    {
        const auto inside = [&](std::int64_t source) { return std::clamp<std::int64_t>(source, 0, sourceWidth - 1); };
        Column result;
        if (resampling == Resampling::Blocks) {
            result.first = inside(axis.blockAt(column));
            return result;
        }
        if (resampling == Resampling::Linear) {
            const double at = axis.sourceAt(column + 0.5) - 0.5;
            const double before = std::floor(at);
            result.first = inside(static_cast<std::int64_t>(before));
            result.step = inside(static_cast<std::int64_t>(before) + 1) - result.first;
            result.count = 2;
            result.firstWeight = static_cast<float>(1 - (at - before));
            result.lastWeight = static_cast<float>(at - before);
            return result;
        }
        const double begin = std::clamp(axis.sourceAt(column), 0.0, static_cast<double>(sourceWidth));
        const double end = std::clamp(axis.sourceAt(column + 1), 0.0, static_cast<double>(sourceWidth));
        auto first = static_cast<std::int64_t>(std::floor(begin));
        auto last = static_cast<std::int64_t>(std::ceil(end)) - 1;
        if (last <= first) {
            result.first = inside(first);
            return result;
        }
        // What is touched by a rounding error only does not count.
        constexpr double least = 1e-9;
        const auto overlap = [&](std::int64_t source) {
            return std::min(end, static_cast<double>(source + 1)) - std::max(begin, static_cast<double>(source));
        };
        if (overlap(first) <= least)
            ++first;
        if (overlap(last) <= least && last > first)
            --last;
        result.first = first;
        result.count = last - first + 1;
        result.firstWeight = static_cast<float>(overlap(first));
        result.lastWeight = static_cast<float>(overlap(last));
        return result;
    }

    std::size_t m_channels;
    std::int64_t m_sourceWidth;
    std::vector<Column> m_columns;
    std::size_t m_nextColumn = 0; ///< of the row: those before are done
};

class ToneImage final : public AlignedImage {
public:
    ToneImage(const AlignedGeometry& aligned, std::unique_ptr<Compositor> owned)
        : AlignedImage(aligned, std::move(owned))
        , m_isMono(aligned.format == ImageFormat::Mono)
        , m_isBlended(aligned.format == ImageFormat::Rgba32)
        , m_inkChannels(!m_isMono && compositor().format() == PixelFormat::Rgb24 ? 3 : 1)
        , m_columnWay(resamplingFor(aligned.columns, aligned))
        , m_lineWay(resamplingFor(aligned.lines, aligned))
        , m_isAllBlocks(m_columnWay == Resampling::Blocks && m_lineWay == Resampling::Blocks)
        // Where pixels are mixed, those of a transparent source's white leave a part of the page as it is.
        , m_hasAlpha(!m_isMono && !m_isAllBlocks
              && (m_isBlended || (compositor().isSourceTransparent() && compositor().format() != PixelFormat::Bilevel)))
        , m_channels(m_inkChannels + (m_hasAlpha ? 1 : 0))
        , m_scaler(aligned.columns, aligned.width, m_columnWay, m_channels)
        , m_ink(static_cast<std::size_t>(std::min(aligned.width, kMostPart)) * static_cast<std::size_t>(m_channels))
        , m_line(static_cast<std::size_t>(aligned.columns.visible()) * static_cast<std::size_t>(m_inkChannels))
        , m_alpha(static_cast<std::size_t>(aligned.columns.visible()))
        , m_current(static_cast<std::size_t>(aligned.columns.visible()) * static_cast<std::size_t>(m_channels))
        , m_previous(m_current.size())
        , m_sums(m_current.size())
        , m_nextLine(aligned.lines.start(0))
    {
    }

private:
    void addRows(const std::uint8_t* pixels, std::int64_t index, std::int64_t count, bool isBlank) override
    {
        const ImageAxis& axis = geometry().lines;
        // Rows that reach no visible line, with one to spare for those that are mixed.
        if (axis.position(static_cast<double>(index + count)) < axis.visibleBegin - 2 * axis.scale - 1
            || axis.position(static_cast<double>(index)) > axis.visibleEnd + 2 * axis.scale + 1)
            return;
        if (m_isAllBlocks)
            return addBlocks(pixels, index, count, isBlank);
        charge(kUnitsPerMixedPixel * static_cast<std::uint64_t>(geometry().width));
        m_current.swap(m_previous);
        for (int first = 0; first < geometry().width; first += kMostPart) {
            const int part = convertPart(pixels, first);
            if (m_hasAlpha && m_isBlended)
                interleaveAlpha(m_ink.data(), part, m_inkChannels, pixels + 4 * static_cast<std::size_t>(first) + 3, 4);
            else if (m_hasAlpha)
                addAlpha(static_cast<std::size_t>(part));
            m_scaler.scale(m_ink.data(), first, part, m_current.data());
        }
        switch (m_lineWay) {
        case Resampling::Blocks:
            return repeatLine(index, count);
        case Resampling::Average:
            return average(index, count);
        case Resampling::Linear:
            return interpolate(index, count);
        }
    }

    void end(std::int64_t count) override
    {
        if (m_isAllBlocks || count == 0)
            return;
        const std::int64_t lastLine = geometry().lines.start(count);
        if (m_lineWay == Resampling::Average && m_weight > 0 && m_nextLine < lastLine)
            emitAverage();
        if (m_lineWay == Resampling::Linear) {
            for (; m_nextLine < std::min<std::int64_t>(lastLine, geometry().lines.visibleEnd); ++m_nextLine)
                emit(m_nextLine, m_current.data());
        }
    }

    /// Whole blocks need no arithmetic, and a source pixel stays what it is.
    void addBlocks(const std::uint8_t* pixels, std::int64_t index, std::int64_t count, bool isBlank)
    {
        const ImageAxis& axis = geometry().lines;
        const std::int64_t begin = std::max<std::int64_t>(axis.start(index), axis.visibleBegin);
        const std::int64_t end = std::min<std::int64_t>(axis.start(index + count), axis.visibleEnd);
        if (begin >= end)
            return;
        if (isBlank)
            return whiteLines(begin, end);
        const ImageAxis& columns = geometry().columns;
        charge(kUnitsPerCopiedPixel * static_cast<std::uint64_t>(geometry().width));
        const auto channels = static_cast<std::size_t>(m_inkChannels);
        const std::uint8_t* line = m_line.data();
        if (m_isBlended) {
            std::uint8_t* to = m_alpha.data();
            for (const std::size_t from : blockColumns())
                *to++ = pixels[4 * from + 3];
        }
        if (columns.isIdentity() && geometry().width <= kMostPart) {
            convertPart(pixels, 0);
            line = m_ink.data() + static_cast<std::size_t>(columns.visibleBegin - columns.start(0)) * channels;
        } else if (geometry().width <= kMostPart) {
            convertPart(pixels, 0);
            std::uint8_t* to = m_line.data();
            for (const std::size_t from : blockColumns()) {
                for (std::size_t channel = 0; channel < channels; ++channel)
                    *to++ = m_ink[from * channels + channel];
            }
        } else {
            convertBlocks(pixels);
        }
        for (std::int64_t at = begin; at < end; ++at)
            emitBytes(at, line, m_isBlended ? m_alpha.data() : nullptr);
    }

    /// Fills m_ink with the pixels from `first` on, as many as it holds or the row has left; says how many.
    int convertPart(const std::uint8_t* pixels, int first)
    {
        const ImageFormat format = geometry().format;
        const int part = std::min(geometry().width - first, kMostPart);
        const auto before = static_cast<std::size_t>(first);
        const std::size_t bytes = format == ImageFormat::Mono ? before / 8
            : format == ImageFormat::Gray8                    ? before
            : format == ImageFormat::Rgb24                    ? 3 * before
                                                              : 4 * before;
        convertRow(pixels + bytes, format, part, m_inkChannels, m_ink.data());
        return part;
    }

    /// Fills m_line with the source pixel of each column.
    void convertBlocks(const std::uint8_t* pixels)
    {
        const auto channels = static_cast<std::size_t>(m_inkChannels);
        const std::vector<std::size_t>& blocks = blockColumns();
        std::uint8_t* to = m_line.data();
        std::size_t end = 0;
        std::size_t first = 0;
        for (const std::size_t block : blocks) {
            if (block >= end) {
                first = block / kMostPart * kMostPart;
                end = first + static_cast<std::size_t>(convertPart(pixels, static_cast<int>(first)));
            }
            for (std::size_t channel = 0; channel < channels; ++channel)
                *to++ = m_ink[(block - first) * channels + channel];
        }
    }

    /// The source pixel of each visible column.
    const std::vector<std::size_t>& blockColumns()
    {
        const ImageAxis& columns = geometry().columns;
        if (m_blocks.empty()) {
            for (int column = columns.visibleBegin; column < columns.visibleEnd; ++column)
                m_blocks.push_back(static_cast<std::size_t>(columns.blockAt(column)));
        }
        return m_blocks;
    }

    /// White has no ink, so the ink of mixed pixels is that of the others already; only their number is missing.
    void addAlpha(std::size_t pixels)
    {
        const auto inkChannels = static_cast<std::size_t>(m_inkChannels);
        const auto channels = static_cast<std::size_t>(m_channels);
        for (std::size_t x = pixels; x-- > 0;) {
            std::uint8_t any = 0;
            for (std::size_t channel = inkChannels; channel-- > 0;) {
                const std::uint8_t value = m_ink[x * inkChannels + channel];
                m_ink[x * channels + channel] = value;
                any = static_cast<std::uint8_t>(any | value);
            }
            m_ink[x * channels + inkChannels] = any != 0 ? 255 : 0;
        }
    }

    void repeatLine(std::int64_t index, std::int64_t count)
    {
        const ImageAxis& axis = geometry().lines;
        const std::int64_t begin = std::max<std::int64_t>(axis.start(index), axis.visibleBegin);
        const std::int64_t end = std::min<std::int64_t>(axis.start(index + count), axis.visibleEnd);
        for (std::int64_t line = begin; line < end; ++line)
            emit(line, m_current.data());
    }

    void average(std::int64_t index, std::int64_t count)
    {
        const ImageAxis& axis = geometry().lines;
        const double begin = axis.position(static_cast<double>(index));
        const double end = axis.position(static_cast<double>(index + count));
        const auto limited = [&](double line) {
            return static_cast<std::int64_t>(
                std::clamp(line, static_cast<double>(axis.visibleBegin) - 1, static_cast<double>(axis.visibleEnd)));
        };
        // What lies beyond a line's edge by a rounding error is not of the next line, whichever way the rows go.
        const double error = std::abs(axis.bias);
        const std::int64_t last = limited(std::ceil(end - error) - 1);
        for (std::int64_t line = std::max(limited(std::floor(begin + error)), axis.start(0)); line <= last; ++line) {
            if (line != m_nextLine) {
                emitAverage();
                m_nextLine = line;
            }
            const double top = std::max(begin, static_cast<double>(line));
            const double bottom = std::min(end, static_cast<double>(line) + 1);
            const auto weight = static_cast<float>(std::max(bottom - top, 1e-9));
            m_weight += weight;
            for (std::size_t i = 0; i < m_sums.size(); ++i)
                m_sums[i] += weight * m_current[i];
        }
    }

    void emitAverage()
    {
        if (m_weight > 0) {
            for (float& sum : m_sums)
                sum /= m_weight;
            emit(m_nextLine, m_sums.data());
            std::fill(m_sums.begin(), m_sums.end(), 0.0F);
        }
        m_weight = 0;
    }

    void interpolate(std::int64_t index, std::int64_t count)
    {
        const ImageAxis& axis = geometry().lines;
        m_nextLine = std::max<std::int64_t>(m_nextLine, axis.visibleBegin);
        for (; m_nextLine < axis.visibleEnd; ++m_nextLine) {
            const double at = axis.sourceAt(static_cast<double>(m_nextLine) + 0.5) - 0.5;
            if (at >= static_cast<double>(index + count - 1))
                return;
            // Before the middle of the first row there is nothing to mix with; between equal rows neither.
            const double share = at - static_cast<double>(index - 1);
            if (index == 0 || share >= 1) {
                emit(m_nextLine, m_current.data());
                continue;
            }
            const auto part = static_cast<float>(std::max(share, 0.0));
            for (std::size_t i = 0; i < m_sums.size(); ++i)
                m_sums[i] = m_previous[i] + (m_current[i] - m_previous[i]) * part;
            emit(m_nextLine, m_sums.data());
        }
    }

    void emit(std::int64_t line, const float* values)
    {
        if (!isVisibleLine(line))
            return;
        charge(kUnitsPerMixedPixel * m_alpha.size());
        const auto byteOf
            = [](float value) { return static_cast<std::uint8_t>(std::clamp(value + 0.5F, 0.0F, 255.0F)); };
        if (!m_hasAlpha) {
            for (std::size_t i = 0; i < m_line.size(); ++i)
                m_line[i] = byteOf(values[i]);
            return emitBytes(line, m_line.data(), nullptr);
        }
        const auto inkChannels = static_cast<std::size_t>(m_inkChannels);
        for (std::size_t x = 0; x < m_alpha.size(); ++x, values += m_channels) {
            const float alpha = values[inkChannels];
            m_alpha[x] = byteOf(alpha);
            const float whole = alpha > 0 ? 255 / alpha : 0;
            for (std::size_t channel = 0; channel < inkChannels; ++channel)
                m_line[x * inkChannels + channel] = byteOf(values[channel] * whole);
        }
        emitBytes(line, m_line.data(), m_alpha.data());
    }

    void emitBytes(std::int64_t line, const std::uint8_t* bytes, const std::uint8_t* coverage)
    {
        const ImageAxis& columns = geometry().columns;
        if (m_isBlended)
            lines().blended(deviceLine(line), columns.visibleBegin, bytes, coverage, columns.visible());
        else if (m_isMono)
            lines().coverage(deviceLine(line), columns.visibleBegin, bytes, columns.visible());
        else
            lines().colors(deviceLine(line), columns.visibleBegin, bytes, coverage, columns.visible());
    }

    bool m_isMono;
    bool m_isBlended; ///< with an alpha of its own
    int m_inkChannels;
    Resampling m_columnWay;
    Resampling m_lineWay;
    bool m_isAllBlocks;
    bool m_hasAlpha;
    int m_channels; ///< with alpha
    ColumnScaler m_scaler;
    std::vector<std::size_t> m_blocks;
    std::vector<std::uint8_t> m_ink; ///< the source row, or a part of it
    std::vector<std::uint8_t> m_line;
    std::vector<std::uint8_t> m_alpha;
    std::vector<float> m_current; ///< the source row in device columns
    std::vector<float> m_previous;
    std::vector<float> m_sums;
    float m_weight = 0; ///< of the rows in m_sums
    std::int64_t m_nextLine; ///< Average: the line that m_sums is for; Linear: the next to paint
};

} // namespace

std::unique_ptr<ImagePainter> makeToneImage(const AlignedGeometry& geometry, std::unique_ptr<Compositor> compositor)
{
    return std::make_unique<ToneImage>(geometry, std::move(compositor));
}

} // namespace quillrip
