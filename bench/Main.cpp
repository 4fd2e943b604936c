// veklib_bench: how fast the library is, beside what it is built on.
//     veklib_bench [--quick] [--services] [--math] [FILE]
// --services leaves the XML out, --math everything but the mathematics. FILE is a real XML file to measure with;
// without it the MIME database of the machine is taken. Ratios are between figures of one run: absolute ones depend on
// the machine.

#include "MathBench.h"
#include "CurveBench.h"
#include "MemoryBench.h"
#include "ServiceBench.h"
#include "ThreadBench.h"
#include "VekLib.h"
#include "XmlBench.h"

#include <cstdio>
#include <string_view>

int wmain(int count, wchar_t ** arguments)
{
    bench::XmlBenchOptions options;
    std::string_view const database = VEK_MIME_XML;
    options.database.assign(database.begin(), database.end());
    bool services = false, math = false;
    for (int i = 1; i < count; ++i)
    {
        if (std::wstring_view(arguments[i]) == L"--quick")
            options.quick = true;
        else if (std::wstring_view(arguments[i]) == L"--services")
            services = true;
        else if (std::wstring_view(arguments[i]) == L"--math")
            math = true;
        else
            options.database = arguments[i];
    }
    if (!VekLibInit())
        return 1;
    bench::Aims aims;
    bool done = true;
    if (!services && !math)
    {
        bench::MeasureXmlMemory();
        done = bench::MeasureXmlSpeed(options, aims);
        done = bench::MeasureXmlLinearity(aims) && done;
    }
    if (!math)
    {
        bench::MeasureMemory(options.quick, aims);
        bench::MeasureServices(options.quick);
        bench::MeasureThreads(options.quick);
    }
    bench::MeasureMath(options.quick, aims);
    bench::MeasureCurve(options.quick);
    aims.PrintSummary();
    VekLibDeinit();
    return done ? 0 : 1;
}
