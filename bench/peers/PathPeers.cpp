#include "Peers.h"
#include "VekText.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <shlwapi.h>

#include <memory>

namespace bench
{

namespace
{

constexpr int CALLS = 20000;
constexpr wchar_t const * PATH = L"C:\\models\\ships\\hull.plates\\plate-0125.front.xml";
constexpr wchar_t const * SAME_PATH = L"c:\\MODELS\\ships\\HULL.plates\\plate-0125.front.XML";
constexpr wchar_t const * BASE = L"C:\\models\\textures";

using Text = wchar_t[MAX_PATH];

void NameByShell(wchar_t * out)
{
    lstrcpynW(out, PathFindFileNameW(PATH), MAX_PATH);
}

void ExtensionByShell(wchar_t * out)
{
    wchar_t const * const dot = PathFindExtensionW(PATH);
    lstrcpynW(out, *dot ? dot + 1 : dot, MAX_PATH);
}

void StemByShell(wchar_t * out)
{
    lstrcpynW(out, PATH, MAX_PATH);
    PathRemoveExtensionW(out);
}

void RelativeByShell(wchar_t * out)
{
    PathRelativePathToW(out, BASE, FILE_ATTRIBUTE_DIRECTORY, PATH, FILE_ATTRIBUTE_NORMAL);
}

/// A row for two functions that write the same text.
template <class Own, class Shell>
void AddFunction(Duels & duels, char const * what, char const * peer, Own own, Shell shell)
{
    Text first = L"", second = L"";
    own(first), shell(second);
    duels.Expect(std::wstring(first) == second, what);
    duels.Add(what, peer, 0,
              Repeat(CALLS,
                     [own]
                     {
                         Text out;
                         own(out);
                     }),
              Repeat(CALLS,
                     [shell]
                     {
                         Text out;
                         shell(out);
                     }));
}

void AddSamePath(Duels & duels)
{
    duels.Expect(VekIsSamePathW(PATH, SAME_PATH) && StrCmpIW(PATH, SAME_PATH) == 0, "same path");
    auto const sum = std::make_shared<int>(0);
    duels.Add("same path", "StrCmpIW", 0, Repeat(CALLS, [sum] { *sum += VekIsSamePathW(PATH, SAME_PATH); }),
              Repeat(CALLS, [sum] { *sum += StrCmpIW(PATH, SAME_PATH); }));
}

void AbsoluteByLibrary(wchar_t * out)
{
    CVekString<wchar_t> path(L"..\\ships\\hull.plates\\plate.xml");
    VekMakePathAbsolute(path, CVekString<wchar_t>(BASE));
    lstrcpynW(out, path, MAX_PATH);
}

void AbsoluteByShell(wchar_t * out)
{
    PathCombineW(out, BASE, L"..\\ships\\hull.plates\\plate.xml");
}

} // namespace

void AddPaths(Duels & duels)
{
    AddFunction(
        duels, "file name of a path", "PathFindFileNameW", [](wchar_t * out) { VekGetFileNameFromPathW(PATH, out); },
        NameByShell);
    AddFunction(
        duels, "extension of a path", "PathFindExtensionW", [](wchar_t * out) { VekGetFileExtensionW(PATH, out); },
        ExtensionByShell);
    AddFunction(
        duels, "path without extension", "PathRemoveExtensionW",
        [](wchar_t * out) { VekGetFileNameWithoutExtensionW(PATH, out); }, StemByShell);
    AddSamePath(duels);
    AddFunction(
        duels, "relative path", "PathRelativePathToW",
        [](wchar_t * out) { VekGetRelativePathT(out, BASE, FILE_ATTRIBUTE_DIRECTORY, PATH, FILE_ATTRIBUTE_NORMAL); },
        RelativeByShell);
    AddFunction(duels, "absolute path", "PathCombineW", AbsoluteByLibrary, AbsoluteByShell);
}

} // namespace bench
