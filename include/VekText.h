/// @file
/// Strings and their conversion, and paths.
///
/// Text is zero-terminated. The A functions take char, their W twins wchar_t; the library's text type, the T of some
/// names, is wchar_t. Widening sign-extends each byte, narrowing keeps the low byte: no code pages are involved.
/// Pointers must not be null unless a comment says so.
///
/// @code
/// CVekString<wchar_t> title(L"Scene");
/// title.AppendFormat(L" %d", 7);
/// wchar_t name[260];
/// VekGetFileNameFromPathW(L"C:\\scenes\\hall.xml", name, 260);
/// title += L" - ";
/// title += name; // "Scene 7 - hall.xml"
/// @endcode
#ifndef VEK_TEXT_H
#define VEK_TEXT_H

#include "VekExport.h"

#include <stdarg.h>
#include <stddef.h>

namespace vek
{
template <class T>
struct StringAccess;
}

// --- free functions over character arrays ---------------------------------------------------------------------------

/// Copies a text, widening or narrowing each character. A null source writes an empty text; a null target does nothing.
VEK_API void VekStrAtoW(wchar_t * target, char const * source);
VEK_API void VekStrWtoA(char * target, wchar_t const * source);
VEK_API void VekStrAtoA(char * target, char const * source);
VEK_API void VekStrWtoW(wchar_t * target, wchar_t const * source);

/// Copies at most max characters (-1: all; other negatives: none) and a terminator, so the target needs max + 1 places.
/// The narrow form does nothing when a pointer is null, the wide form doesn't look.
VEK_API void VekStrCopyA(char * target, char const * source, int max = -1);
VEK_API void VekStrCopyW(wchar_t * target, wchar_t const * source, int max = -1);

/// Compares two texts, or at most count characters of them (a count below 1 gives 0): -1, 0 or 1. Narrow characters are
/// compared as signed values, so bytes from 0x80 sort before ASCII. Without case only the letters a-z are folded.
VEK_API int VekStrCompareA(char const * first, char const * second, bool caseSensitive);
VEK_API int VekStrCompareW(wchar_t const * first, wchar_t const * second, bool caseSensitive);
VEK_API int VekStrCompareA(char const * first, char const * second, int count, bool caseSensitive);
VEK_API int VekStrCompareW(wchar_t const * first, wchar_t const * second, int count, bool caseSensitive);

/// The number of characters before the terminator.
VEK_API int VekStrLenA(char const * text);
VEK_API int VekStrLenW(wchar_t const * text);

/// Appends at most max characters (-1: all; other negatives: none) and a terminator.
VEK_API void VekStrCatA(char * target, char const * source, int max = -1);
VEK_API void VekStrCatW(wchar_t * target, wchar_t const * source, int max = -1);

/// Formats into a buffer of size characters, terminator included. Returns the number of characters written, or -1 when
/// the text was cut to fit or could not be formatted; the buffer is terminated whenever size is above 0, and a text
/// that was cut stays in it. The last argument of the second form is a started argument list (va_list), which is a char
/// * to the compiler: a lone argument that is a char * or an array of char needs a cast to char const *.
VEK_API int VekStrPrintfA(char * buffer, int size, char const * format, ...);
VEK_API int VekStrPrintfW(wchar_t * buffer, int size, wchar_t const * format, ...);
VEK_API int VekStrPrintfA(char * buffer, int size, char const * format, va_list arguments);
VEK_API int VekStrPrintfW(wchar_t * buffer, int size, wchar_t const * format, va_list arguments);
/// A lone argument of any other type, which might be taken for a list: 0, nullptr and text in quotes turn into a char
/// *.
template <class T>
int VekStrPrintfA(char * buffer, int size, char const * format, T argument)
{
    return VekStrPrintfA(buffer, size, format, argument, 0); // the second one is not looked at
}
template <class T>
int VekStrPrintfW(wchar_t * buffer, int size, wchar_t const * format, T argument)
{
    return VekStrPrintfW(buffer, size, format, argument, 0);
}

/// The number of characters the formatted text needs without its terminator; -1 when it can't be formatted.
VEK_API int VekPrintfLengthA(char const * format, ...);
VEK_API int VekPrintfLengthW(wchar_t const * format, ...);

/// Changes case in place in a buffer of size characters. Nothing happens when no terminator stands within it.
VEK_API void VekStrToLowerA(char * text, int size);
VEK_API void VekStrToLowerW(wchar_t * text, int size);
VEK_API void VekStrToUpperA(char * text, int size);
VEK_API void VekStrToUpperW(wchar_t * text, int size);

/// Numbers from text: leading white space is skipped, the scan stops at the first character that doesn't belong, and a
/// text without a number gives 0. A radix is 2 to 36, or 0 to find it from a prefix; any other gives 0.
VEK_API int VekStrToIntA(char const * text);
VEK_API int VekStrToIntW(wchar_t const * text);
VEK_API unsigned long VekStrToUIntA(char const * text, int radix);
VEK_API unsigned long VekStrToUIntW(wchar_t const * text, int radix);
VEK_API double VekStrToFloatA(char const * text);
VEK_API double VekStrToFloatW(wchar_t const * text);

/// The fewest digits that read back as the same number, with a point in every locale: "0.1", "-12.5", "1e300", "inf",
/// "nan". Returns the number of characters written, or -1, with an empty text, when the buffer of size characters is
/// too small; 32 are always enough.
VEK_API int VekStrFromNumberA(char * buffer, int size, double value);
VEK_API int VekStrFromNumberA(char * buffer, int size, float value);
VEK_API int VekStrFromNumberW(wchar_t * buffer, int size, double value);
VEK_API int VekStrFromNumberW(wchar_t * buffer, int size, float value);

/// Reads a decimal number, with a point in every locale, as the nearest one that there is: a sign, digits with or
/// without a point, an exponent; "inf" and "nan" too. Leading white space is skipped. The text may go on behind the
/// number when end is given, which gets that place; otherwise only white space may follow. False, with value and end
/// unchanged, for anything else, for null, and for a number that is too large. Any number of digits counts, and none
/// needs memory.
VEK_API bool VekStrToNumberA(char const * text, double & value, char const ** end = nullptr);
VEK_API bool VekStrToNumberA(char const * text, float & value, char const ** end = nullptr);
VEK_API bool VekStrToNumberW(wchar_t const * text, double & value, wchar_t const ** end = nullptr);
VEK_API bool VekStrToNumberW(wchar_t const * text, float & value, wchar_t const ** end = nullptr);

// --- the string -----------------------------------------------------------------------------------------------------

/// A text that owns its characters: one pointer to them, with length, capacity and grow-by in front of them in the same
/// block. Only a string that was moved from, and a text that a variant doesn't use, have no block: they are empty and
/// get one when they are changed. Always terminated; copies never share. When memory runs out, an operation leaves the
/// string as it is. A text argument may be part of the string itself. Starts and counts outside the source are cut to
/// it; negative ones mean nothing to take.
template <class T>
class CVekString
{
public:
    /// An empty string.
    VEK_API CVekString() noexcept;
    /// A copy of a text; null gives an empty string.
    VEK_API explicit CVekString(T const * text) noexcept;
    /// A copy of exactly length characters, which need no terminator and hold none.
    VEK_API CVekString(T const * text, int length) noexcept;
    /// A copy; empty when memory is exhausted.
    VEK_API CVekString(CVekString const & other) noexcept;
    /// Takes the text over and leaves the other string empty.
    CVekString(CVekString && other) noexcept : m_text(other.m_text) { other.m_text = nullptr; }
    VEK_API ~CVekString();

    /// As Assign.
    CVekString & operator=(CVekString const & other) noexcept
    {
        Assign(other);
        return *this;
    }
    CVekString & operator=(T const * text) noexcept
    {
        Assign(text);
        return *this;
    }
    /// Exchanges the two texts.
    CVekString & operator=(CVekString && other) noexcept
    {
        Swap(other);
        return *this;
    }

    /// Moves the text to a block for that many characters. With keep it stays, cut to capacity - 1 characters if need
    /// be; otherwise the string becomes empty. Capacity 0 gives a fresh empty string. False, with the string unchanged,
    /// when there is no memory or the capacity is negative.
    VEK_API bool Reserve(int capacity, bool keep) noexcept;

    /// Replaces the contents; null makes the string empty.
    VEK_API void Assign(T const * text) noexcept;
    VEK_API void Assign(CVekString const & other) noexcept;
    /// Replaces the contents by count characters of the source from start (0: all that follow). A start is counted from
    /// the beginning of a text at each call, so that it never passes the end: whoever cuts a long one into many pieces
    /// passes text + start with a start of 0, or a string.
    VEK_API void AssignPart(T const * text, int start, int count) noexcept;
    VEK_API void AssignPart(CVekString const & other, int start, int count) noexcept;
    /// Appends count characters of the source from start (0: all that follow); null appends nothing. A start is counted
    /// as AssignPart does.
    void Append(T const * text, int start = 0, int count = 0) noexcept
    {
        if (start != 0 || count < 0 || !AppendShort(text, count))
            AppendAny(text, start, count);
    }
    void Append(CVekString const & other) noexcept
    {
        int const count = other.GetLength();
        if (count <= 0 || count > SHORT_PIECE || !TakeRoom(count))
            return AppendString(other);
        AppendHere(other.m_text, count);
    }
    /// As Append: a text (null appends nothing), a string, or one character (zero appends nothing).
    CVekString & operator+=(T const * text) noexcept
    {
        Append(text);
        return *this;
    }
    CVekString & operator+=(CVekString const & other) noexcept
    {
        Append(other);
        return *this;
    }
    CVekString & operator+=(T unit) noexcept
    {
        if (unit && TakeRoom(1))
        {
            int const length = Header()[0]++;
            m_text[length] = unit;
            m_text[length + 1] = 0;
            return *this;
        }
        T const text[2] = {unit, 0};
        AppendAny(text, 0, 1);
        return *this;
    }
    /// Appends formatted text (printf rules; "%s" is text of the string's own width). Nothing is appended when it can't
    /// be formatted. An argument may be this string's own text.
    VEK_API void AppendFormat(T const * format, ...) noexcept;

    /// The number of characters.
    int GetLength() const noexcept { return m_text ? Header()[0] : 0; }
    /// The number of characters the block was made for.
    int GetCapacity() const noexcept { return m_text ? Header()[1] : 0; }
    /// Whether there is no character.
    bool IsEmpty() const noexcept { return GetLength() == 0; }
    /// The characters, never null; valid until the string is changed or destroyed.
    operator T const *() const noexcept { return m_text ? m_text : NoText(); }
    /// The characters are never null, so that a condition would always be true: ask IsEmpty.
    explicit operator bool() const = delete;

    /// -1, 0 or 1. The argument is the left operand: the result is negative when it sorts before this string. A null
    /// argument gives -1, or 0 when this string is empty. Narrow characters are compared as signed values.
    VEK_API int Compare(T const * text, bool caseSensitive = true) const noexcept;
    VEK_API int Compare(CVekString const & other, bool caseSensitive = true) const noexcept;

    /// Comparisons by value, with case: the order of VekStrCompareA and VekStrCompareW, the operands as they stand. A
    /// null text is as an empty one.
    friend bool operator==(CVekString const & a, CVekString const & b) noexcept { return Order(a, b) == 0; }
    friend bool operator==(CVekString const & a, T const * b) noexcept { return Order(a, b) == 0; }
    friend bool operator==(T const * a, CVekString const & b) noexcept { return Order(a, b) == 0; }
    friend bool operator!=(CVekString const & a, CVekString const & b) noexcept { return Order(a, b) != 0; }
    friend bool operator!=(CVekString const & a, T const * b) noexcept { return Order(a, b) != 0; }
    friend bool operator!=(T const * a, CVekString const & b) noexcept { return Order(a, b) != 0; }
    friend bool operator<(CVekString const & a, CVekString const & b) noexcept { return Order(a, b) < 0; }
    friend bool operator<(CVekString const & a, T const * b) noexcept { return Order(a, b) < 0; }
    friend bool operator<(T const * a, CVekString const & b) noexcept { return Order(a, b) < 0; }
    friend bool operator>(CVekString const & a, CVekString const & b) noexcept { return Order(a, b) > 0; }
    friend bool operator>(CVekString const & a, T const * b) noexcept { return Order(a, b) > 0; }
    friend bool operator>(T const * a, CVekString const & b) noexcept { return Order(a, b) > 0; }
    friend bool operator<=(CVekString const & a, CVekString const & b) noexcept { return Order(a, b) <= 0; }
    friend bool operator<=(CVekString const & a, T const * b) noexcept { return Order(a, b) <= 0; }
    friend bool operator<=(T const * a, CVekString const & b) noexcept { return Order(a, b) <= 0; }
    friend bool operator>=(CVekString const & a, CVekString const & b) noexcept { return Order(a, b) >= 0; }
    friend bool operator>=(CVekString const & a, T const * b) noexcept { return Order(a, b) >= 0; }
    friend bool operator>=(T const * a, CVekString const & b) noexcept { return Order(a, b) >= 0; }

    /// The index of the first match at or after start, or -1.
    VEK_API int Find(T const * pattern, int start = 0, bool caseSensitive = true) const noexcept;
    /// The index of the last match that begins at or before start (-1: the last character), or -1.
    VEK_API int ReverseFind(T const * pattern, int start = -1, bool caseSensitive = true) const noexcept;
    /// The index of the first character at or after start that is any of the set, or -1.
    VEK_API int FindOneOf(T const * set, int start = 0, bool caseSensitive = true) const noexcept;
    /// The index of the last character at or before start (-1: the last one) that is any of the set, or -1.
    VEK_API int ReverseFindOneOf(T const * set, int start = -1, bool caseSensitive = true) const noexcept;

    /// Moves count characters within the string. When they reach the string's end, the string ends after them at their
    /// new place. Nothing happens when the block has no room for them there: reserve first.
    VEK_API void MoveCharacters(int from, int to, int count) noexcept;

    /// Exchanges the two texts.
    void Swap(CVekString & other) noexcept
    {
        T * const text = m_text;
        m_text = other.m_text;
        other.m_text = text;
    }

private:
    friend struct vek::StringAccess<T>;

    static constexpr int SHORT_PIECE = 16;

    struct Block
    {
        T * text;
    };
    explicit CVekString(Block block) noexcept : m_text(block.text) {}

    // Compare takes its left operand as the argument.
    static int Order(CVekString const & a, CVekString const & b) noexcept { return b.Compare(a); }
    static int Order(T const * a, CVekString const & b) noexcept { return b.Compare(a); }
    static int Order(CVekString const & a, T const * b) noexcept { return -a.Compare(b); }

    // In front of the characters: length, capacity, grow-by.
    int * Header() const noexcept { return reinterpret_cast<int *>(m_text) - 3; }
    VEK_API static T const * NoText() noexcept;

    // Appends up to count characters (0: all) of a short text, if there is room. It may be the string's own: that ends
    // where the new characters begin.
    bool AppendShort(T const * text, int count) noexcept
    {
        if (!text)
            return false;
        int added = 0;
        for (; (count == 0 || added < count) && text[added]; ++added)
            if (added == SHORT_PIECE)
                return false;
        if (!TakeRoom(added))
            return false;
        AppendHere(text, added);
        return true;
    }
    void AppendHere(T const * text, int count) noexcept
    {
        int & length = *Header();
        T * const end = m_text + length;
        length += count;
        for (int i = 0; i < count; ++i)
            end[i] = text[i];
        end[count] = 0;
    }
    // Whether so many more characters, some at least, fit into the block; then the capacity is raised for them, by just
    // what AppendAny would ask for. Blocks are rounded up: to 8 bytes, and to an eighth of the power of two below
    // their size or further. So a size is in the same block as the old one when they differ in the bits below that
    // only. A string with a grow-by leaves it to AppendAny, and so does one in another object's block, which has a
    // negative one.
    bool TakeRoom(int count) noexcept
    {
        if (!m_text || count <= 0)
            return false;
        int * const header = Header();
        int const length = header[0] + count;
        if (length < header[1])
            return true;
        size_t const size = BlockSize(header[1]);
        size_t const differing = (size - 1) ^ (BlockSize(length + 1) - 1);
        size_t const eighth = size / 8;
        // The highest bit of one number is below that of another when both comparisons hold.
        bool const fits = differing < 8 || (differing < eighth && differing < (differing ^ eighth));
        if (!fits || header[2] != 0)
            return false;
        header[1] = length + 1;
        return true;
    }
    static size_t BlockSize(int capacity) noexcept
    {
        return 3 * sizeof(int) + (static_cast<size_t>(capacity) + 1) * sizeof(T);
    }
    VEK_API void AppendAny(T const * text, int start, int count) noexcept;
    VEK_API void AppendString(CVekString const & other) noexcept;

    T * m_text;
};

/// A string of the target width from a text. When memory runs out, the result is empty and a message is logged.
VEK_API CVekString<wchar_t> VekCreateStrAtoW(char const * text);
VEK_API CVekString<char> VekCreateStrWtoA(wchar_t const * text);
VEK_API CVekString<wchar_t> VekCreateStrTtoW(wchar_t const * text);
VEK_API CVekString<char> VekCreateStrTtoA(wchar_t const * text);
VEK_API CVekString<wchar_t> VekCreateStrWtoT(wchar_t const * text);
VEK_API CVekString<wchar_t> VekCreateStrAtoT(char const * text);

// --- paths and files ------------------------------------------------------------------------------------------------
// A slash, a backslash or a colon ends a path component. A limit max counts characters without the terminator; -1
// stands for 1,024. The array out must not be the path itself, as it is emptied first.

/// Copies the text after the last separator to out. Returns where it begins in path, or null for an empty path.
VEK_API char * VekGetFileNameFromPathA(char const * path, char * out, int max = -1);
VEK_API wchar_t * VekGetFileNameFromPathW(wchar_t const * path, wchar_t * out, int max = -1);

/// Copies the text after the last dot to out; without a dot in the last component that is the whole file name. Returns
/// where it begins in path, or null for an empty path.
VEK_API char * VekGetFileExtensionA(char const * path, char * out, int max = -1);
VEK_API wchar_t * VekGetFileExtensionW(wchar_t const * path, wchar_t * out, int max = -1);

/// Copies the text before the last separator, without its last character, to out: "C:\dir\file.txt" gives "C:\di".
VEK_API void VekGetFileDirectoryA(char const * path, char * out, int max = -1);
VEK_API void VekGetFileDirectoryW(wchar_t const * path, wchar_t * out, int max = -1);

/// Copies the path, directory included, without what VekGetFileExtension finds and the character before that. A bare
/// name without a dot is copied whole: "dir\file" gives "dir", "file" gives "file".
VEK_API void VekGetFileNameWithoutExtensionA(char const * path, char * out, int max = -1);
VEK_API void VekGetFileNameWithoutExtensionW(wchar_t const * path, wchar_t * out, int max = -1);

/// Whether two paths are equal but for case, character by character: separators and "." components count as they stand.
VEK_API bool VekIsSamePathA(char const * first, char const * second);
VEK_API bool VekIsSamePathW(wchar_t const * first, wchar_t const * second);

/// The path that leads from one file or directory to another; the attributes are the platform's file attributes. Paths
/// of 260 characters or more, or without a common root, give false, and so does a string without memory for the result.
/// The array must hold 260 characters and is empty after a failure; the string is unchanged then.
VEK_API bool VekGetRelativePathT(wchar_t * out, wchar_t const * from, unsigned long fromAttributes, wchar_t const * to,
                                 unsigned long toAttributes);
VEK_API bool VekGetRelativePathT(CVekString<wchar_t> & out, wchar_t const * from, unsigned long fromAttributes,
                                 wchar_t const * to, unsigned long toAttributes);

/// Replaces path by base, a backslash and path, with "." and ".." components resolved, whether or not path is absolute
/// already. False, with path unchanged, when the result has 260 characters or more, the joined path 1,040, or there is
/// no memory for the result. A base whose copy there was no memory for is taken for an empty one.
VEK_API bool VekMakePathAbsolute(CVekString<wchar_t> & path, CVekString<wchar_t> base);

/// Opens a file with a mode of fopen; null on failure. The caller closes it with VekFileClose. It is a file of the
/// library's own runtime, and only for functions of that.
VEK_API _iobuf * VekFileOpenA(char const * name, char const * mode);
VEK_API _iobuf * VekFileOpenW(wchar_t const * name, wchar_t const * mode);
/// Closes what VekFileOpenA or VekFileOpenW opened.
VEK_API void VekFileCloseA(_iobuf * file);
VEK_API void VekFileCloseW(_iobuf * file);

/// Whether the file can be opened for reading.
VEK_API bool VekFileExistA(char const * name);
VEK_API bool VekFileExistW(wchar_t const * name);

#endif
