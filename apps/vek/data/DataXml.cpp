#include "data/DataXml.h"

#include "VekLib.h"

#include "Console.h"
#include "LibraryText.h"
#include "XmlFile.h"
#include "data/DataParse.h"
#include "data/DataText.h"
#include "xml/XmlSave.h"

namespace tool
{

namespace
{

constexpr wchar_t const * ROOT = L"TypedData";
constexpr wchar_t const * ENTRY = L"Entry";

/// Which entry a message is about.
std::wstring Where(int index, std::wstring_view name)
{
    return Format(L"entry %d, \"", index + 1) + Printable(name, 200) + L"\", ";
}

bool GetText(IVekXMLElement const & element, wchar_t const * attribute, std::wstring & text)
{
    CVekString<wchar_t> value;
    bool const found = element.GetAttributeValue(attribute, value, L"");
    text = View(value);
    return found;
}

// --- from XML -------------------------------------------------------------------------------------------------------

/// Gives the writer one element's entry. Empty, or what is wrong with the element.
std::wstring PackElement(IVekXMLElement const & element, int index, CVekTypedDataWriter & writer)
{
    std::wstring name, plainName, typeName, value;
    if (element.GetName().Compare(ENTRY, false) != 0)
        return L"element <" + PrintableName(element.GetName()) + L"> is no <Entry>";
    if (!GetText(element, L"Name", name))
        return Where(index, L"") + L"has no attribute \"Name\"";
    if (!UnescapeText(name, plainName) || plainName.find(L'\0') != std::wstring::npos)
        return Where(index, name) + L"has a name with a wrong \"\\\" escape";
    GetText(element, L"Type", typeName);
    VEK_DATATYPE const type = TypeOf(typeName);
    if (type == VEK_DT_UNKNOWN)
        return Where(index, name) + L"has the unknown type \"" + Printable(typeName, 200) + L"\"";
    if (!GetText(element, L"Value", value) && type != VEK_DT_GUID)
        return Where(index, name) + L"has no attribute \"Value\"";
    if (PackValue(writer, plainName.c_str(), type, value))
        return {};
    return Where(index, name) + L"\"" + Printable(value, 200) + L"\" is no value of the type " + typeName;
}

/// Gives the writer the entries of a document. Empty, or what is wrong with it.
std::wstring PackDocument(IVekXMLDocument & document, CVekTypedDataWriter & writer)
{
    IVekXMLElement const & root = *document.GetRootElement();
    if (root.GetName().Compare(ROOT, false) != 0)
        return L"its outermost element <" + PrintableName(root.GetName()) + L"> is no <TypedData>";
    std::wstring wrong;
    for (int i = 0; wrong.empty() && i < root.GetNumChildren(); ++i)
        wrong = PackElement(*root.GetChild(i), i, writer);
    return wrong;
}

// --- to XML ---------------------------------------------------------------------------------------------------------

CVekRef<IVekXMLElement> CreateElement(wchar_t const * name)
{
    CVekRef<IVekXMLElement> element(getVekLibKernel()->GetXMLManager()->CreateXMLElement());
    if (!element)
        throw std::bad_alloc();
    element->SetName(name);
    return element;
}

void SetText(IVekXMLElement & element, wchar_t const * attribute, std::wstring const & text)
{
    if (element.AddAttribute(attribute, VEK_VARIANT(text.c_str()), -1) < 0)
        throw std::bad_alloc();
}

/// Adds an entry's element. Empty, or why the entry has no place in XML.
std::wstring UnpackEntry(CVekTypedDataEntry const & entry, int index, IVekXMLElement & root)
{
    VEK_VARIANT const & value = entry.Val();
    VEK_DATATYPE const type = value.GetType();
    if (TypeName(type).empty())
        return Where(index, View(entry.GetName())) + Format(L"has the unknown type %d", static_cast<int>(type));
    if (type == VEK_DT_BUFFER && value.GetBufferSize() == 0)
        return Where(index, View(entry.GetName())) + L"is an empty buffer, which can't be packed";
    CVekRef<IVekXMLElement> const element = CreateElement(ENTRY);
    SetText(*element, L"Name", EscapeText(View(entry.GetName())));
    SetText(*element, L"Type", std::wstring(TypeName(type)));
    if (type != VEK_DT_GUID)
        SetText(*element, L"Value", ValueText(value));
    root.AddChild(element.Get(), -1);
    return {};
}

/// The document of the reader's entries; null after telling the user why there is none.
CVekRef<IVekXMLDocument> UnpackDocument(std::wstring const & path, CVekTypedDataReader const & reader)
{
    CVekRef<IVekXMLDocument> document(getVekLibKernel()->GetXMLManager()->CreateXMLDocument());
    if (!document)
        throw std::bad_alloc();
    CVekRef<IVekXMLElement> const root = CreateElement(ROOT);
    document->SetRootElement(root.Get());
    for (int i = 0; i < reader.GetNumEntries(); ++i)
    {
        std::wstring const wrong = UnpackEntry(*reader.GetEntry(i), i, *root);
        if (wrong.empty())
            continue;
        Fail(path, L"can't be unpacked: " + wrong);
        return nullptr;
    }
    return document;
}

/// Tells the user what of the file the document doesn't hold.
void NoteLoss(std::wstring const & path, DataOptions const & options, IVekXMLDocument & document,
              unsigned int bytesBehind)
{
    if (bytesBehind != 0)
        Note(path, Format(L"%u bytes behind the last entry are left out", bytesBehind));
    CVekTypedDataWriter again;
    if (!PackDocument(document, again).empty() || !IsSameData(path, options, again, bytesBehind))
        Note(path, L"packing the XML will give other bytes: the file holds booleans that are neither 0 nor 1, names or "
                   L"texts that go on behind a zero, or a negative number of entries");
}

} // namespace

int RunDataPack(std::wstring const & xml, std::wstring const & target, DataOptions const & options)
{
    CVekRef<IVekXMLDocument> const document = LoadXml(xml);
    if (!document)
        return EXIT_FAILED;
    CVekTypedDataWriter writer;
    std::wstring const wrong = PackDocument(*document, writer);
    if (!wrong.empty())
        return Fail(xml, L"can't be packed: " + wrong);
    return SaveData(target, options, writer) ? EXIT_DONE : EXIT_FAILED;
}

int RunDataUnpack(std::wstring const & path, std::wstring const & xml, DataOptions const & options)
{
    CVekTypedDataReader reader;
    unsigned int bytesBehind = 0;
    if (!LoadData(path, options, reader, bytesBehind))
        return EXIT_FAILED;
    CVekRef<IVekXMLDocument> document = UnpackDocument(path, reader);
    if (!document)
        return EXIT_FAILED;
    NoteLoss(path, options, *document, bytesBehind);
    return SaveXml(std::move(document), xml, USUAL_INDENTATION) ? EXIT_DONE : EXIT_FAILED;
}

} // namespace tool
