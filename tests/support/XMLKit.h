// Makes, parses, writes and prints XML documents for tests.
#pragma once

#include "VekLib.h"
#include "VekRef.h"

#include "support/Files.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <tuple>

struct XMLTest : testing::Test
{
    CVekLibrary m_library;
    LogCapture m_log;
};

inline IVekXMLManager & XMLManager()
{
    return *getVekLibKernel()->GetXMLManager();
}

inline CVekRef<IVekXMLDocument> NewDocument()
{
    return CVekRef<IVekXMLDocument>(XMLManager().CreateXMLDocument());
}

// Needs no library.
inline CVekRef<CVekXMLElement> NewElement(std::wstring const & name = {})
{
    return CVekRef<CVekXMLElement>(new CVekXMLElement(name.c_str(), static_cast<int>(name.size())));
}

inline bool ParseBytes(std::string const & bytes, CVekRef<IVekXMLDocument> const & document)
{
    CVekRef<CVekXMLParser> const parser(new CVekXMLParser);
    return parser->ParseXMLMemory(bytes.data(), static_cast<unsigned int>(bytes.size()), document.Get());
}

// A tree of moderate depth in one line: name[attribute=value ...]'CDATA'{child child}; a null entry is "0".
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
    {
        IVekXMLElement const * const child = element.GetChild(i);
        text += (i ? L" " : L"{") + (child ? TreeText(*child) : L"0");
    }
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
