// vekview: shows a scene read from XML in a window, or draws it into a PNG file.
#include "CommandLine.h"
#include "Console.h"
#include "LogToStderr.h"
#include "PngFile.h"
#include "Renderer.h"
#include "SceneReader.h"
#include "Window.h"
#include "XmlFile.h"

namespace tool
{

wchar_t const * const PROGRAM_NAME = L"vekview";

namespace
{

constexpr int LARGEST_SIZE = 8192;

constexpr char const * HELP =
    R"(In the window: drag with the left button to orbit, with the middle button to pan, with the right button to roll;
turn the wheel to go nearer. F fits the scene, P and O switch to perspective and orthographic projection, Escape takes
a drag back. The triangle under the pointer is highlighted.

Exit codes: 0 done, 1 failed, 2 wrong usage.)";

struct Arguments
{
    std::wstring scene, snapshot;
    int width = 800, height = 600;
};

/// "800x600"; an empty text when that is right, otherwise what is wrong.
std::string ParseSize(std::string const & text, Arguments & arguments)
{
    int end = 0;
    bool const parsed = std::sscanf(text.c_str(), "%5dx%5d%n", &arguments.width, &arguments.height, &end) == 2 &&
                        static_cast<std::size_t>(end) == text.size();
    bool const inRange = arguments.width >= 1 && arguments.width <= LARGEST_SIZE && arguments.height >= 1 &&
                         arguments.height <= LARGEST_SIZE;
    return parsed && inRange ? "" : "\"" + text + "\" is not WIDTHxHEIGHT, each from 1 to 8192";
}

void AddArguments(CommandLine & line, Arguments & arguments)
{
    line.AddText("SCENE", arguments.scene, "The scene's XML file")
        .AddOption("--snapshot", "OUT", arguments.snapshot, "Draw into a PNG file instead of a window")
        .AddOption(
            "--size", "WxH", [&arguments](std::string const & text) { return ParseSize(text, arguments); },
            "The picture's size (800x600)")
        .SetFooter(HELP);
}

/// False, after telling the user what is wrong with the file.
bool LoadScene(std::wstring const & path, Scene & scene)
{
    auto const document = LoadXml(path);
    if (!document)
        return false;
    Problems const problems = SceneReader::Read(*document, scene);
    for (std::wstring const & line : problems.Lines())
        Fail(path, line);
    if (problems.Count() > problems.Lines().size())
        Fail(path, Format(L"and %u more", static_cast<unsigned int>(problems.Count() - problems.Lines().size())));
    return problems.None();
}

int DrawSnapshot(Scene const & scene, Arguments const & arguments)
{
    SceneView view(scene);
    view.Resize(arguments.width, arguments.height);
    if (!scene.camera)
        view.Fit();
    Canvas canvas;
    canvas.Resize(arguments.width, arguments.height);
    Renderer(view, canvas).Draw(scene, -1);
    return WritePng(canvas, arguments.snapshot) ? EXIT_DONE : Fail(arguments.snapshot, L"can't be written");
}

} // namespace

int Run(int count, wchar_t ** texts)
{
    CommandLine line("Shows a scene of NURBS curves, boxes, triangles and grids");
    Arguments arguments;
    AddArguments(line, arguments);
    if (std::optional<int> const code = line.Parse(count, texts))
        return *code;
    Library const library;
    if (!library.Started())
        return Fail(L"VekLib", L"can't be started");
    std::wstring const & path = arguments.scene;
    Scene scene;
    if (!LoadScene(path, scene))
        return EXIT_FAILED;
    if (!arguments.snapshot.empty())
        return DrawSnapshot(scene, arguments);
    std::wstring const name = path.substr(path.find_last_of(L"\\/") + 1);
    Window window(scene, Printable(name, 100));
    return window.Run(arguments.width, arguments.height) ? EXIT_DONE : Fail(path, L"no window can be opened here");
}

} // namespace tool
