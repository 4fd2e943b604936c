// Wine's signal.h lacks C's type of what a handler may change.
#pragma once
#include_next <signal.h>
#ifndef VEK_SHIM_SIGNAL
#define VEK_SHIM_SIGNAL
typedef int sig_atomic_t;
#endif
