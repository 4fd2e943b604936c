#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstddef>

// Two pages, of which the second can't be touched.
class FencedPage
{
public:
    FencedPage() : m_base(static_cast<char *>(VirtualAlloc(nullptr, 2 * PAGE, MEM_RESERVE, PAGE_NOACCESS)))
    {
        VirtualAlloc(m_base, PAGE, MEM_COMMIT, PAGE_READWRITE);
    }
    ~FencedPage() { VirtualFree(m_base, 0, MEM_RELEASE); }
    FencedPage(FencedPage const &) = delete;
    FencedPage & operator=(FencedPage const &) = delete;
    template <class T>
    T * Last(std::size_t count) const
    {
        return reinterpret_cast<T *>(m_base + PAGE) - count;
    }

private:
    static constexpr std::size_t PAGE = 4096;
    char * m_base;
};
