#pragma once

#include <atomic>

namespace vek
{

/// The classes whose objects can be counted: those that a host makes, or has made, one by one.
enum class LiveClass : unsigned int
{
    CPUUsage,
    CameraUIController,
    EventHandler,
    EventHandlerContainer,
    FileIOStream,
    Lexer,
    MemoryIOStream,
    ProgressController,
    Randomizer,
    ResourceFilePacket,
    Thread,
    ThreadCommand,
    Timer,
    Tokenizer,
    XMLDocument,
    XMLElement,
    XMLParser,
    XMLWriter,
    COUNT
};

/// Whether births and ends are counted. Set when the library is loaded, or by VekReportLiveObjects.
inline constinit std::atomic<bool> g_countsObjects{false};

void CountObject(LiveClass which, int change) noexcept;

/// In each constructor and destructor of these classes; one load while nothing is counted.
inline void CountBirth(LiveClass which) noexcept
{
    if (g_countsObjects.load(std::memory_order_relaxed)) [[unlikely]]
        CountObject(which, 1);
}
inline void CountEnd(LiveClass which) noexcept
{
    if (g_countsObjects.load(std::memory_order_relaxed)) [[unlikely]]
        CountObject(which, -1);
}

/// How many objects live, of those that were born while they were counted.
int CountLive(LiveClass which) noexcept;
wchar_t const * NameOf(LiveClass which) noexcept;

} // namespace vek
