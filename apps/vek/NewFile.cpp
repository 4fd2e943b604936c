#include "NewFile.h"

#include "Console.h"
#include "FileErrors.h"
#include "FileHandle.h"

#include <string_view>
#include <vector>

namespace tool
{

namespace
{

/// The file that a link leads to; the path itself for anything else.
std::wstring FollowLink(std::wstring const & path)
{
    FileHandle const file(path, 0, FileHandle::SHARE_ALL, OPEN_EXISTING);
    if (!file.IsOpen())
        return path;
    std::wstring target(0x8000, L'\0');
    DWORD const length = GetFinalPathNameByHandleW(file.Get(), target.data(), static_cast<DWORD>(target.size()), 0);
    if (length == 0 || length >= target.size())
        return path;
    target.resize(length);
    return target;
}

std::vector<unsigned char> Permissions(std::wstring const & path)
{
    DWORD size = 0;
    GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<unsigned char> permissions(size);
    if (!GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, permissions.data(), size, &size))
        permissions.clear();
    return permissions;
}

/// Makes an empty file with the permissions of another one, before it holds anything that is not for everybody.
void CreateLike(std::wstring const & model, std::wstring const & path)
{
    std::vector<unsigned char> permissions = Permissions(model);
    if (permissions.empty())
        return;
    if (!FileHandle(path, GENERIC_WRITE, 0, CREATE_ALWAYS).IsOpen())
        return; // whoever writes it will be told why
    if (permissions != Permissions(path))
        SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, permissions.data());
}

} // namespace

NewFile::NewFile(std::wstring const & target)
    : m_given(target), m_target(FollowLink(target)),
      m_path(m_target + Format(L".%u.vek-new", static_cast<unsigned int>(GetCurrentProcessId())))
{
    CreateLike(m_target, m_path);
}

NewFile::~NewFile()
{
    if (!m_placed)
        DeleteFileW(m_path.c_str());
}

bool NewFile::Place()
{
    DWORD const attributes = GetFileAttributesW(m_target.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES)
        SetFileAttributesW(m_path.c_str(), attributes);
    m_placed = MoveFileExW(m_path.c_str(), m_target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
    if (!m_placed)
        Fail(m_given, L"can't be replaced: " + LastErrorText());
    return m_placed;
}

bool IsWritable(std::wstring const & path)
{
    wchar_t full[MAX_PATH];
    DWORD const length = GetFullPathNameW(path.c_str(), MAX_PATH, full, nullptr);
    if (length > 0 && length < MAX_PATH && std::wstring_view(full).starts_with(L"\\\\.\\"))
    {
        Fail(path, L"is a device, not a file");
        return false;
    }
    DWORD const attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return true;
    if (attributes & FILE_ATTRIBUTE_DIRECTORY)
        Fail(path, L"is a directory");
    else if (attributes & FILE_ATTRIBUTE_READONLY)
        Fail(path, L"is read-only");
    else
        return true;
    return false;
}

} // namespace tool
