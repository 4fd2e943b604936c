#include "xml/XmlCount.h"

#include "LibraryText.h"
#include "WalkTree.h"
#include "xml/LineBreaks.h"

namespace tool
{

namespace
{

class Fingerprint
{
public:
    void Add(std::wstring_view text)
    {
        Add(text.size());
        for (wchar_t const unit : text)
            Add(static_cast<std::uint64_t>(unit));
    }
    void Add(std::uint64_t value)
    {
        m_state = (m_state ^ value) * 0x9E3779B97F4A7C15ULL;
        m_state ^= m_state >> 29;
    }
    std::uint64_t Get() const { return m_state; }

private:
    std::uint64_t m_state = 0x243F6A8885A308D3ULL;
};

/// A stored value as it is after the library has read it from a file.
std::wstring AsRead(std::wstring_view value)
{
    std::wstring read(value);
    for (std::size_t at = 0; (at = read.find(LINE_BREAK, at)) != std::wstring::npos;)
        read.replace(at, LINE_BREAK.size(), LIBRARY_LINE_BREAK);
    return read;
}

void AddElement(Fingerprint & print, IVekXMLElement * element, std::size_t level)
{
    print.Add(level);
    print.Add(View(element->GetName()));
    int const attributes = element->GetNumAttributes();
    print.Add(static_cast<std::uint64_t>(attributes));
    IVekXMLElement const * const constant = element;
    for (int i = 0; i < attributes; ++i)
    {
        print.Add(View(constant->GetAttributeName(i)));
        print.Add(AsRead(View(constant->GetAttributeValue(i))));
    }
    // An empty section is not written, so that it counts as none.
    std::size_t const size = static_cast<std::size_t>(element->GetCDATASectionSize());
    print.Add(std::wstring_view(reinterpret_cast<wchar_t const *>(element->GetCDATASection()), size / sizeof(wchar_t)));
}

} // namespace

XmlCount CountXml(IVekXMLElement * root, bool withFingerprint)
{
    XmlCount count;
    Fingerprint print;
    WalkTree(root,
             [&](IVekXMLElement * element, std::size_t level)
             {
                 bool const hasContent = element->GetNumChildren() > 0 || element->HasCDATASection();
                 ++count.elements;
                 count.attributes += static_cast<std::uint64_t>(element->GetNumAttributes());
                 count.cdataSections += element->HasCDATASection() ? 1 : 0;
                 count.depth = level >= count.depth ? level + 1 : count.depth;
                 count.tagLevels += hasContent ? 2 * level : level;
                 if (withFingerprint)
                     AddElement(print, element, level);
                 return true;
             });
    count.fingerprint = print.Get();
    return count;
}

std::uint64_t CountDocumentTypeLevels(IVekXMLDocument & document)
{
    std::uint64_t levels = 0;
    for (int i = 0; i < document.GetNumDTDRules(); ++i)
    {
        IVekXMLDTDRule & rule = *document.GetDTDRule(i);
        for (int j = 0; j < rule.GetNumRuleEntries(); ++j)
            WalkTree(rule.GetRuleEntry(j),
                     [&levels](IVekXMLDTDRule::RuleEntry *, std::size_t level)
                     {
                         levels += 2 * (level + 2);
                         return true;
                     });
    }
    return levels;
}

} // namespace tool
