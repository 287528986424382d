#pragma once

#include "quillrip/base/limits.h"
#include "quillrip/base/reporter.h"
#include "quillrip/fonts/font.h"
#include "quillrip/fonts/soft/soft_font.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace quillrip {

class GlyphPainter;
class InternalFaces;

/// The seven attributes of a font selection.
struct FontRequest {
    std::uint16_t symbolSet = kRoman8;
    bool isProportional = false;
    double pitch = 10; ///< characters per inch
    double height = 12; ///< points
    std::uint16_t style = 0; ///< posture + 4 * width + 32 * structure
    int weight = 0;
    std::uint16_t family = 4099;

    bool operator==(const FontRequest& other) const
    {
        return symbolSet == other.symbolSet && isProportional == other.isProportional && pitch == other.pitch
            && height == other.height && style == other.style && weight == other.weight && family == other.family;
    }
};

/// What selection looks at besides the request.
struct SelectionContext {
    int resolution = 300; ///< of the page that the job is written for (unit of raster fonts)
    int orientation = 0; ///< logical page orientation, 0 to 3
    std::uint16_t defaultSymbolSet = kRoman8;
    bool allowsBitmapFonts = true; ///< false: HP-GL/2 with SB0

    bool operator==(const SelectionContext& other) const
    {
        return resolution == other.resolution && orientation == other.orientation
            && defaultSymbolSet == other.defaultSymbolSet && allowsBitmapFonts == other.allowsBitmapFonts;
    }
};

/// A soft font's name in the job: a number or a string.
struct SoftFontKey {
    std::int32_t number = 0;
    std::string name; ///< not empty: the string counts and the number does not

    bool operator<(const SoftFontKey& other) const
    {
        return name != other.name ? name < other.name : name.empty() && number < other.number;
    }
};

/// Soft fonts by their numbers and names, temporary and permanent.
class SoftFontStore {
public:
    explicit SoftFontStore(std::size_t limitBytes);

    /// Replaces a font of that key. New fonts are temporary. False (and nothing stored) above the memory limit.
    bool put(const SoftFontKey& key, std::shared_ptr<SoftFont> font, const Reporter& reporter);
    /// Null when there is none.
    std::shared_ptr<SoftFont> find(const SoftFontKey& key) const;
    /// Lets `alias` name the font that `key` names now.
    void associate(const SoftFontKey& alias, const SoftFontKey& key);
    void remove(const SoftFontKey& key);
    void removeAll();
    void removeTemporary();
    void setPermanent(const SoftFontKey& key, bool isPermanent);
    /// Call before adding a character: false when the memory limit is reached.
    bool hasRoomFor(std::size_t bytes) const;

    /// Who finds the built-in face that stands in for outlines that cannot be drawn.
    using ShapeFinder = std::function<std::shared_ptr<const Typeface>(const FontTraits&)>;
    void setShapeFinder(ShapeFinder finder) { m_shapeFinder = std::move(finder); }

    struct Entry {
        std::shared_ptr<SoftFont> font;
        bool isPermanent = false;
    };
    const std::map<SoftFontKey, Entry>& entries() const { return m_entries; }
    /// Differs after every change of what find() gives.
    std::uint64_t generation() const { return m_generation; }

private:
    std::size_t m_limit;
    std::map<SoftFontKey, Entry> m_entries;
    ShapeFinder m_shapeFinder;
    std::uint64_t m_generation = 0;
    mutable int m_asksSinceCount = 0;
    mutable std::size_t m_asked = 0; ///< bytes granted since the fonts were last counted, with those
};

/// All fonts of a job: the built-in faces (files opened when first used), soft fonts, user-defined symbol sets.
class FontLibrary {
public:
    /// `sink` hears of missing faces; may be null. It must outlive the library.
    explicit FontLibrary(const Limits& limits = {}, DiagnosticSink* sink = nullptr);
    ~FontLibrary();
    FontLibrary(const FontLibrary&) = delete;
    FontLibrary& operator=(const FontLibrary&) = delete;

    SoftFontStore& softFonts() { return m_softFonts; }
    const SoftFontStore& softFonts() const { return m_softFonts; }

    /// Selection by characteristics over soft and built-in fonts, in the printer's order of priority. Always gives a
    /// font. Looks at no file: a face is opened when its first glyph is asked for.
    Font select(const FontRequest& request, const SelectionContext& context) const;

    /// The soft font of that key as a font, at the request's size (scalable) and symbol set (unbound); nothing when
    /// there is none. `request` is then overwritten by the font's own attributes, as selection by ID does.
    Font selectById(const SoftFontKey& key, FontRequest& request, const SelectionContext& context) const;

    /// A built-in face by its PCL XL name (16 characters; more or fewer are understood), for text in a symbol set.
    /// Height is 1 point. Always gives a font; a warning tells when the name was not known.
    Font selectByName(const std::string& name, std::uint16_t symbolSet, const Reporter& reporter) const;

    /// As the selection commands would write it, such as "\x1b(8U\x1b(s1p12v0s0b4148T".
    Font selectByEscapeSequence(ByteView commands, const SelectionContext& context) const;

    /// User-defined sets go before built-in ones. Null when there is none of that number.
    std::shared_ptr<const SymbolSet> symbolSet(std::uint16_t number) const;
    void defineSymbolSet(std::shared_ptr<const SymbolSet> set); ///< temporary, replaces a set of that number
    void removeSymbolSet(std::uint16_t number);
    void removeAllSymbolSets();
    void removeTemporarySymbolSets();
    void setSymbolSetPermanent(std::uint16_t number, bool isPermanent);

    /// The built-in faces, in the order of their numbers on a type specimen.
    std::vector<std::shared_ptr<const Typeface>> builtInFaces() const;

    /// Draws glyphs for all interpreters of the job, so that text of one part finds the masks that another has made.
    GlyphPainter& glyphs() { return *m_glyphs; }

private:
    struct UserSymbolSet {
        std::shared_ptr<const SymbolSet> set;
        bool isPermanent = false;
    };

    /// A selection and what came of it: text changes to and fro between few fonts.
    struct Selection {
        FontRequest request;
        SelectionContext context;
        Font font;
    };

    Font selectAnew(const FontRequest& request, const SelectionContext& context) const;
    std::shared_ptr<const Typeface> selectInternal(const FontRequest& request) const;
    /// The face of a built-in family (there must be one) that comes nearest to style and weight.
    std::shared_ptr<const Typeface> selectInFamily(std::uint16_t family, std::uint16_t style, int weight) const;

    DiagnosticSink* m_sink;
    SoftFontStore m_softFonts;
    std::map<std::uint16_t, UserSymbolSet> m_userSymbolSets;
    std::uint64_t m_symbolSetGeneration = 0;
    std::unique_ptr<InternalFaces> m_internal;
    std::unique_ptr<GlyphPainter> m_glyphs;
    mutable std::vector<Selection> m_selections;
    mutable std::size_t m_nextSelection = 0; ///< the one that the next new selection replaces
    mutable std::uint64_t m_selectionGeneration = 0;
};

} // namespace quillrip
