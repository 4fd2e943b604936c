// A heap for many short runs: blocks lie one behind the other between zones of known bytes, freed ones are filled and
// not given out again, and at the end of a run all of it is looked through and forgotten. No call of the system.
#pragma once

#include "support/GuardHeap.h"

namespace fuzz
{

class ArenaHeap final : public VekGuard::FrontHeap
{
public:
    ArenaHeap();

    // What is allocated from now on comes from here.
    void Begin();
    // Goes back to the guard heap. What does not hold of its blocks; null if all does. What is still in use
    // stays where it is, for good.
    char const * End();
    // Blocks in use, those of runs before counted in.
    std::size_t LiveBlocks() const { return m_live; }

    void * Allocate(std::size_t size) override;
    bool Owns(void const * block) const override { return block >= m_arena && block < m_end; }
    void Free(void * block) override;
    std::size_t Size(void const * block) const override;

private:
    struct Block;

    unsigned char * m_arena;
    unsigned char * m_end;
    unsigned char * m_begin; // of the run
    unsigned char * m_at;
    std::size_t m_live = 0;
    char const * m_damage = nullptr;
    bool m_isOn = false;
};

} // namespace fuzz
