#pragma once

#include "Platform.h"

#include <string>

namespace tool
{

/// A file's handle for a scope.
class FileHandle
{
public:
    static constexpr DWORD SHARE_ALL = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

    FileHandle(std::wstring const & path, DWORD access, DWORD share, DWORD disposition, DWORD flags = 0)
        : m_handle(CreateFileW(path.c_str(), access, share, nullptr, disposition, flags, nullptr))
    {
    }
    ~FileHandle()
    {
        if (IsOpen())
            CloseHandle(m_handle);
    }
    FileHandle(FileHandle const &) = delete;
    FileHandle & operator=(FileHandle const &) = delete;

    bool IsOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return m_handle; }

private:
    HANDLE m_handle;
};

} // namespace tool
