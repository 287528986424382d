#include "quillrip/fonts/freetype_library.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>
#include <utility>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_MODULE_H

namespace quillrip {

namespace {

void* take(FT_Memory memory, long bytes)
{
    void* const block = operator new(static_cast<std::size_t>(bytes), std::nothrow);
    if (!block)
        *static_cast<bool*>(memory->user) = true;
    return block;
}

void giveBack(FT_Memory, void* block) { operator delete(block); }

void* resize(FT_Memory memory, long formerBytes, long bytes, void* block)
{
    void* const other = take(memory, bytes);
    if (!other)
        return nullptr;
    std::memcpy(other, block, static_cast<std::size_t>(std::min(formerBytes, bytes)));
    giveBack(memory, block);
    return other;
}

} // namespace

FreeTypeLibrary::FreeTypeLibrary()
    : m_memory(std::make_unique<FT_MemoryRec_>(FT_MemoryRec_ { &m_isOutOfMemory, take, giveBack, resize }))
{
    if (FT_New_Library(m_memory.get(), &m_library) != 0)
        throw std::bad_alloc {};
    // This tells of no failure, and leaves modules out.
    FT_Add_Default_Modules(m_library);
    FT_Set_Default_Properties(m_library);
    if (m_isOutOfMemory) {
        FT_Done_Library(m_library);
        throw std::bad_alloc {};
    }
}

FreeTypeLibrary::~FreeTypeLibrary() { FT_Done_Library(m_library); }

bool FreeTypeLibrary::hasDone(int error)
{
    if (std::exchange(m_isOutOfMemory, false) || error == FT_Err_Out_Of_Memory)
        throw std::bad_alloc {};
    return error == 0;
}

} // namespace quillrip
