#include "quillrip/raster/images/image_lines.h"

#include <algorithm>
#include <cstring>

namespace quillrip {

namespace {

class UprightLines final : public ImageLines {
public:
    explicit UprightLines(Compositor& compositor)
        : m_compositor(compositor)
    {
    }

    void bits(int line, int left, const BitRow& bits, std::ptrdiff_t firstBit, int count) override
    {
        m_compositor.bits(line, left, bits, firstBit, count);
    }
    void coverage(int line, int left, const std::uint8_t* coverage, int count) override
    {
        m_compositor.coverage(line, left, coverage, count, true);
    }
    void colors(int line, int left, const std::uint8_t* ink, const std::uint8_t* coverage, int count) override
    {
        m_compositor.colors(line, left, ink, coverage, count);
    }
    void blended(int line, int left, const std::uint8_t* ink, const std::uint8_t* alpha, int count) override
    {
        m_compositor.blended(line, left, ink, alpha, count);
    }
    void white(int first, int end, int left, int right) override
    {
        for (int line = first; line < end; ++line)
            m_compositor.white(line, left, right);
    }

private:
    Compositor& m_compositor;
};

/// Collects up to 64 neighbouring lines of one kind, then paints them as so many columns.
class TurnedLines final : public ImageLines {
public:
    explicit TurnedLines(Compositor& compositor)
        : m_compositor(compositor)
        , m_channels(compositor.format() == PixelFormat::Rgb24 ? 3 : 1)
    {
    }

    void bits(int line, int left, const BitRow& bits, std::ptrdiff_t firstBit, int count) override
    {
        std::uint8_t* to = begin(Kind::Bits, line, left, count, 1, false);
        for (int i = 0; i < count; i += 64) {
            const std::uint64_t word = bits.wordAt(firstBit + i);
            const int here = std::min(64, count - i);
            for (int bit = 0; bit < here; ++bit)
                *to++ = static_cast<std::uint8_t>(word >> (63 - bit) & 1);
        }
    }
    void coverage(int line, int left, const std::uint8_t* coverage, int count) override
    {
        std::memcpy(begin(Kind::Coverage, line, left, count, 1, false), coverage, static_cast<std::size_t>(count));
    }
    void colors(int line, int left, const std::uint8_t* ink, const std::uint8_t* coverage, int count) override
    {
        std::uint8_t* to = begin(Kind::Colors, line, left, count, m_channels, coverage != nullptr);
        std::memcpy(to, ink, static_cast<std::size_t>(count) * m_channels);
        if (coverage)
            std::memcpy(m_coverage.data() + slot(line) * columns(), coverage, static_cast<std::size_t>(count));
    }
    void blended(int line, int left, const std::uint8_t* ink, const std::uint8_t* alpha, int count) override
    {
        std::uint8_t* to = begin(Kind::Blended, line, left, count, m_channels, true);
        std::memcpy(to, ink, static_cast<std::size_t>(count) * m_channels);
        std::memcpy(m_coverage.data() + slot(line) * columns(), alpha, static_cast<std::size_t>(count));
    }
    void white(int first, int end, int left, int right) override
    {
        finish();
        for (int y = left; y < right; ++y)
            m_compositor.white(y, first, end);
    }

    void finish() override
    {
        if (m_first < m_end)
            paint();
        m_first = m_end = 0;
    }

private:
    enum class Kind { Bits, Coverage, Colors, Blended };
    static constexpr int kMostLines = 64;
    /// Of pages longer than any paper, fewer lines are collected.
    static constexpr std::size_t kMostBytes = std::size_t { 8 } << 20;

    std::size_t columns() const { return static_cast<std::size_t>(m_count); }
    std::size_t slots() const { return static_cast<std::size_t>(m_mostLines); }
    /// Lines have fixed places, whichever way they come.
    std::size_t slot(int line) const { return static_cast<unsigned>(line) % static_cast<unsigned>(m_mostLines); }

    /// Where the line's pixels go, `bytes` each.
    std::uint8_t* begin(Kind kind, int line, int left, int count, std::size_t bytes, bool hasCoverage)
    {
        const bool isNext = m_first < m_end && (line == m_end || line == m_first - 1) && m_end - m_first < m_mostLines;
        if (!isNext || kind != m_kind || left != m_left || count != m_count || hasCoverage != m_hasCoverage) {
            finish();
            m_kind = kind;
            m_left = left;
            m_count = count;
            m_hasCoverage = hasCoverage;
            m_mostLines = kMostLines;
            while (m_mostLines > 1 && slots() * columns() * bytes > kMostBytes)
                m_mostLines /= 2;
            m_pixels.resize(slots() * columns() * bytes);
            if (hasCoverage)
                m_coverage.resize(slots() * columns());
            m_first = line;
            m_end = line;
        }
        m_first = std::min(m_first, line);
        m_end = std::max(m_end, line + 1);
        return m_pixels.data() + slot(line) * columns() * bytes;
    }

    void paint()
    {
        const int lines = m_end - m_first;
        const bool hasColors = m_kind == Kind::Colors || m_kind == Kind::Blended;
        std::uint8_t across[kMostLines * 3] = {};
        std::uint8_t coverage[kMostLines] = {};
        for (std::size_t column = 0; column < columns(); ++column) {
            const int y = m_left + static_cast<int>(column);
            for (int i = 0; i < lines; ++i) {
                const std::size_t from = slot(m_first + i) * columns() + column;
                if (hasColors && m_channels == 3)
                    std::memcpy(across + 3 * static_cast<std::size_t>(i), m_pixels.data() + 3 * from, 3);
                else
                    across[i] = m_pixels[from];
                if (m_hasCoverage)
                    coverage[i] = m_coverage[from];
            }
            if (m_kind == Kind::Colors) {
                m_compositor.colors(y, m_first, across, m_hasCoverage ? coverage : nullptr, lines);
            } else if (m_kind == Kind::Blended) {
                m_compositor.blended(y, m_first, across, coverage, lines);
            } else if (m_kind == Kind::Coverage) {
                m_compositor.coverage(y, m_first, across, lines, true);
            } else {
                std::fill(across + lines, across + kMostLines, std::uint8_t { 0 });
                std::uint8_t packed[8];
                storeWord(packed, packFlags(across));
                m_compositor.bits(y, m_first, BitRow(packed, 64), 0, lines);
            }
        }
    }

    Compositor& m_compositor;
    std::size_t m_channels;
    Kind m_kind = Kind::Bits;
    int m_mostLines = kMostLines; ///< a power of two
    int m_first = 0; ///< the lines held, half open
    int m_end = 0;
    int m_left = 0;
    int m_count = 0;
    bool m_hasCoverage = false;
    std::vector<std::uint8_t> m_pixels;
    std::vector<std::uint8_t> m_coverage; ///< or alpha
};

} // namespace

std::unique_ptr<ImageLines> uprightLines(Compositor& compositor) { return std::make_unique<UprightLines>(compositor); }
std::unique_ptr<ImageLines> turnedLines(Compositor& compositor) { return std::make_unique<TurnedLines>(compositor); }

} // namespace quillrip
