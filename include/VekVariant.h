/// @file
/// The types of values, and the variant that holds a value of any of them.
///
/// @code
/// VEK_VARIANT const width(800);
/// VEK_VARIANT const title(L"Untitled");
/// if (width.GetType() == VEK_DT_INT)
///     VekLogOutput(0, L"%d", static_cast<int const &>(width));
/// @endcode
#ifndef VEK_VARIANT_H
#define VEK_VARIANT_H

#include "VekExport.h"
#include "VekMath.h"
#include "VekText.h"

VEK_HEADER_BEGIN

/// The types of values. The numbers are part of stored formats.
enum VEK_DATATYPE : int
{
    VEK_DT_UNKNOWN = 0,
    VEK_DT_BOOL = 1,
    VEK_DT_UCHAR = 2,
    VEK_DT_CHAR = 3,
    VEK_DT_WCHAR = 4,
    VEK_DT_SHORT = 5,
    VEK_DT_USHORT = 6,
    VEK_DT_INT = 7,
    VEK_DT_UINT = 8,
    VEK_DT_FLOAT = 9,
    VEK_DT_DOUBLE = 10,
    VEK_DT_STRINGA = 11,
    VEK_DT_STRINGW = 12,
    VEK_DT_RGBA_UCHAR = 13,
    VEK_DT_RGBA_FLOAT = 14,
    VEK_DT_VECTOR4D_INT = 15,
    VEK_DT_VECTOR4D_FLOAT = 16,
    VEK_DT_VECTOR4D_DOUBLE = 17,
    VEK_DT_MATRIX4X4_FLOAT = 18,
    VEK_DT_MATRIX4X4_DOUBLE = 19,
    VEK_DT_GUID = 20,
    VEK_DT_BUFFER = 21
};

/// @cond internal
namespace vek
{
/// The whole numbers that have no type of their own, by their size and sign.
template <class T>
struct LongNumber
{
};
template <>
struct LongNumber<long>
{
    using Allow = int;
    static bool IsNegative(long value) noexcept { return value < 0; }
};
template <>
struct LongNumber<long long>
{
    using Allow = int;
    static bool IsNegative(long long value) noexcept { return value < 0; }
};
template <>
struct LongNumber<unsigned long>
{
    using Allow = int;
    static bool IsNegative(unsigned long) noexcept { return false; }
};
template <>
struct LongNumber<unsigned long long>
{
    using Allow = int;
    static bool IsNegative(unsigned long long) noexcept { return false; }
};

/// A whole number taken apart, and whether an int can have it.
struct WholeNumber
{
    template <class T>
    explicit WholeNumber(T value) noexcept
        : isNegative(LongNumber<T>::IsNegative(value)),
          amount(isNegative ? 0 - static_cast<unsigned long long>(value) : static_cast<unsigned long long>(value))
    {
    }
    bool IsInt() const noexcept { return amount <= 0x7FFFFFFFU + (isNegative ? 1U : 0U); }
    /// Its digits, written to the end of a buffer of TEXT_SIZE units.
    wchar_t const * Text(wchar_t * buffer) const noexcept
    {
        wchar_t * at = buffer + TEXT_SIZE - 1;
        *at = 0;
        unsigned long long rest = amount;
        do
            *--at = static_cast<wchar_t>(L'0' + rest % 10);
        while ((rest /= 10) != 0);
        if (isNegative)
            *--at = L'-';
        return at;
    }

    static constexpr int TEXT_SIZE = 24;
    bool isNegative;
    unsigned long long amount;
};
} // namespace vek
/// @endcond

/// The bytes a value of the type takes when stored; 0 for texts, buffers and numbers that are no type.
VEK_API int VekDataTypeSize(VEK_DATATYPE type);

/// A value of any of the library's types. Its constructor sets the type; assigning a value never changes it.
///
/// Copies are shallow for the types 13 to 19 and 21: both variants refer to the same object or buffer, each releases
/// it, and the target's own is not released first. Keep only one of the copies alive, or detach the others: assigning
/// VEK_VARIANT(VEK_DT_UNKNOWN) to one lets go of the shared block without releasing it. SetBuffer and DestroyBuffer
/// release it for all.
class VEK_API VEK_VARIANT
{
public:
    /// A variant of the type of the value. A failed allocation leaves the types 13 to 19 without their object.
    VEK_VARIANT(bool value);
    VEK_VARIANT(unsigned char value);
    VEK_VARIANT(char value);
    VEK_VARIANT(wchar_t value);
    VEK_VARIANT(unsigned short value);
    VEK_VARIANT(unsigned int value);
    VEK_VARIANT(short value);
    VEK_VARIANT(int value);
    VEK_VARIANT(float value);
    VEK_VARIANT(double value);
    VEK_VARIANT(GUID const & value);
    VEK_VARIANT(CVekRGBA<unsigned char> const & value);
    VEK_VARIANT(CVekRGBA<float> const & value);
    VEK_VARIANT(CVekVector4D<int> const & value);
    VEK_VARIANT(CVekVector4D<float> const & value);
    VEK_VARIANT(CVekVector4D<double> const & value);
    VEK_VARIANT(CVekMatrix4x4<float> const & value);
    VEK_VARIANT(CVekMatrix4x4<double> const & value);
    VEK_VARIANT(char const * value);
    VEK_VARIANT(wchar_t const * value);
    template <class T>
    VEK_VARIANT(CVekString<T> const & value) : VEK_VARIANT(static_cast<T const *>(value))
    {
    }
    /// From a long or a long long, signed or not, and with them a size_t of 64 bits: a VEK_DT_INT when an int can have
    /// the number, otherwise its digits as a text (VEK_DT_STRINGW), so that nothing is cut off.
    template <class T, typename vek::LongNumber<T>::Allow = 0>
    VEK_VARIANT(T value) : VEK_VARIANT(vek::WholeNumber(value).IsInt() ? VEK_DT_INT : VEK_DT_STRINGW)
    {
        wchar_t digits[vek::WholeNumber::TEXT_SIZE];
        if (m_type == VEK_DT_INT)
            *this = static_cast<int>(value);
        else
            *this = vek::WholeNumber(value).Text(digits);
    }
    /// Other pointers are refused: they would become booleans.
    template <class T>
    VEK_VARIANT(T const volatile * pointer) = delete;
    template <class Result, class... Arguments>
    VEK_VARIANT(Result (*function)(Arguments...)) = delete;
    /// A buffer; takes the block over as SetBuffer does.
    VEK_VARIANT(unsigned char * buffer, int size);
    /// A variant of that type without a value; the types 13 to 19 get an object.
    VEK_VARIANT(VEK_DATATYPE type);
    /// Shallow, as told above.
    VEK_VARIANT(VEK_VARIANT const & other);
    VEK_VARIANT & operator=(VEK_VARIANT const & other);

    virtual ~VEK_VARIANT();

    /// The type that the constructor has set.
    VEK_DATATYPE GetType() const;

    /// The inline value, read as that type whatever the variant's type is.
    operator bool &();
    operator bool const &() const;
    operator unsigned char &();
    operator unsigned char const &() const;
    operator char &();
    operator char const &() const;
    operator unsigned short &();
    operator unsigned short const &() const;
    operator short &();
    operator short const &() const;
    operator int &();
    operator int const &() const;
    operator unsigned int &();
    operator unsigned int const &() const;
    operator float &();
    operator float const &() const;
    operator double &();
    operator double const &() const;
    operator GUID &();
    operator GUID const &() const;

    /// The variant's object. In a variant of another type or without its object it is an object of zeros that belongs
    /// to no variant and that each thread has its own of; what is written there is lost.
    operator CVekRGBA<unsigned char> &();
    operator CVekRGBA<unsigned char> const &() const;
    operator CVekRGBA<float> &();
    operator CVekRGBA<float> const &() const;
    operator CVekVector4D<int> &();
    operator CVekVector4D<int> const &() const;
    operator CVekVector4D<float> &();
    operator CVekVector4D<float> const &() const;
    operator CVekVector4D<double> &();
    operator CVekVector4D<double> const &() const;
    operator CVekMatrix4x4<float> &();
    operator CVekMatrix4x4<float> const &() const;
    operator CVekMatrix4x4<double> &();
    operator CVekMatrix4x4<double> const &() const;

    /// The narrow or the wide text; empty in a variant of another type.
    operator CVekString<char> const &() const;
    operator CVekString<wchar_t> const &() const;

    /// Stores into the inline value; the type stays.
    VEK_VARIANT & operator=(char value);
    VEK_VARIANT & operator=(unsigned char value);
    VEK_VARIANT & operator=(bool value);
    VEK_VARIANT & operator=(short value);
    VEK_VARIANT & operator=(unsigned short value);
    VEK_VARIANT & operator=(wchar_t value);
    VEK_VARIANT & operator=(int value);
    VEK_VARIANT & operator=(unsigned int value);
    VEK_VARIANT & operator=(float value);
    VEK_VARIANT & operator=(double value);
    VEK_VARIANT & operator=(GUID const & value);

    /// Copies into the variant's object; nothing happens in a variant of another type or without its object.
    VEK_VARIANT & operator=(CVekRGBA<unsigned char> const & value);
    VEK_VARIANT & operator=(CVekRGBA<float> const & value);
    VEK_VARIANT & operator=(CVekVector4D<int> const & value);
    VEK_VARIANT & operator=(CVekVector4D<float> const & value);
    VEK_VARIANT & operator=(CVekVector4D<double> const & value);
    VEK_VARIANT & operator=(CVekMatrix4x4<float> const & value);
    VEK_VARIANT & operator=(CVekMatrix4x4<double> const & value);

    /// Assigns the narrow or the wide text; the type stays.
    VEK_VARIANT & operator=(char const * value);
    VEK_VARIANT & operator=(wchar_t const * value);
    template <class T>
    VEK_VARIANT & operator=(CVekString<T> const & value)
    {
        return *this = static_cast<T const *>(value);
    }
    template <class T>
    VEK_VARIANT & operator=(T const volatile * pointer) = delete;

    /// The buffer, which stays the variant's, and its size in bytes; null and 0 without one.
    unsigned char * GetBuffer();
    unsigned char const * GetBuffer() const;
    int GetBufferSize() const;

    /// Releases the buffer and takes the given block of the global allocator (malloc or new) over, which must be that
    /// of the library's own runtime: CopyBuffer takes any block. Always true. Given the variant's own buffer, only the
    /// size changes. The size is 0 without a block, and none is below 0. A variant of the types 13 to 19 frees a block
    /// of a size below 1 at once, and keeps its own object when that is given.
    bool SetBuffer(unsigned char * buffer, int size);
    /// Releases the buffer and stores a copy of the bytes. False, without a buffer, for a size below 1, null or no
    /// memory.
    bool CopyBuffer(unsigned char const * buffer, int size);
    /// Releases the buffer or the object of the types 13 to 19 and 21; nothing for the others.
    void DestroyBuffer();

private:
    template <class T>
    T * FindObject() const;
    template <class T>
    T & Object();
    template <class T>
    T const & Object() const;
    template <class T>
    void MakeObject();
    template <class T>
    void StoreInline(T const & value);
    template <class T>
    void StoreObject(T const & value);
    struct Layout;

    VEK_DATATYPE m_type;
    union InlineValue
    {
        alignas(8) unsigned char bytes[16];
        bool boolValue;
        unsigned char ucharValue;
        char charValue;
        wchar_t wcharValue;
        short shortValue;
        unsigned short ushortValue;
        int intValue;
        unsigned int uintValue;
        float floatValue;
        double doubleValue;
    } m_value;
    CVekString<char> m_narrowText;
    CVekString<wchar_t> m_wideText;
    int m_bufferSize;
    union HeapValue
    {
        void * any;
        unsigned char * buffer;
        CVekRGBA<unsigned char> * rgbaUchar;
        CVekRGBA<float> * rgbaFloat;
        CVekVector4D<int> * vector4dInt;
        CVekVector4D<float> * vector4dFloat;
        CVekVector4D<double> * vector4dDouble;
        CVekMatrix4x4<float> * matrix4x4Float;
        CVekMatrix4x4<double> * matrix4x4Double;
    } m_heap;
};

VEK_HEADER_END

#endif
