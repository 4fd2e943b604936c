/// @file
/// What hosts do with XML documents beside the object model: copies of whole elements, single attributes taken out or
/// replaced, exact numbers and vectors as attribute text, and files that are replaced as a whole or not at all.
///
/// @code
/// CVekRef<IVekXMLDocument> const document = VekNewXMLDocument(L"scene");
/// if (!document)
///     return; // no memory
/// if (IVekXMLElement * const light = VekAddXMLChild(*document->GetRootElement(), L"light"))
///     light->AddAttribute(L"position", VekToText(CVekVector3D<double>(0.1, 2, 50)), -1);
/// bool const isSaved = VekSaveXMLDocument(L"scene.xml", document.Get()); // wholly, or not at all
/// @endcode
#ifndef VEK_EDIT_H
#define VEK_EDIT_H

#include "VekMath.h"
#include "VekRef.h"
#include "VekText.h"
#include "VekXML.h"

// --- elements and attributes ----------------------------------------------------------------------------------------

/// A copy of an element with all that it has: name, attributes as they are stored, CDATA section, and copies of all
/// below it, of a tree of any depth. The copy has no recorded parent and belongs to the caller, with count 1. Elements
/// of a host's own class become the library's, null entries stay. Null for null, and, with a message, when memory is
/// exhausted.
VEK_API IVekXMLElement * VekCloneXMLElement(IVekXMLElement const * element);

/// Takes one attribute out and releases it; the others keep their order and texts, and nothing is allocated. False when
/// there is no attribute of that name, for null, and for an element of a foreign implementation, with nothing changed.
VEK_API bool VekRemoveXMLAttribute(IVekXMLElement * element, wchar_t const * name);

/// Gives an attribute another name and value, in its place; the value is escaped. False, with nothing changed, when
/// there is no attribute of that name, another one has the new name, or the value has no text form, for null and for an
/// element of a foreign implementation, and, with a message, when memory is exhausted.
VEK_API bool VekReplaceXMLAttribute(IVekXMLElement * element, wchar_t const * name, wchar_t const * newName,
                                    VEK_VARIANT const & value);

/// Appends a new, empty element of that name, which belongs to the parent: no reference is added. Null when memory is
/// exhausted.
inline IVekXMLElement * VekAddXMLChild(IVekXMLElement & parent, wchar_t const * name)
{
    CVekRef<IVekXMLElement> const child{new CVekXMLElement};
    if (!child)
        return nullptr;
    child->SetName(name);
    int const count = parent.GetNumChildren();
    if (child->GetName() != name)
        return nullptr;
    if (parent.AddChild(child.Get(), -1) == count)
        return child.Get();
    if (parent.GetNumChildren() == count) // the reference that was added stays with what can't be stored
        CVekRef<IVekXMLElement>::Adopt(child.Get());
    return nullptr;
}

// --- files ----------------------------------------------------------------------------------------------------------

/// Whether two elements have the same names, attributes, CDATA sections and children, in the same order. Attribute
/// values are compared as readers understand them: "&#10;", and the library's own "&lt;EOL&gt;", are a newline. Null is
/// the same as null alone. False when memory is exhausted.
VEK_API bool VekIsSameXML(IVekXMLElement const * first, IVekXMLElement const * second);

/// Saves a document so that there is either the old file or the whole new one: writes a new file beside it, flushes
/// it to the disk, reads it back, compares the elements with the document's (VekIsSameXML), and only then puts it in
/// the old one's place, in one step. The writer and the parser may be the host's own, with other settings; null for the
/// library's. False, with a message, the old file untouched and the new one removed, when any of that fails (values
/// such as tabs may not be read as they were written), and for a document that is null or has no root.
VEK_API bool VekSaveXMLDocument(wchar_t const * path, IVekXMLDocument * document, IVekXMLWriter * writer = nullptr,
                                IVekXMLParser * parser = nullptr);

// --- numbers and vectors as text ------------------------------------------------------------------------------------

/// @cond internal
namespace vek
{
constexpr int NUMBER_SIZE = 32;

template <class V>
CVekString<wchar_t> VectorText(V const & vector, unsigned int size) noexcept
{
    CVekString<wchar_t> text;
    wchar_t number[NUMBER_SIZE];
    text.Reserve(static_cast<int>(size) * 24, false);
    for (unsigned int i = 0; i < size; ++i)
    {
        VekStrFromNumberW(number, NUMBER_SIZE, vector[i]);
        text.Append(i ? L", " : L"");
        text.Append(number);
    }
    return text;
}

inline bool IsSpace(wchar_t unit) noexcept
{
    return unit == L' ' || (unit >= L'\t' && unit <= L'\r');
}

template <class V>
bool ReadVector(wchar_t const * text, V & vector, unsigned int size) noexcept
{
    V read;
    for (unsigned int i = 0; i < size; ++i)
    {
        if (!VekStrToNumberW(text, read[i], &text))
            return false;
        bool isApart = i + 1 == size;
        for (; IsSpace(*text); ++text)
            isApart = true;
        if (i + 1 < size && *text == L',')
        {
            isApart = true;
            ++text;
        }
        if (!isApart)
            return false;
    }
    if (*text)
        return false;
    vector = read;
    return true;
}
} // namespace vek
/// @endcond

/// A number, or the components of a vector separated by ", ", in the fewest digits that read back as the same. Empty
/// when memory is exhausted. The result can be an attribute's value: element->SetAttributeValue(name,
/// VekToText(position), true).
inline CVekString<wchar_t> VekToText(double value) noexcept
{
    wchar_t number[vek::NUMBER_SIZE];
    VekStrFromNumberW(number, vek::NUMBER_SIZE, value);
    return CVekString<wchar_t>(number);
}
inline CVekString<wchar_t> VekToText(float value) noexcept
{
    wchar_t number[vek::NUMBER_SIZE];
    VekStrFromNumberW(number, vek::NUMBER_SIZE, value);
    return CVekString<wchar_t>(number);
}
template <class T>
CVekString<wchar_t> VekToText(CVekVector2D<T> const & vector) noexcept
{
    return vek::VectorText(vector, 2);
}
template <class T>
CVekString<wchar_t> VekToText(CVekVector3D<T> const & vector) noexcept
{
    return vek::VectorText(vector, 3);
}
template <class T>
CVekString<wchar_t> VekToText(CVekVector4D<T> const & vector) noexcept
{
    return vek::VectorText(vector, 4);
}

/// Reads what VekToText writes, for float and double alike; blanks may stand for the commas. False, with the value
/// unchanged, when the text is null, or holds anything else, or another number of components.
inline bool VekFromText(wchar_t const * text, double & value) noexcept
{
    return VekStrToNumberW(text, value);
}
inline bool VekFromText(wchar_t const * text, float & value) noexcept
{
    return VekStrToNumberW(text, value);
}
template <class T>
bool VekFromText(wchar_t const * text, CVekVector2D<T> & vector) noexcept
{
    return vek::ReadVector(text, vector, 2);
}
template <class T>
bool VekFromText(wchar_t const * text, CVekVector3D<T> & vector) noexcept
{
    return vek::ReadVector(text, vector, 3);
}
template <class T>
bool VekFromText(wchar_t const * text, CVekVector4D<T> & vector) noexcept
{
    return vek::ReadVector(text, vector, 4);
}

/// Reads an attribute as VekFromText does. False, with the value unchanged, when there is none of that name, or its
/// text is something else.
template <class T>
bool VekReadXMLAttribute(IVekXMLElement const & element, wchar_t const * name, T & value)
{
    CVekString<wchar_t> text;
    return element.GetAttributeValue(name, text, nullptr) && VekFromText(text, value);
}

#endif
