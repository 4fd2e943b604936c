// vek: VekLib's command-line tool. Uses the library through its public headers alone.
#include "Commands.h"
#include "Console.h"
#include "LogToStderr.h"

wchar_t const * const tool::PROGRAM_NAME = L"vek";

int tool::Run(int count, wchar_t ** arguments)
{
    CommandLine line("VekLib's command-line tool");
    bool isVerbose = false;
    line.AddFlag("--verbose", isVerbose, "Show the library's own messages, too");
    AddCommands(line);
    if (std::optional<int> const code = line.Parse(count, arguments))
        return *code;
    Library const library;
    if (!library.Started())
        return Fail(L"VekLib", L"can't be started");
    if (!isVerbose)
        getVekLibKernel()->SetDebugOutputLevel(-1);
    return line.DoWork();
}
