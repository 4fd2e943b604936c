#include "io/TypedDataLoad.h"

#include "VekMath.h"

#include <stdlib.h>

namespace vek
{
namespace
{

template <class T>
bool LoadInline(TypedDataSource & source, VEK_VARIANT & value) noexcept
{
    T loaded{};
    if (!source.Get(loaded))
        return false;
    value = loaded;
    return true;
}

bool LoadBool(TypedDataSource & source, VEK_VARIANT & value) noexcept
{
    unsigned char loaded = 0;
    if (!source.Get(loaded))
        return false;
    value = loaded != 0;
    return true;
}

// A text ends with its first zero, wherever the stored length would end it.
template <class T>
bool LoadText(TypedDataSource & source, VEK_VARIANT & value) noexcept
{
    constexpr int shortLength = 255;
    T shortText[shortLength + 1];
    Buffer<T> longText;
    T const * text = shortText;
    int length = 0;
    if (!source.Get(length) || length < 0)
        return false;
    if (length > shortLength)
    {
        if (!LoadUnits(source, length, longText))
            return false;
        text = longText.Data();
    }
    else if (!source.Get(shortText, static_cast<size_t>(length)))
        return false;
    else
        shortText[length] = T();
    if (text[0] == T())
        return true;
    value = text;
    CVekString<T> const & stored = value;
    return !stored.IsEmpty();
}

// Colours and vectors: four components.
template <class Value, class T>
bool LoadFour(TypedDataSource & source, VEK_VARIANT & value) noexcept
{
    T loaded[4];
    if (!source.Get(loaded, 4))
        return false;
    value = Value(loaded[0], loaded[1], loaded[2], loaded[3]);
    return true;
}

template <class T>
bool LoadMatrix(TypedDataSource & source, VEK_VARIANT & value) noexcept
{
    CVekMatrix4x4<T> & matrix = value;
    return source.Get(matrix.GetElements(), 16);
}

bool LoadPieces(TypedDataSource & source, int size, VEK_VARIANT & value) noexcept
{
    Buffer<unsigned char> bytes;
    return LoadUnits(source, size, bytes) && value.CopyBuffer(bytes.Data(), size);
}

bool LoadBuffer(TypedDataSource & source, VEK_VARIANT & value) noexcept
{
    int size = 0;
    if (!source.Get(size) || size < 0)
        return false;
    if (size == 0)
        return true;
    if (!source.KnowsSize())
        return LoadPieces(source, size, value);
    auto const count = static_cast<size_t>(size);
    auto * const bytes = source.Holds(count, 1) ? static_cast<unsigned char *>(malloc(count)) : nullptr;
    if (!bytes)
        return false;
    if (source.GetBlock(bytes, count))
        return value.SetBuffer(bytes, size);
    free(bytes);
    return false;
}

bool LoadOther(TypedDataSource & source, VEK_VARIANT & value) noexcept
{
    switch (value.GetType())
    {
    case VEK_DT_STRINGA:
        return LoadText<char>(source, value);
    case VEK_DT_STRINGW:
        return LoadText<wchar_t>(source, value);
    case VEK_DT_RGBA_UCHAR:
        return LoadFour<CVekRGBA<unsigned char>, unsigned char>(source, value);
    case VEK_DT_RGBA_FLOAT:
        return LoadFour<CVekRGBA<float>, float>(source, value);
    case VEK_DT_VECTOR4D_INT:
        return LoadFour<CVekVector4D<int>, int>(source, value);
    case VEK_DT_VECTOR4D_FLOAT:
        return LoadFour<CVekVector4D<float>, float>(source, value);
    case VEK_DT_VECTOR4D_DOUBLE:
        return LoadFour<CVekVector4D<double>, double>(source, value);
    case VEK_DT_MATRIX4X4_FLOAT:
        return LoadMatrix<float>(source, value);
    case VEK_DT_MATRIX4X4_DOUBLE:
        return LoadMatrix<double>(source, value);
    case VEK_DT_BUFFER:
        return LoadBuffer(source, value);
    default:
        // Kept: of a GUID nothing is stored but its name and type.
        return true;
    }
}

} // namespace

bool LoadValue(TypedDataSource & source, VEK_VARIANT & value) noexcept
{
    switch (value.GetType())
    {
    case VEK_DT_BOOL:
        return LoadBool(source, value);
    case VEK_DT_UCHAR:
        return LoadInline<unsigned char>(source, value);
    case VEK_DT_CHAR:
        return LoadInline<char>(source, value);
    case VEK_DT_WCHAR:
        return LoadInline<wchar_t>(source, value);
    case VEK_DT_SHORT:
        return LoadInline<short>(source, value);
    case VEK_DT_USHORT:
        return LoadInline<unsigned short>(source, value);
    case VEK_DT_INT:
        return LoadInline<int>(source, value);
    case VEK_DT_UINT:
        return LoadInline<unsigned int>(source, value);
    case VEK_DT_FLOAT:
        return LoadInline<float>(source, value);
    case VEK_DT_DOUBLE:
        return LoadInline<double>(source, value);
    default:
        return LoadOther(source, value);
    }
}

} // namespace vek
