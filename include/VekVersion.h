/// @file
/// The library's version: what a host was compiled with, and what it runs with.
#ifndef VEK_VERSION_H
#define VEK_VERSION_H

#include "VekExport.h"

/// Part by part.
#define VEKLIB_VERSION_MAJOR 0
#define VEKLIB_VERSION_MINOR 2
#define VEKLIB_VERSION_PATCH 0

/// As one number to compare: 1.2.3 is 10203.
#define VEKLIB_VERSION (VEKLIB_VERSION_MAJOR * 10000U + VEKLIB_VERSION_MINOR * 100U + VEKLIB_VERSION_PATCH)

/// As text.
#define VEKLIB_VERSION_TEXT "0.2.0"

/// The VEKLIB_VERSION of the DLL that is running; may be asked before VekLibInit. A DLL of 0.1 has no such entry point.
VEK_ENTRY unsigned int VekLibVersion();

#endif
