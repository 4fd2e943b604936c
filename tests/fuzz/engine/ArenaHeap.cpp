#include "fuzz/engine/ArenaHeap.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace fuzz
{

namespace
{

using Byte = unsigned char;

constexpr std::size_t ARENA_BYTES = 256 << 20;
constexpr std::size_t LARGEST = 8 << 20; // larger ones are the guard heap's
constexpr std::size_t ALIGNMENT = 16;
constexpr std::size_t ZONE = 16; // behind a block, and more up to the alignment
constexpr std::uint32_t LIVE = 0xA11C0DE1, FREED = 0xF4EEDBAD;
constexpr Byte ZONE_BYTE = 0xA5, FRESH_BYTE = 0xCD, FREED_BYTE = 0xDD;

std::size_t Rounded(std::size_t size)
{
    return (size + ZONE + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
}

bool IsFilled(Byte const * bytes, std::size_t count, Byte byte)
{
    return count == 0 || (bytes[0] == byte && std::memcmp(bytes, bytes + 1, count - 1) == 0);
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
        return (state == LIVE || state == FREED) && IsFilled(zone, sizeof zone, ZONE_BYTE) &&
               IsFilled(Bytes() + size, Rounded(size) - size, ZONE_BYTE);
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
            m_damage = "the bytes around a block were written to";
        else if (block.state == FREED && !IsFilled(block.Bytes(), block.size, FREED_BYTE))
            m_damage = "a freed block was written to";
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
    std::memset(block.zone, ZONE_BYTE, sizeof block.zone);
    Byte * const bytes = block.Bytes();
    std::memset(bytes, FRESH_BYTE, size);
    std::memset(bytes + size, ZONE_BYTE, rounded - size);
    m_at = bytes + rounded;
    ++m_live;
    return bytes;
}

ArenaHeap::Block * ArenaHeap::Find(void * bytes)
{
    Block * const block = static_cast<Block *>(bytes) - 1;
    if (block->state == LIVE && block->HasZones())
        return block;
    if (!m_damage)
        m_damage = block->state == FREED  ? "a block was freed twice"
                   : block->state == LIVE ? "the bytes around a block were written to"
                                          : "what was freed is no block";
    return nullptr;
}

void ArenaHeap::Free(void * bytes)
{
    Block * const block = Find(bytes);
    if (!block)
        return;
    block->state = FREED;
    std::memset(bytes, FREED_BYTE, block->size);
    --m_live;
}

std::size_t ArenaHeap::Size(void const * bytes) const
{
    return (static_cast<Block const *>(bytes) - 1)->size;
}

} // namespace fuzz
