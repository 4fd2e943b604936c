#include "xml/XmlCanonical.h"

#include "LibraryText.h"
#include "Utf8.h"
#include "xml/NamespaceScope.h"
#include "xml/XmlNode.h"
#include "xml/XmlProlog.h"
#include "xml/XmlValue.h"

#include <algorithm>
#include <tuple>

namespace tool
{

namespace
{

/// An attribute, or a declaration of a namespace, in the order of the form.
struct Item
{
    std::string space; // what it is sorted by first
    std::string local;
    std::string name;
    std::string value;

    bool operator<(Item const & other) const { return std::tie(space, local) < std::tie(other.space, other.local); }
};

class Writer
{
public:
    explicit Writer(XmlCanonical & out) : m_out(out) {}

    void Around(IVekXMLDocument const & document, IVekXMLElement const & root);

private:
    struct Place
    {
        IVekXMLElement const * element;
        int child;
    };

    void Parts(std::wstring_view prolog, bool isBehind);
    void Tree(IVekXMLElement const & root);
    void Begin(IVekXMLElement const & element);
    void End(IVekXMLElement const & element);
    void Node(IVekXMLElement const & node, XmlNode kind);
    void Attributes(IVekXMLElement const & element);
    void Put(Item const & item);
    void Escaped(std::string_view text, bool isValue);
    void Instruction(std::string const & target, std::string_view data);

    XmlCanonical & m_out;
    NamespaceScope m_scope;
    std::vector<Place> m_path;
};

void Writer::Around(IVekXMLDocument const & document, IVekXMLElement const & root)
{
    Parts(View(VekGetXMLProlog(document)), false);
    Tree(root);
    Parts(View(VekGetXMLEpilog(document)), true);
}

void Writer::Parts(std::wstring_view prolog, bool isBehind)
{
    for (XmlPrologPart const & part : SplitProlog(prolog))
    {
        std::string const text = ToUtf8(part.text);
        bool const isComment = part.kind == XmlPrologPart::Kind::Comment;
        if (!isComment && part.kind != XmlPrologPart::Kind::Instruction)
            continue;
        if (isBehind)
            m_out.text += '\n';
        std::size_t const target = text.find_first_of(" \t\n", 2);
        if (isComment)
            m_out.text += text;
        else if (target == text.npos)
            Instruction(text.substr(2, text.size() - 4), {});
        else
            Instruction(text.substr(2, target - 2), std::string_view(text).substr(target, text.size() - 2 - target));
        if (!isBehind)
            m_out.text += '\n';
    }
}

void Writer::Tree(IVekXMLElement const & root)
{
    Begin(root);
    while (!m_path.empty())
    {
        Place & place = m_path.back();
        if (place.child == place.element->GetNumChildren())
        {
            End(*place.element);
            continue;
        }
        IVekXMLElement const & child = *place.element->GetChild(place.child++);
        XmlNode const kind = KindOf(child);
        if (kind == XmlNode::Element)
            Begin(child);
        else
            Node(child, kind);
    }
}

void Writer::Begin(IVekXMLElement const & element)
{
    m_scope.Enter();
    m_path.push_back({&element, 0});
    m_out.text += "<" + ToUtf8(View(element.GetName()));
    Attributes(element);
    m_out.text += '>';
    Escaped(ToUtf8(Characters(element)), false);
}

void Writer::End(IVekXMLElement const & element)
{
    m_out.text += "</" + ToUtf8(View(element.GetName())) + ">";
    m_scope.Leave();
    m_path.pop_back();
}

void Writer::Node(IVekXMLElement const & node, XmlNode kind)
{
    std::string const text = ToUtf8(Characters(node));
    if (kind == XmlNode::Comment)
        m_out.text += "<!--" + text + "-->";
    else if (kind == XmlNode::Instruction)
        Instruction(node.GetNumAttributes() ? ToUtf8(View(node.GetAttributeValue(0))) : std::string(), text);
    else if (kind != XmlNode::Reference)
        Escaped(text, false);
    else
    {
        m_out.text += "&" + text + ";";
        ++m_out.references;
    }
}

void Writer::Attributes(IVekXMLElement const & element)
{
    std::vector<Item> spaces, items;
    for (int i = 0; i < element.GetNumAttributes(); ++i)
    {
        Item item;
        item.name = item.local = ToUtf8(View(element.GetAttributeName(i)));
        item.value = ToUtf8(ReadValue(View(element.GetAttributeValue(i))));
        bool const isDeclaration = item.name == "xmlns" || item.name.starts_with("xmlns:");
        item.local.erase(0, isDeclaration ? std::min<std::size_t>(6, item.name.size()) : 0);
        if (!isDeclaration)
            items.push_back(std::move(item));
        else if (m_scope.Declare(item.local, item.value))
            spaces.push_back(std::move(item));
    }
    for (Item & item : items)
    {
        std::size_t const colon = item.name.find(':');
        if (colon == item.name.npos)
            continue;
        item.space = m_scope.Find(item.name.substr(0, colon));
        item.local.erase(0, item.space.empty() ? 0 : colon + 1);
    }
    std::sort(spaces.begin(), spaces.end());
    std::sort(items.begin(), items.end());
    for (Item const & item : spaces)
        Put(item);
    for (Item const & item : items)
        Put(item);
}

void Writer::Put(Item const & item)
{
    m_out.text += " " + item.name + "=\"";
    Escaped(item.value, true);
    m_out.text += '"';
}

void Writer::Escaped(std::string_view text, bool isValue)
{
    for (;;)
    {
        std::size_t const at = text.find_first_of(isValue ? "&<\"\t\n\r" : "&<>\r");
        m_out.text += text.substr(0, at);
        if (at == text.npos)
            return;
        switch (text[at])
        {
        case '&':
            m_out.text += "&amp;";
            break;
        case '<':
            m_out.text += "&lt;";
            break;
        case '>':
            m_out.text += "&gt;";
            break;
        case '"':
            m_out.text += "&quot;";
            break;
        default:
            m_out.text += text[at] == '\t' ? "&#x9;" : text[at] == '\n' ? "&#xA;" : "&#xD;";
        }
        text.remove_prefix(at + 1);
    }
}

void Writer::Instruction(std::string const & target, std::string_view data)
{
    data.remove_prefix(std::min(data.find_first_not_of(" \t\n"), data.size()));
    m_out.text += "<?" + target;
    if (!data.empty())
        m_out.text.append(" ").append(data);
    m_out.text += "?>";
}

} // namespace

XmlCanonical Canonicalize(IVekXMLDocument const & document)
{
    XmlCanonical canonical;
    if (IVekXMLElement const * const root = document.GetRootElement())
        Writer(canonical).Around(document, *root);
    return canonical;
}

} // namespace tool
