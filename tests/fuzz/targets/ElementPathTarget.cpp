// Paths through a tree of elements, beside a search written out.

#include "VekLib.h"

#include "fuzz/targets/Targets.h"
#include "support/XMLKit.h"

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

IVekXMLElement * Walk(IVekXMLElement * at, std::wstring const & path)
{
    for (std::size_t begin = 0; at && begin <= path.size();)
    {
        std::size_t const end = std::min(path.find_first_of(L"/\\", begin), path.size());
        std::wstring const name = Lower(path.substr(begin, end - begin));
        begin = end + 1;
        if (name.empty())
            continue;
        IVekXMLElement * found = nullptr;
        for (int i = 0; i < at->GetNumChildren() && !found; ++i)
            if (Lower(static_cast<wchar_t const *>(at->GetChild(i)->GetName())) == name)
                found = at->GetChild(i);
        at = found;
    }
    return at;
}

} // namespace

void RunElementPath(Bytes input)
{
    Reader reader(input);
    auto const document = NewDocument();
    auto const root = NewElement(L"root");
    document->SetRootElement(root.Get());
    IVekXMLElement * at = root.Get();
    for (unsigned i = reader.Below(20); i > 0; --i)
    {
        auto const child = NewElement(reader.Text<wchar_t>(3));
        at->AddChild(child.Get(), reader.Number());
        at = reader.Below(3) ? root.Get() : child.Get();
    }
    while (!reader.AtEnd())
    {
        std::wstring const path = reader.Text<wchar_t>(12);
        bool const create = reader.Below(8) == 0;
        IVekXMLElement * const expected = Walk(root.Get(), path);
        IVekXMLElement * const found = document->FindElementFromPath(path.c_str(), create);
        Check(expected || create ? found != nullptr : found == nullptr, "a path leads nowhere when there is nothing");
        Check(!expected || found == expected, "a path leads to the first of its name");
        Check(!create || Walk(root.Get(), path) == found, "what a path has made is found by it");
    }
}

} // namespace fuzz
