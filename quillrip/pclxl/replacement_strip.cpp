#include "quillrip/pclxl/replacement_strip.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace quillrip::pclxl {

namespace {

class ReplacementStrip {
public:
    ReplacementStrip(EmbeddedData& data, bool isColor, std::uint32_t width)
        : m_data(data)
        , m_isColor(isColor)
        , m_width(width)
        , m_pixels(std::size_t { width } * 3, paper())
        , m_last { paper(), paper(), paper() }
        , m_row(std::size_t { width } * (isColor ? 3u : 1u))
    {
    }

    Status decode(std::uint32_t rows, RowSink& sink)
    {
        for (std::uint32_t y = 0; y < rows; ++y) {
            if (!decodeRow())
                return Error::MissingData;
            sink.row(asLight());
        }
        return {};
    }

private:
    using Pixel = std::array<std::uint8_t, 3>;

    /// Colours are light; gray pixels are ink, the same in all three bytes.
    std::uint8_t paper() const { return m_isColor ? 255 : 0; }

    Pixel pixelAt(std::size_t x) const
    {
        const auto from = m_pixels.begin() + static_cast<std::ptrdiff_t>(3 * x);
        return { from[0], from[1], from[2] };
    }
    void put(std::size_t x, const Pixel& pixel)
    {
        std::copy(pixel.begin(), pixel.end(), m_pixels.begin() + static_cast<std::ptrdiff_t>(3 * x));
    }

    /// A field whose highest value says that bytes are added, up to and with the first that is not 255. Values beyond
    /// the row are all alike.
    bool extend(std::size_t& field, std::size_t highest)
    {
        if (field < highest)
            return true;
        int more = 0;
        do {
            more = m_data.get();
            if (more < 0)
                return false;
            field = std::min<std::size_t>(field + static_cast<std::size_t>(more), m_width);
        } while (more == 255);
        return true;
    }

    bool readPixel(Pixel& pixel) { return m_data.read(pixel.data(), pixel.size()) == pixel.size(); }

    bool takeFirstPixel(int source, std::size_t x)
    {
        switch (source) {
        case 0:
            return readPixel(m_last);
        case 1:
            m_last = x > 0 ? pixelAt(x - 1) : Pixel { paper(), paper(), paper() };
            return true;
        case 2: {
            // Behind the row's end all is black.
            const std::uint8_t ink = static_cast<std::uint8_t>(~paper());
            m_last = x + 1 < m_width ? pixelAt(x + 1) : Pixel { ink, ink, ink };
            return true;
        }
        default:
            return true;
        }
    }

    bool decodeRow()
    {
        std::size_t x = 0;
        while (x < m_width) {
            const int command = m_data.get();
            if (command < 0)
                return false;
            std::size_t skipped = command >> 3 & 3;
            if (!extend(skipped, 3))
                return false;
            x += skipped;
            if (x >= m_width)
                break;
            if (!takeFirstPixel(command >> 5 & 3, x))
                return false;
            std::size_t count = command & 7;
            const bool isRun = (command & 0x80) != 0;
            if (isRun ? !putRun(x, count) : !putLiteral(x, count))
                return false;
        }
        return true;
    }

    /// Writers let a run pass the row's end.
    bool putRun(std::size_t& x, std::size_t count)
    {
        if (!extend(count, 7))
            return false;
        const std::size_t end = std::min<std::size_t>(x + count + 2, m_width);
        while (x < end)
            put(x++, m_last);
        return true;
    }

    /// The first pixel has its source, all others stand in the data. No writer at hand puts more than one; the form of
    /// the rest is that of method 10.
    bool putLiteral(std::size_t& x, std::size_t count)
    {
        put(x++, m_last);
        bool hasMore = count == 7;
        while (count > 0 || hasMore) {
            if (count == 0) {
                const int more = m_data.get();
                if (more < 0)
                    return false;
                count = static_cast<std::size_t>(more);
                hasMore = more == 255;
                continue;
            }
            Pixel pixel;
            if (!readPixel(pixel))
                return false;
            if (x < m_width)
                put(x++, pixel);
            --count;
        }
        return true;
    }

    const std::uint8_t* asLight()
    {
        if (m_isColor)
            return m_pixels.data();
        for (std::size_t x = 0; x < m_row.size(); ++x)
            m_row[x] = static_cast<std::uint8_t>(255 - m_pixels[3 * x]);
        return m_row.data();
    }

    EmbeddedData& m_data;
    bool m_isColor;
    std::uint32_t m_width;
    std::vector<std::uint8_t> m_pixels; ///< the row above, which becomes the row
    Pixel m_last;
    std::vector<std::uint8_t> m_row; ///< gray as light
};

} // namespace

Status decodeReplacementStrip(EmbeddedData& data, bool isColor, std::uint32_t width, std::uint32_t rows, RowSink& sink)
{
    return ReplacementStrip(data, isColor, width).decode(rows, sink);
}

} // namespace quillrip::pclxl
