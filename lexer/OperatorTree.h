#pragma once

#include "lexer/LexerOperator.h"

#include "base/Buffer.h"
#include "lexer/CharClass.h"

namespace vek
{

/// The operators as a tree of their characters: the longest beginning of a run is found in one walk along it.
class OperatorTree
{
public:
    struct Match
    {
        CVekLexer::Operator const * found; // null when no operator begins as the run does
        size_t length;                     // of the run's part
    };

    OperatorTree() noexcept;
    OperatorTree(OperatorTree const &) = delete;
    OperatorTree & operator=(OperatorTree const &) = delete;
    ~OperatorTree();

    /// False, with nothing added, when memory is exhausted.
    bool Add(wchar_t const * text, int id) noexcept;
    /// Finds the operator for the run at the place, which is not the end.
    Match Find(wchar_t const * at, wchar_t const * end) const noexcept;

private:
    struct Node
    {
        wchar_t unit;
        int child;                         // the first of its children; NONE for none, and for the root
        int sibling;                       // the next in the same list
        CVekLexer::Operator const * first; // the first registered that has this beginning
        CVekLexer::Operator const * whole; // the first registered whose text ends here
    };
    static constexpr int NONE = -1;
    static constexpr int ROOT = 0;
    static constexpr size_t ROOTS = 256;

    int FirstChild(int parent, wchar_t unit) const noexcept
    {
        return parent == ROOT ? m_roots[unit % ROOTS] : m_nodes[static_cast<size_t>(parent)].child;
    }
    int FindChild(int parent, wchar_t unit) const noexcept;
    int AddChild(int parent, wchar_t unit, CVekLexer::Operator const * first) noexcept;

    Buffer<CVekLexer::Operator *> m_operators;
    Buffer<Node> m_nodes;
    int m_roots[ROOTS]; // the lists of the root's children, by the low byte of their characters
};

} // namespace vek
