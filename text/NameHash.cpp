#include "text/NameHash.h"

#include "text/Fold.h"

#include <windows.h>

namespace vek
{

NameHash::NameHash() noexcept
{
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    m_seed = static_cast<uint32_t>(counter.QuadPart) * 0x9E3779B1U ^
             static_cast<uint32_t>(reinterpret_cast<uintptr_t>(this));
}

uint32_t NameHash::operator()(wchar_t const * text, size_t length) const noexcept
{
    uint32_t hash = m_seed;
    for (size_t i = 0; i < length; ++i)
    {
        hash = (hash ^ static_cast<uint32_t>(FoldAscii(text[i]))) * 0x85EBCA6BU;
        hash ^= hash >> 15;
    }
    return hash;
}

} // namespace vek
