#pragma once

#include "quillrip/fonts/faces/file_face.h"
#include "quillrip/fonts/faces/font_file.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace quillrip {

/// The faces of a Windows job: files of this machine, each opened when it is first asked for, and those that the job
/// carries.
class WindowsFaceShelf {
public:
    /// The face of a file by its name without extension; null when there is no such file, or for a null name.
    std::shared_ptr<const FileFace> face(const char* stem);
    /// A font that the job carries. Null when it cannot be opened.
    std::shared_ptr<const FileFace> add(std::vector<std::uint8_t> file);

    using Question = std::function<bool(const FileFace&)>;
    /// The first face, in the order in which faces stand in for another, to which the answer is yes: the helping fonts,
    /// those that the job carries, those made for the character's script. Null when there is none.
    const FileFace* findHelping(char32_t character, bool wantsBold, const Question& fits);
    /// The first helping font there is.
    std::shared_ptr<const FileFace> anyFace();

private:
    FontFiles m_files;
    std::map<std::string, std::shared_ptr<const FileFace>> m_faces; ///< null: looked for and not found
    std::vector<std::shared_ptr<const FileFace>> m_carried;
};

} // namespace quillrip
