// The operators new and delete of a program that keeps an account of its heap (heap_account.h). What is entered is what
// the allocator says a block has, so that it comes off again whatever size delete is told. new[], and the forms that
// throw nothing, are made of these by the standard library.

#include "quillrip/base/heap_account.h"
#include "quillrip/base/sanitizer.h"

#include <cstdlib>
#include <new>

#include <malloc.h>

// A sanitizer has operators of its own, which remember more.
#if !QUILLRIP_HAS_SANITIZER

void* operator new(std::size_t size)
{
    void* block = std::malloc(size > 0 ? size : 1);
    if (block && quillrip::HeapAccount::take(malloc_usable_size(block)))
        return block;
    std::free(block);
    throw std::bad_alloc {};
}

void operator delete(void* block) noexcept
{
    if (!block)
        return;
    quillrip::HeapAccount::giveBack(malloc_usable_size(block));
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept { operator delete(block); }

#endif
