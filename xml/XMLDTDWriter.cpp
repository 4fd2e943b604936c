#include "xml/XMLDTDWriter.h"

#include "base/Buffer.h"

namespace vek
{
namespace
{

using RuleEntry = IVekXMLDTDRule::RuleEntry;

/// A group whose members are being written.
struct OpenGroup
{
    RuleEntry const * group;
    int next;
    bool isLast;
};

class DTDWriter
{
public:
    DTDWriter(XMLOutput & output, int indentation) noexcept
        : m_output(output), m_indentation(static_cast<uint64_t>(indentation))
    {
    }

    bool Rule(IVekXMLDTDRule const & rule) noexcept
    {
        int const count = rule.GetNumRuleEntries();
        Prefix(LEVEL, 0);
        m_output.Text(L"<!ELEMENT ");
        m_output.Text(rule.GetName());
        if (rule.GetType() == VEK_XML_DTD_EMPTY)
        {
            m_output.Text(L" EMPTY>\n");
            return true;
        }
        if (rule.GetType() == VEK_XML_DTD_MIXED && count == 0)
        {
            m_output.Text(L" ( #PCDATA )>\n");
            return true;
        }
        // Kept: every other content is written as a group, ANY as an empty one.
        m_output.Text(L"\n");
        Prefix(LEVEL, 0);
        m_output.Text(L"(\n");
        for (int i = 0; i < count; ++i)
        {
            if (!Entry(rule.GetRuleEntry(i), i == count - 1))
                return false;
        }
        Prefix(LEVEL, 0);
        m_output.Text(L")>\n");
        return true;
    }

    void AttributeList(IVekXMLDTDAttributeList const & list) noexcept
    {
        Prefix(LEVEL, 0);
        m_output.Text(L"<!ATTLIST ");
        m_output.Text(list.GetName());
        m_output.Text(L"\n");
        for (int i = 0; i < list.GetNumAttributeEntries(); ++i)
        {
            if (auto const * const entry = list.GetAttributeEntry(i))
                AttributeEntry(*entry);
        }
        Prefix(LEVEL, 0);
        m_output.Text(L">\n");
    }

private:
    /// Where declarations stand; what they hold stands one level deeper.
    static constexpr unsigned LEVEL = 1;

    void Prefix(uint64_t level, unsigned extra) noexcept { m_output.Spaces(m_indentation * level + extra); }

    void AttributeEntry(IVekXMLDTDAttributeList::AttributeEntry const & entry) noexcept
    {
        constexpr int NAME_COLUMNS = 20;
        Prefix(LEVEL + 1, 1);
        m_output.Text(entry.GetName());
        if (entry.GetName().GetLength() < NAME_COLUMNS)
            m_output.Spaces(static_cast<uint64_t>(NAME_COLUMNS - entry.GetName().GetLength()));
        m_output.Spaces(entry.IsRequired() ? 1 : 6);
        m_output.Text(entry.GetType());
        // Kept: an attribute that is not required is written without a default declaration.
        if (entry.IsRequired())
            m_output.Text(L" #REQUIRED");
        m_output.Text(L"\n");
    }

    // Kept: occurrence 3, one or more, has no mark.
    void Suffix(RuleEntry const & entry) noexcept
    {
        if (entry.GetOccurrence() == 1)
            m_output.Text(L"?");
        else if (entry.GetOccurrence() == 2)
            m_output.Text(L"*");
    }

    bool Entry(RuleEntry const * entry, bool isLast) noexcept
    {
        if (!entry)
            return true;
        if (entry->GetName().GetLength() == 0)
            return Group(*entry, isLast);
        Prefix(LEVEL + 1, 1);
        m_output.Text(entry->GetName());
        Suffix(*entry);
        EndEntry(isLast);
        return true;
    }

    void EndEntry(bool isLast) noexcept
    {
        if (isLast)
            m_output.Text(L"\n");
        else
            m_output.Text(L", \n");
    }

    // Kept: the members of every group read as a choice, whatever the group's kind.
    bool Group(RuleEntry const & outermost, bool isLast) noexcept
    {
        Buffer<OpenGroup> open;
        if (!BeginGroup(open, outermost, LEVEL + 1, isLast))
            return false;
        while (!open.Empty() && !m_output.HasFailed())
        {
            OpenGroup & current = open.Back();
            uint64_t const depth = LEVEL + open.Size();
            if (current.next == current.group->GetNumChildren())
            {
                Prefix(depth, 1);
                m_output.Text(L")");
                Suffix(*current.group);
                EndEntry(current.isLast);
                open.PopBack();
                continue;
            }
            RuleEntry const * const member = current.group->GetChild(current.next++);
            bool const isFinal = current.next == current.group->GetNumChildren();
            if (member && member->GetName().GetLength() == 0)
            {
                if (!BeginGroup(open, *member, depth + 1, isFinal))
                    return false;
            }
            else if (member)
                Member(*member, depth + 1, isFinal);
        }
        return true;
    }

    bool BeginGroup(Buffer<OpenGroup> & open, RuleEntry const & group, uint64_t depth, bool isLast) noexcept
    {
        Prefix(depth, 1);
        m_output.Text(L"( \n");
        return open.Append({&group, 0, isLast});
    }

    void Member(RuleEntry const & member, uint64_t depth, bool isFinal) noexcept
    {
        Prefix(depth, 1);
        m_output.Text(member.GetName());
        Suffix(member);
        if (isFinal)
            m_output.Text(L" \n");
        else
            m_output.Text(L" |\n");
    }

    XMLOutput & m_output;
    uint64_t m_indentation;
};

} // namespace

bool WriteDocumentType(XMLOutput & output, IVekXMLDocument & document, int indentation) noexcept
{
    DTDWriter writer(output, indentation);
    output.Text(L"<!DOCTYPE ");
    output.Text(document.GetDocumentType());
    output.Text(L" [\n");
    for (int i = 0; i < document.GetNumDTDRules(); ++i)
    {
        IVekXMLDTDRule const * const rule = document.GetDTDRule(i);
        if (rule && !writer.Rule(*rule))
            return false;
    }
    for (int i = 0; i < document.GetNumDTDAttributeLists(); ++i)
    {
        if (auto const * const list = document.GetDTDAttributeList(i))
            writer.AttributeList(*list);
    }
    output.Text(L" ]>\n");
    return true;
}

} // namespace vek
