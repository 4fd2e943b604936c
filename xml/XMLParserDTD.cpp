#include "xml/XMLParserState.h"

namespace
{

VEK_XML_DTD_ENTRYTYPE EntryType(XML_Content const & model)
{
    switch (model.type)
    {
    case XML_CTYPE_EMPTY:
        return VEK_XML_DTD_EMPTY;
    case XML_CTYPE_ANY:
        return VEK_XML_DTD_ANY;
    case XML_CTYPE_MIXED:
        return VEK_XML_DTD_MIXED;
    case XML_CTYPE_CHOICE:
        return VEK_XML_DTD_CHOICE;
    case XML_CTYPE_SEQ:
        return VEK_XML_DTD_SEQUENCE;
    default:
        return VEK_XML_DTD_ELEMENT;
    }
}

int Occurrence(XML_Content const & model)
{
    switch (model.quant)
    {
    case XML_CQUANT_OPT:
        return 1;
    case XML_CQUANT_REP:
        return 2;
    case XML_CQUANT_PLUS:
        return 3;
    default:
        return 0;
    }
}

/// A group of the content model whose members are being added to its entry.
struct OpenGroup
{
    IVekXMLDTDRule::RuleEntry * entry;
    XML_Content const * model;
    unsigned int next;
};

/// Adds the members of a group, and those of the groups in it, in the order of the declaration. Works on a stack of its
/// own: the file decides how deep groups are nested. False when that stack can't grow.
bool AddChildEntries(IVekXMLDTDRule::RuleEntry * entry, XML_Content const & model)
{
    vek::Buffer<OpenGroup> open;
    if (!open.Append({entry, &model, 0}))
        return false;
    while (!open.Empty())
    {
        OpenGroup & group = open.Back();
        if (group.next == group.model->numchildren)
        {
            open.PopBack();
            continue;
        }
        XML_Content const & member = group.model->children[group.next++];
        int const index = group.entry->AddChild(member.name, EntryType(member), Occurrence(member));
        if (index == -1)
        {
            VekLogOutput(0, L"CVekXMLParser::AddChildEntries --> Failed to add element entry");
            continue;
        }
        if (member.numchildren == 0)
            continue;
        IVekXMLDTDRule::RuleEntry * const child = group.entry->GetChild(index);
        if (!child || !open.Append({child, &member, 0}))
        {
            VekLogOutput(0, L"CVekXMLParser::AddChildEntries --> Failed to child");
            return false;
        }
    }
    return true;
}

} // namespace

void CVekXMLParser::State::OnElementDecl(wchar_t const * name, XML_Content const * model)
{
    int const ruleIndex = document->AddDTDRule(name, EntryType(*model));
    IVekXMLDTDRule * const rule = ruleIndex == -1 ? nullptr : document->GetDTDRule(ruleIndex);
    if (!rule)
        return;
    for (unsigned int i = 0; i < model->numchildren; ++i)
    {
        XML_Content const & member = model->children[i];
        int const index = rule->AddRuleEntry(member.name, EntryType(member), Occurrence(member));
        if (index == -1)
        {
            VekLogOutput(0, L"CVekXMLParser::OnElementDecl --> Failed to add element entry");
            continue;
        }
        if (member.numchildren == 0)
            continue;
        IVekXMLDTDRule::RuleEntry * const entry = rule->GetRuleEntry(index);
        if (!entry || !AddChildEntries(entry, member))
            Abort();
    }
}

void CVekXMLParser::State::OnAttlistDecl(wchar_t const * element, wchar_t const * attribute, wchar_t const * type,
                                         int required)
{
    IVekXMLDTDAttributeList * list = document->FindDTDAttributeList(element);
    if (!list)
    {
        int const index = document->AddDTDAttributeList(element);
        list = index == -1 ? nullptr : document->GetDTDAttributeList(index);
    }
    if (list && list->AddAttributeEntry(attribute, type, required == 1) == -1)
        VekLogOutput(0, L"CVekXMLParser::OnAttlistDecl --> Failed to add new attribute");
}
