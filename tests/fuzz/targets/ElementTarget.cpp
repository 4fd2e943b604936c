// An element's children and attributes beside lists of names.

#include "VekLib.h"

#include "fuzz/targets/Targets.h"
#include "support/XMLKit.h"

#include <algorithm>
#include <vector>

namespace fuzz
{

namespace
{

std::wstring Lower(std::wstring text)
{
    for (wchar_t & unit : text)
        unit = unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit + 32) : unit;
    return text;
}

class Element
{
public:
    explicit Element(Reader & reader) : m_reader(reader) {}

    void Step()
    {
        std::wstring const name = m_reader.Text<wchar_t>(2);
        int const index = m_reader.Number();
        switch (m_reader.Below(10))
        {
        case 0:
        case 1:
            AddChild(name, index);
            break;
        case 2:
            RemoveChild(index);
            break;
        case 3:
            m_element->RemoveChild(name.c_str());
            if (int const found = FindChild(name); found >= 0)
                m_children.erase(m_children.begin() + found);
            break;
        case 4:
        {
            int const found = FindChild(name);
            bool const create = m_reader.Below(2) != 0;
            IVekXMLElement * const child = m_element->FindChild(name.c_str(), create);
            if (found < 0 && create)
                m_children.emplace_back(name);
            Check((child != nullptr) == (found >= 0 || create), "FindChild");
            break;
        }
        case 5:
        case 6:
            AddAttribute(name, index);
            break;
        case 7:
            SetAttribute(name);
            break;
        case 8:
            if (m_reader.Below(10) == 0)
            {
                m_element->RemoveAllAttributes();
                m_attributes.clear();
            }
            break;
        default:
            if (m_reader.Below(10) == 0)
            {
                m_element->RemoveAllChildren();
                m_children.clear();
            }
        }
        Compare();
    }

private:
    struct Named
    {
        explicit Named(std::wstring const & text) : name(text), folded(Lower(text)) {}
        std::wstring name, folded, value;
    };
    using Model = std::vector<Named>;

    static int FindFolded(Model const & model, std::wstring const & folded)
    {
        auto const at = std::find_if(model.begin(), model.end(), [&](Named const & it) { return it.folded == folded; });
        return at == model.end() ? -1 : static_cast<int>(at - model.begin());
    }
    int FindChild(std::wstring const & name) const { return FindFolded(m_children, Lower(name)); }
    int FindAttribute(std::wstring const & name) const { return FindFolded(m_attributes, Lower(name)); }

    // Kept: the index of the last child appends.
    void AddChild(std::wstring const & name, int index)
    {
        int const last = static_cast<int>(m_children.size()) - 1;
        bool const inserts = index >= 0 && index < last;
        Check(m_element->AddChild(NewElement(name).Get(), index) == (inserts ? index : last + 1), "AddChild");
        m_children.insert(inserts ? m_children.begin() + index : m_children.end(), Named(name));
    }
    void RemoveChild(int index)
    {
        m_element->RemoveChild(index);
        if (index >= 0 && index < static_cast<int>(m_children.size()))
            m_children.erase(m_children.begin() + index);
    }
    void AddAttribute(std::wstring const & name, int index)
    {
        std::wstring const value = m_reader.Text<wchar_t>(20);
        bool const taken = FindAttribute(name) >= 0;
        int const count = static_cast<int>(m_attributes.size());
        int const place = index >= 0 && index < count ? index : count;
        Check(m_element->AddAttribute(name.c_str(), VEK_VARIANT(value.c_str()), index) == (taken ? -1 : place),
              "AddAttribute");
        if (!taken)
            m_attributes.insert(m_attributes.begin() + place, Named(name))->value = value;
    }
    void SetAttribute(std::wstring const & name)
    {
        std::wstring const value = m_reader.Text<wchar_t>(20);
        bool const add = m_reader.Below(2) != 0;
        int const found = FindAttribute(name);
        Check(m_element->SetAttributeValue(name.c_str(), VEK_VARIANT(value.c_str()), add) == (found >= 0 || add),
              "SetAttributeValue");
        if (found >= 0)
            m_attributes[static_cast<std::size_t>(found)].value = value;
        else if (add)
            m_attributes.emplace_back(name).value = value;
    }

    void Compare() const
    {
        Check(m_element->GetNumChildren() == static_cast<int>(m_children.size()), "the number of children");
        for (int i = 0; i < m_element->GetNumChildren(); ++i)
            Check(m_children[static_cast<std::size_t>(i)].name ==
                      static_cast<wchar_t const *>(m_element->GetChild(i)->GetName()),
                  "a child");
        Check(m_element->GetNumAttributes() == static_cast<int>(m_attributes.size()), "the number of attributes");
        for (int i = 0; i < m_element->GetNumAttributes(); ++i)
        {
            auto const & [name, folded, value] = m_attributes[static_cast<std::size_t>(i)];
            int const first = FindFolded(m_attributes, folded);
            CVekString<wchar_t> text;
            // Texts that look like escaped ones come back changed: there are none without '&'.
            Check(name == static_cast<wchar_t const *>(m_element->GetAttributeName(i)), "an attribute's name");
            Check(m_element->FindAttributeIndex(name.c_str()) == first, "an attribute's index");
            Check(first != i || (m_element->GetAttributeValue(name.c_str(), text, L"") &&
                                 value == static_cast<wchar_t const *>(text)),
                  "an attribute's value");
        }
    }

    Reader & m_reader;
    CVekRef<CVekXMLElement> m_element = NewElement();
    Model m_children, m_attributes;
};

} // namespace

void RunElement(Bytes input)
{
    Reader reader(input);
    Element element(reader);
    while (!reader.AtEnd())
        element.Step();
}

} // namespace fuzz
