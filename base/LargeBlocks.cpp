#include "base/LargeBlocks.h"

#include <stdlib.h>

#include <atomic>
#include <bit>

namespace vek
{
namespace
{

// One block of each power of two from the first to the last size, 16 MB in all.
constexpr size_t FIRST_KEPT = 32 * 1024;
constexpr size_t LAST_KEPT = 8 * 1024 * 1024;
constexpr size_t KEPT_SIZES = static_cast<size_t>(std::countr_zero(LAST_KEPT) - std::countr_zero(FIRST_KEPT) + 1);

#if defined(VEKLIB_GUARD)
constexpr bool KEEPS = false; // whoever uses a block that is freed is to be met
#else
constexpr bool KEEPS = true;
#endif

/// The blocks that wait, given back when the library goes. A place is taken and filled in one step, without a lock.
struct KeptBlocks
{
    constexpr KeptBlocks() noexcept = default;
    KeptBlocks(KeptBlocks const &) = delete;
    KeptBlocks & operator=(KeptBlocks const &) = delete;
    ~KeptBlocks()
    {
        isOver = true; // strings of other static objects may go after this
        for (std::atomic<void *> & place : places)
            free(place.exchange(nullptr));
    }

    /// The place for blocks of that size, or null.
    std::atomic<void *> * PlaceOf(size_t size) noexcept
    {
        bool const isKept = KEEPS && size >= FIRST_KEPT && size <= LAST_KEPT && std::has_single_bit(size) && !isOver;
        return isKept ? &places[std::countr_zero(size) - std::countr_zero(FIRST_KEPT)] : nullptr;
    }

    std::atomic<void *> places[KEPT_SIZES] = {};
    std::atomic<bool> isOver{false};
};

constinit KeptBlocks g_kept;

} // namespace

void * LargeAllocate(size_t size) noexcept
{
    std::atomic<void *> * const place = g_kept.PlaceOf(size);
    void * const kept = place ? place->exchange(nullptr) : nullptr;
    return kept ? kept : malloc(size);
}

void LargeFree(void * block, size_t size) noexcept
{
    std::atomic<void *> * const place = g_kept.PlaceOf(size);
    free(place ? place->exchange(block) : block);
}

} // namespace vek
