#include "base/Nothing.h"
#include "base/Pool.h"
#include "text/DataTypes.h"
#include "text/StringAccess.h"

#include <stdlib.h>
#include <string.h>

#include <new>
#include <type_traits>

// A variant's own objects come from the pool, its buffers from malloc, as those that hosts give: a host's own global
// allocator is the same runtime's.

struct VEK_VARIANT::Layout
{
    static_assert(sizeof(m_value) == 16 && alignof(InlineValue) == 8 && sizeof(GUID) == 16);
    static_assert(sizeof(m_narrowText) == sizeof(void *) && sizeof(m_wideText) == sizeof(void *));
#if defined(_MSC_VER)
    // Here the table's pointer takes as much room as the strictest member is aligned to.
    static_assert(sizeof(VEK_VARIANT) == (sizeof(void *) == 4 ? 48 : 64));
#else
    static_assert(sizeof(VEK_VARIANT) == (sizeof(void *) == 4 ? 40 : 64));
#endif
};

template <class T>
T * VEK_VARIANT::FindObject() const
{
    if (m_type != vek::TYPE_OF<T> || !m_heap.any)
        return nullptr;
    // A buffer size tells a block that was set from an object of this variant's own.
    if (m_bufferSize != 0 && (!std::is_trivially_copyable_v<T> || static_cast<size_t>(m_bufferSize) < sizeof(T)))
        return nullptr;
    return static_cast<T *>(m_heap.any);
}

// Reading an object that a variant doesn't have gives one of zeros.
template <class T>
T & VEK_VARIANT::Object()
{
    if (T * const object = FindObject<T>())
        return *object;
    return vek::Nothing<T>();
}

template <class T>
T const & VEK_VARIANT::Object() const
{
    if (T const * const object = FindObject<T>())
        return *object;
    static T const NONE;
    return NONE;
}

template <class T>
void VEK_VARIANT::MakeObject()
{
    m_heap.any = vek::PoolAllocate(sizeof(T));
    if (m_heap.any)
        new (m_heap.any) T();
}

template <class T>
void VEK_VARIANT::StoreInline(T const & value)
{
    static_assert(sizeof(T) <= sizeof(m_value));
    memcpy(m_value.bytes, &value, sizeof(T));
}

template <class T>
void VEK_VARIANT::StoreObject(T const & value)
{
    if (T * const object = FindObject<T>())
        *object = value;
}

// --- construction -------------------------------------------------------------------------------------------------

VEK_VARIANT::VEK_VARIANT(VEK_DATATYPE type)
    : m_type(type), m_value(), m_narrowText(vek::StringAccess<char>::Blockless()),
      m_wideText(vek::StringAccess<wchar_t>::Blockless()), m_bufferSize(0), m_heap()
{
    if (!vek::IsObject(type))
        return;
    vek::Visit(type,
               [this]<class T>(vek::Held<T>)
               {
                   if constexpr (vek::IsObject(vek::TYPE_OF<T>))
                       MakeObject<T>();
               });
}

VEK_VARIANT::VEK_VARIANT(bool value) : VEK_VARIANT(VEK_DT_BOOL)
{
    StoreInline(value);
}

VEK_VARIANT::VEK_VARIANT(unsigned char value) : VEK_VARIANT(VEK_DT_UCHAR)
{
    StoreInline(value);
}

VEK_VARIANT::VEK_VARIANT(char value) : VEK_VARIANT(VEK_DT_CHAR)
{
    StoreInline(value);
}

VEK_VARIANT::VEK_VARIANT(wchar_t value) : VEK_VARIANT(VEK_DT_WCHAR)
{
    StoreInline(value);
}

VEK_VARIANT::VEK_VARIANT(unsigned short value) : VEK_VARIANT(VEK_DT_USHORT)
{
    StoreInline(value);
}

VEK_VARIANT::VEK_VARIANT(unsigned int value) : VEK_VARIANT(VEK_DT_UINT)
{
    StoreInline(value);
}

VEK_VARIANT::VEK_VARIANT(short value) : VEK_VARIANT(VEK_DT_SHORT)
{
    StoreInline(value);
}

VEK_VARIANT::VEK_VARIANT(int value) : VEK_VARIANT(VEK_DT_INT)
{
    StoreInline(value);
}

VEK_VARIANT::VEK_VARIANT(float value) : VEK_VARIANT(VEK_DT_FLOAT)
{
    StoreInline(value);
}

VEK_VARIANT::VEK_VARIANT(double value) : VEK_VARIANT(VEK_DT_DOUBLE)
{
    StoreInline(value);
}

VEK_VARIANT::VEK_VARIANT(GUID const & value) : VEK_VARIANT(VEK_DT_GUID)
{
    StoreInline(value);
}

VEK_VARIANT::VEK_VARIANT(CVekRGBA<unsigned char> const & value) : VEK_VARIANT(VEK_DT_RGBA_UCHAR)
{
    StoreObject(value);
}

VEK_VARIANT::VEK_VARIANT(CVekRGBA<float> const & value) : VEK_VARIANT(VEK_DT_RGBA_FLOAT)
{
    StoreObject(value);
}

VEK_VARIANT::VEK_VARIANT(CVekVector4D<int> const & value) : VEK_VARIANT(VEK_DT_VECTOR4D_INT)
{
    StoreObject(value);
}

VEK_VARIANT::VEK_VARIANT(CVekVector4D<float> const & value) : VEK_VARIANT(VEK_DT_VECTOR4D_FLOAT)
{
    StoreObject(value);
}

VEK_VARIANT::VEK_VARIANT(CVekVector4D<double> const & value) : VEK_VARIANT(VEK_DT_VECTOR4D_DOUBLE)
{
    StoreObject(value);
}

VEK_VARIANT::VEK_VARIANT(CVekMatrix4x4<float> const & value) : VEK_VARIANT(VEK_DT_MATRIX4X4_FLOAT)
{
    StoreObject(value);
}

VEK_VARIANT::VEK_VARIANT(CVekMatrix4x4<double> const & value) : VEK_VARIANT(VEK_DT_MATRIX4X4_DOUBLE)
{
    StoreObject(value);
}

VEK_VARIANT::VEK_VARIANT(char const * value)
    : m_type(VEK_DT_STRINGA), m_value(), m_narrowText(value), m_wideText(vek::StringAccess<wchar_t>::Blockless()),
      m_bufferSize(0), m_heap()
{
}

VEK_VARIANT::VEK_VARIANT(wchar_t const * value)
    : m_type(VEK_DT_STRINGW), m_value(), m_narrowText(vek::StringAccess<char>::Blockless()), m_wideText(value),
      m_bufferSize(0), m_heap()
{
}

VEK_VARIANT::VEK_VARIANT(unsigned char * buffer, int size) : VEK_VARIANT(VEK_DT_BUFFER)
{
    SetBuffer(buffer, size);
}

// Kept: a copy shares the heap value, and assigning doesn't release the target's own; callers keep one copy alive.
VEK_VARIANT::VEK_VARIANT(VEK_VARIANT const & other) = default;
VEK_VARIANT & VEK_VARIANT::operator=(VEK_VARIANT const & other) = default;

VEK_VARIANT::~VEK_VARIANT()
{
    DestroyBuffer();
}

// --- reading --------------------------------------------------------------------------------------------------------

VEK_DATATYPE VEK_VARIANT::GetType() const
{
    return m_type;
}

VEK_VARIANT::operator bool &()
{
    return m_value.boolValue;
}

VEK_VARIANT::operator bool const &() const
{
    return m_value.boolValue;
}

VEK_VARIANT::operator unsigned char &()
{
    return m_value.ucharValue;
}

VEK_VARIANT::operator unsigned char const &() const
{
    return m_value.ucharValue;
}

VEK_VARIANT::operator char &()
{
    return m_value.charValue;
}

VEK_VARIANT::operator char const &() const
{
    return m_value.charValue;
}

VEK_VARIANT::operator unsigned short &()
{
    return m_value.ushortValue;
}

VEK_VARIANT::operator unsigned short const &() const
{
    return m_value.ushortValue;
}

VEK_VARIANT::operator short &()
{
    return m_value.shortValue;
}

VEK_VARIANT::operator short const &() const
{
    return m_value.shortValue;
}

VEK_VARIANT::operator int &()
{
    return m_value.intValue;
}

VEK_VARIANT::operator int const &() const
{
    return m_value.intValue;
}

VEK_VARIANT::operator unsigned int &()
{
    return m_value.uintValue;
}

VEK_VARIANT::operator unsigned int const &() const
{
    return m_value.uintValue;
}

VEK_VARIANT::operator float &()
{
    return m_value.floatValue;
}

VEK_VARIANT::operator float const &() const
{
    return m_value.floatValue;
}

VEK_VARIANT::operator double &()
{
    return m_value.doubleValue;
}

VEK_VARIANT::operator double const &() const
{
    return m_value.doubleValue;
}

VEK_VARIANT::operator GUID &()
{
    return reinterpret_cast<GUID &>(m_value);
}

VEK_VARIANT::operator GUID const &() const
{
    return reinterpret_cast<GUID const &>(m_value);
}

VEK_VARIANT::operator CVekRGBA<unsigned char> &()
{
    return Object<CVekRGBA<unsigned char>>();
}

VEK_VARIANT::operator CVekRGBA<unsigned char> const &() const
{
    return Object<CVekRGBA<unsigned char>>();
}

VEK_VARIANT::operator CVekRGBA<float> &()
{
    return Object<CVekRGBA<float>>();
}

VEK_VARIANT::operator CVekRGBA<float> const &() const
{
    return Object<CVekRGBA<float>>();
}

VEK_VARIANT::operator CVekVector4D<int> &()
{
    return Object<CVekVector4D<int>>();
}

VEK_VARIANT::operator CVekVector4D<int> const &() const
{
    return Object<CVekVector4D<int>>();
}

VEK_VARIANT::operator CVekVector4D<float> &()
{
    return Object<CVekVector4D<float>>();
}

VEK_VARIANT::operator CVekVector4D<float> const &() const
{
    return Object<CVekVector4D<float>>();
}

VEK_VARIANT::operator CVekVector4D<double> &()
{
    return Object<CVekVector4D<double>>();
}

VEK_VARIANT::operator CVekVector4D<double> const &() const
{
    return Object<CVekVector4D<double>>();
}

VEK_VARIANT::operator CVekMatrix4x4<float> &()
{
    return Object<CVekMatrix4x4<float>>();
}

VEK_VARIANT::operator CVekMatrix4x4<float> const &() const
{
    return Object<CVekMatrix4x4<float>>();
}

VEK_VARIANT::operator CVekMatrix4x4<double> &()
{
    return Object<CVekMatrix4x4<double>>();
}

VEK_VARIANT::operator CVekMatrix4x4<double> const &() const
{
    return Object<CVekMatrix4x4<double>>();
}

VEK_VARIANT::operator CVekString<char> const &() const
{
    return m_narrowText;
}

VEK_VARIANT::operator CVekString<wchar_t> const &() const
{
    return m_wideText;
}

// --- assignment -----------------------------------------------------------------------------------------------------

VEK_VARIANT & VEK_VARIANT::operator=(char value)
{
    StoreInline(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(unsigned char value)
{
    StoreInline(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(bool value)
{
    StoreInline(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(short value)
{
    StoreInline(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(unsigned short value)
{
    StoreInline(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(wchar_t value)
{
    StoreInline(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(int value)
{
    StoreInline(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(unsigned int value)
{
    StoreInline(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(float value)
{
    StoreInline(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(double value)
{
    StoreInline(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(GUID const & value)
{
    StoreInline(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(CVekRGBA<unsigned char> const & value)
{
    StoreObject(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(CVekRGBA<float> const & value)
{
    StoreObject(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(CVekVector4D<int> const & value)
{
    StoreObject(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(CVekVector4D<float> const & value)
{
    StoreObject(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(CVekVector4D<double> const & value)
{
    StoreObject(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(CVekMatrix4x4<float> const & value)
{
    StoreObject(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(CVekMatrix4x4<double> const & value)
{
    StoreObject(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(char const * value)
{
    m_narrowText.Assign(value);
    return *this;
}

VEK_VARIANT & VEK_VARIANT::operator=(wchar_t const * value)
{
    m_wideText.Assign(value);
    return *this;
}

// --- the buffer -----------------------------------------------------------------------------------------------------

unsigned char * VEK_VARIANT::GetBuffer()
{
    return m_heap.buffer;
}

unsigned char const * VEK_VARIANT::GetBuffer() const
{
    return m_heap.buffer;
}

int VEK_VARIANT::GetBufferSize() const
{
    return m_bufferSize;
}

bool VEK_VARIANT::SetBuffer(unsigned char * buffer, int size)
{
    bool const isObject = vek::IsObject(m_type);
    if (buffer != m_heap.buffer)
        DestroyBuffer();
    else if (isObject && m_bufferSize == 0)
        return true; // the variant's own object is no buffer
    if (isObject && size <= 0)
    {
        // Nothing would tell the block from an object of the variant's own later.
        vek::PoolFreeAny(buffer);
        buffer = nullptr;
    }
    m_heap.buffer = buffer;
    m_bufferSize = buffer && size > 0 ? size : 0;
    return true;
}

bool VEK_VARIANT::CopyBuffer(unsigned char const * buffer, int size)
{
    unsigned char * copy = nullptr;
    if (buffer && size > 0)
        copy = static_cast<unsigned char *>(malloc(static_cast<size_t>(size)));
    // The bytes may be this variant's own: they are copied before those are released.
    if (copy)
        memcpy(copy, buffer, static_cast<size_t>(size));
    DestroyBuffer();
    if (!copy)
        return false;
    m_heap.buffer = copy;
    m_bufferSize = size;
    return true;
}

void VEK_VARIANT::DestroyBuffer()
{
    // Kept: a block that was set on a variant of any other type is not released.
    if (m_type != VEK_DT_BUFFER && !vek::IsObject(m_type))
        return;
    if (!m_heap.any)
        return;
    if (m_type == VEK_DT_MATRIX4X4_FLOAT && m_bufferSize == 0)
        m_heap.matrix4x4Float->~CVekMatrix4x4();
    else if (m_type == VEK_DT_MATRIX4X4_DOUBLE && m_bufferSize == 0)
        m_heap.matrix4x4Double->~CVekMatrix4x4();
    vek::PoolFreeAny(m_heap.any);
    m_heap.any = nullptr;
    m_bufferSize = 0;
}
