#pragma once

#include "quillrip/base/work_meter.h"
#include "quillrip/raster/compose/bit_words.h"
#include "quillrip/raster/compose/device_texture.h"
#include "quillrip/raster/compose/mixing.h"
#include "quillrip/raster/compose/paint_state.h"
#include "quillrip/raster/compose/raster_operation.h"
#include "quillrip/raster/scan/clip_region.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

namespace quillrip {

/// Rows of a glyph that lie one below the other.
struct MaskRows {
    const std::uint8_t* bytes = nullptr;
    std::size_t stride = 0; ///< bytes from row to row
    int width = 0; ///< pixels
    int count = 0;
    bool isBits = false; ///< packed, first pixel in the highest bit; else a byte a pixel, 255 = all ink

    std::size_t rowBytes() const { return static_cast<std::size_t>(isBits ? (width + 7) / 8 : width); }
    const std::uint8_t* row(int index) const { return bytes + static_cast<std::size_t>(index) * stride; }
};

/// Where spans go: the one place where mask, source, texture, raster operation, transparencies and clip meet the
/// page. One for as many marks as have the same state.
///
/// Rows and columns may lie anywhere; what is outside page or clip is cut off. Spans of one mark must not overlap,
/// except where `isIdempotent()`.
class Compositor {
public:
    static std::unique_ptr<Compositor> create(
        PageBitmap& page, const PaintState& state, std::shared_ptr<const DeviceTexture> texture, WorkMeter& work);
    virtual ~Compositor() = default;

    WorkMeter& work() { return m_work; }
    /// What others have painted since the last mark is not charged again.
    void beginMark() { m_charged = m_page.paintedPixels(); }
    /// Charges what has been painted since the last time: at the end of a mark, and within long ones.
    void chargePixels()
    {
        m_work.charge(Work::Pixels, (m_page.paintedPixels() - m_charged) * m_unitsPer1024Pixels / 1024);
        m_charged = m_page.paintedPixels();
    }

    /// Nothing outside these can be marked.
    const PixelRect& bounds() const { return m_bounds; }
    PixelFormat format() const { return m_page.format(); }
    bool isSourceTransparent() const { return m_sourceTransparent; }
    /// Whether marking a pixel with ink twice gives the same as once.
    bool isIdempotent() const { return m_isIdempotent; }

    /// Source black in columns left <= x < right.
    void ink(int y, int left, int right)
    {
        eachRun(y, left, right, [&](int l, int r) { inkRun(y, l, r); });
    }
    /// Source white in columns left <= x < right: nothing if the source is transparent.
    void white(int y, int left, int right)
    {
        if (m_sourceTransparent)
            return;
        eachRun(y, left, right, [&](int l, int r) { whiteRun(y, l, r); });
    }
    /// Source black where `bits` has a 1, white where 0. Pixel `left` is bit `firstBit`.
    void bits(int y, int left, const BitRow& bits, std::ptrdiff_t firstBit, int count)
    {
        eachRun(y, left, left + count, [&](int l, int r) { bitsRun(y, l, r, bits, firstBit - left); });
    }
    /// Source black with coverage (255 = whole pixel). With `whiteElsewhere` what is not covered is a white source.
    void coverage(int y, int left, const std::uint8_t* coverage, int count, bool whiteElsewhere)
    {
        eachRun(y, left, left + count,
            [&](int l, int r) { coverageRun(y, l, r, coverage + (l - left), whiteElsewhere && !m_sourceTransparent); });
    }
    /// bits() or coverage(), with white elsewhere, of all rows; the first is row `y`.
    void mask(int y, int left, const MaskRows& rows)
    {
        const bool isInside = y >= m_bounds.top && rows.count <= m_bounds.bottom - y && left >= m_bounds.left
            && rows.width <= m_bounds.right - left;
        if (isInside && !m_clip && rows.count > 0) {
            m_page.touchRows(y, y + rows.count, left, left + rows.width);
            return maskRun(y, left, rows);
        }
        for (int i = 0; i < rows.count; ++i) {
            if (rows.isBits)
                bits(y + i, left, BitRow(rows.row(i), rows.width), 0, rows.width);
            else
                coverage(y + i, left, rows.row(i), rows.width, true);
        }
    }
    /// Source of the page's own channels, as ink (one byte a pixel on a bilevel page, where it is screened), mixed by
    /// `coverage` unless that is null.
    void colors(int y, int left, const std::uint8_t* ink, const std::uint8_t* coverage, int count)
    {
        const int channels = m_page.format() == PixelFormat::Rgb24 ? 3 : 1;
        eachRun(y, left, left + count, [&](int l, int r) {
            colorsRun(y, l, r, ink + static_cast<std::ptrdiff_t>(l - left) * channels,
                coverage ? coverage + (l - left) : nullptr);
        });
    }

    /// The same with an alpha of its own for each pixel: on a bilevel page it is screened together with the tone, where
    /// coverage takes a pixel or leaves it.
    void blended(int y, int left, const std::uint8_t* ink, const std::uint8_t* alpha, int count)
    {
        const int channels = m_page.format() == PixelFormat::Rgb24 ? 3 : 1;
        eachRun(y, left, left + count, [&](int l, int r) {
            blendedRun(y, l, r, ink + static_cast<std::ptrdiff_t>(l - left) * channels, alpha + (l - left));
        });
    }

protected:
    Compositor(
        PageBitmap& page, const PaintState& state, std::shared_ptr<const DeviceTexture> texture, WorkMeter& work);

    // What follows is given parts of one row, inside page and clip, never empty.
    virtual void inkRun(int y, int left, int right) = 0;
    virtual void whiteRun(int y, int left, int right) = 0;
    /// Pixel x is bit x + shift.
    virtual void bitsRun(int y, int left, int right, const BitRow& bits, std::ptrdiff_t shift) = 0;
    virtual void coverageRun(int y, int left, int right, const std::uint8_t* coverage, bool whiteElsewhere) = 0;
    virtual void maskRun(int y, int left, const MaskRows& rows) = 0;
    virtual void colorsRun(int y, int left, int right, const std::uint8_t* ink, const std::uint8_t* coverage) = 0;
    virtual void blendedRun(int y, int left, int right, const std::uint8_t* ink, const std::uint8_t* alpha) = 0;

    PageBitmap& m_page;
    const RasterOperation m_operation;
    const bool m_sourceTransparent;
    const bool m_patternTransparent;
    const std::uint8_t m_opacity;
    const std::shared_ptr<const DeviceTexture> m_textureOwner;
    const DeviceTexture& m_texture;

private:
    template <typename Paint> void eachRun(int y, int left, int right, Paint paint)
    {
        if (y < m_bounds.top || y >= m_bounds.bottom)
            return;
        left = left < m_bounds.left ? m_bounds.left : left;
        right = right > m_bounds.right ? m_bounds.right : right;
        if (left >= right)
            return;
        if (m_clip)
            return eachClippedRun(y, left, right, paint);
        m_page.touch(y, left, right);
        paint(left, right);
    }

    template <typename Paint> void eachClippedRun(int y, int left, int right, Paint paint)
    {
        const ClipRegion::Run* end = m_clip->end(y);
        const ClipRegion::Run* run = std::lower_bound(m_clip->begin(y), end, left,
            [](const ClipRegion::Run& candidate, int column) { return candidate.right <= column; });
        for (; run != end && run->left < right; ++run) {
            const int from = std::max(left, run->left);
            const int to = std::min(right, run->right);
            m_page.touch(y, from, to);
            paint(from, to);
        }
        if (m_fringe)
            eachFringePixel(y, left, right, paint);
    }

    /// Pixels just outside of the clip take a share of what painting makes of them.
    template <typename Paint> void eachFringePixel(int y, int left, int right, Paint paint)
    {
        const ClipFringe::Cell* end = m_fringe->end(y);
        const ClipFringe::Cell* cell = std::lower_bound(m_fringe->begin(y), end, left,
            [](const ClipFringe::Cell& candidate, int column) { return candidate.x < column; });
        const ClipRegion::Run* run = m_clip->begin(y);
        const auto channels = static_cast<std::size_t>(m_page.format() == PixelFormat::Rgb24 ? 3 : 1);
        for (; cell != end && cell->x < right; ++cell) {
            const int x = cell->x;
            while (run != m_clip->end(y) && run->right <= x)
                ++run;
            const bool isInside = run != m_clip->end(y) && run->left <= x;
            if (isInside || cell->coverage >= 128)
                continue;
            std::uint8_t* at = m_page.row(y) + static_cast<std::size_t>(x) * channels;
            std::uint8_t before[3];
            std::memcpy(before, at, channels);
            m_page.touch(y, x, x + 1);
            paint(x, x + 1);
            for (std::size_t channel = 0; channel < channels; ++channel)
                at[channel] = mixed(before[channel], at[channel], 2u * cell->coverage);
        }
    }

    WorkMeter& m_work;
    std::uint64_t m_unitsPer1024Pixels;
    std::uint64_t m_charged; ///< of the page's painted pixels
    PixelRect m_bounds;
    std::shared_ptr<const ClipRegion> m_clip; ///< null where the bounds say all
    const ClipFringe* m_fringe = nullptr; ///< of the clip, where its soft edges count
    bool m_isIdempotent;
};

} // namespace quillrip
