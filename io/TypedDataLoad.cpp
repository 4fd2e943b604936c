#include "io/TypedDataLoad.h"

#include "base/Pool.h"
#include "text/DataTypes.h"

namespace vek
{
namespace
{

// One Load for each way a type's values are stored.

template <class T>
bool Load(Held<T>, TypedDataSource & source, VEK_VARIANT & value) noexcept
{
    T loaded{};
    if (!source.Get(loaded))
        return false;
    value = loaded;
    return true;
}

bool Load(Held<bool>, TypedDataSource & source, VEK_VARIANT & value) noexcept
{
    unsigned char loaded = 0;
    if (!source.Get(loaded))
        return false;
    value = loaded != 0;
    return true;
}

// A text ends with its first zero, wherever the stored length would end it.
template <class T>
bool Load(Held<CVekString<T>>, TypedDataSource & source, VEK_VARIANT & value) noexcept
{
    constexpr int SHORT_LENGTH = 255;
    T shortText[SHORT_LENGTH + 1];
    Buffer<T> longText;
    T const * text = shortText;
    int length = 0;
    if (!source.Get(length))
        return false;
    if (length < 0)
        return source.Fail(VEK_DATA_ERROR_LENGTH);
    if (length > SHORT_LENGTH)
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
template <class T, class Value>
bool LoadFour(TypedDataSource & source, VEK_VARIANT & value) noexcept
{
    T loaded[4];
    if (!source.Get(loaded, 4))
        return false;
    value = Value(loaded[0], loaded[1], loaded[2], loaded[3]);
    return true;
}

template <class T>
bool Load(Held<CVekRGBA<T>>, TypedDataSource & source, VEK_VARIANT & value) noexcept
{
    return LoadFour<T, CVekRGBA<T>>(source, value);
}

template <class T>
bool Load(Held<CVekVector4D<T>>, TypedDataSource & source, VEK_VARIANT & value) noexcept
{
    return LoadFour<T, CVekVector4D<T>>(source, value);
}

template <class T>
bool Load(Held<CVekMatrix4x4<T>>, TypedDataSource & source, VEK_VARIANT & value) noexcept
{
    CVekMatrix4x4<T> & matrix = value;
    return source.Get(matrix.GetElements(), 16);
}

bool LoadPieces(TypedDataSource & source, int size, VEK_VARIANT & value) noexcept
{
    Buffer<unsigned char> bytes;
    return LoadUnits(source, size, bytes) && value.CopyBuffer(bytes.Data(), size);
}

bool Load(Held<HeldBytes>, TypedDataSource & source, VEK_VARIANT & value) noexcept
{
    int size = 0;
    if (!source.Get(size))
        return false;
    if (size < 0)
        return source.Fail(VEK_DATA_ERROR_LENGTH);
    if (size == 0)
        return true;
    if (!source.KnowsSize())
        return LoadPieces(source, size, value);
    auto const count = static_cast<size_t>(size);
    if (!source.Holds(count, 1))
        return source.Fail(VEK_DATA_ERROR_LENGTH);
    auto * const bytes = static_cast<unsigned char *>(PoolAllocate(count));
    if (!bytes)
        return false;
    if (source.GetBlock(bytes, count))
        return value.SetBuffer(bytes, size);
    PoolFree(bytes, count);
    return false;
}

// Kept: of a GUID nothing is stored but its name and type.
bool Load(Held<GUID>, TypedDataSource &, VEK_VARIANT &) noexcept
{
    return true;
}
bool Load(Held<void>, TypedDataSource &, VEK_VARIANT &) noexcept
{
    return true;
}

} // namespace

bool LoadValue(TypedDataSource & source, VEK_VARIANT & value) noexcept
{
    return Visit(value.GetType(), [&](auto held) { return Load(held, source, value); });
}

} // namespace vek
