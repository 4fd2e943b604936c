#pragma once

#include "base/RecursiveLock.h"

#include <atomic>

namespace vek
{

/// The level up to which messages are shown. Unguarded, as a host's last setting counts; relaxed accesses cost nothing.
inline constinit std::atomic<int> g_debugOutputLevel{0};

/// The number of the tracked allocation that stops in the debugger; 0 for none.
inline constinit std::atomic<unsigned int> g_breakOnAllocation{0};

/// The address of the tracked block that stops in the debugger when it is made, and whether blocks are tracked at all.
/// Set by hand in a debugger only.
inline constinit std::atomic<void *> g_breakOnAddress{nullptr};
inline constinit std::atomic<bool> g_trackingSuspended{false};

/// The process-wide locks, which their owner may take again. Made at compile time: static objects of the program that
/// come before the library's own, or end after them, find them sound.
struct ProcessState
{
    /// Orders commands that are waited for, one at a time.
    RecursiveLock threadCommandLock;
    /// Guards the kernel's list of log catchers.
    RecursiveLock catcherLock;
    /// Guards the kernel's event map.
    RecursiveLock eventMapLock;
};
extern constinit ProcessState g_process;

} // namespace vek
