// `vek xml set` on any file: its bytes change in the value of one attribute, or by one attribute, and in nothing else.

#include "LibraryText.h"
#include "xml/XmlCanonical.h"
#include "xml/XmlChange.h"
#include "xml/XmlValue.h"

#include "fuzz/Target.h"

#include <algorithm>

namespace fuzz
{

namespace
{

using namespace tool;

std::wstring MakeValue(Reader & reader)
{
    static constexpr wchar_t units[] = L"ab<&>\"'\n\t\r ;#\xE4\x20AC\xD83D\xDE00]";
    std::wstring value;
    for (unsigned length = reader.Below(12); length > 0; --length)
        value += units[reader.Below(std::size(units) - 1)];
    return value;
}

// The path to an element that is found by going down a few steps from the root.
std::wstring MakePath(Reader & reader, IVekXMLElement * at)
{
    std::wstring path;
    for (unsigned steps = reader.Below(4); steps > 0; --steps)
    {
        int const wanted = static_cast<int>(reader.Byte());
        int elements = 0;
        IVekXMLElement * next = nullptr;
        for (int i = 0; i < at->GetNumChildren() && elements <= wanted; ++i)
            if (at->GetChild(i)->GetName()[0] != L'#')
                next = at->GetChild(i), ++elements;
        if (!next)
            break;
        at = next;
        path += L"/*[" + std::to_wstring(elements) + L"]";
    }
    return path;
}

struct Place
{
    std::size_t begin = 0, end = 0;
    std::wstring value;
};

// Where the attribute's value stands between its quotes.
bool FindValue(XmlSource const & source, XmlEdit const & edit, Place & place)
{
    XmlPath path;
    IVekXMLElement * const element = path.Parse(edit.path) ? path.Find(source.Root()) : nullptr;
    int const index = element ? FindAttribute(*element, edit.attribute) : -1;
    unsigned int offset = 0, length = 0;
    if (index < 0 || !source.Places().GetAttributePosition(element, index, offset, length))
        return false;
    place = {offset, std::size_t{offset} + length, ReadValue(View(element->GetAttributeValue(index)))};
    return true;
}

void CheckBytes(XmlSource const & before, XmlSource const & after, XmlEdit const & edit)
{
    std::string const &from = before.Bytes(), &to = after.Bytes();
    Place old, now;
    bool const wasThere = FindValue(before, edit, old);
    Check(FindValue(after, edit, now) && now.value == edit.value, "the value is what was asked for");
    if (wasThere)
        Check(old.begin == now.begin && from.compare(0, old.begin, to, 0, now.begin) == 0 &&
                  from.compare(old.end, from.npos, to, now.end, to.npos) == 0,
              "a file changes in the value alone");
    else
    {
        // A declared default is one that isn't written.
        std::size_t const same = static_cast<std::size_t>(
            std::mismatch(from.begin(), from.end(), to.begin(), to.end()).first - from.begin());
        std::size_t const added = to.size() - from.size();
        Check(to.size() > from.size() && same < now.begin && now.end < same + added + 8 &&
                  from.compare(same, from.npos, to, same + added, to.npos) == 0,
              "a file gets the attribute alone");
    }
}

} // namespace

void RunSet(Bytes input)
{
    Reader reader(input);
    std::uint8_t ways[20] = {};
    for (std::uint8_t & way : ways)
        way = static_cast<std::uint8_t>(reader.Byte());
    Bytes const file = reader.Rest();
    std::string const bytes(file.begin(), file.end());
    auto const source = XmlSource::Read(L"file", bytes), before = XmlSource::Read(L"file", bytes);
    if (!source)
        return;
    Reader way(ways);
    XmlEdit edit{XmlEdit::Kind::Set, MakePath(way, &source->Root()), L"aAx\xE4"[way.Below(4)] + std::wstring(), {}};
    edit.value = MakeValue(way);
    XmlChange change(*source, false);
    if (!change.Add(edit) || !change.Finish())
        return;
    auto const after = XmlSource::Read(L"file", change.Patch().Apply(bytes));
    Check(after != nullptr, "a changed file can be read");
    Check(Canonicalize(after->Document()).text == Canonicalize(source->Document()).text,
          "a changed file is the changed document");
    CheckBytes(*before, *after, edit);
}

} // namespace fuzz
