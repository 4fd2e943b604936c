#pragma once

#include "VekThread.h"

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

/// The process-wide locks, which their owner may take again. They exist from the moment the library is loaded until it
/// is unloaded.
struct ProcessState
{
    /// Orders commands that are waited for, one at a time.
    CVekCriticalSection threadCommandLock;
    /// Guards the kernel's list of log catchers.
    CVekCriticalSection catcherLock;
    /// Guards the kernel's event map.
    CVekCriticalSection eventMapLock;
};

/// The one state; made by the first caller when another static object of the program comes before the library's own.
ProcessState & GetProcessState() noexcept;

} // namespace vek
