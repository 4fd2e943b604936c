#include "VekCore.h"

#include "core/ProcessState.h"

CVekSetDebugOutputLevel::CVekSetDebugOutputLevel(int level)
    : m_previousLevel(vek::g_debugOutputLevel.load(std::memory_order_relaxed))
{
    vek::g_debugOutputLevel.store(level, std::memory_order_relaxed);
}

CVekSetDebugOutputLevel::~CVekSetDebugOutputLevel()
{
    vek::g_debugOutputLevel.store(m_previousLevel, std::memory_order_relaxed);
}
