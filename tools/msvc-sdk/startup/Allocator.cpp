// The global allocator over malloc. A program that runs out of memory ends: there is no exception to throw here.
#include <stddef.h>

#include <new>

extern "C"
{
    __declspec(dllimport) void * __cdecl malloc(size_t);
    __declspec(dllimport) void __cdecl free(void *);
    __declspec(dllimport) void * __cdecl _aligned_malloc(size_t, size_t);
    __declspec(dllimport) void __cdecl _aligned_free(void *);
    __declspec(dllimport) int __cdecl _callnewh(size_t);
    __declspec(dllimport) __declspec(noreturn) void __cdecl abort();
}

static void * Allocate(size_t size)
{
    for (;;)
    {
        if (void * const block = malloc(size ? size : 1))
            return block;
        if (!_callnewh(size))
            return nullptr;
    }
}
static void * Allocate(size_t size, std::align_val_t alignment)
{
    return _aligned_malloc(size ? size : 1, static_cast<size_t>(alignment));
}
static void * OrEnd(void * block)
{
    if (!block)
        abort();
    return block;
}

void * operator new(size_t size)
{
    return OrEnd(Allocate(size));
}
void * operator new(size_t size, std::nothrow_t const &) noexcept
{
    return Allocate(size);
}
void * operator new(size_t size, std::align_val_t alignment)
{
    return OrEnd(Allocate(size, alignment));
}
void * operator new(size_t size, std::align_val_t alignment, std::nothrow_t const &) noexcept
{
    return Allocate(size, alignment);
}
void * operator new[](size_t size)
{
    return OrEnd(Allocate(size));
}
void * operator new[](size_t size, std::nothrow_t const &) noexcept
{
    return Allocate(size);
}
void * operator new[](size_t size, std::align_val_t alignment)
{
    return OrEnd(Allocate(size, alignment));
}
void * operator new[](size_t size, std::align_val_t alignment, std::nothrow_t const &) noexcept
{
    return Allocate(size, alignment);
}
void operator delete(void * block) noexcept
{
    free(block);
}
void operator delete(void * block, size_t) noexcept
{
    free(block);
}
void operator delete(void * block, std::nothrow_t const &) noexcept
{
    free(block);
}
void operator delete(void * block, std::align_val_t) noexcept
{
    _aligned_free(block);
}
void operator delete(void * block, size_t, std::align_val_t) noexcept
{
    _aligned_free(block);
}
void operator delete(void * block, std::align_val_t, std::nothrow_t const &) noexcept
{
    _aligned_free(block);
}
void operator delete[](void * block) noexcept
{
    free(block);
}
void operator delete[](void * block, size_t) noexcept
{
    free(block);
}
void operator delete[](void * block, std::nothrow_t const &) noexcept
{
    free(block);
}
void operator delete[](void * block, std::align_val_t) noexcept
{
    _aligned_free(block);
}
void operator delete[](void * block, size_t, std::align_val_t) noexcept
{
    _aligned_free(block);
}
void operator delete[](void * block, std::align_val_t, std::nothrow_t const &) noexcept
{
    _aligned_free(block);
}
