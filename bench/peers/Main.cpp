// veklib_peers: how fast the library is beside others that do the same work.
//     veklib_peers [--repetitions N] [--only SUBJECT]
// The subjects are xml, math, text, data, lexing, services, start and paths.

#include "Peers.h"
#include "VekLib.h"

#include <cstdio>
#include <string_view>

namespace
{

struct Subject
{
    char const * name;
    void (*add)(bench::Duels & duels);
};

constexpr Subject SUBJECTS[] = {
    {"math", bench::AddMath},     {"text", bench::AddText},         {"data", bench::AddData},
    {"lexing", bench::AddLexing}, {"services", bench::AddServices}, {"start", bench::AddStart},
    {"paths", bench::AddPaths},
};

bench::Duels Collect(std::string const & only)
{
    std::string_view const path = VEK_MIME_XML;
    std::wstring const database(path.begin(), path.end());
    bench::Duels duels(only);
    if (duels.Wants("xml")) // first: it looks at memory
        bench::AddXml(duels, database);
    for (Subject const & subject : SUBJECTS)
        if (duels.Wants(subject.name))
            subject.add(duels);
    return duels;
}

} // namespace

int wmain(int count, wchar_t ** arguments)
{
    int repetitions = 3;
    std::string only;
    for (int i = 1; i + 1 < count; i += 2)
    {
        std::wstring const option = arguments[i], value = arguments[i + 1];
        if (option == L"--repetitions")
            repetitions = VekStrToIntW(value.c_str());
        else if (option == L"--only")
            for (wchar_t const unit : value)
                only += static_cast<char>(unit);
    }
    CVekLibrary const library;
    if (!library)
        return 1;
    bench::Duels duels = Collect(only);
    duels.Run(repetitions);
    bench::Aims aims;
    std::printf(
        "The best time of one operation; the ratio is the peer's time, or bytes, to VekLib's: above 1 VekLib is "
        "ahead.\n\n");
    duels.Print(aims);
    aims.PrintSummary();
    return duels.AllSame() ? 0 : 1;
}
