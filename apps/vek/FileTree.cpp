#include "FileTree.h"

#include "VekText.h"

#include "Console.h"
#include "FileErrors.h"
#include "Platform.h"

#include <algorithm>

namespace tool
{

namespace
{

constexpr wchar_t const * XML_ENDINGS[] = {L"xml", L"xsd", L"xsl", L"xslt", L"svg", L"rng", L"xhtml", L"ui"};

bool IsXmlFile(wchar_t const * name)
{
    wchar_t const * const dot = wcsrchr(name, L'.');
    return dot && std::any_of(std::begin(XML_ENDINGS), std::end(XML_ENDINGS),
                              [dot](wchar_t const * ending) { return VekStrCompareW(dot + 1, ending, false) == 0; });
}

bool IsItself(wchar_t const * name)
{
    return wcscmp(name, L".") == 0 || wcscmp(name, L"..") == 0;
}

} // namespace

bool ReadFolder(std::wstring const & folder, std::vector<std::wstring> & files, std::vector<std::wstring> & folders)
{
    WIN32_FIND_DATAW entry;
    HANDLE const search = FindFirstFileW((folder + L"\\*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE)
    {
        if (GetLastError() == ERROR_FILE_NOT_FOUND)
            return true;
        Fail(folder, L"can't be read: " + LastErrorText());
        return false;
    }
    do
    {
        std::wstring const path = folder + L"\\" + entry.cFileName;
        if (IsItself(entry.cFileName) || (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT))
            continue;
        if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
            folders.push_back(path);
        else
            files.push_back(path);
    } while (FindNextFileW(search, &entry));
    FindClose(search);
    return true;
}

bool CollectXmlFiles(std::wstring const & path, std::vector<std::wstring> & files)
{
    DWORD const attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY))
    {
        files.push_back(path);
        return true;
    }
    std::size_t const first = files.size();
    std::vector<std::wstring> folders = {path};
    bool isComplete = true;
    while (!folders.empty())
    {
        std::size_t const known = files.size();
        std::wstring const folder = std::move(folders.back());
        folders.pop_back();
        isComplete = ReadFolder(folder, files, folders) && isComplete;
        auto const added = files.begin() + static_cast<std::ptrdiff_t>(known);
        files.erase(
            std::remove_if(added, files.end(), [](std::wstring const & file) { return !IsXmlFile(file.c_str()); }),
            files.end());
    }
    std::sort(files.begin() + static_cast<std::ptrdiff_t>(first), files.end());
    return isComplete;
}

} // namespace tool
