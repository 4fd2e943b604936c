#include "lexer/OperatorTree.h"

#include "lexer/Span.h"
#include "text/Scan.h"

#include <limits.h>

#include <new>

namespace vek
{

// cppcheck-suppress uninitMemberVar ; every element is set
OperatorTree::OperatorTree() noexcept
{
    for (int & root : m_roots)
        root = NONE;
}

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
    if (length >= INT_MAX || m_nodes.Size() > INT_MAX - depth - 1 || !m_nodes.Reserve(m_nodes.Size() + depth + 1) ||
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
        m_nodes.Append({0, NONE, NONE, nullptr, nullptr});
    int at = ROOT;
    for (size_t i = 0; i < depth; ++i)
    {
        int const child = FindChild(at, text[i]);
        at = child != NONE ? child : AddChild(at, text[i], added);
    }
    Node & last = m_nodes[static_cast<size_t>(at)];
    if (!last.whole && depth == length)
        last.whole = added;
    return true;
}

int OperatorTree::FindChild(int parent, wchar_t unit) const noexcept
{
    int at = FirstChild(parent, unit);
    while (at != NONE && m_nodes[static_cast<size_t>(at)].unit != unit)
        at = m_nodes[static_cast<size_t>(at)].sibling;
    return at;
}

int OperatorTree::AddChild(int parent, wchar_t unit, CVekLexer::Operator const * first) noexcept
{
    int const index = static_cast<int>(m_nodes.Size());
    m_nodes.Append({unit, NONE, FirstChild(parent, unit), first, nullptr}); // there is room: nothing moves
    (parent == ROOT ? m_roots[unit % ROOTS] : m_nodes[static_cast<size_t>(parent)].child) = index;
    return index;
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
        int const child = FindChild(node, at[depth]);
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
