#include "lexer/LexerTables.h"

#include <new>
#include <utility>

CVekLexer::Tables::~Tables()
{
    for (Comment * comment : firstComments)
        while (comment)
            delete std::exchange(comment, comment->m_next);
}

bool CVekLexer::Tables::AddComment(wchar_t const * start, wchar_t const * end)
{
    auto * const comment = new (std::nothrow) Comment(start, end);
    if (!comment || comment->m_start.Compare(start) != 0 || comment->m_end.Compare(end) != 0)
    {
        delete comment;
        return false;
    }
    auto const chain = static_cast<unsigned char>(start[0]);
    (lastComments[chain] ? lastComments[chain]->m_next : firstComments[chain]) = comment;
    lastComments[chain] = comment;
    return true;
}
