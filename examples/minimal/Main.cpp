// Reads a scene, moves its camera, adds a light and writes the result:
//     example_minimal scene.xml changed.xml
#include <VekLib.h>

#include <cstdio>

static bool ChangeScene(wchar_t const * source, wchar_t const * target)
{
    IVekXMLManager * const manager = getVekLibKernel()->GetXMLManager(); // belongs to the library
    IVekXMLDocument * const document = manager->CreateXMLDocument();     // ours, until we release it
    IVekXMLParser * const parser = manager->CreateXMLParser();
    IVekXMLWriter * const writer = manager->CreateXMLWriter();

    bool done = parser->ParseXMLFile(source, document);
    if (done)
    {
        IVekXMLElement * const camera = document->FindElementFromPath(L"camera", true);
        CVekVector4D<double> position;
        camera->GetAttributeValue(L"position", position, CVekVector4D<double>());
        std::printf("the camera stood at %g, %g, %g\n", position.x, position.y, position.z);
        position.z += 2.5;
        camera->SetAttributeValue(L"position", VEK_VARIANT(position), true);

        IVekXMLElement * const light = manager->CreateXMLElement();
        light->SetName(L"light");
        light->AddAttribute(L"color", VEK_VARIANT(CVekRGBA<unsigned char>(255, 200, 160, 255)), -1);
        light->AddAttribute(L"position", VEK_VARIANT(L"0, 0, 50, 1"), -1);
        light->AddAttribute(L"on", VEK_VARIANT(true), -1);
        document->GetRootElement()->AddChild(light, 1); // holds a reference of its own
        light->Release();

        done = writer->WriteXMLFile(target, document);
    }
    writer->Release();
    parser->Release();
    document->Release();
    return done;
}

int wmain(int count, wchar_t ** arguments)
{
    if (count != 3 || !VekLibInit())
        return 2;
    bool const done = ChangeScene(arguments[1], arguments[2]);
    VekLibDeinit();
    std::puts(done ? "done" : "failed");
    return done ? 0 : 1;
}
