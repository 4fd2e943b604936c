#include "xml/XMLDTDRuleEntry.h"

#include "xml/ReleaseTree.h"

// The parts of an entry that the release of a tree works on.
struct CVekXMLDTDRuleEntry::Tree
{
    static bool Drop(CVekXMLDTDRuleEntry & entry, CVekPointerArray<CVekXMLDTDRuleEntry> &)
    {
        return vek::DropReference(entry.m_common);
    }
    static void End(CVekXMLDTDRuleEntry & entry, vek::PoolBatch &) { delete &entry; }
    static CVekPointerArray<CVekXMLDTDRuleEntry> & Children(CVekXMLDTDRuleEntry & entry)
    {
        return entry.m_children.Entries();
    }
    static CVekXMLDTDRuleEntry *& Link(CVekXMLDTDRuleEntry & entry) { return entry.m_nextWaiting; }
};

CVekXMLDTDRuleEntry * CVekXMLDTDRuleEntry::Create(wchar_t const * name, VEK_XML_DTD_ENTRYTYPE type,
                                                  int occurrence) noexcept
{
    return vek::NewNamed<CVekXMLDTDRuleEntry>(vek::GivenText(name), type, occurrence);
}

void CVekXMLDTDRuleEntry::ReleaseAll(CVekPointerArray<CVekXMLDTDRuleEntry> & entries) noexcept
{
    vek::ReleaseTree<CVekXMLDTDRuleEntry, Tree>(entries);
}

CVekXMLDTDRuleEntry::CVekXMLDTDRuleEntry(wchar_t const * name, int nameLength, VEK_XML_DTD_ENTRYTYPE type,
                                         int occurrence)
    : m_name(name, nameLength), m_type(type), m_occurrence(occurrence)
{
}

int CVekXMLDTDRuleEntry::AddChild(wchar_t const * name, VEK_XML_DTD_ENTRYTYPE type, int occurrence)
{
    auto const isSame = [=](CVekXMLDTDRuleEntry const & child)
    { return child.m_type == type && child.m_occurrence == occurrence; };
    if (name && m_children.FindIf(vek::GivenText(name), isSame) != -1)
    {
        VekLogOutput(0, L"CVekXMLDTDRuleEntry::AddChild --> Name already used %s", name);
        return -1;
    }
    return m_children.AppendNew(Create(name, type, occurrence),
                                L"CVekXMLDTDRuleEntry::AddChild --> Failed to create new entry",
                                L"CVekXMLDTDRuleEntry::AddChild --> Failed to add new entry");
}

void CVekXMLDTDRuleEntry::RemoveChild(int index)
{
    if (m_children.Has(index))
        m_children.RemoveAt(index);
    else
        VekLogOutput(0, L"CVekXMLDTDRuleEntry::RemoveChild --> Invalid index %d", index);
}
