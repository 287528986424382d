#include "quillrip/fonts/faces/font_file.h"

#include "quillrip/fonts/freetype_library.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <dirent.h>
#include <filesystem>
#include <memory>
#include <new>
#include <sys/stat.h>
#include <system_error>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include FT_TRUETYPE_TABLES_H

namespace quillrip {

namespace {

namespace fs = std::filesystem;

/// OpenType first among the forms of one font: it opens fastest.
constexpr std::array<const char*, 4> kExtensions { ".otf", ".ttf", ".t1", ".pfb" };

/// Walking the system's folders stops here; no installation comes near.
constexpr int kMostSystemFiles = 20000;
constexpr int kDeepestFolder = 6;

struct FolderCloser {
    void operator()(DIR* folder) const { closedir(folder); }
};

bool isFolder(const dirent& entry, const std::string& path)
{
    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type == DT_DIR;
    struct stat status { };
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// Calls `use` with the path of every file at or below the folder; false ends the walk. Links are no folders. The
/// standard library's walk ends the process when memory is short; a file that is left out for want of it must not be
/// taken for one that is not there, so this one throws std::bad_alloc.
template <typename Use> bool forEachFile(const std::string& folder, const Use& use, int depth = 0)
{
    const std::unique_ptr<DIR, FolderCloser> open(opendir(folder.c_str()));
    if (!open && errno == ENOMEM)
        throw std::bad_alloc {};
    while (const dirent* const entry = open ? readdir(open.get()) : nullptr) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        const std::string path = std::string(folder).append("/").append(name);
        const bool goesOn
            = !isFolder(*entry, path) ? use(path) : depth >= kDeepestFolder || forEachFile(path, use, depth + 1);
        if (!goesOn)
            return false;
    }
    return true;
}

std::vector<std::string> searchFolders()
{
    std::vector<std::string> folders;
    if (const char* source = std::getenv("PCLFONTSOURCE"); source && *source)
        folders.emplace_back(source);
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (!error) {
        const fs::path folder = program.parent_path();
        folders.push_back((folder / "fonts").string());
        // Name.app/Contents/MacOS/program: the fonts lie beside Name.app.
        folders.push_back((folder.parent_path().parent_path().parent_path() / "fonts").string());
    }
    return folders;
}

std::vector<std::string> systemFolders()
{
    std::vector<std::string> folders { "/usr/share/fonts", "/usr/local/share/fonts" };
    if (const char* home = std::getenv("HOME"); home && *home) {
        folders.push_back(std::string(home) + "/.local/share/fonts");
        folders.push_back(std::string(home) + "/.fonts");
    }
    return folders;
}

/// FreeType walks an outline piece by piece; the path takes it in em.
struct OutlineSink {
    Path* path;
    double unit;
    Point last;
    bool isOpen = false;

    Point point(const FT_Vector* v) const
    {
        return { static_cast<double>(v->x) * unit, static_cast<double>(v->y) * unit };
    }
};

int moveTo(const FT_Vector* to, void* user)
{
    auto& sink = *static_cast<OutlineSink*>(user);
    if (sink.isOpen)
        sink.path->close();
    sink.isOpen = true;
    sink.last = sink.point(to);
    sink.path->moveTo(sink.last);
    return 0;
}

int lineTo(const FT_Vector* to, void* user)
{
    auto& sink = *static_cast<OutlineSink*>(user);
    sink.last = sink.point(to);
    sink.path->lineTo(sink.last);
    return 0;
}

int conicTo(const FT_Vector* control, const FT_Vector* to, void* user)
{
    auto& sink = *static_cast<OutlineSink*>(user);
    const Point c = sink.point(control);
    const Point end = sink.point(to);
    sink.path->cubicTo(sink.last + (c - sink.last) * (2.0 / 3), end + (c - end) * (2.0 / 3), end);
    sink.last = end;
    return 0;
}

int cubicTo(const FT_Vector* control1, const FT_Vector* control2, const FT_Vector* to, void* user)
{
    auto& sink = *static_cast<OutlineSink*>(user);
    sink.last = sink.point(to);
    sink.path->cubicTo(sink.point(control1), sink.point(control2), sink.last);
    return 0;
}

/// Book faces map digits to figures with descenders; printers' faces have figures as high as capitals, of one width.
/// 0 when the font has no second set, or does not name it.
unsigned liningFigure(FT_Face face, unsigned digit)
{
    static constexpr const char* kFigures[] = { "zero.tablining", "one.tablining", "two.tablining", "three.tablining",
        "four.tablining", "five.tablining", "six.tablining", "seven.tablining", "eight.tablining", "nine.tablining" };
    return FT_HAS_GLYPH_NAMES(face) ? FT_Get_Name_Index(face, kFigures[digit]) : 0;
}

} // namespace

bool appendSlotOutline(FT_FaceRec_* face, double unit, Path& path)
{
    if (face->glyph->format != FT_GLYPH_FORMAT_OUTLINE || face->glyph->outline.n_points <= 0)
        return false;
    FT_Outline_Funcs functions {};
    functions.move_to = moveTo;
    functions.line_to = lineTo;
    functions.conic_to = conicTo;
    functions.cubic_to = cubicTo;
    OutlineSink sink { &path, unit, {} };
    const bool isWhole = FT_Outline_Decompose(&face->glyph->outline, &functions, &sink) == 0;
    if (sink.isOpen)
        path.close();
    return isWhole;
}

FontFile::FontFile(FT_FaceRec_* face, FreeTypeLibrary& library)
    : m_face(face)
    , m_library(library)
{
    for (int i = 0; i < face->num_charmaps; ++i) {
        if (face->charmaps[i]->encoding == FT_ENCODING_ADOBE_CUSTOM)
            m_ownMap = face->charmaps[i];
        if (face->charmaps[i]->encoding == FT_ENCODING_MS_SYMBOL)
            m_symbolMap = face->charmaps[i];
    }
    // Symbol fonts in OpenType form claim Unicode for codes of their own: they have a glyph at "a", which is alpha.
    m_mapsUnicode = face->charmap && face->charmap->encoding == FT_ENCODING_UNICODE
        && !(m_ownMap && FT_Get_Char_Index(face, 'a') != 0);
}

FontFile::~FontFile() { FT_Done_Face(m_face); }

unsigned FontFile::glyphOfUnicode(char32_t unicode) const
{
    if (unicode >= '0' && unicode <= '9') {
        if (const unsigned figure = liningFigure(m_face, static_cast<unsigned>(unicode - '0')))
            return figure;
    }
    return m_mapsUnicode ? FT_Get_Char_Index(m_face, unicode) : 0;
}

unsigned FontFile::glyphOfOwnCode(unsigned code) const
{
    if (!m_mapsUnicode)
        return FT_Get_Char_Index(m_face, code);
    if (!m_ownMap)
        return 0;
    const FT_CharMap kept = m_face->charmap;
    FT_Set_Charmap(m_face, m_ownMap);
    const unsigned glyph = FT_Get_Char_Index(m_face, code);
    FT_Set_Charmap(m_face, kept);
    return glyph;
}

unsigned FontFile::glyphOfSymbolCode(unsigned code) const
{
    constexpr unsigned kPrivateArea = 0xF000;
    if (m_symbolMap) {
        const FT_CharMap kept = m_face->charmap;
        FT_Set_Charmap(m_face, m_symbolMap);
        unsigned glyph = FT_Get_Char_Index(m_face, kPrivateArea + code);
        if (glyph == 0)
            glyph = FT_Get_Char_Index(m_face, code);
        if (kept)
            FT_Set_Charmap(m_face, kept);
        return glyph;
    }
    const unsigned own = glyphOfOwnCode(code);
    return own != 0 ? own : glyphOfUnicode(kPrivateArea + code);
}

unsigned FontFile::glyphCount() const { return static_cast<unsigned>(std::max<FT_Long>(0, m_face->num_glyphs)); }

bool FontFile::isBold() const { return (m_face->style_flags & FT_STYLE_FLAG_BOLD) != 0; }

bool FontFile::isItalic() const { return (m_face->style_flags & FT_STYLE_FLAG_ITALIC) != 0; }

FontFileTraits FontFile::traits() const
{
    const double em = m_face->units_per_EM;
    FontFileTraits traits;
    traits.family = m_face->family_name ? m_face->family_name : "";
    traits.isBold = isBold();
    traits.isItalic = isItalic();
    traits.lineAscent = m_face->ascender / em;
    traits.lineDescent = -m_face->descender / em;
    traits.lineGap = std::max(0.0, m_face->height / em - traits.lineAscent - traits.lineDescent);
    traits.windowsAscent = traits.lineAscent;
    traits.windowsDescent = traits.lineDescent;
    traits.underlineTop = (m_face->underline_position + m_face->underline_thickness / 2.0) / em;
    traits.underlineThickness = m_face->underline_thickness / em;
    constexpr double kStrikeoutHeight = 0.26;
    traits.strikeoutTop = kStrikeoutHeight;
    traits.strikeoutThickness = traits.underlineThickness;
    const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(m_face, FT_SFNT_OS2));
    if (os2 && os2->version != 0xFFFF) {
        traits.averageWidth = os2->xAvgCharWidth / em;
        if (os2->usWinAscent + os2->usWinDescent > 0) {
            traits.windowsAscent = os2->usWinAscent / em;
            traits.windowsDescent = os2->usWinDescent / em;
        }
        if (os2->yStrikeoutSize > 0) {
            traits.strikeoutTop = os2->yStrikeoutPosition / em;
            traits.strikeoutThickness = os2->yStrikeoutSize / em;
        }
    }
    return traits;
}

double FontFile::advance(unsigned glyph) const
{
    if (!m_library.hasDone(FT_Load_Glyph(m_face, glyph, FT_LOAD_NO_SCALE)))
        return 0;
    return static_cast<double>(m_face->glyph->metrics.horiAdvance) / m_face->units_per_EM;
}

bool FontFile::outline(unsigned glyph, Path& path) const
{
    if (!m_library.hasDone(FT_Load_Glyph(m_face, glyph, FT_LOAD_NO_SCALE)))
        return false;
    return appendSlotOutline(m_face, 1.0 / m_face->units_per_EM, path);
}

Rect FontFile::extent(unsigned glyph) const
{
    if (!m_library.hasDone(FT_Load_Glyph(m_face, glyph, FT_LOAD_NO_SCALE)))
        return {};
    const double em = m_face->units_per_EM;
    const FT_Glyph_Metrics& box = m_face->glyph->metrics;
    const double left = static_cast<double>(box.horiBearingX) / em;
    const double high = static_cast<double>(box.horiBearingY) / em;
    return { left, high - static_cast<double>(box.height) / em, left + static_cast<double>(box.width) / em, high };
}

unsigned FontFile::unitsPerEm() const { return m_face->units_per_EM; }

std::size_t FontFile::size() const { return m_face->stream ? m_face->stream->size : 0; }

std::vector<std::uint8_t> FontFile::table(std::uint32_t tag, std::size_t mostBytes) const
{
    FT_ULong size = 0;
    if (!m_library.hasDone(FT_Load_Sfnt_Table(m_face, tag, 0, nullptr, &size)) || size == 0 || size > mostBytes)
        return {};
    std::vector<std::uint8_t> bytes(size);
    if (!m_library.hasDone(FT_Load_Sfnt_Table(m_face, tag, 0, bytes.data(), &size)))
        return {};
    return bytes;
}

std::vector<std::string> fontFolders()
{
    std::vector<std::string> folders = searchFolders();
    const std::vector<std::string> others = systemFolders();
    folders.insert(folders.end(), others.begin(), others.end());
    return folders;
}

FontFiles::FontFiles()
    : m_folders(searchFolders())
    , m_usesSystemFolders(true)
{
}

FontFiles::FontFiles(std::vector<std::string> folders)
    : m_folders(std::move(folders))
    , m_usesSystemFolders(false)
{
}

FontFiles::~FontFiles() = default;

const FontFile* FontFiles::open(const std::string& stem)
{
    if (const auto found = m_opened.find(stem); found != m_opened.end())
        return found->second.get();
    std::unique_ptr<FontFile>& file = m_opened[stem];
    const std::string path = locate(stem);
    FT_Face face = nullptr;
    if (path.empty() || !library().hasDone(FT_New_Face(library().get(), path.c_str(), 0, &face)))
        return nullptr;
    if (!FT_IS_SCALABLE(face) || face->units_per_EM == 0) {
        FT_Done_Face(face);
        return nullptr;
    }
    file.reset(new FontFile(face, library()));
    return file.get();
}

FreeTypeLibrary& FontFiles::library()
{
    if (!m_library)
        m_library = std::make_unique<FreeTypeLibrary>();
    return *m_library;
}

const FontFile* FontFiles::openBytes(std::vector<std::uint8_t> bytes)
{
    FT_Face face = nullptr;
    if (!library().hasDone(
            FT_New_Memory_Face(library().get(), bytes.data(), static_cast<FT_Long>(bytes.size()), 0, &face)))
        return nullptr;
    if (!FT_IS_SCALABLE(face) || face->units_per_EM == 0) {
        FT_Done_Face(face);
        return nullptr;
    }
    m_fromBytes.emplace_back(new FontFile(face, library()));
    m_fromBytes.back()->m_bytes = std::move(bytes);
    return m_fromBytes.back().get();
}

std::string FontFiles::locate(const std::string& stem)
{
    std::error_code error;
    for (const std::string& folder : m_folders) {
        for (const char* extension : kExtensions) {
            const fs::path path = fs::path(folder) / (stem + extension);
            if (fs::is_regular_file(path, error))
                return path.string();
        }
    }
    if (!m_usesSystemFolders)
        return {};
    if (!m_hasScanned)
        scanSystemFolders();
    const auto found = m_systemFiles.find(stem);
    return found == m_systemFiles.end() ? std::string() : found->second;
}

void FontFiles::scanSystemFolders()
{
    m_hasScanned = true;
    const auto rank = [](const std::string& extension) {
        for (std::size_t i = 0; i < kExtensions.size(); ++i) {
            if (extension == kExtensions[i])
                return static_cast<int>(i);
        }
        return -1;
    };
    int seen = 0;
    const auto note = [&](const std::string& file) {
        const fs::path path(file);
        const int wanted = rank(path.extension().string());
        if (wanted < 0)
            return true;
        std::string& known = m_systemFiles[path.stem().string()];
        const fs::path knownPath(known);
        // Of equal files in several folders the last by name: a newer release has the higher folder name.
        if (known.empty() || wanted < rank(knownPath.extension().string())
            || (wanted == rank(knownPath.extension().string()) && known < file))
            known = file;
        return ++seen < kMostSystemFiles;
    };
    for (const std::string& folder : systemFolders()) {
        if (!forEachFile(folder, note))
            return;
    }
}

} // namespace quillrip
