// For tests that call the inner functions of the programs: what Main.cpp has of them; their messages go nowhere.
#include "CommandLine.h"
#include "Console.h"
#include "Platform.h"

wchar_t const * const tool::PROGRAM_NAME = L"test";

static bool const g_areQuiet = []
{
    for (DWORD const id : {STD_ERROR_HANDLE, STD_OUTPUT_HANDLE})
    {
        HANDLE const handle = GetStdHandle(id);
        SetStdHandle(id, nullptr);
        id == STD_ERROR_HANDLE ? tool::Console::Err() : tool::Console::Out();
        SetStdHandle(id, handle);
    }
    return true;
}();
