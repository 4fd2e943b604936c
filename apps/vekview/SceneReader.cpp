#include "SceneReader.h"

#include "Console.h"
#include "CurveReader.h"
#include "LibraryText.h"

#include <cmath>

namespace tool
{

namespace
{

constexpr double MOST_GRID_LINES = 1000; // each way
constexpr Color BOX_COLOR(200, 200, 210, 255), GRID_COLOR(80, 84, 92, 255), TRIANGLE_COLOR(120, 150, 190, 255);

} // namespace

Problems SceneReader::Read(IVekXMLDocument & document, Scene & scene)
{
    SceneReader reader(scene);
    IVekXMLElement & root = *document.GetRootElement();
    if (View(root.GetName()) != L"scene")
        reader.m_problems.Add(L"the outermost element is <" + PrintableName(root.GetName()) + L">, not <scene>");
    else
        for (int i = 0; i < root.GetNumChildren(); ++i)
            reader.ReadElement(*root.GetChild(i));
    return std::move(reader.m_problems);
}

void SceneReader::ReadElement(IVekXMLElement & element)
{
    std::wstring const name = PrintableName(element.GetName());
    unsigned int const number = ++m_counts[name];
    ElementReader reader(element, name + Format(L" %u", number), m_problems);
    if (name == L"curve")
        CurveReader(reader, m_problems).Read(element, m_scene);
    else if (name == L"box")
        ReadBox(reader);
    else if (name == L"triangle")
        ReadTriangle(reader, number);
    else if (name == L"grid")
        ReadGrid(reader);
    else if (name == L"camera")
        ReadCamera(reader);
    else
        m_problems.Add(L"unknown element <" + name + L">");
    if (name != L"curve" && element.GetNumChildren() > 0)
        reader.Complain(L"has an element <" + PrintableName(element.GetChild(0)->GetName()) + L"> inside");
}

void SceneReader::ReadCamera(ElementReader & reader)
{
    SceneCamera camera;
    camera.eye = reader.RequiredPoint(L"eye");
    camera.target = reader.RequiredPoint(L"target");
    camera.up = reader.OptionalPoint(L"up", camera.up);
    camera.fieldOfView = reader.OptionalNumber(L"angle", camera.fieldOfView, 1, 170);
    camera.projection =
        static_cast<VEK_PROJECTIONMODE>(reader.OptionalChoice(L"projection", {L"perspective", L"orthographic"}));
    camera.coordSystem = reader.OptionalChoice(L"system", {L"right-handed", L"left-handed"}) == 0
                             ? VEK_COORDSYSTEM_RIGHTHANDED
                             : VEK_COORDSYSTEM_LEFTHANDED;
    if (m_scene.camera)
        reader.Complain(L"there is one already");
    if (!reader.Finish())
        return;
    if (!((camera.eye - camera.target).Length() > 1e-30)) // too little for the camera's floats
        reader.Complain(L"eye and target are the same point");
    m_scene.camera = camera;
}

void SceneReader::ReadGrid(ElementReader & reader)
{
    Point const centre = reader.OptionalPoint(L"center", Point());
    double const size = reader.OptionalNumber(L"size", 20, 1e-6, ElementReader::LARGEST);
    double const step = reader.OptionalNumber(L"step", 1, 1e-6, ElementReader::LARGEST);
    std::size_t const plane = reader.OptionalChoice(L"plane", {L"xz", L"xy", L"yz"});
    Color const color = reader.OptionalColor(GRID_COLOR);
    if (!reader.Finish())
        return;
    double const cells = std::floor(size / step + 0.5);
    if (cells < 1 || cells > MOST_GRID_LINES)
    {
        reader.Complain(L"size / step is not between 1 and 1000");
        return;
    }
    Point const along = plane == 2 ? Point(0, step, 0) : Point(step, 0, 0);
    Point const across = plane == 1 ? Point(0, step, 0) : Point(0, 0, step);
    Point const corner = centre - (along + across) * (cells / 2);
    for (double i = 0; i <= cells; ++i)
    {
        m_scene.AddSegment(corner + along * i, corner + along * i + across * cells, color);
        m_scene.AddSegment(corner + across * i, corner + across * i + along * cells, color);
    }
}

void SceneReader::ReadBox(ElementReader & reader)
{
    Point const minimum = reader.RequiredPoint(L"min"), maximum = reader.RequiredPoint(L"max");
    Color const color = reader.OptionalColor(BOX_COLOR);
    if (!reader.Finish())
        return;
    if (minimum.Smallest(maximum) != minimum)
        reader.Complain(L"a coordinate of \"min\" is larger than that of \"max\"");
    else
        m_scene.AddBox(CVekBoundBox<double>(minimum, maximum), color);
}

void SceneReader::ReadTriangle(ElementReader & reader, unsigned int number)
{
    Triangle triangle;
    triangle.a = reader.RequiredPoint(L"a");
    triangle.b = reader.RequiredPoint(L"b");
    triangle.c = reader.RequiredPoint(L"c");
    triangle.color = reader.OptionalColor(TRIANGLE_COLOR);
    triangle.name = reader.OptionalText(L"name");
    if (triangle.name.empty())
        triangle.name = Format(L"triangle %u", number);
    if (reader.Finish())
        m_scene.AddTriangle(std::move(triangle));
}

} // namespace tool
