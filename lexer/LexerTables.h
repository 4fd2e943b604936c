#pragma once

#include "lexer/KeywordTable.h"
#include "lexer/LexerComment.h"
#include "lexer/OperatorTree.h"

/// What is registered with a lexer. RemoveAll gives it up as a whole, and a Parse that is under way keeps it until it
/// looks for its next token. The count is for one thread, as the lexer is.
struct CVekLexer::Tables
{
    Tables() = default;
    Tables(Tables const &) = delete;
    Tables & operator=(Tables const &) = delete;

    void AddRef() { ++users; }
    void Release()
    {
        if (--users == 0)
            delete this;
    }

    /// False, with nothing added, when memory is exhausted.
    bool AddComment(wchar_t const * start, wchar_t const * end);
    /// The first comment whose start delimiter stands at the place, or null.
    Comment const * FindComment(wchar_t const * at, wchar_t const * end) const
    {
        Comment const * comment = firstComments[static_cast<unsigned char>(*at)];
        while (comment && !comment->StartsAt(at, end))
            comment = comment->m_next;
        return comment;
    }

    vek::KeywordTable keywords;
    vek::OperatorTree operators;

private:
    ~Tables();

    // In the order of registration, by the low byte of the start's first character.
    Comment * firstComments[256] = {};
    Comment * lastComments[256] = {};
    int users = 1;
};
