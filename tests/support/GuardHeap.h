// A heap for tests that stops overruns and uses after free at the instruction, counts live blocks and lets allocations
// fail on demand. It replaces malloc and its family in static test programs built with VEKLIB_GUARD; in all other
// builds these functions exist and do nothing, so that a test can be written once (see VekGuard::Active).
#pragma once

#include <cstddef>

namespace VekGuard
{

#ifdef VEKLIB_GUARD
constexpr bool Active = true;
#else
constexpr bool Active = false;
#endif

std::size_t LiveBlocks() noexcept; // uncounted ones (see Uncounted) left out
std::size_t LiveBytes() noexcept;

// Allocations of the calling thread fail from now on: only the n-th (1 is the next one), or the n-th and all after it.
void FailAllocation(std::size_t n) noexcept;
void FailFrom(std::size_t n) noexcept;
// Ends failing. True when an allocation has failed since it was armed: a loop over n can stop at the first false.
bool FailReset() noexcept;

// Blocks that the calling thread allocates while one of these lives are not counted: caches that stay for good.
class Uncounted
{
public:
    Uncounted() noexcept;
    ~Uncounted();
    Uncounted(Uncounted const &) = delete;
    Uncounted & operator=(Uncounted const &) = delete;
};

// Another heap in front of this one, for which speed counts more; what it does not allocate comes from here.
class FrontHeap
{
public:
    virtual void * Allocate(std::size_t size) = 0; // null when it leaves the block to the guard heap
    virtual bool Owns(void const * block) const = 0;
    virtual void Free(void * block) = 0;
    virtual std::size_t Size(void const * block) const = 0;

protected:
    ~FrontHeap() = default;
};
void SetFrontHeap(FrontHeap * heap) noexcept;
// Whether blocks are guarded from now on; others cost little. At first they are, and have the usual alignment; from the
// first call on each ends right at its page's end.
void SetGuarding(bool guards) noexcept;

} // namespace VekGuard
