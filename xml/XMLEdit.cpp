#include "VekEdit.h"
#include "VekRef.h"

#include "base/Buffer.h"
#include "text/Names.h"
#include "xml/ListIndex.h"
#include "xml/XMLElementSupport.h"
#include "xml/XMLVariantText.h"

#include <utility>

namespace vek
{

/// What the free functions do to the parts of an element.
struct XMLEdit
{
    /// The element without its children; null when memory is exhausted.
    static CVekRef<CVekXMLElement> CopyAlone(IVekXMLElement const & source) noexcept
    {
        CVekString<wchar_t> const & name = source.GetName();
        CVekRef<CVekXMLElement> copy(CVekXMLElement::Make(name, name.GetLength()));
        if (!copy || !CopyAttributes(source, copy->m_attributes))
            return nullptr;
        if (source.HasCDATASection() && !copy->AddCDATASection(source.GetCDATASection(), source.GetCDATASectionSize()))
            return nullptr;
        return copy->m_children.Reserve(source.GetNumChildren()) ? copy : nullptr;
    }
    /// The child's reference goes to the parent, which has room for it.
    static void AppendChild(CVekXMLElement & parent, CVekRef<CVekXMLElement> child) noexcept
    {
        parent.m_children.Append(child.Detach());
    }
    static void RemoveAttribute(CVekXMLElement & element, int index) noexcept
    {
        CVekRef<CVekXMLAttribute> const attribute(element.m_attributes[index]);
        ListIndex::Leave(element.m_attributes, index);
        element.m_attributes.RemoveAt(index);
    }
    /// False when memory is exhausted.
    static bool ReplaceAttribute(CVekXMLElement & element, int index, wchar_t const * name,
                                 wchar_t const * text) noexcept
    {
        CVekXMLAttribute * const attribute = CVekXMLElement::NewAttribute(name, text);
        if (!attribute)
            return false;
        CVekRef<CVekXMLAttribute> const old(element.m_attributes[index]);
        element.m_attributes.Set(index, attribute);
        ListIndex::Change(element.m_attributes);
        return true;
    }
    static bool HasAttribute(CVekXMLElement const & element, int index) noexcept
    {
        return element.m_attributes.Has(index);
    }

private:
    static bool CopyAttributes(IVekXMLElement const & source, CVekPointerArray<CVekXMLAttribute> & attributes) noexcept
    {
        int const count = source.GetNumAttributes();
        if (!attributes.Reserve(count))
            return false;
        for (int i = 0; i < count; ++i)
        {
            CVekString<wchar_t> const & name = source.GetAttributeName(i);
            CVekString<wchar_t> const & value = source.GetAttributeValue(i);
            CVekXMLAttribute * const attribute =
                CVekXMLAttribute::Make(name, name.GetLength(), value, value.GetLength());
            if (!attribute)
                return false;
            attributes.Append(attribute); // room was made above
        }
        return true;
    }
};

namespace
{

struct OpenCopy
{
    IVekXMLElement const * source;
    CVekXMLElement * copy;
    int next;
};

/// Copies what is below an element; false when memory is exhausted.
bool CopyBelow(IVekXMLElement const & source, CVekXMLElement & copy) noexcept
{
    Buffer<OpenCopy> open;
    if (!open.Append({&source, &copy, 0}))
        return false;
    while (!open.Empty())
    {
        OpenCopy & level = open.Back();
        if (level.next >= level.source->GetNumChildren())
        {
            open.PopBack();
            continue;
        }
        IVekXMLElement const * const child = level.source->GetChild(level.next++);
        CVekRef<CVekXMLElement> childCopy = child ? XMLEdit::CopyAlone(*child) : nullptr;
        CVekXMLElement * const below = childCopy.Get();
        if (child && !below)
            return false;
        XMLEdit::AppendChild(*level.copy, std::move(childCopy));
        if (child && child->GetNumChildren() > 0 && !open.Append({child, below, 0}))
            return false;
    }
    return true;
}

} // namespace

} // namespace vek

IVekXMLElement * VekCloneXMLElement(IVekXMLElement const * element)
{
    if (!element)
        return nullptr;
    CVekRef<CVekXMLElement> copy = vek::XMLEdit::CopyAlone(*element);
    if (copy && vek::CopyBelow(*element, *copy))
        return copy.Detach();
    VekLogOutput(0, L"VekCloneXMLElement --> Failed to allocate memory");
    return nullptr;
}

bool VekRemoveXMLAttribute(IVekXMLElement * element, wchar_t const * name)
{
    CVekXMLElement * const own = vek::ToLibraryElement(element);
    int const index = own ? own->FindAttributeIndex(name) : -1;
    if (!own || !vek::XMLEdit::HasAttribute(*own, index))
        return false;
    vek::XMLEdit::RemoveAttribute(*own, index);
    return true;
}

bool VekReplaceXMLAttribute(IVekXMLElement * element, wchar_t const * name, wchar_t const * newName,
                            VEK_VARIANT const & value)
{
    CVekXMLElement * const own = vek::ToLibraryElement(element);
    int const index = own ? own->FindAttributeIndex(name) : -1;
    if (!own || !vek::XMLEdit::HasAttribute(*own, index))
        return false;
    int const namesake = own->FindAttributeIndex(newName);
    if (namesake != -1 && namesake != index)
        return false;
    vek::XMLVariantText text;
    if (!text.Convert(value))
        return false;
    if (vek::XMLEdit::ReplaceAttribute(*own, index, newName, text.Text()))
        return true;
    VekLogOutput(0, L"VekReplaceXMLAttribute --> Failed to allocate memory");
    return false;
}
