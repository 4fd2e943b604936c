#include "VekData.h"

#include "base/Pool.h"
#include "text/StringAccess.h"

#include <new>
#include <utility>

namespace
{

bool HasObject(VEK_DATATYPE type)
{
    return type >= VEK_DT_RGBA_UCHAR && type <= VEK_DT_MATRIX4X4_DOUBLE;
}

} // namespace

CVekTypedDataEntry::CVekTypedDataEntry(wchar_t const * name, VEK_DATATYPE type) : m_name(name), m_value(type) {}

CVekTypedDataEntry::CVekTypedDataEntry(CVekString<wchar_t> && name, VEK_DATATYPE type)
    : m_name(std::move(name)), m_value(type)
{
}

// Kept: a copy shares the value's object or buffer.
CVekTypedDataEntry::CVekTypedDataEntry(CVekTypedDataEntry const & other) = default;
CVekTypedDataEntry & CVekTypedDataEntry::operator=(CVekTypedDataEntry const & other) = default;

CVekTypedDataEntry::~CVekTypedDataEntry() = default;

// Makes a whole entry, in one block with a short name; null when memory is exhausted.
CVekTypedDataEntry * CVekTypedDataEntry::Make(wchar_t const * name, int nameLength, VEK_DATATYPE type)
{
    using Access = vek::StringAccess<wchar_t>;
    constexpr int embeddedUnits = 128;
    auto const units = static_cast<size_t>(nameLength);
    bool const embeds = nameLength < embeddedUnits;
    void * const block = vek::PoolAllocate(sizeof(CVekTypedDataEntry) + (embeds ? Access::EmbeddedBytes(units) : 0));
    if (!block)
        return nullptr;
    char * const place = static_cast<char *>(block) + sizeof(CVekTypedDataEntry);
    auto * const entry = new (block)
        CVekTypedDataEntry(embeds ? Access::Embed(place, name, units) : CVekString<wchar_t>(name, nameLength), type);
    if (entry->m_name.GetLength() == nameLength && (!HasObject(type) || entry->m_value.GetBuffer()))
        return entry;
    delete entry;
    return nullptr;
}
