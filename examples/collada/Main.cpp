// Reads the positions of every mesh of a COLLADA file, and tells how large it is:
//     example_collada ship.dae
#include <VekLib.h>
#include <VekRef.h>

#include <cstdio>
#include <cwchar>
#include <string>

// The text of an element, which stands in its children.
static std::wstring TextOf(IVekXMLElement const & element)
{
    std::wstring text;
    for (int i = 0; i < element.GetNumChildren(); ++i)
    {
        IVekXMLElement const * const child = element.GetChild(i);
        if (child && child->HasCDATASection() && std::wcscmp(child->GetName(), L"#text") == 0)
            text.append(reinterpret_cast<wchar_t const *>(child->GetCDATASection()),
                        static_cast<std::size_t>(child->GetCDATASectionSize()) / sizeof(wchar_t));
    }
    return text;
}

static std::wstring Attribute(IVekXMLElement const & element, wchar_t const * name)
{
    CVekString<wchar_t> value;
    element.GetAttributeValue(name, value, L"");
    return std::wstring(value);
}

// The first child of that name whose attribute has the value.
static IVekXMLElement const * Find(IVekXMLElement const * parent, wchar_t const * name, wchar_t const * attribute,
                                   std::wstring const & value)
{
    for (int i = 0; parent && i < parent->GetNumChildren(); ++i)
    {
        IVekXMLElement const * const child = parent->GetChild(i);
        if (child && std::wcscmp(child->GetName(), name) == 0 && Attribute(*child, attribute) == value)
            return child;
    }
    return nullptr;
}

// Three numbers are a position.
static CVekBoundBox<float> BoxOf(std::wstring const & numbers)
{
    CVekBoundBox<float> box;
    wchar_t const * at = numbers.c_str();
    for (;;)
    {
        float position[3];
        for (float & coordinate : position)
        {
            wchar_t * end = nullptr;
            coordinate = std::wcstof(at, &end);
            if (end == at)
                return box;
            at = end;
        }
        box.Extend(CVekVector3D<float>(position[0], position[1], position[2]));
    }
}

static bool ShowMesh(IVekXMLElement const & geometry)
{
    IVekXMLElement const * const mesh = geometry.FindChild(L"mesh");
    IVekXMLElement const * const vertices = mesh ? mesh->FindChild(L"vertices") : nullptr;
    IVekXMLElement const * const input = Find(vertices, L"input", L"semantic", L"POSITION");
    std::wstring const source = input ? Attribute(*input, L"source") : L"";
    IVekXMLElement const * const positions = source.empty() ? nullptr : Find(mesh, L"source", L"id", source.substr(1));
    IVekXMLElement const * const array = positions ? positions->FindChild(L"float_array") : nullptr;
    CVekBoundBox<float> const box = array ? BoxOf(TextOf(*array)) : CVekBoundBox<float>();
    if (box.empty)
        return false;
    std::printf("%ls: from %g, %g, %g to %g, %g, %g\n", Attribute(geometry, L"id").c_str(), box.minimum.x,
                box.minimum.y, box.minimum.z, box.maximum.x, box.maximum.y, box.maximum.z);
    return true;
}

static bool ShowMeshes(wchar_t const * path)
{
    CVekRef<IVekXMLDocument> const document{getVekLibKernel()->GetXMLManager()->CreateXMLDocument()};
    CVekXMLParser parser;
    parser.SetKeepAll(VEK_XML_KEEP_TEXT); // indentation, comments and the like are of no interest
    if (!document || !parser.ParseXMLFile(path, document.Get()))
        return false;
    IVekXMLElement const * const geometries = document->FindElementFromPath(L"library_geometries", false);
    bool done = geometries != nullptr;
    for (int i = 0; geometries && i < geometries->GetNumChildren(); ++i)
    {
        IVekXMLElement const * const geometry = geometries->GetChild(i);
        if (geometry && std::wcscmp(geometry->GetName(), L"geometry") == 0)
            done = ShowMesh(*geometry) && done;
    }
    return done;
}

int wmain(int count, wchar_t ** arguments)
{
    if (count != 2 || !VekLibInit())
        return 2;
    bool const done = ShowMeshes(arguments[1]);
    VekLibDeinit();
    if (!done)
        std::puts("not every mesh could be read");
    return done ? 0 : 1;
}
