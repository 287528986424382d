#include "font_test_helpers.h"
#include "quillrip/fonts/faces/advance_widths.h"
#include "quillrip/fonts/faces/box_drawing.h"
#include "quillrip/fonts/faces/internal_face.h"
#include "quillrip/fonts/font_library.h"
#include "quillrip/fonts/pixels/glyph_cache.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

using namespace quillrip;

namespace {

/// Published widths of the codes 20 to 7E (19U) in 1/1000 of the design em.
const std::map<std::string, std::vector<int>> kPublished {
    { "CG Times",
        { 296, 333, 463, 500, 500, 889, 778, 333, 333, 333, 500, 889, 333, 333, 333, 333, 500, 500, 500, 500, 500, 500,
            500, 500, 500, 500, 333, 333, 1000, 889, 1000, 444, 889, 722, 630, 685, 741, 630, 593, 722, 741, 333, 389,
            704, 630, 907, 741, 722, 574, 722, 667, 537, 630, 741, 722, 944, 722, 722, 648, 333, 333, 333, 500, 500,
            500, 444, 500, 444, 500, 444, 333, 500, 500, 278, 278, 500, 278, 778, 500, 500, 500, 500, 370, 389, 278,
            500, 500, 722, 500, 500, 444, 444, 500, 444, 1000 } },
    { "Univers Condensed Bold",
        { 222, 296, 407, 481, 481, 667, 630, 222, 222, 222, 481, 667, 222, 222, 222, 222, 481, 481, 481, 481, 481, 481,
            481, 481, 481, 481, 222, 222, 1000, 667, 1000, 444, 667, 556, 537, 519, 556, 463, 444, 556, 556, 259, 481,
            537, 426, 741, 574, 556, 519, 574, 519, 537, 500, 556, 519, 778, 556, 519, 463, 222, 222, 222, 500, 500,
            481, 444, 444, 407, 444, 426, 315, 444, 463, 241, 241, 444, 241, 667, 463, 444, 444, 444, 333, 407, 315,
            463, 444, 704, 444, 444, 370, 500, 500, 500, 1000 } },
    { "Coronet",
        { 204, 185, 278, 407, 407, 519, 778, 167, 204, 204, 407, 519, 204, 204, 204, 204, 407, 407, 407, 407, 407, 407,
            407, 407, 407, 407, 204, 204, 1000, 519, 1000, 296, 519, 889, 537, 556, 889, 574, 648, 574, 907, 574, 500,
            889, 685, 833, 593, 685, 537, 685, 574, 667, 593, 630, 630, 907, 574, 611, 685, 204, 204, 204, 500, 500,
            407, 333, 315, 259, 333, 259, 222, 315, 333, 185, 167, 315, 204, 463, 315, 278, 315, 333, 222, 222, 185,
            333, 259, 407, 222, 296, 222, 444, 500, 444, 1000 } },
};

std::shared_ptr<const Typeface> face(const FontLibrary& library, const std::string& name)
{
    for (const auto& candidate : library.builtInFaces()) {
        if (candidate->traits().name == name)
            return candidate;
    }
    return nullptr;
}

struct Extent {
    double left = 1e9, bottom = 1e9, right = -1e9, top = -1e9;
};

Extent extent(const Path& path)
{
    Extent e;
    for (const Point& p : path.points()) {
        e.left = std::min(e.left, p.x);
        e.right = std::max(e.right, p.x);
        e.bottom = std::min(e.bottom, p.y);
        e.top = std::max(e.top, p.y);
    }
    return e;
}

} // namespace

TEST(InternalFace, AdvancesAreThoseOfTheOriginalFaces)
{
    const FontLibrary library;
    const SymbolSet* set = findSymbolSet(629);
    for (const auto& [name, widths] : kPublished) {
        const auto f = face(library, name);
        ASSERT_NE(f, nullptr);
        for (unsigned code = 0x20; code < 0x7F; ++code) {
            // The published tables leave out that the point of these faces is 1/72.307 inch.
            EXPECT_NEAR(f->advance(f->glyph(set->unicode(code))), widths[code - 0x20] / 1000.0 * 72 / 72.307, 0.0007)
                << name << ' ' << code;
        }
    }
}

TEST(InternalFace, AccentedLettersAreAsWideAsTheirBases)
{
    const FontLibrary library;
    for (const char* name : { "CG Times", "Univers Bold", "Albertus Medium", "Arial", "Times New Roman Italic" }) {
        const auto f = face(library, name);
        for (const auto& [accented, base] :
            { std::pair<unsigned, unsigned> { 0xC9, 'E' }, { 0xE9, 'e' }, { 0xFC, 'u' } })
            EXPECT_EQ(f->advance(accented), f->advance(base)) << name;
    }
}

TEST(InternalFace, SumOfALineIsExact)
{
    const FontLibrary library;
    const auto f = face(library, "CG Times");
    double sum = 0;
    double expected = 0;
    const std::string line = "The quick brown fox jumps over the lazy dog and runs away from here";
    for (const char c : line) {
        const auto code = static_cast<unsigned char>(c);
        sum += f->advance(f->glyph(code));
        expected += kPublished.at("CG Times")[code - 0x20u] / 1000.0 * 72 / 72.307;
    }
    // 12 points: within a dot at 300 dpi, the published figures being rounded.
    EXPECT_NEAR(sum * 12 * 300 / 72, expected * 12 * 300 / 72, 1.0);
}

TEST(InternalFace, FixedFacesFollowTheirPitch)
{
    const FontLibrary library;
    FontRequest request;
    const Font courier = library.select(request, {});
    EXPECT_NEAR(80 * courier.advanceInches(courier.find('W').glyph), 8, 1e-9);
    EXPECT_NEAR(courier.defaultHmiInches(), 0.1, 1e-12);
    request.pitch = 16.67;
    const Font condensed = library.select(request, {});
    EXPECT_NEAR(132 * condensed.advanceInches(condensed.find('i').glyph), 7.918, 0.001);
    EXPECT_NEAR(face(library, "Letter Gothic")->advance('W'), 0.5, 1e-12);
}

TEST(InternalFace, ProportionalFontsScaleTheirWidths)
{
    const FontLibrary library;
    FontRequest request;
    request.isProportional = true;
    request.height = 36;
    request.family = 16602;
    const Font arial = library.select(request, {});
    EXPECT_NEAR(arial.advanceInches(arial.find('0').glyph), 0.5562 * 0.5, 0.0002);
    EXPECT_NEAR(arial.defaultHmiInches(), 0.2778 * 0.5, 0.0002);
    // A code that the set has but the font has not takes the space's width; codes outside of it take none.
    const Font::Lookup outside = arial.find(0x85);
    EXPECT_FALSE(outside.isPrintable);
    EXPECT_NEAR(arial.advanceInches(kNoGlyph), arial.defaultHmiInches(), 1e-12);
}

TEST(InternalFace, EveryFaceHasAShapeForEveryCharacterOfTheCommonSets)
{
    quillrip::test::RecordingSink reports;
    const FontLibrary library({}, &reports);
    for (const auto& f : library.builtInFaces()) {
        if (f->traits().isBoundToSet)
            continue;
        for (const std::uint16_t number : std::initializer_list<std::uint16_t> { 277, 629, 341, 14 }) {
            const SymbolSet* set = findSymbolSet(number);
            for (unsigned code = 0x21; code < 256; ++code) {
                const char32_t unicode = set->unicode(code);
                if (unicode == 0 || unicode == 0xA0)
                    continue;
                const GlyphId glyph = f->glyph(unicode);
                ASSERT_NE(glyph, kNoGlyph) << f->traits().name << ' ' << std::hex << unicode;
                EXPECT_GT(f->advance(glyph), 0);
                Path path;
                EXPECT_TRUE(f->outline(glyph, path)) << f->traits().name << ' ' << std::hex << unicode;
            }
        }
    }
    EXPECT_TRUE(reports.diagnostics.empty()) << "install the font packages: " << reports.diagnostics[0].message;
}

TEST(InternalFace, EverySymbolSetPrintsWhole)
{
    const FontLibrary library;
    for (const SymbolSet* set : builtInSymbolSets()) {
        if (set->number() == kUnicodeSymbolSet)
            continue;
        FontRequest request;
        request.symbolSet = set->number();
        request.isProportional = true;
        request.family = 4101;
        const Font font = library.select(request, {});
        for (unsigned code = 1; code < 256; ++code) {
            if (set->unicode(code) != 0) {
                EXPECT_NE(font.find(code).glyph, kNoGlyph)
                    << set->designator() << ' ' << std::hex << code << " U+" << set->unicode(code);
            }
        }
    }
}

TEST(InternalFace, BoundFacesPrintAllOfTheirSets)
{
    const FontLibrary library;
    for (const char* name : { "Symbol", "Wingdings", "SymbolPS", "ITC Zapf Dingbats" }) {
        const auto f = face(library, name);
        const SymbolSet* set = findSymbolSet(f->traits().symbolSet);
        for (unsigned code = 0x21; code < 256; ++code) {
            if (set->unicode(code) == 0 || set->unicode(code) == 0xA0)
                continue;
            Path path;
            EXPECT_TRUE(f->outline(f->glyph(code), path)) << name << ' ' << code;
        }
    }
    EXPECT_NEAR(face(library, "Wingdings")->advance(0x24), 1.344, 0.001);
    // Code 61 is alpha, not a: it has no stem as high as a capital's.
    Path alpha;
    const auto symbol = face(library, "Symbol");
    EXPECT_TRUE(symbol->outline(symbol->glyph(0x61), alpha));
    EXPECT_NEAR(symbol->advance(symbol->glyph(0x61)), 0.631, 0.001);
}

TEST(InternalFace, GlyphsStayWithinTheirAdvances)
{
    const FontLibrary library;
    for (const auto& f : library.builtInFaces()) {
        // Italic and script letters lean over their neighbours.
        constexpr std::uint16_t kMarigold = 4297;
        if (f->traits().isBoundToSet || f->traits().style & 1 || f->traits().family == kMarigold)
            continue;
        for (unsigned code = 'A'; code <= 'z'; ++code) {
            Path path;
            if (!f->outline(f->glyph(code), path))
                continue;
            const Extent e = extent(path);
            EXPECT_GT(e.left, -0.13) << f->traits().name << ' ' << code;
            EXPECT_LT(e.right, f->advance(code) + 0.13) << f->traits().name << ' ' << code;
        }
    }
}

TEST(InternalFace, WideCellsAreFilledWithoutSwollenStems)
{
    // The original's t and f are a third wider than the look-alike's.
    const FontLibrary library;
    const auto univers = face(library, "Univers Medium");
    const auto inkShare = [](const Typeface& f, char letter) {
        Path path;
        EXPECT_TRUE(f.outline(f.glyph(static_cast<unsigned char>(letter)), path));
        const Extent e = extent(path);
        return (e.right - e.left) / f.advance(f.glyph(static_cast<unsigned char>(letter)));
    };
    const auto stem = [](const Typeface& f, char letter) {
        Path path;
        EXPECT_TRUE(f.outline(f.glyph(static_cast<unsigned char>(letter)), path));
        return uprightStrokeWidth(path, 1);
    };
    for (const char letter : { 't', 'f' }) {
        EXPECT_GT(inkShare(*univers, letter), 0.85) << letter;
        EXPECT_NEAR(stem(*univers, letter), stem(*univers, 'l'), 0.012) << letter;
    }
}

TEST(InternalFace, FiguresAreAsHighAsCapitalsAndOfOneWidth)
{
    const FontLibrary library;
    for (const auto& f : library.builtInFaces()) {
        if (f->traits().isBoundToSet)
            continue;
        for (char digit = '0'; digit <= '9'; ++digit) {
            Path path;
            ASSERT_TRUE(f->outline(f->glyph(static_cast<unsigned char>(digit)), path)) << f->traits().name;
            const Extent e = extent(path);
            EXPECT_GT(e.bottom, -0.05) << f->traits().name << ' ' << digit;
            EXPECT_GT(e.top, 0.5) << f->traits().name << ' ' << digit;
            EXPECT_NEAR(f->advance(f->glyph(static_cast<unsigned char>(digit))), f->advance(f->glyph('0')), 0.001);
        }
    }
}

TEST(InternalFace, RulesReachAllEdgesOfTheirCells)
{
    const FontLibrary library;
    for (const char* name : { "Courier", "Letter Gothic", "CG Times" }) {
        const auto f = face(library, name);
        Path cross;
        ASSERT_TRUE(f->outline(f->glyph(0x253C), cross));
        const Extent e = extent(cross);
        EXPECT_NEAR(e.left, 0, 1e-9);
        EXPECT_NEAR(e.right, f->advance(0x253C), 1e-9);
        EXPECT_NEAR(e.top - e.bottom, name == std::string("CG Times") ? kOlderPoint : 1, 1e-9);
    }
}

TEST(BoxDrawing, CornersTurnAndDoublesStayApart)
{
    const auto draw = [](char32_t unicode) {
        Path path;
        boxDrawing(unicode, { 0, 0, 12, 12 }, 2, path);
        std::string text;
        for (double y = 11.5; y > 0; --y) {
            for (double x = 0.5; x < 12; ++x) {
                bool isInk = false;
                // Rules are rectangles, four points each.
                for (std::size_t i = 0; i + 3 < path.pointCount(); i += 4) {
                    const Point p = path.points()[i];
                    const Point q = path.points()[i + 2];
                    isInk = isInk
                        || (x > std::min(p.x, q.x) && x < std::max(p.x, q.x) && y > std::min(p.y, q.y)
                            && y < std::max(p.y, q.y));
                }
                text += isInk ? '#' : '.';
            }
            text += '\n';
        }
        return text;
    };
    EXPECT_TRUE(isBoxDrawing(0x2554));
    EXPECT_FALSE(isBoxDrawing('A'));
    EXPECT_EQ(draw(0x2554),
        "............\n"
        "............\n"
        "............\n"
        "...#########\n"
        "...#........\n"
        "...#........\n"
        "...#........\n"
        "...#........\n"
        "...#....####\n"
        "...#....#...\n"
        "...#....#...\n"
        "...#....#...\n");
    EXPECT_EQ(draw(0x2564),
        "............\n"
        "............\n"
        "............\n"
        "############\n"
        "............\n"
        "............\n"
        "............\n"
        "............\n"
        "############\n"
        ".....##.....\n"
        ".....##.....\n"
        ".....##.....\n");
}

TEST(InternalFace, MissingFilesAreReportedAndCharactersBecomeBoxes)
{
    quillrip::test::RecordingSink reports;
    const auto files = std::make_shared<FontFiles>(std::vector<std::string> { "/nonexistent" });
    const InternalFace courier(kInternalFaces[0], files, &reports);
    EXPECT_NEAR(courier.advance('A'), 19029 / 26458.33, 1e-4);
    Path path;
    EXPECT_TRUE(courier.outline(courier.glyph('A'), path));
    EXPECT_TRUE(reports.has("font.missing-file"));
}

TEST(InternalFace, NoFileIsOpenedBeforeAGlyphIsAskedFor)
{
    quillrip::test::RecordingSink reports;
    const auto files = std::make_shared<FontFiles>(std::vector<std::string> { "/nonexistent" });
    const InternalFace face(kInternalFaces[0], files, &reports);
    EXPECT_GT(face.traits().spaceAdvance, 0);
    EXPECT_GT(face.advance('A'), 0);
    EXPECT_TRUE(reports.diagnostics.empty());
}

TEST(InternalFace, HairlinesNeverVanish)
{
    const FontLibrary library;
    GlyphCache cache;
    for (const char* name : { "Courier", "CG Times", "Univers Condensed Medium", "ITC Avant Garde Book" }) {
        const auto f = face(library, name);
        for (const double pixelsPerEm : { 6.0, 9.0, 12.5, 17.0, 25.0 }) {
            for (unsigned code = 0x21; code < 0x7F; ++code) {
                const PlacedGlyph placed = cache.place(
                    *f, f->glyph(code), Matrix { pixelsPerEm, 0, 0, -pixelsPerEm, 0, 0 }, GlyphMask::Depth::Bits);
                EXPECT_NE(placed.mask, nullptr) << name << ' ' << code << ' ' << pixelsPerEm;
            }
        }
        // The bar of a capital H reaches from stem to stem in one row at least.
        const PlacedGlyph h = cache.place(*f, f->glyph('H'), Matrix { 14, 0, 0, -14, 0, 0 }, GlyphMask::Depth::Bits);
        ASSERT_NE(h.mask, nullptr);
        int most = 0;
        for (int y = 1; y + 1 < h.mask->height; ++y) {
            int run = 0;
            for (int x = 0; x < h.mask->width; ++x) {
                run = hasInk(*h.mask, x, y) ? run + 1 : 0;
                most = std::max(most, run);
            }
        }
        EXPECT_GE(most, 4) << name;
    }
}

TEST(InternalFace, BoldStyleAddsInk)
{
    const FontLibrary library;
    const auto f = face(library, "Arial");
    const auto ink = [&](double bold) {
        GlyphMask mask;
        f->rasterise(f->glyph('l'), Matrix { 100, 0, 0, -100, 0, 0 }, GlyphMask::Depth::Coverage, { bold }, mask);
        long sum = 0;
        for (const std::uint8_t byte : mask.bytes)
            sum += byte;
        return static_cast<double>(sum) / 255;
    };
    // The stem of an l, 0.73 em high: each hundredth of an em makes it about a pixel wider.
    EXPECT_NEAR(ink(0.02) - ink(0), 2 * 73, 30);
}

TEST(InternalFace, TurnedTextIsTheSameTextTurned)
{
    const FontLibrary library;
    const auto f = face(library, "Univers Bold");
    GlyphMask upright;
    GlyphMask turned;
    const Matrix m { 60, 0, 0, -60, 0, 0 };
    ASSERT_TRUE(f->rasterise(f->glyph('R'), m, GlyphMask::Depth::Coverage, {}, upright));
    ASSERT_TRUE(f->rasterise(f->glyph('R'), m * Matrix::quarterTurns(2), GlyphMask::Depth::Coverage, {}, turned));
    long a = 0;
    long b = 0;
    for (const std::uint8_t byte : upright.bytes)
        a += byte;
    for (const std::uint8_t byte : turned.bytes)
        b += byte;
    EXPECT_NEAR(static_cast<double>(a) / static_cast<double>(b), 1, 0.02);
    EXPECT_LT(turned.left, 0);
    EXPECT_GE(turned.top, -1);
}
