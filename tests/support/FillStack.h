// Makes visible what a function takes from variables that it does not set.
#pragma once

// What stands there for the functions that are called next.
[[gnu::noinline]] inline void FillStack(wchar_t unit)
{
    wchar_t volatile places[4000];
    for (wchar_t volatile & place : places)
        place = unit;
}
