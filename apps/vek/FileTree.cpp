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

constexpr wchar_t const * XML_ENDINGS[] = {
    L"xml",     L"xsd",  L"xsl",   L"xslt", L"svg",   L"rng", L"xhtml", L"ui",      L"dae",     L"x3d",   L"amf",
    L"kml",     L"xaml", L"glade", L"resx", L"plist", L"xgl", L"gpx",   L"vcxproj", L"filters", L"props", L"targets",
    L"collada", L"urdf", L"mtlx",  L"rels", L"fodg",  L"tmx", L"gir",   L"qrc",     L"xmp",
};

bool IsXmlFile(wchar_t const * name)
{
    wchar_t const * const dot = wcsrchr(name, L'.');
    return dot && std::any_of(std::begin(XML_ENDINGS), std::end(XML_ENDINGS),
                              [dot](wchar_t const * ending) { return VekStrCompareW(dot + 1, ending, false) == 0; });
}

wchar_t Folded(wchar_t unit)
{
    return unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit + 32) : unit;
}

/// "*" is any text, "?" any character.
bool IsLike(std::wstring_view name, std::wstring_view pattern)
{
    std::size_t at = 0, next = 0, star = std::wstring_view::npos, behindStar = 0;
    while (at < name.size())
    {
        if (next < pattern.size() && pattern[next] == L'*')
        {
            star = ++next;
            behindStar = at;
        }
        else if (next < pattern.size() && (pattern[next] == L'?' || Folded(pattern[next]) == Folded(name[at])))
        {
            ++next;
            ++at;
        }
        else if (star != std::wstring_view::npos)
        {
            next = star;
            at = ++behindStar;
        }
        else
            return false;
    }
    return pattern.find_first_not_of(L'*', next) == std::wstring_view::npos;
}

bool IsWanted(std::wstring const & path, std::vector<std::wstring> const & patterns)
{
    std::wstring_view const name = std::wstring_view(path).substr(path.find_last_of(L'\\') + 1);
    return patterns.empty() ? IsXmlFile(path.c_str())
                            : std::any_of(patterns.begin(), patterns.end(),
                                          [name](std::wstring const & pattern) { return IsLike(name, pattern); });
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

bool CollectXmlFiles(std::wstring const & path, std::vector<std::wstring> const & patterns,
                     std::vector<std::wstring> & files, std::uint64_t & skipped)
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
        auto const isOther = [&patterns](std::wstring const & file) { return !IsWanted(file, patterns); };
        auto const others = std::remove_if(added, files.end(), isOther);
        skipped += static_cast<std::uint64_t>(files.end() - others);
        files.erase(others, files.end());
    }
    std::sort(files.begin() + static_cast<std::ptrdiff_t>(first), files.end());
    return isComplete;
}

} // namespace tool
