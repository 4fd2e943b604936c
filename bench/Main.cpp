// veklib_bench: how fast the library is, beside what it is built on.
//     veklib_bench [--quick] [--only SUBJECT] [FILE]
// The subjects are xml, keep, lexing, data, math, curves, memory, services and threads. FILE is a real XML file to
// measure with; without it the MIME database of the machine is taken. Ratios are between figures of one run: absolute
// ones depend on the machine.

#include "VekLib.h"

#include "Benches.h"

#include <cstdio>
#include <string_view>

namespace
{

using bench::Aims;
using Options = bench::XmlBenchOptions;

struct Subject
{
    std::wstring_view name;
    bool (*measure)(Options const &, Aims &);
};

bool MeasureXml(Options const & options, Aims & aims)
{
    bench::MeasureXmlMemory();
    bool const done = bench::MeasureXmlSpeed(options, aims);
    return bench::MeasureXmlLinearity(aims) && done;
}

constexpr Subject SUBJECTS[] = {
    {L"xml", MeasureXml},
    {L"keep", bench::MeasureXmlKeep},
    {L"lexing", [](Options const & options, Aims & aims) { return bench::MeasureLexing(options.quick, aims); }},
    {L"data", [](Options const & options, Aims & aims) { return bench::MeasureData(options.quick, aims); }},
    {L"math", [](Options const & options, Aims & aims) { return bench::MeasureMath(options.quick, aims), true; }},
    {L"curves", [](Options const & options, Aims &) { return bench::MeasureCurve(options.quick), true; }},
    {L"memory", [](Options const & options, Aims & aims) { return bench::MeasureMemory(options.quick, aims), true; }},
    {L"services", [](Options const & options, Aims &) { return bench::MeasureServices(options.quick), true; }},
    {L"threads", [](Options const & options, Aims &) { return bench::MeasureThreads(options.quick), true; }},
};

} // namespace

int wmain(int count, wchar_t ** arguments)
{
    Options options;
    std::string_view const database = VEK_MIME_XML;
    options.database.assign(database.begin(), database.end());
    std::wstring_view only;
    for (int i = 1; i < count; ++i)
    {
        std::wstring_view const argument = arguments[i];
        if (argument == L"--quick")
            options.quick = true;
        else if (argument == L"--only" && i + 1 < count)
            only = arguments[++i];
        else
            options.database = argument;
    }
    CVekLibrary const library;
    if (!library)
        return 1;
    Aims aims;
    bool done = true;
    bool known = false;
    for (Subject const & subject : SUBJECTS)
    {
        if (!only.empty() && only != subject.name)
            continue;
        known = true;
        done = subject.measure(options, aims) && done;
    }
    if (!known)
        std::fprintf(stderr, "veklib_bench: no subject %ls\n", only.data());
    aims.PrintSummary();
    return done && known ? 0 : 1;
}
