#include "quillrip/fonts/select/windows_face_shelf.h"

#include "quillrip/fonts/select/windows_faces.h"

namespace quillrip {

std::shared_ptr<const FileFace> WindowsFaceShelf::face(const char* stem)
{
    if (!stem)
        return nullptr;
    const auto known = m_faces.find(stem);
    if (known != m_faces.end())
        return known->second;
    const FontFile* const file = m_files.open(stem);
    return m_faces[stem] = file ? std::make_shared<FileFace>(*file) : nullptr;
}

std::shared_ptr<const FileFace> WindowsFaceShelf::add(std::vector<std::uint8_t> file)
{
    const FontFile* const opened = m_files.openBytes(std::move(file));
    if (!opened)
        return nullptr;
    m_carried.push_back(std::make_shared<FileFace>(*opened));
    return m_carried.back();
}

const FileFace* WindowsFaceShelf::findHelping(char32_t character, bool wantsBold, const Question& fits)
{
    const auto ask
        = [&](const std::shared_ptr<const FileFace>& face) { return face && fits(*face) ? face.get() : nullptr; };
    for (const HelpingFont& helping : kHelpingFonts) {
        if (const FileFace* const found = wantsBold ? ask(face(helping.boldFile)) : nullptr)
            return found;
        if (const FileFace* const found = ask(face(helping.file)))
            return found;
    }
    for (const auto& carried : m_carried) {
        if (const FileFace* const found = ask(carried))
            return found;
    }
    for (const char* const stem : scriptFontsOf(character)) {
        if (const FileFace* const found = ask(face(stem)))
            return found;
    }
    return nullptr;
}

std::shared_ptr<const FileFace> WindowsFaceShelf::anyFace()
{
    for (const HelpingFont& helping : kHelpingFonts) {
        if (auto found = face(helping.file))
            return found;
    }
    return m_carried.empty() ? nullptr : m_carried.front();
}

} // namespace quillrip
