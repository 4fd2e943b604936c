// Makes visible what a function takes from variables that it does not set.
#pragma once

// What stands there for the functions that are called next.
[[gnu::noinline]] inline void FillStack(wchar_t unit)
{
    unsigned long long volatile places[1000];
    for (unsigned long long volatile & place : places)
        place = unit * 0x0001'0001'0001'0001u;
}
