#pragma once

#include "lexer/LexerOperator.h"

#include "base/Buffer.h"
#include "lexer/CharClass.h"

namespace vek
{

/// The operators as a tree of their characters: the longest beginning of a run is found in one walk along it. The steps
/// of the walk are found by a hash, so that it doesn't matter how many operators there are.
class OperatorTree
{
public:
    struct Match
    {
        CVekLexer::Operator const * found; // null when no operator begins as the run does
        size_t length;                     // of the run's part
    };

    OperatorTree() = default;
    OperatorTree(OperatorTree const &) = delete;
    OperatorTree & operator=(OperatorTree const &) = delete;
    ~OperatorTree();

    /// False, with nothing added, when memory is exhausted.
    bool Add(wchar_t const * text, int id) noexcept;
    /// Finds the operator for the run at the place, which is not the end.
    Match Find(wchar_t const * at, wchar_t const * end) const noexcept;
    /// The same for a run of one character, or one of an operator that none goes on from, as most are: told without a
    /// walk. Null for any other run.
    CVekLexer::Operator const * FindSingle(wchar_t const * at, wchar_t const * end) const noexcept
    {
        wchar_t const unit = *at;
        if (unit >= CLASSED_UNITS)
            return nullptr;
        Head const & head = m_heads[unit];
        bool const isSingle = end - at == 1 || ClassOf(at[1]) & CLASS_ENDS_RUN || (!head.goesOn && at[1] != 0);
        return isSingle ? head.first : nullptr;
    }

private:
    struct Node
    {
        int parent;
        wchar_t unit;
        CVekLexer::Operator const * first; // the first registered that has this beginning
        CVekLexer::Operator const * whole; // the first registered whose text ends here
    };
    /// What the tree has for a first character, once more.
    struct Head
    {
        CVekLexer::Operator const * first;
        bool goesOn; // some operator has another character behind it
    };
    static constexpr int NONE = -1;
    static constexpr int ROOT = 0;

    /// The slot of a node, or the empty one where it belongs.
    size_t FindSlot(int parent, wchar_t unit) const noexcept;
    bool MakeSlots(size_t nodes) noexcept;

    Buffer<CVekLexer::Operator *> m_operators;
    Buffer<Node> m_nodes;
    Buffer<int> m_slots; // a power of two, at least half of them empty, or none
    Head m_heads[CLASSED_UNITS] = {};
};

} // namespace vek
