#include "VekData.h"

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
