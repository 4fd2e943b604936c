// Reads a scene, moves its camera, adds a light and writes the result:
//     example_minimal scene.xml changed.xml
#include <VekLib.h>

#include <cstdio>

static bool ChangeScene(wchar_t const * source, wchar_t const * target)
{
    IVekXMLManager * const manager = getVekLibKernel()->GetXMLManager(); // belongs to the library
    CVekRef<IVekXMLDocument> const document{manager->CreateXMLDocument()};
    CVekXMLParser parser;
    if (!parser.ParseXMLFile(source, document.Get()) || !parser.IsComplete())
        return false; // a file that can't be read, or without an element, or cut off

    IVekXMLElement * const camera = document->FindElementFromPath(L"camera", true);
    CVekVector4D<double> position;
    camera->GetAttributeValue(L"position", position, CVekVector4D<double>());
    std::printf("the camera stood at %g, %g, %g\n", position.x, position.y, position.z);
    position.z += 2.5;
    camera->SetAttributeValue(L"position", position, true);

    CVekRef<IVekXMLElement> const light{manager->CreateXMLElement()};
    light->SetName(L"light");
    light->AddAttribute(L"color", CVekRGBA<unsigned char>(255, 200, 160, 255), -1);
    light->AddAttribute(L"position", L"0, 0, 50, 1", -1);
    light->AddAttribute(L"on", true, -1);
    document->GetRootElement()->AddChild(light.Get(), 1); // holds a reference of its own

    CVekRef<IVekXMLWriter> const writer{manager->CreateXMLWriter()};
    return writer->WriteXMLFile(target, document.Get());
}

int wmain(int count, wchar_t ** arguments)
{
    CVekLibrary const library; // started here, stopped at the end
    if (count != 3 || !library)
        return 2;
    bool const done = ChangeScene(arguments[1], arguments[2]);
    std::puts(done ? "done" : "failed");
    return done ? 0 : 1;
}
