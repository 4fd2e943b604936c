/// @file
/// The library's version: what a host was compiled with, and what it runs with.
///
/// @code
/// if (VekLibVersion() / 100 != VEKLIB_VERSION / 100) // another 0.x of the DLL may have other slots
///     std::puts("VekLib.dll is not of version " VEKLIB_VERSION_TEXT);
/// @endcode
#ifndef VEK_VERSION_H
#define VEK_VERSION_H

#include "VekExport.h"

/// The first part.
#define VEKLIB_VERSION_MAJOR 0
/// The second.
#define VEKLIB_VERSION_MINOR 2
/// The third.
#define VEKLIB_VERSION_PATCH 0

/// As one number to compare: 1.2.3 is 10203.
#define VEKLIB_VERSION (VEKLIB_VERSION_MAJOR * 10000U + VEKLIB_VERSION_MINOR * 100U + VEKLIB_VERSION_PATCH)

/// As text.
#define VEKLIB_VERSION_TEXT "0.2.0"

/// The VEKLIB_VERSION of the DLL that is running; may be asked before VekLibInit. A DLL of 0.1 has no such entry point.
VEK_ENTRY unsigned int VekLibVersion();

#endif
