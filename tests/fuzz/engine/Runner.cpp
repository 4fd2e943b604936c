#include "fuzz/engine/Runner.h"

#include "fuzz/engine/Coverage.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace fuzz
{

namespace
{

constexpr DWORD HANG_MILLISECONDS = 20000;
constexpr unsigned int GUARDED_ONE_OF = 1000;
constexpr int MOST_FIRST_USES = 3;

std::atomic<unsigned int> g_executions;

DWORD WINAPI Watch(void *)
{
    for (unsigned int last = ~0u;; last = g_executions)
    {
        Sleep(HANG_MILLISECONDS);
        if (g_executions != last)
            continue;
        std::fprintf(stderr, "fuzz: hangs\n");
        TerminateProcess(GetCurrentProcess(), 97);
    }
}

} // namespace

struct Runner::Current
{
    std::uint32_t size, executions;
    char bytes[LONGEST_INPUT];
};

Runner::Runner(Target const & target) : m_target(target), m_heap(*new ArenaHeap)
{
    auto * const page =
        static_cast<std::uint8_t *>(VirtualAlloc(nullptr, 2 * LONGEST_INPUT, MEM_RESERVE, PAGE_NOACCESS));
    VirtualAlloc(page, LONGEST_INPUT, MEM_COMMIT, PAGE_READWRITE);
    m_end = page + LONGEST_INPUT;
    VekGuard::SetGuarding(false);
}

void Runner::KeepInput(std::filesystem::path const & folder)
{
    HANDLE const file = CreateFileW((folder / "current").c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
                                    nullptr, CREATE_ALWAYS, 0, nullptr);
    HANDLE const mapping = CreateFileMappingW(file, nullptr, PAGE_READWRITE, 0, sizeof(Current), nullptr);
    m_current = static_cast<Current *>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0));
    CloseHandle(CreateThread(nullptr, 0, Watch, nullptr, 0, nullptr));
}

void Runner::Run(std::string const & input)
{
    std::size_t const size = input.size();
    if (m_current)
    {
        m_current->size = static_cast<std::uint32_t>(size);
        m_current->executions = g_executions;
        std::memcpy(m_current->bytes, input.data(), size);
    }
    if (++g_executions % GUARDED_ONE_OF == 0)
        RunGuarded(input);
    std::uint8_t * const copy = m_end - size;
    std::memcpy(copy, input.data(), size);
    char const * odd = nullptr;
    // What is made at first use and kept does not come again.
    for (int run = 0; run == 0 || (odd && run < MOST_FIRST_USES); ++run)
    {
        std::size_t const blocks = m_heap.LiveBlocks();
        ResetCoverage();
        m_heap.Begin();
        m_target.run(Bytes(copy, size));
        odd = m_heap.End();
        if (odd)
            break;
        odd = m_heap.LiveBlocks() == blocks ? nullptr : "nothing leaks";
    }
    if (odd)
        RunGuarded(input);
    Check(!odd, odd);
}

void Runner::RunGuarded(std::string const & input)
{
    VekGuard::SetGuarding(true);
    // In a block of its own size, so that the guard behind it counts.
    auto * const copy = static_cast<std::uint8_t *>(std::malloc(input.size()));
    std::memcpy(copy, input.data(), input.size());
    std::size_t more = 0;
    for (int run = 0; run == 0 || (more && run < MOST_FIRST_USES); ++run)
    {
        std::size_t const blocks = VekGuard::LiveBlocks();
        m_target.run(Bytes(copy, input.size()));
        more = VekGuard::LiveBlocks() - blocks;
    }
    Check(!more, "nothing leaks");
    std::free(copy);
    VekGuard::SetGuarding(false);
}

unsigned int Executions()
{
    return g_executions;
}

} // namespace fuzz
