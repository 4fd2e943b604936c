#include "VekText.h"

#include "base/SystemFunction.h"
#include "text/Scan.h"
#include "text/StringAccess.h"

#include <windows.h>

#include <shlwapi.h>

namespace
{

constexpr int DEFAULT_LIMIT = 1024;

constinit vek::SystemFunction<decltype(PathCanonicalizeW)> g_canonicalize{L"shlwapi.dll", "PathCanonicalizeW"};
constinit vek::SystemFunction<decltype(PathCommonPrefixW)> g_commonPrefix{L"shlwapi.dll", "PathCommonPrefixW"};
constinit vek::SystemFunction<decltype(PathRelativePathToW)> g_relativePathTo{L"shlwapi.dll", "PathRelativePathToW"};
constinit vek::SystemFunction<decltype(PathRemoveFileSpecW)> g_removeFileSpec{L"shlwapi.dll", "PathRemoveFileSpecW"};

int LimitOf(int max)
{
    return max == -1 ? DEFAULT_LIMIT : max;
}

// The index of the last separator (or dot, where asked for), or -1. Nothing before the path is looked at.
template <class T>
ptrdiff_t ScanBack(T const * path, size_t length, bool stopAtDot)
{
    for (size_t i = length; i-- > 0;)
        if (path[i] == T('/') || path[i] == T('\\') || path[i] == T(':') || (stopAtDot && path[i] == T('.')))
            return static_cast<ptrdiff_t>(i);
    return -1;
}

template <class T>
T * TakeLastPart(T const * path, T * out, int max, bool stopAtDot)
{
    out[0] = 0;
    size_t const length = vek::TextLength(path);
    if (length == 0)
        return nullptr;
    T const * const name = path + (ScanBack(path, length, stopAtDot) + 1);
    vek::CopyBounded(out, name, LimitOf(max));
    return const_cast<T *>(name);
}

template <class T>
T * GetFileName(T const * path, T * out, int max)
{
    return TakeLastPart(path, out, max, false);
}

template <class T>
T * GetFileExtension(T const * path, T * out, int max)
{
    // Kept: without a dot in the last component its whole name is the extension; callers look for the dot themselves.
    return TakeLastPart(path, out, max, true);
}

template <class T>
void GetFileDirectory(T const * path, T * out, int max)
{
    out[0] = 0;
    size_t const length = vek::TextLength(path);
    ptrdiff_t const separator = ScanBack(path, length, false);
    if (separator < 1)
        return;
    // Kept: one character less than stands before the separator; callers compensate for it.
    ptrdiff_t const count = separator - 1;
    int const limit = LimitOf(max);
    vek::CopyBounded(out, path, limit < count ? (limit < 0 ? 0 : limit) : static_cast<int>(count));
}

template <class T>
void GetFileNameWithoutExtension(T const * path, T * out, int max)
{
    size_t const length = vek::TextLength(path);
    out[0] = 0;
    T extension[DEFAULT_LIMIT + 1] = {};
    GetFileExtension(path, extension, DEFAULT_LIMIT);
    size_t const extensionLength = vek::TextLength(extension);
    int const limit = LimitOf(max);
    // A bare name without separator and dot is wholly its own extension, and is given whole.
    if (extensionLength == 0 || extensionLength == length)
        return vek::CopyBounded(out, path, limit < 0 ? 0 : limit);
    // Kept: the character before the extension goes too, be it a dot or a separator.
    size_t const count = length - extensionLength - 1;
    vek::CopyBounded(out, path, limit < 0 ? 0 : count < static_cast<size_t>(limit) ? static_cast<int>(count) : limit);
}

template <class T>
bool IsSamePath(T const * first, T const * second)
{
    static constexpr T NOTHING[1] = {};
    // Kept: literally character by character; "a/b" and "a\b" are two paths.
    return vek::CompareTexts(first ? first : NOTHING, second ? second : NOTHING, SIZE_MAX, false) == 0;
}

// The runtime takes a mode of any other form for a fault of the program.
template <class T>
bool IsFileMode(T const * mode)
{
    while (mode && *mode == T(' '))
        ++mode;
    if (!mode || (mode[0] != T('r') && mode[0] != T('w') && mode[0] != T('a')))
        return false;
    static constexpr char OPTIONS[] = "+btcnSRTDN ";
    for (++mode; *mode && *mode != T(','); ++mode)
    {
        char const * option = OPTIONS;
        while (*option && static_cast<T>(*option) != *mode)
            ++option;
        if (!*option)
            return false;
    }
    return true;
}

template <class T>
FILE * OpenFile(T const * name, T const * mode)
{
    FILE * file = nullptr;
    if (!name || !IsFileMode(mode) || vek::CharTraits<T>::Open(&file, name, mode) != 0)
        return nullptr;
    return file;
}

void CloseFile(FILE * file)
{
    if (file)
        fclose(file); // NOLINT(cert-err33-c): there is nobody to tell
}

template <class T>
bool FileExists(T const * name)
{
    static constexpr T MODE[] = {'r', 'b', 0};
    FILE * const file = OpenFile(name, MODE);
    CloseFile(file);
    return file != nullptr;
}

bool FitsPlatformPath(wchar_t const * path)
{
    return path && vek::BoundedLength(path, MAX_PATH) < MAX_PATH;
}

// False, with the string unchanged, when there is no memory.
bool Store(CVekString<wchar_t> & string, wchar_t const * text)
{
    string.Assign(text);
    return string == text;
}

// A path as the platform's relative routine can take it: that looks a little behind the end of what it is given.
struct PlatformPath
{
    PlatformPath(wchar_t const * path, unsigned long pathAttributes) : attributes(pathAttributes)
    {
        vek::CopyBounded(text, path, -1);
        length = vek::TextLength(text);
        size_t colons = 0;
        while (colons < length && text[length - 1 - colons] == L':')
            ++colons;
        // Looking for a file's name it skips the character that follows a colon, be it the end.
        if (colons % 2 != 0)
            attributes |= FILE_ATTRIBUTE_DIRECTORY;
    }
    // A beginning of two characters that two paths have in common it counts as three, as if a separator followed. Of a
    // path to a file it looks at the directory.
    void EndPair(PlatformPath other)
    {
        auto * const removeFileSpec = g_removeFileSpec.Get();
        auto * const commonPrefix = g_commonPrefix.Get();
        if (!removeFileSpec || !commonPrefix)
            return;
        if ((other.attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            removeFileSpec(other.text);
        bool const isRoot = text[1] == L'\\' && (text[0] == L'\\' || text[0] == L':');
        if (length == 2 && (isRoot || (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) &&
            commonPrefix(text, other.text, nullptr) == 3)
            text[2] = L'\\';
    }

    wchar_t text[MAX_PATH + 4] = {};
    unsigned long attributes;
    size_t length;
};

} // namespace

char * VekGetFileNameFromPathA(char const * path, char * out, int max)
{
    return GetFileName(path, out, max);
}

wchar_t * VekGetFileNameFromPathW(wchar_t const * path, wchar_t * out, int max)
{
    return GetFileName(path, out, max);
}

char * VekGetFileExtensionA(char const * path, char * out, int max)
{
    return GetFileExtension(path, out, max);
}

wchar_t * VekGetFileExtensionW(wchar_t const * path, wchar_t * out, int max)
{
    return GetFileExtension(path, out, max);
}

void VekGetFileDirectoryA(char const * path, char * out, int max)
{
    GetFileDirectory(path, out, max);
}

void VekGetFileDirectoryW(wchar_t const * path, wchar_t * out, int max)
{
    GetFileDirectory(path, out, max);
}

void VekGetFileNameWithoutExtensionA(char const * path, char * out, int max)
{
    GetFileNameWithoutExtension(path, out, max);
}

void VekGetFileNameWithoutExtensionW(wchar_t const * path, wchar_t * out, int max)
{
    GetFileNameWithoutExtension(path, out, max);
}

bool VekIsSamePathA(char const * first, char const * second)
{
    return IsSamePath(first, second);
}

bool VekIsSamePathW(wchar_t const * first, wchar_t const * second)
{
    return IsSamePath(first, second);
}

bool VekGetRelativePathT(wchar_t * out, wchar_t const * from, unsigned long fromAttributes, wchar_t const * to,
                         unsigned long toAttributes)
{
    if (!out)
        return false;
    out[0] = 0;
    auto * const relativePathTo = g_relativePathTo.Get();
    if (!relativePathTo || !FitsPlatformPath(from) || !FitsPlatformPath(to))
        return false;
    PlatformPath start(from, fromAttributes);
    PlatformPath const target(to, toAttributes);
    start.EndPair(target);
    // The platform's routine writes "..\" for each component of the one path, then the other path, without asking for
    // room.
    wchar_t relative[MAX_PATH / 2 * 3 + 2 * MAX_PATH] = {};
    if (!relativePathTo(relative, start.text, start.attributes, target.text, target.attributes) ||
        !FitsPlatformPath(relative))
        return false;
    vek::CopyBounded(out, relative, -1);
    return true;
}

bool VekGetRelativePathT(CVekString<wchar_t> & out, wchar_t const * from, unsigned long fromAttributes,
                         wchar_t const * to, unsigned long toAttributes)
{
    wchar_t relative[MAX_PATH];
    if (!VekGetRelativePathT(relative, from, fromAttributes, to, toAttributes))
        return false;
    return Store(out, relative);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): kept: by value, as hosts link it
bool VekMakePathAbsolute(CVekString<wchar_t> & path, CVekString<wchar_t> base)
{
    // The platform's routine looks a little in front of what it writes, and behind a ".." that ends the path.
    constexpr size_t MARGIN = 4, ROOM = 4 * MAX_PATH;
    wchar_t joined[ROOM + MARGIN] = {};
    wchar_t absolute[MARGIN + ROOM + MARGIN] = {};
    auto const baseLength = static_cast<size_t>(base.GetLength()), pathLength = static_cast<size_t>(path.GetLength());
    auto * const canonicalize = g_canonicalize.Get();
    if (!canonicalize || baseLength + 1 + pathLength >= ROOM)
        return false;
    // Kept: joined with a backslash whether or not one is there already, and whether or not path is absolute.
    memcpy(joined, static_cast<wchar_t const *>(base), baseLength * sizeof(wchar_t));
    joined[baseLength] = L'\\';
    memcpy(joined + baseLength + 1, static_cast<wchar_t const *>(path), pathLength * sizeof(wchar_t));
    return canonicalize(absolute + MARGIN, joined) && FitsPlatformPath(absolute + MARGIN) &&
           Store(path, absolute + MARGIN);
}

_iobuf * VekFileOpenA(char const * name, char const * mode)
{
    return OpenFile(name, mode);
}

_iobuf * VekFileOpenW(wchar_t const * name, wchar_t const * mode)
{
    return OpenFile(name, mode);
}

void VekFileCloseA(_iobuf * file)
{
    CloseFile(file);
}

void VekFileCloseW(_iobuf * file)
{
    CloseFile(file);
}

bool VekFileExistA(char const * name)
{
    return FileExists(name);
}

bool VekFileExistW(wchar_t const * name)
{
    return FileExists(name);
}
