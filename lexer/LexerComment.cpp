#include "lexer/LexerComment.h"

#include "text/Fold.h"

bool CVekLexer::Comment::Matches(CVekString<wchar_t> const & delimiter, int from, wchar_t const * at,
                                 wchar_t const * end)
{
    int const count = delimiter.GetLength() - from;
    return count <= 0 || (end - at >= count && vek::EqualsNoCase(at, delimiter + from, count));
}
