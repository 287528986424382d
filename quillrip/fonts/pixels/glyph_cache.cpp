#include "quillrip/fonts/pixels/glyph_cache.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace quillrip {

namespace {

/// Above this many device pixels an em, a glyph costs less as a path than as a mask that is used once.
constexpr double kLargestCachedEm = 1000;

/// Grey glyphs keep their place to a quarter of a pixel: finer steps cannot be seen, coarser ones make text uneven.
constexpr int kPhases = 4;

std::uint32_t bitsOf(float value)
{
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// A coordinate as a whole pixel and a phase within it.
struct GridPlace {
    int pixel = 0;
    std::uint8_t phase = 0;
};

GridPlace onGrid(double coordinate, int phases)
{
    // Far outside of every page, and also what a broken matrix leads to.
    if (!(std::abs(coordinate) < 1e8))
        return {};
    const auto steps = static_cast<long>(std::floor(coordinate * phases + 0.5));
    const long pixel = steps >= 0 ? steps / phases : -((-steps + phases - 1) / phases);
    return { static_cast<int>(pixel), static_cast<std::uint8_t>(steps - pixel * phases) };
}

/// Whether the dots of a bitmap face are blocks of whole pixels.
bool isOnGrid(const Typeface& face, const Matrix& m)
{
    const double resolution = face.traits().resolution;
    const auto isWhole = [resolution](double scale) {
        const double pixels = scale / resolution;
        return std::abs(pixels - std::round(pixels)) < 1e-4;
    };
    return resolution <= 0 || (isWhole(m.a) && isWhole(m.b) && isWhole(m.c) && isWhole(m.d));
}

} // namespace

bool GlyphCache::Key::operator==(const Key& other) const
{
    return face == other.face && revision == other.revision && glyph == other.glyph && a == other.a && b == other.b
        && c == other.c && d == other.d && bold == other.bold && phaseX == other.phaseX && phaseY == other.phaseY
        && depth == other.depth;
}

std::size_t GlyphCache::KeyHash::operator()(const Key& key) const
{
    std::uint64_t hash = key.face * 0x9E3779B97F4A7C15u;
    const auto mix = [&hash](std::uint64_t value) {
        hash = (hash ^ value) * 0xFF51AFD7ED558CCDu;
        hash ^= hash >> 29;
    };
    mix(key.glyph | std::uint64_t { key.revision } << 32);
    mix(bitsOf(key.a) | std::uint64_t { bitsOf(key.b) } << 32);
    mix(bitsOf(key.c) | std::uint64_t { bitsOf(key.d) } << 32);
    mix(bitsOf(key.bold) | std::uint64_t { key.phaseX } << 32 | std::uint64_t { key.phaseY } << 40
        | std::uint64_t { static_cast<std::uint8_t>(key.depth) } << 48);
    return static_cast<std::size_t>(hash);
}

GlyphCache::GlyphCache(std::size_t capacityBytes)
    : m_capacity(capacityBytes)
{
}

bool GlyphCache::isTooLarge(const Typeface& face, const Matrix& m)
{
    if (!face.traits().isScalable)
        return false;
    constexpr double largest = kLargestCachedEm * kLargestCachedEm;
    return m.a * m.a + m.b * m.b > largest || m.c * m.c + m.d * m.d > largest;
}

PlacedGlyph GlyphCache::place(
    const Typeface& face, GlyphId glyph, const Matrix& glyphToDevice, GlyphMask::Depth depth, const GlyphStyle& style)
{
    PlacedGlyph placed;
    const Matrix& m = glyphToDevice;
    // A matrix that is no number would also never be found again as a key.
    if (glyph == kNoGlyph || !std::isfinite(m.a + m.b + m.c + m.d + m.e + m.f) || isTooLarge(face, m))
        return placed;

    const bool isGrey = depth == GlyphMask::Depth::Coverage && face.traits().isScalable;
    // Each bitmap has a place of its own on its font's finer grid; rounding it away makes the line uneven.
    const bool isReduced = depth == GlyphMask::Depth::Coverage && !isGrey && !isOnGrid(face, m);
    const bool runsAcross = m.b == 0 && m.c == 0;
    const bool runsDown = m.a == 0 && m.d == 0;
    const GridPlace x = onGrid(m.e, isReduced || (isGrey && !runsDown) ? kPhases : 1);
    const GridPlace y = onGrid(m.f, isReduced || (isGrey && !runsAcross) ? kPhases : 1);
    placed.x = x.pixel;
    placed.y = y.pixel;

    const Key key { face.id(), face.glyphRevision(glyph), glyph, static_cast<float>(m.a), static_cast<float>(m.b),
        static_cast<float>(m.c), static_cast<float>(m.d), static_cast<float>(style.bold), x.phase, y.phase, depth };
    if (const auto found = m_index.find(key); found != m_index.end()) {
        m_entries.splice(m_entries.begin(), m_entries, found->second);
        placed.mask = found->second->mask;
        return placed;
    }

    ++m_rasterisations;
    auto mask = std::make_shared<GlyphMask>();
    const Matrix local { m.a, m.b, m.c, m.d, static_cast<double>(x.phase) / kPhases,
        static_cast<double>(y.phase) / kPhases };
    if (face.rasterise(glyph, local, depth, style, *mask) && mask->width > 0 && mask->height > 0)
        placed.mask = std::move(mask);

    const std::size_t bytes = sizeof(Entry) + 64 + (placed.mask ? sizeof(GlyphMask) + placed.mask->bytes.size() : 0);
    if (bytes > m_capacity)
        return placed;
    shrinkTo(m_capacity - bytes);
    m_entries.push_front({ key, placed.mask, bytes });
    m_index.emplace(key, m_entries.begin());
    m_bytes += bytes;
    return placed;
}

void GlyphCache::shrinkTo(std::size_t bytes)
{
    while (m_bytes > bytes && !m_entries.empty()) {
        m_bytes -= m_entries.back().bytes;
        m_index.erase(m_entries.back().key);
        m_entries.pop_back();
    }
}

} // namespace quillrip
