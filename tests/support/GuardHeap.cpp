// How it works: address space is reserved in large arenas and handed out as runs of pages. A block lies at the end of
// its run; the page behind it is never accessible. A freed run is decommitted and waits in a queue before it is used
// again. Blocks of 1 MB and more have a reservation of their own. When very many blocks live at once (each one costs
// two mappings under Wine, and the system has a limit), the rest comes from an ordinary heap without guards.

#include "GuardHeap.h"

#ifdef VEKLIB_GUARD

#include <windows.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

using Byte = unsigned char;

constexpr std::size_t PAGE_BYTES = 4096;
constexpr std::size_t ALIGNMENT = 2 * sizeof(void *);
constexpr std::size_t ARENA_PAGES = 16384; // 64 MB
constexpr std::size_t ARENAS = 12;
constexpr std::size_t LARGEST = static_cast<std::size_t>(1) << 30;
constexpr std::size_t OWN_RESERVATION = 1 << 20; // blocks from this size on
constexpr std::size_t LARGE_BLOCKS = 256;
constexpr std::size_t MOST_GUARDED = 20000;
constexpr std::size_t QUARANTINE_PAGES = 8192; // of one size class that wait before they are used again
constexpr std::size_t LEAD = 32;               // bytes before a block that are checked, as far as they lie in its page
constexpr Byte SLACK = 0xA5;
constexpr Byte FRESH = 0xCD;
constexpr std::size_t CLASSES = 20;

enum class State : std::uint8_t
{
    Never,
    Live,
    Freed
};

// One for each page; filled in for the page in which a block starts and for the first page of a waiting run.
struct PageRecord
{
    std::uint32_t size;
    std::uint32_t next;         // waiting runs: the next one's page number over all arenas, plus 1
    std::uint16_t runStartBack; // pages from the block's page back to the run's first
    std::uint8_t sizeClass;
    State state;
    bool counted;
};

struct Arena
{
    Byte * base;
    PageRecord * pages;
    std::size_t used;
};

struct Queue
{
    std::uint32_t first, last, length;
};

struct Large
{
    Byte * base;
    Byte * block;
    std::size_t size;
    bool counted;
};

// Stands before a block of the ordinary heap.
struct alignas(16) Header
{
    std::uint32_t magic;
    std::uint32_t counted;
    std::size_t size;
};
constexpr std::uint32_t MAGIC = 0x6B654756;

SRWLOCK g_lock = SRWLOCK_INIT;
Arena g_arenas[ARENAS];
std::size_t g_arenaCount;
Queue g_waiting[CLASSES];
Large g_large[LARGE_BLOCKS];
std::size_t g_largeBlocks;
HANDLE g_heap;
std::size_t g_guarded, g_liveBlocks, g_liveBytes;

// Failing is armed for one thread; thread_local is no use here, as its first access can allocate.
DWORD g_failThread;
std::size_t g_failIn;
bool g_failOn, g_failOnce, g_failed;
DWORD g_uncountedThread;
std::size_t g_uncountedDepth;
VekGuard::FrontHeap * g_front;
bool g_guards = true;
bool g_isExact;

class Locked
{
public:
    Locked() noexcept { AcquireSRWLockExclusive(&g_lock); }
    ~Locked() { ReleaseSRWLockExclusive(&g_lock); }
    Locked(Locked const &) = delete;
    Locked & operator=(Locked const &) = delete;
};

[[noreturn]] void Fault(char const * what, void const * block)
{
    char text[128];
    int const length = __mingw_snprintf(text, sizeof text, "guard heap: %s, block %p\n", what, block);
    DWORD written;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), text, static_cast<DWORD>(length), &written, nullptr);
    __builtin_trap(); // the program's fault handler names the test and the callers
}

// Size classes in pages: 1, 2, 3, 4, 6, 8, 12, 16, ... 256.
std::size_t ClassPages(std::size_t sizeClass)
{
    if (sizeClass < 3)
        return sizeClass + 1;
    std::size_t const half = sizeClass - 3;
    return (half % 2 ? std::size_t{6} : std::size_t{4}) << (half / 2);
}

std::size_t PageNumber(std::size_t arena, std::size_t page)
{
    return arena * ARENA_PAGES + page;
}

// The first page of a run that is not in use, numbered over all arenas; -1 when the arenas are exhausted.
std::ptrdiff_t TakeRun(std::size_t sizeClass)
{
    std::size_t const pages = ClassPages(sizeClass) + 1;
    Queue & queue = g_waiting[sizeClass];
    auto reuse = [&]() -> std::ptrdiff_t
    {
        std::size_t const number = queue.first - 1;
        queue.first = g_arenas[number / ARENA_PAGES].pages[number % ARENA_PAGES].next;
        --queue.length;
        return static_cast<std::ptrdiff_t>(number);
    };
    if (queue.length * pages > QUARANTINE_PAGES)
        return reuse();
    if (g_arenaCount == 0 || g_arenas[g_arenaCount - 1].used + pages > ARENA_PAGES)
    {
        Arena arena{};
        if (g_arenaCount < ARENAS)
            arena.base =
                static_cast<Byte *>(VirtualAlloc(nullptr, ARENA_PAGES * PAGE_BYTES, MEM_RESERVE, PAGE_NOACCESS));
        if (arena.base)
            arena.pages = static_cast<PageRecord *>(
                VirtualAlloc(nullptr, ARENA_PAGES * sizeof(PageRecord), MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        if (!arena.pages)
            return queue.length ? reuse() : -1;
        g_arenas[g_arenaCount++] = arena;
    }
    Arena & arena = g_arenas[g_arenaCount - 1];
    std::size_t const first = arena.used;
    arena.used += pages;
    return static_cast<std::ptrdiff_t>(PageNumber(g_arenaCount - 1, first));
}

// What a block takes. Without a byte more a read behind it shows, but what it holds may not be aligned.
std::size_t Room(std::size_t size)
{
    return g_isExact ? size : (size + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
}

void * PlaceAtEnd(Byte * end, std::size_t size)
{
    Byte * const block = end - Room(size);
    std::size_t const inPage = reinterpret_cast<std::uintptr_t>(block) % PAGE_BYTES;
    std::size_t const lead = inPage < LEAD ? inPage : LEAD;
    std::memset(block - lead, SLACK, lead);
    std::memset(block, FRESH, size);
    std::memset(block + size, SLACK, static_cast<std::size_t>(end - block) - size);
    return block;
}

void CheckSlack(Byte const * block, std::size_t size, Byte const * end)
{
    std::size_t const inPage = reinterpret_cast<std::uintptr_t>(block) % PAGE_BYTES;
    for (std::size_t i = 1; i <= (inPage < LEAD ? inPage : LEAD); ++i)
        if (*(block - i) != SLACK)
            Fault("written before a block", block);
    for (Byte const * at = block + size; at < end; ++at)
        if (*at != SLACK)
            Fault("written behind a block", block);
}

void * AllocateGuarded(std::size_t size, bool counted)
{
    std::size_t const pages = (size + PAGE_BYTES - 1) / PAGE_BYTES;
    std::size_t sizeClass = 0;
    while (ClassPages(sizeClass) < pages)
        ++sizeClass;
    std::ptrdiff_t const number = TakeRun(sizeClass);
    if (number < 0)
        return nullptr;
    Arena & arena = g_arenas[static_cast<std::size_t>(number) / ARENA_PAGES];
    std::size_t const first = static_cast<std::size_t>(number) % ARENA_PAGES;
    Byte * const run = arena.base + first * PAGE_BYTES;
    // Only the pages in use are committed, at the run's end.
    Byte * const end = run + ClassPages(sizeClass) * PAGE_BYTES;
    if (!VirtualAlloc(end - pages * PAGE_BYTES, pages * PAGE_BYTES, MEM_COMMIT, PAGE_READWRITE))
        return nullptr;
    void * const block = PlaceAtEnd(end, size);
    std::size_t const page = static_cast<std::size_t>(static_cast<Byte *>(block) - arena.base) / PAGE_BYTES;
    arena.pages[page] = {static_cast<std::uint32_t>(size),     0,           static_cast<std::uint16_t>(page - first),
                         static_cast<std::uint8_t>(sizeClass), State::Live, counted};
    ++g_guarded;
    return block;
}

void * AllocateLarge(std::size_t size, bool counted)
{
    for (Large & entry : g_large)
    {
        if (entry.base)
            continue;
        std::size_t const bytes = (size + PAGE_BYTES - 1) / PAGE_BYTES * PAGE_BYTES;
        Byte * const base = static_cast<Byte *>(VirtualAlloc(nullptr, bytes + PAGE_BYTES, MEM_RESERVE, PAGE_NOACCESS));
        if (!base)
            return nullptr;
        if (!VirtualAlloc(base, bytes, MEM_COMMIT, PAGE_READWRITE))
        {
            VirtualFree(base, 0, MEM_RELEASE);
            return nullptr;
        }
        entry = {base, static_cast<Byte *>(PlaceAtEnd(base + bytes, size)), size, counted};
        ++g_largeBlocks;
        return entry.block;
    }
    return nullptr;
}

void * AllocateOrdinary(std::size_t size, bool counted)
{
    if (!g_heap)
        g_heap = HeapCreate(HEAP_NO_SERIALIZE, 0, 0);
    void * const raw = g_heap ? HeapAlloc(g_heap, HEAP_NO_SERIALIZE, size + sizeof(Header)) : nullptr;
    if (!raw)
        return nullptr;
    // The heap aligns to 8 on 32-bit, which is what malloc promises there.
    Header const header{MAGIC, counted, size};
    std::memcpy(raw, &header, sizeof header);
    return static_cast<Byte *>(raw) + sizeof header;
}

void * Allocate(std::size_t size)
{
    if (void * const block = g_front ? g_front->Allocate(size) : nullptr)
        return block;
    DWORD const thread = GetCurrentThreadId();
    Locked const lock;
    if (g_failOn && g_failThread == thread && g_failIn != 0)
    {
        if (g_failIn == 1)
        {
            g_failed = true;
            g_failOn = !g_failOnce;
            errno = ENOMEM;
            return nullptr;
        }
        --g_failIn;
    }
    if (size > LARGEST)
    {
        errno = ENOMEM;
        return nullptr;
    }
    bool const counted = !(g_uncountedDepth && g_uncountedThread == thread);
    std::size_t const room = size ? size : 1;
    void * block = nullptr;
    if (room >= OWN_RESERVATION)
        block = AllocateLarge(room, counted);
    else if (g_guards && g_guarded < MOST_GUARDED)
        block = AllocateGuarded(room, counted);
    if (!block)
        block = AllocateOrdinary(room, counted);
    if (!block)
        errno = ENOMEM;
    else if (counted)
    {
        ++g_liveBlocks;
        g_liveBytes += room;
    }
    return block;
}

// What is known about a live block.
struct Found
{
    enum class Kind
    {
        Foreign,
        Guarded,
        Large,
        Ordinary
    } kind;
    std::size_t size;
    bool counted;
    Arena * arena;
    PageRecord * record;
    Large * large;
};

Found Find(void * block)
{
    Byte * const at = static_cast<Byte *>(block);
    for (std::size_t i = 0; i < g_arenaCount; ++i)
    {
        Arena & arena = g_arenas[i];
        if (at < arena.base || at >= arena.base + ARENA_PAGES * PAGE_BYTES)
            continue;
        PageRecord & record = arena.pages[static_cast<std::size_t>(at - arena.base) / PAGE_BYTES];
        if (record.state == State::Freed)
            Fault("freed twice", block);
        Byte const * const end = arena.base + (static_cast<std::size_t>(&record - arena.pages) - record.runStartBack +
                                               ClassPages(record.sizeClass)) *
                                                  PAGE_BYTES;
        if (record.state != State::Live || at > end - record.size || at + ALIGNMENT <= end - record.size)
            Fault("not the start of a block", block);
        return {Found::Kind::Guarded, record.size, record.counted, &arena, &record, nullptr};
    }
    for (std::size_t i = 0; i < LARGE_BLOCKS && g_largeBlocks; ++i)
        if (Large & entry = g_large[i]; entry.block == at)
            return {Found::Kind::Large, entry.size, entry.counted, nullptr, nullptr, &entry};
    // The runtime's own blocks (from functions that allocate inside msvcrt.dll) are told by the missing header.
    Header header;
    std::memcpy(&header, at - sizeof header, sizeof header);
    if (header.magic == MAGIC)
        return {Found::Kind::Ordinary, header.size, header.counted != 0, nullptr, nullptr, nullptr};
    return {Found::Kind::Foreign, 0, false, nullptr, nullptr, nullptr};
}

void FreeGuarded(Byte * block, Arena & arena, PageRecord & record)
{
    std::size_t const page = static_cast<std::size_t>(&record - arena.pages);
    std::size_t const first = page - record.runStartBack;
    std::size_t const sizeClass = record.sizeClass;
    Byte * const end = arena.base + (first + ClassPages(sizeClass)) * PAGE_BYTES;
    CheckSlack(block, record.size, end);
    VirtualFree(arena.base + page * PAGE_BYTES, static_cast<std::size_t>(end - arena.base) - page * PAGE_BYTES,
                MEM_DECOMMIT);
    record.state = State::Freed;
    --g_guarded;

    arena.pages[first].next = 0;
    std::uint32_t const number =
        static_cast<std::uint32_t>(PageNumber(static_cast<std::size_t>(&arena - g_arenas), first)) + 1;
    Queue & queue = g_waiting[sizeClass];
    if (queue.length++)
        g_arenas[(queue.last - 1) / ARENA_PAGES].pages[(queue.last - 1) % ARENA_PAGES].next = number;
    else
        queue.first = number;
    queue.last = number;
}

template <class Function>
Function * Runtime(char const * name)
{
    return reinterpret_cast<Function *>(reinterpret_cast<void *>(GetProcAddress(GetModuleHandleA("msvcrt.dll"), name)));
}

void Free(void * block)
{
    if (g_front && g_front->Owns(block))
        return g_front->Free(block);
    {
        Locked const lock;
        Found const found = Find(block);
        if (found.counted)
        {
            --g_liveBlocks;
            g_liveBytes -= found.size;
        }
        switch (found.kind)
        {
        case Found::Kind::Guarded:
            FreeGuarded(static_cast<Byte *>(block), *found.arena, *found.record);
            return;
        case Found::Kind::Large:
            CheckSlack(static_cast<Byte *>(block), found.size,
                       found.large->base + (found.size + PAGE_BYTES - 1) / PAGE_BYTES * PAGE_BYTES);
            VirtualFree(found.large->base, 0, MEM_RELEASE);
            *found.large = {};
            --g_largeBlocks;
            return;
        case Found::Kind::Ordinary:
        {
            Byte * const raw = static_cast<Byte *>(block) - sizeof(Header);
            std::memset(raw, 0, sizeof(Header));
            HeapFree(g_heap, HEAP_NO_SERIALIZE, raw);
            return;
        }
        case Found::Kind::Foreign:
            break;
        }
    }
    Runtime<void(void *)>("free")(block);
}

} // namespace

// Some of these are declared as imports by the runtime's headers; here they are defined.
#pragma GCC diagnostic ignored "-Wattributes"

extern "C"
{

    void * __cdecl malloc(std::size_t size)
    {
        return Allocate(size);
    }

    void __cdecl free(void * block)
    {
        if (block)
            Free(block);
    }

    void * __cdecl calloc(std::size_t count, std::size_t size)
    {
        std::size_t bytes;
        if (__builtin_mul_overflow(count, size, &bytes))
        {
            errno = ENOMEM;
            return nullptr;
        }
        void * const block = Allocate(bytes);
        if (block)
            std::memset(block, 0, bytes);
        return block;
    }

    std::size_t __cdecl _msize(void * block)
    {
        if (g_front && g_front->Owns(block))
            return g_front->Size(block);
        {
            Locked const lock;
            Found const found = Find(block);
            if (found.kind != Found::Kind::Foreign)
                return found.size;
        }
        return Runtime<std::size_t(void *)>("_msize")(block);
    }

    // Always moves, so that a pointer kept from before is found out.
    void * __cdecl realloc(void * block, std::size_t size)
    {
        if (!block)
            return Allocate(size);
        if (!size)
        {
            Free(block);
            return nullptr;
        }
        std::size_t const old = _msize(block);
        void * const moved = Allocate(size);
        if (moved)
        {
            std::memcpy(moved, block, old < size ? old : size);
            Free(block);
        }
        return moved;
    }

} // extern "C"

namespace VekGuard
{

std::size_t LiveBlocks() noexcept
{
    Locked const lock;
    return g_liveBlocks;
}

std::size_t LiveBytes() noexcept
{
    Locked const lock;
    return g_liveBytes;
}

void FailAllocation(std::size_t n) noexcept
{
    Locked const lock;
    g_failThread = GetCurrentThreadId();
    g_failIn = n;
    g_failOn = true;
    g_failed = false;
    g_failOnce = true;
}

void FailFrom(std::size_t n) noexcept
{
    FailAllocation(n);
    Locked const lock;
    g_failOnce = false;
}

bool FailReset() noexcept
{
    Locked const lock;
    g_failOn = false;
    return g_failed;
}

void SetFrontHeap(FrontHeap * heap) noexcept
{
    g_front = heap;
}

void SetGuarding(bool guards) noexcept
{
    g_guards = g_isExact = guards;
}

Uncounted::Uncounted() noexcept
{
    Locked const lock;
    g_uncountedThread = GetCurrentThreadId();
    ++g_uncountedDepth;
}

Uncounted::~Uncounted()
{
    Locked const lock;
    --g_uncountedDepth;
}

} // namespace VekGuard

#else

namespace VekGuard
{

std::size_t LiveBlocks() noexcept
{
    return 0;
}
std::size_t LiveBytes() noexcept
{
    return 0;
}
void FailAllocation(std::size_t) noexcept {}
void FailFrom(std::size_t) noexcept {}
bool FailReset() noexcept
{
    return false;
}
void SetFrontHeap(FrontHeap *) noexcept {}
void SetGuarding(bool) noexcept {}
Uncounted::Uncounted() noexcept = default;
Uncounted::~Uncounted() = default;

} // namespace VekGuard

#endif
