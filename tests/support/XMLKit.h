// Makes, parses, writes and prints XML documents for tests.
#pragma once

#include "VekLib.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

// Holds one reference.
template <class T>
class Holder
{
public:
    explicit Holder(T * object) : m_object(object) {}
    Holder(Holder && other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    Holder(Holder const &) = delete;
    Holder & operator=(Holder const &) = delete;
    ~Holder()
    {
        if (m_object)
            m_object->Release();
    }
    T * operator->() const { return m_object; }
    T & operator*() const { return *m_object; }
    operator T *() const { return m_object; }

private:
    T * m_object;
};

// The library, for the length of a test program or a test.
struct LibraryScope
{
    LibraryScope() { VekLibInit(); }
    ~LibraryScope() { VekLibDeinit(); }
    LibraryScope(LibraryScope const &) = delete;
    LibraryScope & operator=(LibraryScope const &) = delete;
};

inline IVekXMLManager & XMLManager()
{
    return *getVekLibKernel()->GetXMLManager();
}

inline Holder<IVekXMLDocument> NewDocument()
{
    return Holder<IVekXMLDocument>(XMLManager().CreateXMLDocument());
}

inline Holder<IVekXMLElement> NewElement(wchar_t const * name)
{
    Holder<IVekXMLElement> element(XMLManager().CreateXMLElement());
    element->SetName(name);
    return element;
}

inline bool ParseBytes(std::string const & bytes, IVekXMLDocument * document)
{
    Holder<CVekXMLParser> const parser(new CVekXMLParser);
    return parser->ParseXMLMemory(bytes.data(), static_cast<unsigned int>(bytes.size()), document);
}

// A file in the test program's own temporary folder.
inline std::wstring TemporaryPath(wchar_t const * name)
{
    wchar_t const * const folder = _wgetenv(L"VEK_TEST_TMP");
    return (folder ? std::wstring(folder) + L"/" : std::wstring()) + name;
}

inline std::string FileBytes(std::wstring const & path)
{
    std::string bytes;
    if (FILE * const file = _wfopen(path.c_str(), L"rb"))
    {
        char block[4096];
        while (std::size_t const count = std::fread(block, 1, sizeof block, file))
            bytes.append(block, count);
        std::fclose(file);
    }
    return bytes;
}

inline std::wstring WriteFileBytes(wchar_t const * name, std::string const & bytes)
{
    std::wstring path = TemporaryPath(name);
    if (FILE * const file = _wfopen(path.c_str(), L"wb"))
    {
        std::fwrite(bytes.data(), 1, bytes.size(), file);
        std::fclose(file);
    }
    return path;
}

// A tree of moderate depth in one line: name[attribute=value ...]'CDATA'{child child}.
inline std::wstring TreeText(IVekXMLElement const & element)
{
    std::wstring text = static_cast<wchar_t const *>(element.GetName());
    for (int i = 0; i < element.GetNumAttributes(); ++i)
        text += (i ? L" " : L"[") + std::wstring(element.GetAttributeName(i)) + L"=" +
                static_cast<wchar_t const *>(element.GetAttributeValue(i));
    if (element.GetNumAttributes())
        text += L"]";
    if (element.HasCDATASection())
        text += L"'" +
                std::wstring(reinterpret_cast<wchar_t const *>(element.GetCDATASection()),
                             static_cast<std::size_t>(element.GetCDATASectionSize()) / sizeof(wchar_t)) +
                L"'";
    for (int i = 0; i < element.GetNumChildren(); ++i)
        text += (i ? L" " : L"{") + TreeText(*element.GetChild(i));
    return element.GetNumChildren() ? text + L"}" : text;
}

inline std::wstring TreeText(IVekXMLDocument & document)
{
    return document.GetRootElement() ? TreeText(*document.GetRootElement()) : L"(no root)";
}

// The content of all rules: name(type){entry:type:occurrence(...)}.
inline std::wstring EntryText(IVekXMLDTDRule::RuleEntry const & entry)
{
    std::wstring text = std::wstring(entry.GetName()) + L":" + std::to_wstring(entry.GetType()) + L":" +
                        std::to_wstring(entry.GetOccurrence());
    for (int i = 0; i < entry.GetNumChildren(); ++i)
        text += (i ? L" " : L"(") + EntryText(*entry.GetChild(i));
    return entry.GetNumChildren() ? text + L")" : text;
}

inline std::wstring DTDText(IVekXMLDocument & document)
{
    std::wstring text;
    for (int i = 0; i < document.GetNumDTDRules(); ++i)
    {
        IVekXMLDTDRule const & rule = *document.GetDTDRule(i);
        text += std::wstring(rule.GetName()) + L"=" + std::to_wstring(rule.GetType()) + L"{";
        for (int j = 0; j < rule.GetNumRuleEntries(); ++j)
            text += (j ? L" " : L"") + EntryText(*rule.GetRuleEntry(j));
        text += L"} ";
    }
    for (int i = 0; i < document.GetNumDTDAttributeLists(); ++i)
    {
        IVekXMLDTDAttributeList const & list = *document.GetDTDAttributeList(i);
        text += std::wstring(list.GetName()) + L"[";
        for (int j = 0; j < list.GetNumAttributeEntries(); ++j)
        {
            IVekXMLDTDAttributeList::AttributeEntry const & entry = *list.GetAttributeEntry(j);
            text += (j ? L" " : L"") + std::wstring(entry.GetName()) + L":" +
                    static_cast<wchar_t const *>(entry.GetType()) + (entry.IsRequired() ? L"!" : L"");
        }
        text += L"] ";
    }
    return text;
}
