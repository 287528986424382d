#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/page_bitmap.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace quillrip::pcl {

enum class ColorSpace : std::uint8_t {
    DeviceRgb = 0,
    DeviceCmy = 1,
    ColorimetricRgb = 2,
    Lab = 3, ///< CIE L*a*b*
    LuminanceChrominance = 4,
};

/// How raster data name their colours.
enum class PixelEncoding : std::uint8_t {
    IndexedByPlane = 0,
    IndexedByPixel = 1,
    DirectByPlane = 2, ///< one bit for each primary, a plane each
    DirectByPixel = 3, ///< one byte for each primary
};

using Components = std::array<double, 3>;

/// What the numbers of a colour mean: the configure image data command, decoded.
class ColorModel {
public:
    /// Device RGB with 8 bits for each primary.
    ColorModel();
    /// From the data of ESC*v#W; nothing when they hold anything illegal, for then the command is ignored.
    static std::optional<ColorModel> parse(ByteView data);

    ColorSpace space = ColorSpace::DeviceRgb;
    PixelEncoding encoding = PixelEncoding::IndexedByPlane;
    int bitsPerIndex = 1;
    std::array<int, 3> bitsPerPrimary { 8, 8, 8 };

    /// The colour of three components as ESC*v#A, #B, #C give them.
    Rgb toRgb(const Components& components) const;
    /// The components of three raster bytes: 0 to 255 mean least to greatest.
    Components fromRasterBytes(std::uint8_t first, std::uint8_t second, std::uint8_t third) const;

private:
    struct Chromaticity {
        double x;
        double y;
    };

    void setDefaultReferences();
    bool readReferences(ByteReader& reader);
    bool readRanges(ByteReader& reader);
    bool readChromaticities(ByteReader& reader);
    bool readToneCurves(ByteReader& reader);
    /// Once all parameters are known: the matrix from linear primaries to linear sRGB.
    void prepare();
    Rgb colorimetricToRgb(const Components& components) const;
    Rgb labToRgb(const Components& components) const;

    std::array<double, 3> m_whiteReference { 255, 255, 255 };
    std::array<double, 3> m_blackReference { 0, 0, 0 };
    std::array<double, 3> m_least { 0, 0, 0 };
    std::array<double, 3> m_greatest { 1, 1, 1 };
    std::array<Chromaticity, 4> m_chromaticities; ///< red, green, blue, white
    std::array<double, 3> m_gamma { 2.2, 2.2, 2.2 };
    std::array<double, 3> m_gain { 1, 1, 1 };
    std::array<double, 9> m_encoding; ///< luminance-chrominance: primaries from RGB, row by row
    std::array<double, 9> m_decoding; ///< its inverse
    std::array<double, 9> m_toLinearRgb;
};

/// ESC*l#W: output bytes for each input byte of three components of one space.
struct ColorLookup {
    ColorSpace space = ColorSpace::DeviceRgb;
    std::array<std::array<std::uint8_t, 256>, 3> tables;

    /// Null when the data make none.
    static std::shared_ptr<const ColorLookup> parse(ByteView data);
};

/// A palette and all that is saved with it.
class Palette {
public:
    /// White and black, not to be changed.
    Palette();
    /// ESC*r#U: 1 and -1 black, 3 RGB, -3 CMY, -4 KCMY; nothing for other values.
    static std::optional<Palette> simple(int planes);
    /// ESC*v#W.
    static Palette forModel(const ColorModel& model);
    /// HP-GL/2's pens, `count` of them, at least two.
    static Palette pens(std::size_t count);

    const ColorModel& model() const { return m_model; }
    bool isFixed() const { return m_isFixed; }
    /// Made by HP-GL/2.
    bool isPens() const { return m_isPens; }
    /// The palette of one plane that the first two entries make.
    Palette firstTwo() const;
    std::size_t size() const { return m_colors.size(); }
    /// Two entries, white and black: raster is then a mask that takes the current pattern.
    bool isBlackOnWhite() const;
    /// Ink-jet KCMY: four planes, the first of them black.
    bool hasBlackPlane() const { return m_hasBlackPlane; }
    int planeCount() const;

    /// Any index: it counts modulo the size. Gamma, lookup tables and render algorithm are applied.
    Rgb color(std::size_t index) const;
    /// A pixel of direct raster data, likewise.
    Rgb directColor(std::uint8_t first, std::uint8_t second, std::uint8_t third) const;

    /// Direct colours can be had channel by channel: directColor(v, v, v) holds what v means in each.
    bool isSeparable() const;

    /// Ignored beyond the size and for fixed palettes.
    void setComponents(std::size_t index, const Components& components);
    void setColor(std::size_t index, Rgb color);
    /// Colour of an entry as 180 dpi colour ink-jets take it, in percent of reflected light: also for fixed palettes.
    void setReflectance(std::size_t index, const Components& percent);
    void resize(std::size_t size);

    void setGamma(double gamma);
    void setLookup(std::shared_ptr<const ColorLookup> lookup);
    void setRenderAlgorithm(int algorithm) { m_renderAlgorithm = algorithm; }

private:
    Rgb corrected(Rgb color) const;
    Components lookedUp(const Components& components) const;

    ColorModel m_model;
    std::vector<Rgb> m_colors;
    bool m_isFixed = true;
    bool m_hasBlackPlane = false;
    bool m_isPens = false;
    double m_gamma = 0;
    std::shared_ptr<const ColorLookup> m_lookup;
    int m_renderAlgorithm = 3;
};

/// All palettes of a job: the active one, those stored under an ID, and the stack. Palettes are shared between copies
/// of the store until one is changed.
class PaletteStore {
public:
    PaletteStore();

    const Palette& active() const { return *m_palettes.at(m_activeId); }
    /// The active palette, to be changed.
    Palette& edit();
    void replaceActive(Palette palette);

    void push(std::size_t depthLimit);
    void pop(); ///< an empty stack is left alone
    void select(int id); ///< unknown IDs are ignored
    void copyActiveTo(int id);
    void remove(int id);
    void removeAll();
    void clearStack() { m_stack.clear(); }

private:
    std::map<int, std::shared_ptr<const Palette>> m_palettes;
    std::vector<std::shared_ptr<const Palette>> m_stack;
    int m_activeId = 0;
};

} // namespace quillrip::pcl
