#include "quillrip/fonts/shaping/face_shaper.h"

#include "quillrip/base/heap_account.h"
#include "quillrip/fonts/faces/file_face.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <vector>

#include <hb-ot.h>
#include <hb.h>

namespace quillrip {

namespace {

/// HarfBuzz counts in whole numbers: this many to the em.
constexpr int kUnits = 1 << 16;

struct BufferDeleter {
    void operator()(hb_buffer_t* buffer) const { hb_buffer_destroy(buffer); }
};

/// What a buffer takes when the tables of a hostile font make as many glyphs of so many characters as HarfBuzz lets
/// them: 64 of each, or 16,384 of a short text.
std::uint64_t mostBytesFor(std::size_t characters)
{
    constexpr std::uint64_t kMostGlyphsOfEach = 64;
    constexpr std::uint64_t kMostGlyphsOfFew = 16384;
    return std::max(kMostGlyphsOfEach * characters, kMostGlyphsOfFew)
        * (sizeof(hb_glyph_info_t) + sizeof(hb_glyph_position_t));
}

const FileFace& faceOf(void* user) { return *static_cast<const FileFace*>(user); }

hb_position_t unitsOf(double em)
{
    constexpr double kFarthest = 1 << 14; // em: far from where whole numbers end
    return static_cast<hb_position_t>(std::lround(std::clamp(em, -kFarthest, kFarthest) * kUnits));
}

/// Hands a face's tables over. All together they are as large as the file at most: in a hostile one they overlap.
class TableSource {
public:
    explicit TableSource(const FontFile& file)
        : m_file(file)
        , m_left(file.size())
    {
    }

    hb_blob_t* table(hb_tag_t tag)
    {
        using Bytes = std::vector<std::uint8_t>;
        auto bytes = std::make_unique<Bytes>(m_file.table(tag, m_left));
        if (bytes->empty())
            return nullptr;
        m_left -= bytes->size();
        // Writable, so that what has to be mended is not copied once more.
        auto* const data = reinterpret_cast<char*>(bytes->data());
        const auto size = static_cast<unsigned>(bytes->size());
        return hb_blob_create(
            data, size, HB_MEMORY_MODE_WRITABLE, bytes.release(), [](void* own) { delete static_cast<Bytes*>(own); });
    }

private:
    const FontFile& m_file;
    std::size_t m_left;
};

hb_bool_t nominalGlyph(hb_font_t*, void* user, hb_codepoint_t character, hb_codepoint_t* glyph, void*)
{
    const GlyphId id = faceOf(user).glyph(character);
    *glyph = id == kNoGlyph ? 0 : id;
    return id != kNoGlyph;
}

hb_position_t advanceOf(hb_font_t*, void* user, hb_codepoint_t glyph, void*)
{
    return unitsOf(faceOf(user).advance(glyph == 0 ? kNoGlyph : glyph));
}

hb_bool_t extentsOf(hb_font_t*, void* user, hb_codepoint_t glyph, hb_glyph_extents_t* extents, void*)
{
    const Rect box = faceOf(user).file().extent(glyph);
    *extents = { unitsOf(box.left), unitsOf(box.bottom), unitsOf(box.width()), unitsOf(-box.height()) };
    return true;
}

hb_font_funcs_t* glyphFunctions()
{
    hb_font_funcs_t* const functions = hb_font_funcs_create();
    hb_font_funcs_set_nominal_glyph_func(functions, nominalGlyph, nullptr, nullptr);
    hb_font_funcs_set_glyph_h_advance_func(functions, advanceOf, nullptr, nullptr);
    hb_font_funcs_set_glyph_extents_func(functions, extentsOf, nullptr, nullptr);
    hb_font_funcs_make_immutable(functions);
    return functions;
}

} // namespace

void FaceShaper::FontDeleter::operator()(hb_font_t* font) const { hb_font_destroy(font); }

FaceShaper::FaceShaper(const FileFace& face)
{
    void* const user = const_cast<FileFace*>(&face);
    hb_face_t* const tables = hb_face_create_for_tables(
        [](hb_face_t*, hb_tag_t tag, void* source) { return static_cast<TableSource*>(source)->table(tag); },
        new TableSource(face.file()), [](void* source) { delete static_cast<TableSource*>(source); });
    hb_face_set_upem(tables, face.file().unitsPerEm());
    hb_face_set_glyph_count(tables, face.file().glyphCount());
    m_font.reset(hb_font_create(tables));
    hb_face_destroy(tables);
    hb_font_set_scale(m_font.get(), kUnits, kUnits);
    hb_font_funcs_t* const functions = glyphFunctions();
    hb_font_set_funcs(m_font.get(), functions, user, nullptr);
    hb_font_funcs_destroy(functions);
}

FaceShaper::~FaceShaper() = default;

std::vector<PositionedGlyph> FaceShaper::shape(const std::u32string& text, const ShapingRun& run)
{
    static_assert(sizeof(char32_t) == sizeof(std::uint32_t), "the text is handed over as it is");
    HeapClaim room;
    room.add(mostBytesFor(run.end - run.begin));
    const std::unique_ptr<hb_buffer_t, BufferDeleter> owner(hb_buffer_create());
    hb_buffer_t* const buffer = owner.get();
    hb_buffer_add_utf32(buffer, reinterpret_cast<const std::uint32_t*>(text.data()), static_cast<int>(text.size()),
        static_cast<unsigned>(run.begin), static_cast<int>(run.end - run.begin));
    hb_buffer_set_script(buffer, static_cast<hb_script_t>(run.script));
    hb_buffer_set_direction(buffer, run.isRightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    // No other shaper than the one for OpenType, whatever tables a job's font has.
    constexpr std::array<const char*, 2> kShapers { "ot", nullptr };
    const bool isDone = hb_shape_full(m_font.get(), buffer, nullptr, 0, kShapers.data());
    if (!isDone || !hb_buffer_allocation_successful(buffer))
        return {};
    unsigned count = 0;
    const hb_glyph_info_t* const infos = hb_buffer_get_glyph_infos(buffer, &count);
    const hb_glyph_position_t* const positions = hb_buffer_get_glyph_positions(buffer, &count);
    constexpr double kEm = 1.0 / kUnits;
    std::vector<PositionedGlyph> glyphs(count);
    for (unsigned i = 0; i < count; ++i)
        glyphs[i] = { infos[i].codepoint == 0 ? kNoGlyph : infos[i].codepoint, infos[i].cluster,
            positions[i].x_advance * kEm, positions[i].x_offset * kEm, positions[i].y_offset * kEm };
    return glyphs;
}

} // namespace quillrip
