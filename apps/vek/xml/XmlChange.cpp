#include "xml/XmlChange.h"

#include "Console.h"
#include "LibraryText.h"
#include "xml/XmlElements.h"
#include "xml/XmlNode.h"
#include "xml/XmlValue.h"

#include <algorithm>

namespace tool
{

namespace
{

/// A text as a parser gives it: each line's end a newline.
std::wstring WithNewLines(std::wstring_view text)
{
    std::wstring normal;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if (text[i] != L'\r')
            normal.push_back(text[i]);
        else if (i + 1 == text.size() || text[i + 1] != L'\n')
            normal.push_back(L'\n');
    }
    return normal;
}

} // namespace

bool XmlChange::Refuse(std::wstring const & why) const
{
    Fail(m_source.Path(), L"not changed: " + why);
    return false;
}

bool XmlChange::RefuseEntity(IVekXMLElement const & element) const
{
    VekXMLPosition position{};
    for (IVekXMLElement const * const outer : WayTo(m_source.Root(), element))
    {
        if (!m_source.Places().GetPosition(outer, position))
            break;
    }
    FailAt(m_source.Path(), position.line, position.column,
           L"not changed: what is to change stands in the text of an entity, which is referred to in this element");
    return false;
}

bool XmlChange::CheckWords(XmlEdit const & edit) const
{
    bool const isName = edit.kind == XmlEdit::Kind::Rename;
    if (!IsXmlText(edit.value))
        return Refuse(L"the value holds a character that XML has no place for");
    for (std::wstring const & name : {edit.attribute, isName ? edit.value : std::wstring()})
    {
        if (!name.empty() && !IsXmlName(name))
            return Refuse(Quoted(name) + L" is no name");
    }
    if ((isName && edit.value.empty()) || (edit.kind == XmlEdit::Kind::Set && edit.attribute.empty()))
        return Refuse(L"\"\" is no name");
    return true;
}

bool XmlChange::Encode(std::wstring_view text, bool isName, std::string & bytes) const
{
    return m_source.Encoding().Encode(text, !isName, bytes) ||
           Refuse(L"the encoding has no place for the name " + Quoted(text));
}

bool XmlChange::FindValue(Step const & step, XmlRange & value) const
{
    unsigned int offset = 0, length = 0;
    bool const isThere =
        step.index != -1 && m_source.Places().GetAttributePosition(step.element, step.index, offset, length);
    value = {offset, offset + std::size_t{length}};
    return isThere;
}

bool XmlChange::FindWrittenValue(Step const & step, XmlRange & value) const
{
    if (step.index == -1)
        return Refuse(Quoted(step.edit.path) + L" has no attribute " + Quoted(step.edit.attribute));
    return FindValue(step, value) ||
           Refuse(Quoted(step.edit.attribute) + L" is not written there: the document type declares its value");
}

bool XmlChange::Add(XmlEdit const & edit)
{
    XmlPath path;
    if (!CheckWords(edit))
        return false;
    if (!path.Parse(edit.path))
        return Refuse(Quoted(edit.path) + L" is no path");
    std::size_t possible = 0;
    IVekXMLElement * last = nullptr;
    Step step;
    step.edit = edit;
    step.element = path.Find(m_source.Root(), possible, last);
    if (!step.element && m_creates && edit.kind == XmlEdit::Kind::Set)
        return AddCreation(edit, path, possible, last);
    if (!step.element)
        return Refuse(L"no element " + Quoted(edit.path));
    VekXMLPosition position;
    if (!m_source.Places().GetPosition(step.element, position))
        return RefuseEntity(*step.element);
    step.index = edit.attribute.empty() ? -1 : FindAttribute(*step.element, edit.attribute);
    if (step.index != -1)
        step.edit.attribute = View(step.element->GetAttributeName(step.index));
    if (!m_touched.emplace(step.element, step.edit.attribute).second)
        return Refuse(Quoted(edit.path) + L" " + Printable(edit.attribute, 200) + L" is changed twice");
    XmlTags const tags(m_source, position);
    bool const isAdded = edit.kind == XmlEdit::Kind::Set      ? AddSet(step, tags)
                         : edit.kind == XmlEdit::Kind::Remove ? AddRemove(step, tags)
                                                              : AddRename(step, tags);
    m_steps.push_back(step);
    return isAdded;
}

bool XmlChange::AddSet(Step const & step, XmlTags const & tags)
{
    IVekXMLElement const & element = *step.element;
    XmlRange value;
    std::string bytes;
    bool const isThere = FindValue(step, value);
    if (isThere && ReadValue(View(element.GetAttributeValue(step.index))) == step.edit.value)
        return true;
    XmlEncoding const encoding = m_source.Encoding();
    wchar_t quote = L'"';
    Step other = step;
    for (other.index = isThere ? step.index : 0; other.index < element.GetNumAttributes(); ++other.index)
    {
        XmlRange place = value;
        if (isThere || FindValue(other, place))
            quote = static_cast<wchar_t>(encoding.UnitAt(m_source.Bytes(), place.begin - encoding.Width()));
        if (isThere)
            break;
    }
    if (!isThere &&
        (!Encode(L" ", true, bytes) || !Encode(step.edit.attribute, true, bytes) || !Encode(L"=", true, bytes)))
        return false;
    std::wstring const quotes(1, quote);
    std::wstring const written = WriteValue(step.edit.value, quote);
    // With its first quote, so that an empty value has a place, too.
    if (!Encode(isThere ? quotes + written : quotes + written + quotes, false, bytes))
        return false;
    if (isThere)
        m_patch.Replace({value.begin - encoding.Width(), value.end}, bytes);
    else
        m_patch.Replace({tags.BehindAttributes(), tags.BehindAttributes()}, bytes);
    return true;
}

bool XmlChange::AddRemove(Step & step, XmlTags const & tags)
{
    XmlRange value;
    if (!step.edit.attribute.empty())
    {
        if (!FindWrittenValue(step, value))
            return false;
        m_patch.Replace(tags.Attribute(value), {});
        return true;
    }
    if (step.element == &m_source.Root())
        return Refuse(L"a document can't be without its root element");
    XmlRange const line = tags.Line();
    XmlEncoding const encoding = m_source.Encoding();
    step.blanks =
        WithNewLines(
            encoding.Decode(std::string_view(m_source.Bytes()).substr(line.begin, tags.Element().begin - line.begin)))
            .size();
    m_patch.Replace(line, {});
    return true;
}

bool XmlChange::AddRename(Step const & step, XmlTags const & tags)
{
    std::string name;
    XmlRange value;
    if (!Encode(step.edit.value, true, name))
        return false;
    if (step.edit.attribute.empty())
    {
        m_patch.Replace(tags.Name(), name);
        if (!tags.IsEmpty())
            m_patch.Replace(tags.EndName(), name);
        return true;
    }
    if (!FindWrittenValue(step, value))
        return false;
    int const other = FindAttribute(*step.element, step.edit.value);
    if (other != -1 && other != step.index)
        return Refuse(Quoted(step.edit.path) + L" has an attribute " + Quoted(step.edit.value) + L" already");
    m_patch.Replace(tags.AttributeName(value), name);
    return true;
}

bool XmlChange::AddCreation(XmlEdit const & edit, XmlPath const & path, std::size_t possible, IVekXMLElement * parent)
{
    Creation creation{parent, edit.path, {}, {{edit.attribute, edit.value}}, {}, false};
    for (; possible < path.Steps().size(); ++possible)
    {
        XmlPath::Step const & missing = path.Steps()[possible];
        if (!missing.tests.empty() || !IsXmlName(missing.name))
            return Refuse(L"no element " + Quoted(edit.path) + L", nor can one of that name be added");
        creation.names.push_back(missing.name);
    }
    for (Creation & earlier : m_creations)
    {
        if (earlier.parent != parent || earlier.names.front() != creation.names.front())
            continue;
        if (earlier.names != creation.names)
            return Refuse(Quoted(edit.path) + L" leads through an element that another edit adds: change it in a call "
                                              L"of its own");
        earlier.attributes.push_back(creation.attributes.front());
        return true;
    }
    VekXMLPosition position;
    if (!m_source.Places().GetPosition(parent, position))
        return RefuseEntity(*parent);
    m_creations.push_back(creation);
    return true;
}

bool XmlChange::EncodeCreation(Creation const & creation, std::string & bytes) const
{
    for (std::size_t i = 0; i < creation.names.size(); ++i)
    {
        if (!Encode(L"<", true, bytes) || !Encode(creation.names[i], true, bytes) ||
            (i + 1 < creation.names.size() && !Encode(L">", true, bytes)))
            return false;
    }
    for (auto const & [name, value] : creation.attributes)
    {
        if (!Encode(L" " + name + L"=\"", true, bytes) || !Encode(WriteValue(value, L'"') + L"\"", false, bytes))
            return false;
    }
    std::wstring ends = L"/>";
    for (std::size_t i = creation.names.size() - 1; i-- > 0;)
        ends += L"</" + creation.names[i] + L">";
    return Encode(ends, true, bytes);
}

/// Behind the last element, and as far in as that one, where nothing but white space follows it; else in front of the
/// end tag.
void XmlChange::FindPlace(Creation & creation, XmlTags const & tags, XmlRange & place, std::string & bytes) const
{
    IVekXMLElement const & parent = *creation.parent;
    place.begin = place.end = tags.EndTag();
    int last = parent.GetNumChildren() - 1;
    while (last >= 0 && KindOf(*parent.GetChild(last)) == XmlNode::Text && IsBlank(Characters(*parent.GetChild(last))))
        --last;
    VekXMLPosition position;
    if (last < 0 || KindOf(*parent.GetChild(last)) != XmlNode::Element ||
        !m_source.Places().GetPosition(parent.GetChild(last), position))
        return;
    XmlTags const sibling(m_source, position);
    std::size_t const blanks = sibling.BlanksBefore(position.offset);
    std::string const lead = m_source.Bytes().substr(blanks, position.offset - blanks);
    creation.isBehindLast = true;
    creation.indentation = WithNewLines(m_source.Encoding().Decode(lead));
    place.begin = place.end = position.end;
    bytes = lead;
}

bool XmlChange::Insert(Creation & creation)
{
    VekXMLPosition position{};
    m_source.Places().GetPosition(creation.parent, position);
    XmlTags const tags(m_source, position);
    XmlRange place;
    std::string bytes;
    if (!tags.IsEmpty())
    {
        FindPlace(creation, tags, place, bytes);
        if (!EncodeCreation(creation, bytes))
            return false;
    }
    else
    {
        place = {tags.Slash(), tags.BehindStart()};
        std::wstring const name(View(creation.parent->GetName()));
        if (!Encode(L">", true, bytes) || !EncodeCreation(creation, bytes) || !Encode(L"</" + name + L">", true, bytes))
            return false;
    }
    m_patch.Replace(place, bytes);
    return true;
}

bool XmlChange::Finish()
{
    for (Creation & creation : m_creations)
    {
        if (!Insert(creation))
            return false;
    }
    if (!m_patch.Sort())
        return Refuse(L"two of the edits are about the same place");
    for (Creation const & creation : m_creations)
        Make(creation);
    for (Step const & step : m_steps)
    {
        if (step.edit.kind != XmlEdit::Kind::Remove)
            Make(step);
    }
    for (Step const & step : m_steps)
    {
        if (step.edit.kind == XmlEdit::Kind::Remove)
            MakeRemoval(step);
    }
    return true;
}

void XmlChange::Make(Step const & step)
{
    IVekXMLElement & element = *step.element;
    if (step.edit.kind == XmlEdit::Kind::Set)
        SetValue(element, step.index, step.edit.attribute, step.edit.value);
    else if (step.index != -1)
        RenameValue(element, step.index, step.edit.value);
    else
        element.SetName(step.edit.value.c_str());
}

void XmlChange::MakeRemoval(Step const & step) const
{
    if (step.index != -1)
    {
        VekRemoveXMLAttribute(step.element, step.edit.attribute.c_str());
        return;
    }
    std::vector<IVekXMLElement *> const way = WayTo(m_source.Root(), *step.element);
    IVekXMLElement & parent = *way[way.size() - 2];
    int index = 0;
    while (parent.GetChild(index) != step.element)
        ++index;
    if (step.blanks > 0)
    {
        IVekXMLElement & text = *parent.GetChild(index - 1);
        std::wstring_view const characters = Characters(text);
        SetCharacters(text, std::wstring(characters.substr(0, characters.size() - step.blanks)));
    }
    parent.RemoveChild(index);
}

void XmlChange::Make(Creation const & creation)
{
    IVekXMLElement & parent = *creation.parent;
    std::wstring behind;
    int const last = parent.GetNumChildren() - 1;
    if (creation.isBehindLast && KindOf(*parent.GetChild(last)) == XmlNode::Text)
    {
        behind = Characters(*parent.GetChild(last));
        SetCharacters(*parent.GetChild(last), creation.indentation);
    }
    else
        AddNamed(parent, L"#text", creation.indentation);
    IVekXMLElement * innermost = &parent;
    for (std::wstring const & name : creation.names)
        innermost = &AddNamed(*innermost, name.c_str(), {});
    for (auto const & [name, value] : creation.attributes)
        SetValue(*innermost, -1, name, value);
    AddNamed(parent, L"#text", behind);
}

} // namespace tool
