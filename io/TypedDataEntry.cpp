#include "VekData.h"

#include "text/DataTypes.h"
#include "text/StringAccess.h"

#include <utility>

CVekTypedDataEntry::CVekTypedDataEntry(wchar_t const * name, VEK_DATATYPE type) : m_name(name), m_value(type) {}

CVekTypedDataEntry::CVekTypedDataEntry(CVekString<wchar_t> && name, VEK_DATATYPE type)
    : m_name(std::move(name)), m_value(type)
{
}

// Kept: a copy shares the value's object or buffer.
CVekTypedDataEntry::CVekTypedDataEntry(CVekTypedDataEntry const & other) = default;
CVekTypedDataEntry & CVekTypedDataEntry::operator=(CVekTypedDataEntry const & other) = default;

CVekTypedDataEntry::~CVekTypedDataEntry() = default;

// Null when memory is exhausted, also that for the value's object.
CVekTypedDataEntry * CVekTypedDataEntry::Make(wchar_t const * name, int nameLength, VEK_DATATYPE type)
{
    auto * const entry =
        vek::MakeInOneBlock<CVekTypedDataEntry>([type](void * block, CVekString<wchar_t> && text)
                                                { return new (block) CVekTypedDataEntry(std::move(text), type); },
                                                vek::TextPiece{name, nameLength});
    if (!entry || !vek::IsObject(type) || entry->m_value.GetBuffer())
        return entry;
    delete entry;
    return nullptr;
}
