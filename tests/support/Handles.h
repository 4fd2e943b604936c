// How many handles the process has open; some systems don't count them themselves.
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <cstdint>

// The lowest free one is given first, so that those of a test lie below; those made by the way are few.
inline int CountHandles()
{
    int count = 0;
    for (std::uintptr_t value = 4; value < 4 * 2000; value += 4)
    {
        DWORD flags = 0;
        count += GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != 0;
    }
    return count;
}
