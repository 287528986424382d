#pragma once

#include "quillrip/base/page_bitmap.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace quillrip {

/// The languages that other programs draw.
enum class DocumentLanguage { PostScript, Pdf, Xps };

/// With its article, such as "a PDF document".
const char* nameOf(DocumentLanguage language);

/// Decipoints.
struct DocumentPageSize {
    double width = 0;
    double height = 0;
};
inline bool operator<(const DocumentPageSize& a, const DocumentPageSize& b)
{
    return a.width != b.width ? a.width < b.width : a.height < b.height;
}

/// What a program is to draw of a document.
struct DrawingOrder {
    PixelFormat format = PixelFormat::Rgb24;
    Resolution resolution;
    std::optional<DocumentPageSize> pageSize; ///< which all these pages have; nothing: not known
    std::string pages; ///< such as "1-3,5"; empty: all
};

/// A program that draws documents as images in the raw forms of PBM, PGM and PPM: one row of the table of programs.
struct DocumentProgram {
    const char* name; ///< for people
    const char* executable;
    const char* package; ///< of Debian
    /// False: pages of unknown size are drawn with the same resolution across and down only.
    bool hasTwoResolutions;
    /// What the document's name has to end with; null: any name is good.
    const char* extension;
    /// The arguments that make it tell the pages' sizes, one line each; `mark` is a word that no document knows.
    std::vector<std::string> (*measuring)(const std::string& document, const std::string& mark);
    /// The page's size that a line tells; nothing when it tells something else.
    std::optional<DocumentPageSize> (*sizeIn)(const std::string& line, const std::string& mark);
    std::vector<std::string> (*drawing)(const std::string& document, const DrawingOrder& order);
};

/// A program that is there.
struct InstalledProgram {
    const DocumentProgram* program = nullptr;
    std::string path;
};

/// The programs that draw documents, and where they are.
class DocumentPrograms {
public:
    /// None at all.
    DocumentPrograms() = default;
    /// Those in the folders of a PATH; relative folders do not count, since they would run whatever lies beside the
    /// job.
    static DocumentPrograms inFolders(const std::string& path);
    static DocumentPrograms onPath();

    /// The best one for a language; nothing when none of them is there.
    std::optional<InstalledProgram> find(DocumentLanguage language) const;
    /// Of all that are there.
    std::vector<std::string> paths() const;
    /// What to install for a language, to go on after "needs ".
    static std::string wanted(DocumentLanguage language);

private:
    std::vector<InstalledProgram> m_installed;
};

} // namespace quillrip
