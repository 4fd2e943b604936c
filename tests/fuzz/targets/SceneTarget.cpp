// Scenes of vekview: what is read without a complaint has all its parts at places that can be drawn, and is drawn.

#include "CommandLine.h"
#include "Renderer.h"
#include "SceneReader.h"
#include "XmlFile.h"

#include "fuzz/Target.h"

#include <cmath>

namespace fuzz
{

namespace
{

using namespace tool;

int Count(IVekXMLElement & root, wchar_t const * name)
{
    int count = 0;
    for (int i = 0; i < root.GetNumChildren(); ++i)
        count += root.GetChild(i)->GetName().Compare(name) == 0;
    return count;
}

void CheckScene(IVekXMLElement & root, Scene const & scene)
{
    int const boxes = Count(root, L"box"), grids = Count(root, L"grid"), curves = Count(root, L"curve");
    Check(scene.triangles.size() == static_cast<std::size_t>(Count(root, L"triangle")), "all triangles are there");
    Check(scene.camera.has_value() == (Count(root, L"camera") == 1), "a camera is there");
    Check(static_cast<int>(scene.segments.size()) >= 12 * boxes + 4 * grids + curves, "all other parts are there");
    scene.ForEachPoint(
        [&scene](Point const & point)
        {
            for (double const number : {point.x, point.y, point.z})
                Check(std::fabs(number) <= 4 * ElementReader::LARGEST, "a point is at a place");
            Check(scene.bounds.minimum.Smallest(point) == scene.bounds.minimum &&
                      scene.bounds.maximum.Largest(point) == scene.bounds.maximum,
                  "a point is in the bounds");
        });
}

void Draw(Scene const & scene)
{
    SceneView view(scene);
    Canvas canvas;
    canvas.Resize(24, 16);
    view.Resize(24, 16);
    for (int picture = 0; picture < 2; ++picture)
    {
        canvas.Clear(0x123456);
        Renderer(view, canvas).Draw(scene, 0);
        SceneView::Ray ray;
        if (view.RayAt(5, 5, ray))
            Check(std::isfinite((ray.to - ray.from).Length()), "a line into the picture has an end");
        view.Fit();
    }
}

} // namespace

void RunScene(Bytes input)
{
    CVekXMLParser parser;
    auto const document = ReadXml(parser, VEK_XML_KEEP_NOTHING,
                                  [&](IVekXMLDocument & target) {
                                      parser.ParseXMLMemory(input.data(), static_cast<unsigned>(input.size()), &target);
                                  });
    if (!document)
        return;
    Scene scene;
    Problems const problems = SceneReader::Read(*document, scene);
    Check(problems.Lines().size() <= problems.Count() && problems.None() == problems.Lines().empty(), "complaints");
    if (!problems.None())
        return;
    CheckScene(*document->GetRootElement(), scene);
    Draw(scene);
}

} // namespace fuzz
