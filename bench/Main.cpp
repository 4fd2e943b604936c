// veklib_bench: how fast the library is, beside what it is built on.
//     veklib_bench [--quick] [--services | --data] [FILE]
// --services leaves the XML out, --data measures typed data alone. FILE is a real XML file to measure with; without it
// the MIME database of the machine is taken. Ratios are between figures of one run: absolute ones depend on the
// machine.

#include "DataBench.h"
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
    bool services = false;
    bool data = false;
    for (int i = 1; i < count; ++i)
    {
        if (std::wstring_view(arguments[i]) == L"--quick")
            options.quick = true;
        else if (std::wstring_view(arguments[i]) == L"--services")
            services = true;
        else if (std::wstring_view(arguments[i]) == L"--data")
            data = true;
        else
            options.database = arguments[i];
    }
    if (!VekLibInit())
        return 1;
    bench::Aims aims;
    bool done = true;
    if (!services && !data)
    {
        bench::MeasureXmlMemory();
        done = bench::MeasureXmlSpeed(options, aims);
        done = bench::MeasureXmlLinearity(aims) && done;
    }
    if (!data)
    {
        bench::MeasureMemory(options.quick, aims);
        bench::MeasureServices(options.quick);
        bench::MeasureThreads(options.quick);
    }
    done = bench::MeasureData(options.quick, aims) && done;
    aims.PrintSummary();
    VekLibDeinit();
    return done ? 0 : 1;
}
