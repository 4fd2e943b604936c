#include "lexer/OperatorTree.h"

#include "lexer/Span.h"
#include "text/Scan.h"

#include <limits.h>

#include <bit>
#include <new>

namespace vek
{
namespace
{

constexpr size_t MOST_NODES = INT_MAX / 4;

} // namespace

OperatorTree::~OperatorTree()
{
    for (size_t i = 0; i < m_operators.Size(); ++i)
        delete m_operators[i];
}

bool OperatorTree::Add(wchar_t const * text, int id) noexcept
{
    // A run is never longer than that, and what an operator has behind it never counts.
    size_t const length = TextLength(text);
    size_t const depth = length < LONGEST_WORD ? length : LONGEST_WORD;
    size_t const nodes = m_nodes.Size() + depth + 1;
    if (length >= INT_MAX || nodes > MOST_NODES || !m_nodes.Reserve(nodes) || !MakeSlots(nodes) ||
        !m_operators.Reserve(m_operators.Size() + 1))
        return false;
    auto * const added = new (std::nothrow) CVekLexer::Operator(text, static_cast<int>(length), id);
    if (!added || added->m_text.GetLength() != static_cast<int>(length))
    {
        delete added;
        return false;
    }
    m_operators.Append(added);
    if (m_nodes.Empty())
        m_nodes.Append({NONE, 0, nullptr, nullptr});
    int at = ROOT;
    for (size_t i = 0; i < depth; ++i)
    {
        int & child = m_slots[FindSlot(at, text[i])];
        if (child == NONE)
        {
            child = static_cast<int>(m_nodes.Size());
            m_nodes.Append({at, text[i], added, nullptr}); // there is room
        }
        at = child;
    }
    Node & last = m_nodes[static_cast<size_t>(at)];
    if (!last.whole && depth == length)
        last.whole = added;
    if (depth > 0 && text[0] < CLASSED_UNITS)
    {
        Head & head = m_heads[text[0]];
        head = {head.first ? head.first : added, head.goesOn || depth > 1};
    }
    return true;
}

size_t OperatorTree::FindSlot(int parent, wchar_t unit) const noexcept
{
    uint32_t const key = (static_cast<uint32_t>(parent) * 0x85EBCA6BU + unit) * 0x9E3779B1U;
    size_t const mask = m_slots.Size() - 1;
    for (size_t slot = (key ^ key >> 15) & mask;; slot = (slot + 1) & mask)
    {
        int const index = m_slots[slot];
        if (index == NONE)
            return slot;
        Node const & node = m_nodes[static_cast<size_t>(index)];
        if (node.parent == parent && node.unit == unit)
            return slot;
    }
}

bool OperatorTree::MakeSlots(size_t nodes) noexcept
{
    if (m_slots.Size() >= nodes * 2)
        return true;
    size_t const size = std::bit_ceil(nodes * 2);
    if (!m_slots.Reserve(size))
        return false;
    m_slots.Clear();
    m_slots.Extend(size);
    for (size_t i = 0; i < size; ++i)
        m_slots[i] = NONE;
    for (size_t i = 1; i < m_nodes.Size(); ++i)
        m_slots[FindSlot(m_nodes[i].parent, m_nodes[i].unit)] = static_cast<int>(i);
    return true;
}

OperatorTree::Match OperatorTree::Find(wchar_t const * at, wchar_t const * end) const noexcept
{
    if (m_nodes.Empty())
        return {nullptr, 0};
    size_t const limit = Available(at, end, LONGEST_WORD);
    int node = ROOT;
    size_t depth = 0;
    for (; depth < limit && !(ClassOf(at[depth]) & CLASS_ENDS_RUN); ++depth)
    {
        int const child = m_slots[FindSlot(node, at[depth])];
        if (child == NONE)
            break;
        node = child;
    }
    // Kept: beginnings are compared as texts, which end at a zero. So an operator in front of a zero takes the whole
    // run.
    Node const & reached = m_nodes[static_cast<size_t>(node)];
    if (reached.whole && depth < limit && at[depth] == 0)
        return {reached.whole, MeasureRun(at, end)};
    // Kept: an operator is found by its beginning, though it goes on where the run does not.
    return {reached.first, depth};
}

} // namespace vek
