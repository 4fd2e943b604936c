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
        static inline int (*const Compare)(type const *, type const *, bool) = VekStrCompare##suffix;                  \
        static inline int (*const CompareCounted)(type const *, type const *, int, bool) = VekStrCompare##suffix;      \
        static inline int (*const Printf)(type *, int, type const *, ...) = VekStrPrintf##suffix;                      \
        static inline auto const Copy = VekStrCopy##suffix, Cat = VekStrCat##suffix;                                   \
        static inline auto const Plain = VekStr##suffix##to##suffix;                                                   \
        static inline auto const ToLower = VekStrToLower##suffix, ToUpper = VekStrToUpper##suffix;                     \
        static inline auto const ToInt = VekStrToInt##suffix;                                                          \
        static inline auto const ToUInt = VekStrToUInt##suffix;                                                        \
        static inline auto const ToFloat = VekStrToFloat##suffix;                                                      \
        static inline auto const Length = VekStrLen##suffix;                                                           \
        static inline auto const PrintfLength = VekPrintfLength##suffix;                                               \
        static inline auto const FileName = VekGetFileNameFromPath##suffix, Extension = VekGetFileExtension##suffix;   \
        static inline auto const Directory = VekGetFileDirectory##suffix;                                              \
        static inline auto const WithoutExtension = VekGetFileNameWithoutExtension##suffix;                            \
        static inline auto const IsSamePath = VekIsSamePath##suffix;                                                   \
        static inline auto const Open = VekFileOpen##suffix;                                                           \
        static inline auto const Close = VekFileClose##suffix;                                                         \
        static inline auto const Exist = VekFileExist##suffix;                                                         \
    }
TEXT_API(char, A);
TEXT_API(wchar_t, W);
#undef TEXT_API
