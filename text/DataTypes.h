#pragma once

#include "VekVariant.h"

#include <guiddef.h>

#include <type_traits>

namespace vek
{

/// The C++ type of a data type's values, handed to a visitor; void for numbers that are no type.
template <class T>
struct Held
{
};
/// Stands for a buffer of bytes.
struct HeldBytes
{
};

/// Calls the visitor with the Held of the type's values: the library's one list of the data types.
template <class Visitor>
constexpr decltype(auto) Visit(VEK_DATATYPE type, Visitor && visitor)
{
    switch (type)
    {
    case VEK_DT_BOOL:
        return visitor(Held<bool>());
    case VEK_DT_UCHAR:
        return visitor(Held<unsigned char>());
    case VEK_DT_CHAR:
        return visitor(Held<char>());
    case VEK_DT_WCHAR:
        return visitor(Held<wchar_t>());
    case VEK_DT_SHORT:
        return visitor(Held<short>());
    case VEK_DT_USHORT:
        return visitor(Held<unsigned short>());
    case VEK_DT_INT:
        return visitor(Held<int>());
    case VEK_DT_UINT:
        return visitor(Held<unsigned int>());
    case VEK_DT_FLOAT:
        return visitor(Held<float>());
    case VEK_DT_DOUBLE:
        return visitor(Held<double>());
    case VEK_DT_STRINGA:
        return visitor(Held<CVekString<char>>());
    case VEK_DT_STRINGW:
        return visitor(Held<CVekString<wchar_t>>());
    case VEK_DT_RGBA_UCHAR:
        return visitor(Held<CVekRGBA<unsigned char>>());
    case VEK_DT_RGBA_FLOAT:
        return visitor(Held<CVekRGBA<float>>());
    case VEK_DT_VECTOR4D_INT:
        return visitor(Held<CVekVector4D<int>>());
    case VEK_DT_VECTOR4D_FLOAT:
        return visitor(Held<CVekVector4D<float>>());
    case VEK_DT_VECTOR4D_DOUBLE:
        return visitor(Held<CVekVector4D<double>>());
    case VEK_DT_MATRIX4X4_FLOAT:
        return visitor(Held<CVekMatrix4x4<float>>());
    case VEK_DT_MATRIX4X4_DOUBLE:
        return visitor(Held<CVekMatrix4x4<double>>());
    case VEK_DT_GUID:
        return visitor(Held<GUID>());
    case VEK_DT_BUFFER:
        return visitor(Held<HeldBytes>());
    default:
        return visitor(Held<void>());
    }
}

/// The data type whose values are of that C++ type.
template <class T>
constexpr VEK_DATATYPE TYPE_OF = []
{
    int type = VEK_DT_UNKNOWN;
    while (!Visit(static_cast<VEK_DATATYPE>(type), []<class U>(Held<U>) { return std::is_same_v<T, U>; }))
        ++type;
    return static_cast<VEK_DATATYPE>(type);
}();

/// Whether a variant of the type keeps its value in an object on the heap.
constexpr bool IsObject(VEK_DATATYPE type) noexcept
{
    return type >= VEK_DT_RGBA_UCHAR && type <= VEK_DT_MATRIX4X4_DOUBLE;
}

/// The bytes a value takes when stored; 0 where they are not always the same.
template <class T>
constexpr int SizeOf(Held<T>) noexcept
{
    return sizeof(T);
}
// Kept: 4, although the value has four floats; stored streams rely on it.
constexpr int SizeOf(Held<CVekRGBA<float>>) noexcept
{
    return 4;
}
// Kept: the size of the whole 32-bit matrix object, its header of 16 bytes included.
template <class T>
constexpr int SizeOf(Held<CVekMatrix4x4<T>>) noexcept
{
    return 16 + 16 * sizeof(T);
}
template <class T>
constexpr int SizeOf(Held<CVekString<T>>) noexcept
{
    return 0;
}
constexpr int SizeOf(Held<HeldBytes>) noexcept
{
    return 0;
}
constexpr int SizeOf(Held<void>) noexcept
{
    return 0;
}

} // namespace vek
