// Loads VekLib.dll at run time, without its import library, and looks at a scene:
//     example_dynamic scene.xml
// The entry points have plain names for GetProcAddress. Everything behind the kernel is called through
// interfaces, which need no import; text objects and VEK_VARIANT do, so that a host that wants those links the import
// library.
#include <VekLib.h>

#include <cstdio>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

using InitFunction = bool (*)();
using DeinitFunction = void (*)();
using KernelFunction = IVekKernel * (*)();

template <class Function>
static Function Find(HMODULE library, char const * name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void *>(GetProcAddress(library, name)));
}

static bool LookAt(wchar_t const * path, IVekXMLManager * manager)
{
    CVekRef<IVekXMLDocument> const document{manager->CreateXMLDocument()};
    CVekRef<IVekXMLParser> const parser{manager->CreateXMLParser()};
    bool const done = parser->ParseXMLFile(path, document.Get());
    if (done)
    {
        double angle = 0;
        if (IVekXMLElement const * const camera = document->FindElementFromPath(L"camera", false))
            camera->GetAttributeValue(L"angle", angle, 45.0);
        std::printf("%d things in the scene, seen at an angle of %g degrees\n",
                    document->GetRootElement()->GetNumChildren(), angle);
    }
    return done;
}

int wmain(int count, wchar_t ** arguments)
{
    HMODULE const library = LoadLibraryW(L"VekLib.dll");
    if (count != 2 || !library)
    {
        std::puts(library ? "usage: example_dynamic SCENE" : "VekLib.dll is not there");
        return 2;
    }
    auto const init = Find<InitFunction>(library, "VekLibInit");
    auto const deinit = Find<DeinitFunction>(library, "VekLibDeinit");
    auto const kernel = Find<KernelFunction>(library, "getVekLibKernel");
    bool const started = init && deinit && kernel && init();
    bool const done = started && LookAt(arguments[1], kernel()->GetXMLManager());
    if (started)
        deinit();
    FreeLibrary(library);
    return done ? 0 : 1;
}
