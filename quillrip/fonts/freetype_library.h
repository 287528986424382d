#pragma once

#include <memory>

struct FT_LibraryRec_;
struct FT_MemoryRec_;

namespace quillrip {

/// A FreeType library of its own, whose memory comes from new, so that the heap's account has it: a font of a job can
/// ask for any amount. What FreeType has opened with it must be gone before.
class FreeTypeLibrary {
public:
    /// Throws std::bad_alloc.
    FreeTypeLibrary();
    ~FreeTypeLibrary();
    FreeTypeLibrary(const FreeTypeLibrary&) = delete;
    FreeTypeLibrary& operator=(const FreeTypeLibrary&) = delete;

    FT_LibraryRec_* get() const { return m_library; }

    /// Whether a function of FreeType has succeeded that returned `error`. Throws std::bad_alloc where memory was
    /// missing, since the font is whole then and must not be taken for a broken one; nor must its glyph, which FreeType
    /// sometimes gives without a word of what was missing.
    bool hasDone(int error);

private:
    bool m_isOutOfMemory = false;
    std::unique_ptr<FT_MemoryRec_> m_memory;
    FT_LibraryRec_* m_library = nullptr;
};

} // namespace quillrip
