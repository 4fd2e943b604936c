// The functions on paths, narrow and wide, beside what they are told to give, in buffers that are just large enough.

#include "VekLib.h"

#include "fuzz/Target.h"
#include "support/FillStack.h"

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
void Compare(Function function, T const * path, int limit, std::basic_string<T> const & expected, char const * what)
{
    std::size_t const places = (limit < 0 ? 1024 : static_cast<std::size_t>(limit)) + 1;
    std::unique_ptr<T[]> const out(new T[places]());
    function(path, out.get(), limit);
    Check(out.get() == expected.substr(0, places - 1), what);
}

template <class T>
void UseParts(Reader & reader, Part<T> name, Part<T> extension, Whole<T> directory, Whole<T> bare)
{
    static constexpr T separators[] = {'/', '\\', ':', '.', 0};
    auto const text = reader.Text<T>(200);
    auto const path = Copy(text);
    int const limit = reader.Below(3) ? -1 : static_cast<int>(reader.Below(30));
    std::size_t const separator = text.find_last_of(separators, text.npos, 3);
    std::size_t const nameAt = separator + 1, extensionAt = text.find_last_of(separators) + 1;
    Compare<T>(name, path.get(), limit, text.substr(nameAt), "a path's name");
    Compare<T>(extension, path.get(), limit, text.substr(extensionAt), "a path's extension");
    // Kept: one character less than the directory has, and one more than the extension is taken away.
    bool const hasDirectory = separator != text.npos && separator > 0;
    Compare<T>(directory, path.get(), limit, hasDirectory ? text.substr(0, separator - 1) : text.substr(0, 0),
               "a path's directory");
    bool const isWhole = extensionAt == 0 || extensionAt == text.size();
    Compare<T>(bare, path.get(), limit, isWhole ? text : text.substr(0, extensionAt - 1), "a path without extension");
    T out[1025];
    Check(text.empty() ? !name(path.get(), out, -1) && !extension(path.get(), out, -1)
                       : name(path.get(), out, -1) == path.get() + nameAt &&
                             extension(path.get(), out, -1) == path.get() + extensionAt,
          "where a part of a path begins");
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
        unsigned const longest = reader.Below(2) ? 250 : 5;
        std::wstring const first = reader.Text<wchar_t>(longest), second = reader.Text<wchar_t>(longest);
        std::wstring folded = first;
        for (wchar_t & unit : folded)
            unit = unit >= L'a' && unit <= L'z' ? static_cast<wchar_t>(unit - 32) : unit;
        Check(VekIsSamePathW(first.c_str(), folded.c_str()), "a path is the same in capitals");
        Check(!VekIsSamePathW(first.c_str(), (folded + L'a').c_str()), "a longer path is another");
        wchar_t relative[260];
        unsigned long const kind = reader.Below(2) ? 16 : 0;
        FillStack(L'\\');
        bool const found = VekGetRelativePathT(relative, first.c_str(), kind, second.c_str(), 0);
        Check(found || !relative[0], "no relative path is an empty one");
        CVekString<wchar_t> text;
        FillStack(L':');
        Check(VekGetRelativePathT(text, first.c_str(), kind, second.c_str(), 0) == found &&
                  (!found || text.Compare(relative) == 0),
              "a relative path is the same in a string");
        CVekString<wchar_t> absolute(first.c_str());
        if (!VekMakePathAbsolute(absolute, CVekString<wchar_t>(second.c_str())))
            Check(absolute.Compare(first.c_str()) == 0, "a path that can't be made absolute stays");
    }
}

} // namespace fuzz
