// What the tests of both text widths share.
#pragma once

#include "VekText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using BothWidths = testing::Types<char, wchar_t>;

// ASCII text in either width.
template <class T>
std::basic_string<T> Text(char const * ascii)
{
    std::string const narrow = ascii;
    return std::basic_string<T>(narrow.begin(), narrow.end());
}

template <class T>
std::basic_string<T> Text(CVekString<T> const & string)
{
    return std::basic_string<T>(static_cast<T const *>(string));
}

// A buffer of its own block, so that the guard heap sees what goes past its end.
template <class T>
struct Buffer : std::vector<T>
{
    explicit Buffer(size_t size) : std::vector<T>(size, T('#')) {}
    std::basic_string<T> Content() const
    {
        std::basic_string<T> const all(this->begin(), this->end());
        return all.substr(0, all.find(T(0)));
    }
};

// The free functions under one name for both widths.
template <class T>
struct Api;

#define TEXT_API(type, suffix)                                                                                         \
    template <>                                                                                                        \
    struct Api<type>                                                                                                   \
    {                                                                                                                  \
        static constexpr int (*Compare)(type const *, type const *, bool) = VekStrCompare##suffix;                     \
        static constexpr int (*CompareCounted)(type const *, type const *, int, bool) = VekStrCompare##suffix;         \
        static constexpr int (*Printf)(type *, int, type const *, ...) = VekStrPrintf##suffix;                         \
        static constexpr auto Copy = VekStrCopy##suffix, Cat = VekStrCat##suffix;                                      \
        static constexpr auto Plain = VekStr##suffix##to##suffix;                                                      \
        static constexpr auto ToLower = VekStrToLower##suffix, ToUpper = VekStrToUpper##suffix;                        \
        static constexpr auto ToInt = VekStrToInt##suffix;                                                             \
        static constexpr auto ToUInt = VekStrToUInt##suffix;                                                           \
        static constexpr auto ToFloat = VekStrToFloat##suffix;                                                         \
        static constexpr auto Length = VekStrLen##suffix;                                                              \
        static constexpr auto PrintfLength = VekPrintfLength##suffix;                                                  \
        static constexpr auto FileName = VekGetFileNameFromPath##suffix, Extension = VekGetFileExtension##suffix;      \
        static constexpr auto Directory = VekGetFileDirectory##suffix;                                                 \
        static constexpr auto WithoutExtension = VekGetFileNameWithoutExtension##suffix;                               \
        static constexpr auto IsSamePath = VekIsSamePath##suffix;                                                      \
        static constexpr auto Open = VekFileOpen##suffix;                                                              \
        static constexpr auto Close = VekFileClose##suffix;                                                            \
        static constexpr auto Exist = VekFileExist##suffix;                                                            \
    }
TEXT_API(char, A);
TEXT_API(wchar_t, W);
#undef TEXT_API
