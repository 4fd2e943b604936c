#include "fuzz/engine/ArenaHeap.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <cstdint>
#include <emmintrin.h>

namespace fuzz
{

namespace
{

using Byte = unsigned char;

constexpr std::size_t ARENA_BYTES = 256 << 20;
constexpr std::size_t LARGEST = 8 << 20;      // larger ones are the guard heap's
constexpr std::size_t STEP = sizeof(__m128i); // all is rounded up to it
constexpr std::size_t ZONE = STEP;            // behind a block, and more up to the next step
constexpr std::size_t LARGE = 2048, END = 512;
constexpr std::uint32_t LIVE = 0xA11C0DE1, FREED = 0xF4EEDBAD;
constexpr Byte ZONE_BYTE = 0xA5, FRESH_BYTE = 0xCD, FREED_BYTE = 0xDD;

std::size_t Rounded(std::size_t size)
{
    return (size + ZONE + STEP - 1) / STEP * STEP;
}

// Calls for the bytes up to a step, for the steps and for the bytes behind them, until one is false. The runtime's
// routines take longer for so few bytes.
template <class One, class Step>
bool ForAll(Byte * at, Byte * end, One one, Step step)
{
    for (; at < end && reinterpret_cast<std::uintptr_t>(at) % STEP; ++at)
        if (!one(*at))
            return false;
    for (; static_cast<std::size_t>(end - at) >= STEP; at += STEP)
        if (!step(reinterpret_cast<__m128i *>(at)))
            return false;
    for (; at < end; ++at)
        if (!one(*at))
            return false;
    return true;
}

// Of a large block only its ends.
template <class Part>
bool ForEnds(Byte * at, std::size_t size, Part part)
{
    return size <= LARGE ? part(at, at + size) : part(at, at + END) && part(at + size - END, at + size);
}

bool Fill(Byte * at, Byte * end, Byte byte)
{
    __m128i const bytes = _mm_set1_epi8(static_cast<char>(byte));
    return ForAll(
        at, end, [=](Byte & one) { return one = byte, true; },
        [=](__m128i * step) { return _mm_store_si128(step, bytes), true; });
}

bool IsFilled(Byte * at, Byte * end, Byte byte)
{
    __m128i const bytes = _mm_set1_epi8(static_cast<char>(byte));
    return ForAll(
        at, end, [=](Byte one) { return one == byte; },
        [=](__m128i const * step) { return _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_load_si128(step), bytes)) == 0xFFFF; });
}

} // namespace

// What stands in front of the bytes that are given out.
struct ArenaHeap::Block
{
    std::uint32_t size;
    std::uint32_t state;
    Byte zone[ZONE - 2 * sizeof(std::uint32_t)];

    Byte * Bytes() { return reinterpret_cast<Byte *>(this + 1); }
    bool HasZones()
    {
        return (state == LIVE || state == FREED) && IsFilled(zone, zone + sizeof zone, ZONE_BYTE) &&
               IsFilled(Bytes() + size, Bytes() + Rounded(size), ZONE_BYTE);
    }
};

ArenaHeap::ArenaHeap()
    : m_arena(static_cast<Byte *>(VirtualAlloc(nullptr, ARENA_BYTES, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE))),
      m_end(m_arena ? m_arena + ARENA_BYTES : m_arena), m_begin(m_arena), m_at(m_arena)
{
    VekGuard::SetFrontHeap(this);
}

void ArenaHeap::Begin()
{
    m_damage = nullptr;
    m_isOn = true;
}

char const * ArenaHeap::End()
{
    m_isOn = false;
    bool isInUse = false;
    for (Byte * at = m_begin; at < m_at && !m_damage;)
    {
        Block & block = *reinterpret_cast<Block *>(at);
        if (!block.HasZones())
            m_damage = "nothing writes around a block";
        else if (block.state == FREED &&
                 !ForEnds(block.Bytes(), block.size,
                          [](Byte * from, Byte * end) { return IsFilled(from, end, FREED_BYTE); }))
            m_damage = "nothing writes to a freed block";
        isInUse = isInUse || block.state == LIVE;
        at = block.Bytes() + Rounded(block.size);
    }
    if (isInUse)
        m_begin = m_at;
    m_at = m_begin;
    return m_damage;
}

void * ArenaHeap::Allocate(std::size_t size)
{
    if (!m_isOn || size > LARGEST)
        return nullptr;
    std::size_t const rounded = Rounded(size);
    if (sizeof(Block) + rounded > static_cast<std::size_t>(m_end - m_at))
        return nullptr;
    Block & block = *reinterpret_cast<Block *>(m_at);
    block.size = static_cast<std::uint32_t>(size);
    block.state = LIVE;
    Fill(block.zone, block.zone + sizeof block.zone, ZONE_BYTE);
    Byte * const bytes = block.Bytes();
    ForEnds(bytes, size, [](Byte * from, Byte * end) { return Fill(from, end, FRESH_BYTE); });
    Fill(bytes + size, bytes + rounded, ZONE_BYTE);
    m_at = bytes + rounded;
    ++m_live;
    return bytes;
}

// What was written around it shows in the end.
void ArenaHeap::Free(void * bytes)
{
    Block & block = *(static_cast<Block *>(bytes) - 1);
    if (block.state != LIVE)
    {
        m_damage = block.state == FREED ? "a block is freed once" : "what is freed is a block";
        return;
    }
    block.state = FREED;
    ForEnds(block.Bytes(), block.size, [](Byte * from, Byte * end) { return Fill(from, end, FREED_BYTE); });
    --m_live;
}

std::size_t ArenaHeap::Size(void const * bytes) const
{
    return (static_cast<Block const *>(bytes) - 1)->size;
}

} // namespace fuzz
