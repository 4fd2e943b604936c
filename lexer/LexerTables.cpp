#include "lexer/LexerTables.h"

#include "text/Scan.h"

#include <new>

CVekLexer::Tables::~Tables()
{
    for (size_t i = 0; i < comments.Size(); ++i)
        delete comments[i];
}

bool CVekLexer::Tables::AddComment(wchar_t const * start, wchar_t const * end)
{
    if (!comments.Reserve(comments.Size() + 1))
        return false;
    auto * const comment = new (std::nothrow) Comment(start, end);
    if (!comment || comment->m_start.Compare(start) != 0 || comment->m_end.Compare(end) != 0)
    {
        delete comment;
        return false;
    }
    startsComment[static_cast<unsigned char>(start[0])] = true;
    return comments.Append(comment);
}

CVekLexer::Comment const * CVekLexer::Tables::SearchComment(wchar_t const * at, wchar_t const * end) const
{
    for (size_t i = 0; i < comments.Size(); ++i)
        if (comments[i]->StartsAt(at, end))
            return comments[i];
    return nullptr;
}
