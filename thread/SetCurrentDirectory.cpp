#include "VekThread.h"

#include <windows.h>

CVekSetCurrentDirectory::CVekSetCurrentDirectory(wchar_t const * directory)
{
    constexpr DWORD BUFFER_SIZE = 1024;
    wchar_t current[BUFFER_SIZE];
    DWORD const length = GetCurrentDirectoryW(BUFFER_SIZE, current);
    if (directory)
        SetCurrentDirectoryW(directory);
    // One that doesn't fit is not put back: half of a path would be another directory.
    if (length > 0 && length < BUFFER_SIZE)
        m_saved.Assign(current);
}

CVekSetCurrentDirectory::~CVekSetCurrentDirectory()
{
    if (!m_saved.IsEmpty())
        SetCurrentDirectoryW(m_saved);
}
