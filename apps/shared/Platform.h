#pragma once

// The system's header without its macros min and max and its rarer parts.
#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
