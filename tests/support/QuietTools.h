// For tests that call the inner functions of the programs: their messages go nowhere.
#pragma once

#include "Console.h"
#include "Platform.h"

inline bool const toolsAreQuiet = []
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
