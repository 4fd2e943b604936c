#include "base/Nothing.h"

#include <windows.h>

#include <atomic>

namespace vek
{
namespace
{

// The objects of all types that are asked for together take less.
constexpr size_t AREA_SIZE = 1024;

void WINAPI FreeArea(void * area)
{
    HeapFree(GetProcessHeap(), 0, area);
}

/// The system's index of the areas, each of which goes with its thread or, at the latest, with the library.
struct AreaIndex
{
    AreaIndex() noexcept : value(FlsAlloc(FreeArea)) {}
    AreaIndex(AreaIndex const &) = delete;
    AreaIndex & operator=(AreaIndex const &) = delete;
    ~AreaIndex()
    {
        if (value != FLS_OUT_OF_INDEXES)
            FlsFree(value);
    }

    DWORD value;
};

} // namespace

size_t ReserveNothing(size_t bytes) noexcept
{
    static std::atomic<size_t> used{0};
    return used.fetch_add((bytes + 15) / 16 * 16);
}

unsigned char * ThreadArea() noexcept
{
    alignas(16) static unsigned char shared[AREA_SIZE];
    static AreaIndex const index;
    if (index.value == FLS_OUT_OF_INDEXES)
        return shared;
    void * area = FlsGetValue(index.value);
    if (!area)
    {
        area = HeapAlloc(GetProcessHeap(), 0, AREA_SIZE);
        if (!area || !FlsSetValue(index.value, area))
        {
            if (area)
                FreeArea(area);
            return shared;
        }
    }
    return static_cast<unsigned char *>(area);
}

} // namespace vek
