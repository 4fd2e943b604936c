#include "VekXML.h"

#include "text/Names.h"
#include "text/StringAccess.h"
#include "xml/ListIndex.h"
#include "xml/XMLElementSupport.h"
#include "xml/XMLEscape.h"
#include "xml/XMLVariantText.h"

#include <utility>

namespace
{

// Copies into a caller's string, whose block is used again; false, with the string unchanged, when memory is exhausted.
bool CopyText(CVekString<wchar_t> const & stored, CVekString<wchar_t> & value)
{
    int const length = stored.GetLength();
    if (value.GetCapacity() <= length && !value.Reserve(length + 1, false))
        return false;
    value.Assign(stored);
    return true;
}

} // namespace

// A new attribute whose value is the escaped form of the text; null when memory is exhausted.
CVekXMLAttribute * CVekXMLElement::NewAttribute(wchar_t const * name, wchar_t const * text)
{
    vek::EscapedText escaped;
    vek::GivenText const given(name);
    return given.length >= 0 && escaped.Make(text)
               ? CVekXMLAttribute::Make(given.text, given.length, escaped.Text(), escaped.Length())
               : nullptr;
}

int CVekXMLElement::GetNumAttributes() const
{
    return m_attributes.GetCount();
}

int CVekXMLElement::FindAttributeIndex(wchar_t const * name) const
{
    return vek::ListIndex::Find(m_attributes, vek::GivenText(name), [](CVekXMLAttribute const &) { return true; });
}

int CVekXMLElement::AddAttribute(wchar_t const * name, VEK_VARIANT const & value, int index)
{
    if (FindAttributeIndex(name) != -1)
        return -1;
    vek::XMLVariantText text;
    if (!text.Convert(value))
        return -1;
    CVekXMLAttribute * const attribute = NewAttribute(name, text.Text());
    if (!attribute)
    {
        VekLogOutput(0, L"CVekXMLElement::AddAttribute --> Failed to allocate new attribute");
        return -1;
    }
    // Kept: unlike AddChild, an index equal to the last position inserts.
    int const place = m_attributes.Has(index) ? index : m_attributes.GetCount();
    if (!m_attributes.Insert(place, attribute))
    {
        VekLogOutput(0, L"CVekXMLElement::AddAttribute --> Failed to add attribute");
        attribute->Release();
        return -1;
    }
    if (place != m_attributes.GetCount() - 1)
        vek::ListIndex::Change(m_attributes);
    return place;
}

bool CVekXMLElement::SetAttributeValue(wchar_t const * name, VEK_VARIANT const & value, bool add)
{
    int const index = FindAttributeIndex(name);
    if (index == -1)
        return add && AddAttribute(name, value, -1) != -1;
    vek::XMLVariantText text;
    CVekString<wchar_t> & stored = m_attributes[index]->m_value;
    if (!text.Convert(value) || !vek::StringAccess<wchar_t>::MakeOwn(stored) || !vek::EscapeTo(text.Text(), stored))
    {
        VekLogOutput(0, L"CVekXMLElement::SetAttributeValue --> Failed to convert to string");
        return false;
    }
    return true;
}

bool CVekXMLElement::SetAttributeValue(int index, VEK_VARIANT const & value)
{
    if (!m_attributes.Has(index))
    {
        VekLogOutput(0, L"CVekXMLElement::SetAttributeValue --> Invalid index %d", index);
        return false;
    }
    // Kept: set by index, the text is stored without escaping; hosts store text here that is escaped already.
    if (!VariantToString(value, m_attributes[index]->m_value))
    {
        VekLogOutput(0, L"CVekXMLElement::SetAttributeValue --> Can not convert value to string");
        return false;
    }
    return true;
}

bool CVekXMLElement::VariantToString(VEK_VARIANT const & value, CVekString<wchar_t> & text)
{
    vek::XMLVariantText converted;
    return converted.Convert(value) && vek::StoreText(vek::GivenText(converted.Text()), text);
}

bool CVekXMLElement::RenameAttribute(int index, wchar_t const *)
{
    // Kept, here and in RemoveAttribute: the test of the index is the wrong way round, so that no attribute is reached
    // by index, and an index beyond the list, where there is nothing to do, succeeds.
    if (index >= 0 && index >= m_attributes.GetCount())
        return true;
    VekLogOutput(0, L"CVekXMLElement::RenameAttribute --> Invalid index %d", index);
    return false;
}

bool CVekXMLElement::RenameAttribute(wchar_t const * name, wchar_t const * newName)
{
    int const index = FindAttributeIndex(name);
    vek::ListIndex::Change(m_attributes);
    return index != -1 && vek::StoreText(vek::GivenText(newName), m_attributes[index]->m_name);
}

bool CVekXMLElement::RemoveAttribute(wchar_t const * name)
{
    int const index = FindAttributeIndex(name);
    return index != -1 && RemoveAttribute(index);
}

bool CVekXMLElement::RemoveAttribute(int index)
{
    if (index >= 0 && index >= m_attributes.GetCount())
        return true;
    VekLogOutput(0, L"CVekXMLElement::RemoveAttribute --> Invalid index %d", index);
    return false;
}

void CVekXMLElement::RemoveAllAttributes()
{
    DestroyAttributes();
}

CVekString<wchar_t> const & CVekXMLElement::GetAttributeName(int index) const
{
    return m_attributes.Has(index) ? m_attributes[index]->GetName() : vek::EmptyText();
}

// --- typed reads -----------------------------------------------------------------------------------------------------

template <class T>
bool CVekXMLElement::ReadAttribute(int index, T & value, T const & defaultValue) const
{
    if (m_attributes.Has(index))
        return m_attributes[index]->GetValue(value);
    vek::LogIndexAsText(L"CVekXMLElement::GetAttributeValue --> Invalid index %s", index);
    value = defaultValue;
    return false;
}

template <class T>
bool CVekXMLElement::ReadAttribute(wchar_t const * name, T & value, T const & defaultValue) const
{
    int const index = FindAttributeIndex(name);
    if (index != -1)
        return m_attributes[index]->GetValue(value);
    value = defaultValue;
    return false;
}

bool CVekXMLElement::GetAttributeValue(wchar_t const * name, CVekVector4D<double> & value,
                                       CVekVector4D<double> const & defaultValue) const
{
    return ReadAttribute(name, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(int index, CVekVector4D<double> & value,
                                       CVekVector4D<double> const & defaultValue) const
{
    return ReadAttribute(index, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(wchar_t const * name, CVekVector4D<float> & value,
                                       CVekVector4D<float> const & defaultValue) const
{
    return ReadAttribute(name, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(int index, CVekVector4D<float> & value,
                                       CVekVector4D<float> const & defaultValue) const
{
    return ReadAttribute(index, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(wchar_t const * name, CVekVector4D<int> & value,
                                       CVekVector4D<int> const & defaultValue) const
{
    return ReadAttribute(name, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(int index, CVekVector4D<int> & value,
                                       CVekVector4D<int> const & defaultValue) const
{
    return ReadAttribute(index, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(wchar_t const * name, CVekRGBA<float> & value,
                                       CVekRGBA<float> const & defaultValue) const
{
    return ReadAttribute(name, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(int index, CVekRGBA<float> & value, CVekRGBA<float> const & defaultValue) const
{
    return ReadAttribute(index, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(wchar_t const * name, CVekRGBA<unsigned char> & value,
                                       CVekRGBA<unsigned char> const & defaultValue) const
{
    return ReadAttribute(name, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(int index, CVekRGBA<unsigned char> & value,
                                       CVekRGBA<unsigned char> const & defaultValue) const
{
    return ReadAttribute(index, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(wchar_t const * name, bool & value, bool defaultValue) const
{
    return ReadAttribute(name, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(int index, bool & value, bool defaultValue) const
{
    return ReadAttribute(index, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(wchar_t const * name, double & value, double defaultValue) const
{
    return ReadAttribute(name, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(int index, double & value, double defaultValue) const
{
    return ReadAttribute(index, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(wchar_t const * name, float & value, float defaultValue) const
{
    return ReadAttribute(name, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(int index, float & value, float defaultValue) const
{
    return ReadAttribute(index, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(wchar_t const * name, int & value, int defaultValue) const
{
    return ReadAttribute(name, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(int index, int & value, int defaultValue) const
{
    return ReadAttribute(index, value, defaultValue);
}

bool CVekXMLElement::GetAttributeValue(int index, CVekString<wchar_t> & value, wchar_t const * defaultValue) const
{
    if (m_attributes.Has(index))
        return CopyText(m_attributes[index]->GetValue(), value);
    vek::LogIndexAsText(L"CVekXMLElement::GetAttributeValue --> Invalid index %s", index);
    value.Assign(defaultValue);
    return false;
}

bool CVekXMLElement::GetAttributeValue(wchar_t const * name, CVekString<wchar_t> & value,
                                       wchar_t const * defaultValue) const
{
    int const index = FindAttributeIndex(name);
    if (index == -1)
    {
        value.Assign(defaultValue);
        return false;
    }
    if (!CopyText(m_attributes[index]->GetValue(), value))
        return false;
    vek::Unescape(value);
    return true;
}

CVekString<wchar_t> const & CVekXMLElement::GetAttributeValue(int index) const
{
    if (m_attributes.Has(index))
        return m_attributes[index]->GetValue();
    vek::LogIndexAsText(L"CVekXMLElement::GetAttributeValue --> Invalid index %s", index);
    return vek::EmptyText();
}
