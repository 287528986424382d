// Writes the table of screen.h: a dither array by the void-and-cluster method, on a torus so that it tiles.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace {

constexpr int kSize = 64;
constexpr int kCells = kSize * kSize;
constexpr double kSigma = 1.5; // pixels; the value that Ulichney found best

constexpr std::size_t indexOf(int x, int y)
{
    return std::size_t { kSize } * static_cast<std::size_t>(y) + static_cast<std::size_t>(x);
}

/// Which cells have a dot, and for every cell how crowded its surroundings are.
class DotPattern {
public:
    DotPattern()
        : m_hasDot(kCells)
        , m_crowding(kCells)
    {
        for (int dy = 0; dy < kSize; ++dy) {
            for (int dx = 0; dx < kSize; ++dx) {
                const int x = std::min(dx, kSize - dx);
                const int y = std::min(dy, kSize - dy);
                m_kernel.push_back(std::exp(-(x * x + y * y) / (2 * kSigma * kSigma)));
            }
        }
    }

    bool hasDot(int cell) const { return m_hasDot[static_cast<std::size_t>(cell)]; }

    void set(int cell, bool dot)
    {
        m_hasDot[static_cast<std::size_t>(cell)] = dot;
        const int cellX = cell % kSize;
        const int cellY = cell / kSize;
        for (int y = 0; y < kSize; ++y) {
            const int dy = (y - cellY + kSize) % kSize;
            for (int x = 0; x < kSize; ++x) {
                const double weight = m_kernel[indexOf((x - cellX + kSize) % kSize, dy)];
                m_crowding[indexOf(x, y)] += dot ? weight : -weight;
            }
        }
    }

    int tightestCluster() const { return extreme(true); }
    int largestVoid() const { return extreme(false); }

private:
    int extreme(bool amongDots) const
    {
        int best = -1;
        for (int cell = 0; cell < kCells; ++cell) {
            if (hasDot(cell) != amongDots)
                continue;
            const double value = m_crowding[static_cast<std::size_t>(cell)];
            const double bestValue = best < 0 ? 0 : m_crowding[static_cast<std::size_t>(best)];
            if (best < 0 || (amongDots ? value > bestValue : value < bestValue))
                best = cell;
        }
        return best;
    }

    std::vector<double> m_kernel;
    std::vector<bool> m_hasDot;
    std::vector<double> m_crowding;
};

/// A tenth of the cells, spread evenly: a random start, then dots move from clusters to voids until none gains.
DotPattern evenStart(int dots)
{
    DotPattern pattern;
    std::uint32_t random = 12345;
    for (int placed = 0; placed < dots;) {
        random = random * 1664525 + 1013904223;
        const int cell = static_cast<int>(random >> 8) % kCells;
        if (pattern.hasDot(cell))
            continue;
        pattern.set(cell, true);
        ++placed;
    }
    for (int moves = 0; moves < kCells; ++moves) {
        const int cluster = pattern.tightestCluster();
        pattern.set(cluster, false);
        const int gap = pattern.largestVoid();
        pattern.set(gap, true);
        if (gap == cluster)
            break;
    }
    return pattern;
}

} // namespace

int main(int argc, char** argv)
{
    const int startDots = kCells / 10;
    const DotPattern start = evenStart(startDots);
    std::vector<int> rank(kCells);

    DotPattern shrinking = start;
    for (int dots = startDots; dots > 0; --dots) {
        const int cell = shrinking.tightestCluster();
        shrinking.set(cell, false);
        rank[static_cast<std::size_t>(cell)] = dots - 1;
    }
    DotPattern growing = start;
    for (int dots = startDots; dots < kCells; ++dots) {
        const int cell = growing.largestVoid();
        growing.set(cell, true);
        rank[static_cast<std::size_t>(cell)] = dots;
    }

    std::FILE* out = argc == 2 ? std::fopen(argv[1], "w") : nullptr;
    if (!out)
        return 1;
    std::fputs("#include \"quillrip/raster/compose/screen.h\"\n\nnamespace quillrip {\n\n", out);
    std::fputs("const std::array<std::array<std::uint8_t, kScreenSize>, kScreenSize> kScreenThresholds { {\n", out);
    for (int y = 0; y < kSize; ++y) {
        std::fputs("    { {", out);
        for (int x = 0; x < kSize; ++x)
            std::fprintf(out, " %d,", rank[indexOf(x, y)] * 255 / kCells);
        std::fputs(" } },\n", out);
    }
    std::fputs("} };\n\n} // namespace quillrip\n", out);
    return std::fclose(out) == 0 ? 0 : 1;
}
