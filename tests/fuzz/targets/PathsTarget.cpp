// The functions on paths, narrow and wide, in buffers that are just large enough.

#include "VekLib.h"

#include "fuzz/targets/Targets.h"

#include <algorithm>
#include <memory>

namespace fuzz
{

namespace
{

template <class T>
using Part = T * (*)(T const *, T *, int);
template <class T>
using Whole = void (*)(T const *, T *, int);

template <class T>
std::unique_ptr<T[]> Copy(std::basic_string<T> const & text)
{
    std::unique_ptr<T[]> copy(new T[text.size() + 1]);
    std::copy_n(text.c_str(), text.size() + 1, copy.get());
    return copy;
}

// The result in a buffer of the size that the limit asks for.
template <class T, class Function>
std::basic_string<T> Call(Function function, T const * path, int limit)
{
    std::size_t const places = (limit < 0 ? 1024 : static_cast<std::size_t>(limit)) + 1;
    std::unique_ptr<T[]> const out(new T[places]());
    function(path, out.get(), limit);
    std::size_t length = 0;
    while (length < places && out[length])
        ++length;
    Check(length < places, "a part of a path is terminated within its limit");
    return {out.get(), length};
}

template <class T>
void UseParts(Reader & reader, Part<T> name, Part<T> extension, Whole<T> directory, Whole<T> bare)
{
    auto const text = reader.Text<T>(200);
    auto const path = Copy(text);
    int const limit = reader.Below(3) ? -1 : static_cast<int>(reader.Below(30));
    for (auto const part : {name, extension})
    {
        auto const found = Call<T>(part, path.get(), limit);
        Check(text.find(found) != text.npos, "a part of a path is in it");
    }
    for (auto const whole : {directory, bare})
        Check(text.compare(0, limit < 0 ? 1024 : static_cast<std::size_t>(limit), Call<T>(whole, path.get(), limit)) >=
                  0,
              "a path's front is its front");
}

} // namespace

void RunPaths(Bytes input)
{
    Reader reader(input);
    while (!reader.AtEnd())
    {
        UseParts<wchar_t>(reader, VekGetFileNameFromPathW, VekGetFileExtensionW, VekGetFileDirectoryW,
                          VekGetFileNameWithoutExtensionW);
        UseParts<char>(reader, VekGetFileNameFromPathA, VekGetFileExtensionA, VekGetFileDirectoryA,
                       VekGetFileNameWithoutExtensionA);
        std::wstring const first = reader.Text<wchar_t>(250), second = reader.Text<wchar_t>(250);
        Check(VekIsSamePathW(first.c_str(), first.c_str()), "a path is the same as itself");
        Check(VekIsSamePathW(first.c_str(), second.c_str()) == VekIsSamePathW(second.c_str(), first.c_str()),
              "two paths are the same both ways");
        wchar_t relative[260];
        unsigned long const kind = reader.Below(2) ? 16 : 0;
        bool const found = VekGetRelativePathT(relative, first.c_str(), kind, second.c_str(), 0);
        Check(found || !relative[0], "no relative path is an empty one");
        CVekString<wchar_t> text;
        Check(VekGetRelativePathT(text, first.c_str(), kind, second.c_str(), 0) == found &&
                  (!found || text.Compare(relative) == 0),
              "a relative path is the same in a string");
        CVekString<wchar_t> absolute(first.c_str());
        if (!VekMakePathAbsolute(absolute, CVekString<wchar_t>(second.c_str())))
            Check(absolute.Compare(first.c_str()) == 0, "a path that can't be made absolute stays");
    }
}

} // namespace fuzz
