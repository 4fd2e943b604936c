#include "xml/XmlSave.h"

#include "VekLib.h"

#include "Console.h"
#include "FileErrors.h"
#include "LibraryText.h"
#include "NewFile.h"
#include "Utf8.h"
#include "WalkTree.h"
#include "XmlFile.h"
#include "xml/XmlCount.h"

namespace tool
{

namespace
{

// More blanks than this are a mistake, not a layout.
constexpr std::uint64_t MOST_INDENTATION = 0x40000000;

/// The parts of a document type that a file can lose on its way through the writer.
struct DocumentType
{
    explicit DocumentType(IVekXMLDocument const & document)
        : name(View(document.GetDocumentType())), rules(document.GetNumDTDRules()),
          attributeLists(document.GetNumDTDAttributeLists())
    {
    }

    std::wstring name;
    int rules;
    int attributeLists;
};

void RemoveDocumentType(IVekXMLDocument & document)
{
    document.RemoveAllDTDRules();
    document.RemoveAllDTDAttributeLists();
    document.SetDocumentType(L"");
}

/// The writer puts no default behind the type of an attribute that isn't required, without which no parser accepts it.
/// The keyword in the type's text makes the declaration whole. Declared default values aren't kept by a document, nor
/// needed: the elements have got them at reading.
void CompleteAttributeList(IVekXMLDTDAttributeList & list)
{
    struct Entry
    {
        std::wstring name, type;
        bool required;
    };
    std::vector<Entry> entries;
    for (int i = 0; i < list.GetNumAttributeEntries(); ++i)
    {
        IVekXMLDTDAttributeList::AttributeEntry const & entry = *list.GetAttributeEntry(i);
        std::wstring type(View(entry.GetType()));
        if (type.starts_with(L"NOTATION("))
            type.insert(8, 1, L' ');
        if (!entry.IsRequired())
            type += L" #IMPLIED";
        entries.push_back({std::wstring(View(entry.GetName())), type, entry.IsRequired()});
    }
    list.RemoveAllAttributeEntries();
    for (Entry const & entry : entries)
        list.AddAttributeEntry(entry.name.c_str(), entry.type.c_str(), entry.required);
}

/// A value as a file must hold it: pairs of surrogates, which the writer would take apart, and white space that a
/// parser turns into blanks, as character references. Empty when the value can stand as it is.
std::wstring Harden(std::wstring_view value)
{
    std::wstring hardened;
    std::size_t copied = 0;
    for (std::size_t i = 0; i < value.size(); ++i)
    {
        unsigned int character = value[i];
        std::size_t const begin = i;
        if (IsHighSurrogate(value[i]) && i + 1 < value.size() && IsLowSurrogate(value[i + 1]))
        {
            character = JoinSurrogates(value[i], value[i + 1]);
            ++i;
        }
        else if (character != L'\t' && character != L'\r' && character != L'\n')
            continue;
        hardened.append(value, copied, begin - copied).append(Format(L"&#%u;", character));
        copied = i + 1;
    }
    if (copied > 0)
        hardened.append(value, copied);
    return hardened;
}

void HardenValues(IVekXMLElement * root)
{
    WalkTree(root,
             [](IVekXMLElement * element, std::size_t)
             {
                 for (int i = 0; i < element->GetNumAttributes(); ++i)
                 {
                     std::wstring const hardened = Harden(View(element->GetAttributeValue(i)));
                     if (!hardened.empty())
                         element->SetAttributeValue(i, VEK_VARIANT(hardened.c_str())); // stored as it is
                 }
                 return true;
             });
}

bool Write(std::wstring const & path, IVekXMLDocument & document, int indentation)
{
    CVekRef<IVekXMLWriter> writer(getVekLibKernel()->GetXMLManager()->CreateXMLWriter());
    if (!writer)
        return false;
    writer->SetIndentation(indentation);
    return writer->WriteXMLFile(path.c_str(), &document);
}

/// Whether the document type can be read again as the writer writes it: tried with nothing but a root below it.
bool IsDocumentTypeReadable(std::wstring const & path, IVekXMLDocument & document)
{
    CVekRef<IVekXMLElement> stub(getVekLibKernel()->GetXMLManager()->CreateXMLElement());
    if (!stub)
        return false;
    stub->SetName(L"root");
    auto const root = CVekRef<IVekXMLElement>::Share(document.GetRootElement());
    document.SetRootElement(stub.Get());
    CVekSetDebugOutputLevel const silence(-1);
    // When not even this can be written, the cause is another one, which the real writing will report.
    bool const readable = !Write(path, document, 0) || TryLoadXml(path) != nullptr;
    document.SetRootElement(root.Get());
    return readable;
}

void PrepareDocumentType(std::wstring const & path, NewFile const & file, IVekXMLDocument & document)
{
    for (int i = 0; i < document.GetNumDTDAttributeLists(); ++i)
        CompleteAttributeList(*document.GetDTDAttributeList(i));
    if (document.GetNumDTDRules() == 0 || IsDocumentTypeReadable(file.Path(), document))
        return;
    Note(path, L"the document type can't be written so that it can be read again; left out");
    RemoveDocumentType(document);
}

bool ReadsBack(NewFile const & file, std::wstring const & path, XmlCount const & count, DocumentType const & type)
{
    CVekRef<IVekXMLDocument> const document = TryLoadXml(file.Path());
    if (!document)
    {
        Fail(path,
             L"not written: a name, value or CDATA section holds characters that can't be written so that they can be "
             L"read again");
        return false;
    }
    if (CountXml(document->GetRootElement(), true).fingerprint != count.fingerprint)
    {
        Fail(path, L"not written: what was written reads back as another document");
        return false;
    }
    DocumentType const written(*document);
    if (!type.name.empty() && written.name.empty())
        Note(path,
             L"written without its document type \"" + Printable(type.name, 200) + L"\", which declares no elements");
    else if (written.rules != type.rules || written.attributeLists != type.attributeLists)
        Note(path, Format(L"written with %d of %d DTD rules and %d of %d attribute lists", written.rules, type.rules,
                          written.attributeLists, type.attributeLists));
    return true;
}

} // namespace

bool SaveXml(CVekRef<IVekXMLDocument> document, std::wstring const & path, SaveOptions const & options)
{
    if (!IsWritable(path))
        return false;
    NewFile file(path);
    if (options.noDocumentType)
        RemoveDocumentType(*document);
    else
        PrepareDocumentType(path, file, *document);
    XmlCount const count = CountXml(document->GetRootElement(), true);
    std::uint64_t const levels = count.tagLevels + CountDocumentTypeLevels(*document);
    if (levels * static_cast<unsigned int>(options.indentation) > MOST_INDENTATION)
    {
        Fail(path,
             Format(L"not written: so deep a document would be indented by more than %d MB of blanks; use --indent 0",
                    static_cast<int>(MOST_INDENTATION >> 20)));
        return false;
    }
    DocumentType const type(*document);
    HardenValues(document->GetRootElement());
    if (!Write(file.Path(), *document, options.indentation))
    {
        Fail(path, WhyUnwritable(file.Path()));
        return false;
    }
    document.Reset(); // a large one leaves no room for its twin
    if (!ReadsBack(file, path, count, type))
        return false;
    return file.Place();
}

} // namespace tool
