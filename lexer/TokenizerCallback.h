#pragma once

#include "VekLexer.h"
#include "VekRef.h"

#include "lexer/TokenList.h"

/// Collects what a lexer reports about one text. The texts and the lengths in the text that a lexer does not tell are
/// taken from the text itself, as far as it agrees with what is told.
class CVekTokenizerCallback final : public CVekRefCounted<IVekLexer::Callback>
{
public:
    CVekTokenizerCallback(wchar_t const * text, int length);

    /// Ends collecting: the text is going away, whoever still holds the callback. The tokens, which the caller owns
    /// then; null when some are missing because memory is exhausted.
    vek::TokenList * Finish();

    void OnKeywordFound(wchar_t const * text, int id, int position, int line, int column) override;
    void OnOperatorFound(wchar_t const * text, int id, int position, int line, int column) override;
    void OnIdentifierFound(wchar_t const * text, int position, int line, int column) override;
    void OnIntegerFound(int value, IVekLexer::NUM_FORMAT format, int position, int line, int column) override;
    void OnFloatFound(double value, int position, int line, int column) override;
    void OnStringFound(wchar_t const * text, int position, int line, int column) override;
    void OnInvalidSyntax(wchar_t const * text, int position, int line, int column) override;
    void OnError(wchar_t const * text, int position, int line, int column) override;

private:
    /// The place in the text, its end for a position outside.
    wchar_t const * At(int position) const;
    /// The characters that are there from the place, at most that many.
    int Reach(int position, int length) const;
    /// Adds a token with the text that is told.
    CVekToken * AddTold(IVekTokenizer::TOKEN_KIND kind, wchar_t const * text, int position, int line, int column);
    /// Adds a token with a text of that length.
    CVekToken * Add(IVekTokenizer::TOKEN_KIND kind, wchar_t const * text, size_t length, int position, int line,
                    int column);
    CVekToken * AddNumber(IVekTokenizer::TOKEN_KIND kind, int position, int line, int column);
    /// Adds a token with the characters at the place, unless another text is told.
    CVekToken * AddWhole(IVekTokenizer::TOKEN_KIND kind, wchar_t const * told, wchar_t const * place, size_t length,
                         int position, int line, int column);
    CVekToken * Finish(CVekToken * token, IVekTokenizer::TOKEN_KIND kind, int position, int line, int column);

    wchar_t const * m_text;
    wchar_t const * m_end;
    CVekRef<vek::TokenList> m_tokens;
};
