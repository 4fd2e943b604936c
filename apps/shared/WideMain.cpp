#include "CommandLine.h"
#include "Console.h"

#include <new>
#include <string>

int wmain(int count, wchar_t ** arguments)
{
    int code = tool::EXIT_FAILED;
    try
    {
        code = tool::Run(count, arguments);
    }
    catch (std::bad_alloc const &)
    {
        tool::Console::Err().Write(std::wstring(tool::PROGRAM_NAME) + L": out of memory\n");
    }
    if (!tool::Console::Out().Flush())
    {
        code = tool::EXIT_FAILED; // whoever reads this output hasn't got all of it
        if (!tool::Console::Out().WhyLost().empty())
            tool::Fail(L"can't write the output", tool::Console::Out().WhyLost());
    }
    return code;
}
