#include "NewFile.h"

#include "Console.h"
#include "FileErrors.h"
#include "Platform.h"

#include <string_view>

namespace tool
{

NewFile::NewFile(std::wstring const & target)
    : m_target(target), m_path(target + Format(L".%u.vek-new", static_cast<unsigned int>(GetCurrentProcessId())))
{
}

NewFile::~NewFile()
{
    if (!m_placed)
        DeleteFileW(m_path.c_str());
}

bool NewFile::Place()
{
    m_placed = MoveFileExW(m_path.c_str(), m_target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
    if (!m_placed)
        Fail(m_target, L"can't be replaced: " + LastErrorText());
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
