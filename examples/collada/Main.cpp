// Reads the positions of every mesh of a COLLADA file, and tells how large it is; its triangles make a scene for
// vekview:
//     example_collada ship.dae [ship.xml]
//     vekview ship.xml --snapshot ship.png
#include <VekLib.h>
#include <VekRef.h>

#include <cstdio>
#include <cwchar>
#include <string>
#include <vector>

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

using Position = CVekVector3D<float>;

static std::vector<Position> PositionsOf(std::wstring const & numbers)
{
    std::vector<Position> positions;
    wchar_t const * at = numbers.c_str();
    for (;;)
    {
        float position[3];
        for (float & coordinate : position)
        {
            wchar_t * end = nullptr;
            coordinate = std::wcstof(at, &end);
            if (end == at)
                return positions;
            at = end;
        }
        positions.emplace_back(position[0], position[1], position[2]);
    }
}

// Of each corner only the place of its position is wanted, one of several numbers.
static std::vector<unsigned long> CornersOf(IVekXMLElement const & triangles)
{
    unsigned long inputs = 1, offset = 0;
    for (int i = 0; i < triangles.GetNumChildren(); ++i)
    {
        IVekXMLElement const * const input = triangles.GetChild(i);
        if (!input || std::wcscmp(input->GetName(), L"input") != 0)
            continue;
        unsigned long const number = std::wcstoul(Attribute(*input, L"offset").c_str(), nullptr, 10);
        inputs = number < 100 && number + 1 > inputs ? number + 1 : inputs;
        if (Attribute(*input, L"semantic") == L"VERTEX")
            offset = number;
    }
    IVekXMLElement const * const list = triangles.FindChild(L"p");
    std::wstring const text = list ? TextOf(*list) : L"";
    std::vector<unsigned long> corners;
    wchar_t * end = nullptr;
    unsigned long count = 0;
    for (wchar_t const * at = text.c_str();; at = end, ++count)
    {
        unsigned long const number = std::wcstoul(at, &end, 10);
        if (end == at)
            return corners;
        if (count % inputs == offset)
            corners.push_back(number);
    }
}

static void AddTriangles(IVekXMLElement const & mesh, std::vector<Position> const & positions, CVekXMLElement & scene)
{
    for (int i = 0; i < mesh.GetNumChildren(); ++i)
    {
        IVekXMLElement const * const triangles = mesh.GetChild(i);
        if (!triangles || std::wcscmp(triangles->GetName(), L"triangles") != 0)
            continue;
        std::vector<unsigned long> const corners = CornersOf(*triangles);
        for (std::size_t first = 0; first + 2 < corners.size(); first += 3)
        {
            CVekRef<CVekXMLElement> const triangle(new CVekXMLElement(L"triangle", 8));
            bool isWhole = true;
            for (std::size_t corner = 0; corner < 3; ++corner)
            {
                wchar_t const name[] = {static_cast<wchar_t>(L'a' + corner), 0};
                unsigned long const place = corners[first + corner];
                isWhole = isWhole && place < positions.size() &&
                          triangle->AddAttribute(name, VekToText(positions[place]), -1) >= 0;
            }
            if (isWhole)
                scene.AddChild(triangle.Get(), -1);
        }
    }
}

static bool ShowMesh(IVekXMLElement const & geometry, CVekXMLElement & scene)
{
    IVekXMLElement const * const mesh = geometry.FindChild(L"mesh");
    IVekXMLElement const * const vertices = mesh ? mesh->FindChild(L"vertices") : nullptr;
    IVekXMLElement const * const input = Find(vertices, L"input", L"semantic", L"POSITION");
    std::wstring const source = input ? Attribute(*input, L"source") : L"";
    IVekXMLElement const * const values = source.empty() ? nullptr : Find(mesh, L"source", L"id", source.substr(1));
    IVekXMLElement const * const array = values ? values->FindChild(L"float_array") : nullptr;
    std::vector<Position> const positions = array ? PositionsOf(TextOf(*array)) : std::vector<Position>();
    CVekBoundBox<float> box;
    for (Position const & position : positions)
        box.Extend(position);
    if (box.empty)
        return false;
    std::printf("%ls: from %g, %g, %g to %g, %g, %g\n", Attribute(geometry, L"id").c_str(), box.minimum.x,
                box.minimum.y, box.minimum.z, box.maximum.x, box.maximum.y, box.maximum.z);
    AddTriangles(*mesh, positions, scene);
    return true;
}

static bool ShowMeshes(wchar_t const * path, CVekXMLElement & scene)
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
            done = ShowMesh(*geometry, scene) && done;
    }
    return done;
}

static bool Save(wchar_t const * path, CVekXMLElement & scene)
{
    CVekRef<IVekXMLDocument> const document{getVekLibKernel()->GetXMLManager()->CreateXMLDocument()};
    return document && document->SetRootElement(&scene) && VekSaveXMLDocument(path, document.Get());
}

int wmain(int count, wchar_t ** arguments)
{
    CVekLibrary const library;
    if (count < 2 || count > 3 || !library)
        return 2;
    CVekRef<CVekXMLElement> const scene(new CVekXMLElement(L"scene", 5));
    bool const done = ShowMeshes(arguments[1], *scene);
    if (!done)
        std::puts("not every mesh could be read");
    bool const isSaved = count < 3 || Save(arguments[2], *scene);
    if (!isSaved)
        std::puts("the scene can't be written");
    return done && isSaved ? 0 : 1;
}
