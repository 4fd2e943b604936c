/// @file
/// The lexer, whose keywords, operators and comments are registered at run time, and the tokenizer that collects what a
/// lexer finds into a list.
///
/// @code
/// CVekLexer lexer;
/// CVekTokenizer tokenizer;
/// lexer.AddKeyword(L"while", 1, true);
/// lexer.AddOperator(L"<=", 2);
/// lexer.AddComment(L"/*", L"*/");
/// if (tokenizer.Tokenize(&lexer, L"while count <= 10", -1))
///     for (IVekTokenizer::IToken & token : VekTokens(tokenizer))
///         fputws(token.GetText(), stdout);
/// @endcode
#ifndef VEK_LEXER_H
#define VEK_LEXER_H

#include "VekCore.h"
#include "VekExport.h"

VEK_HEADER_BEGIN

namespace vek
{
class LexerRun;
class TokenList;
} // namespace vek

/// Scans a text and reports its tokens, one by one, to a callback. A lexer is set up once and then parses any number of
/// texts. Used by one thread at a time.
///
/// A callback may do anything to the lexer that calls it: what it registers, removes or sets counts from the next token
/// on, and a lexer that it releases lives until Parse returns.
class IVekLexer : public IVekObject
{
public:
    /// How an integer is written.
    enum NUM_FORMAT : int
    {
        NUM_DECIMAL = 1,
        NUM_OCTAL = 2,
        NUM_HEXADECIMAL = 3 // never reported: see Parse
    };

    /// Receives what a lexer finds; hosts implement it. Position, line and column are those of the token's first
    /// character, counted from 0. Texts are terminated and valid during the call.
    class Callback : public IVekObject
    {
    public:
        /// A word that is a keyword: as it stands in the text, and the keyword's identifier.
        virtual void OnKeywordFound(wchar_t const * text, int id, int position, int line, int column) = 0;
        /// An operator: its registered text and identifier.
        virtual void OnOperatorFound(wchar_t const * text, int id, int position, int line, int column) = 0;
        /// A word that is no keyword.
        virtual void OnIdentifierFound(wchar_t const * text, int position, int line, int column) = 0;
        /// An integer. One that is too large keeps its low 32 bits, as the runtime's scans do.
        virtual void OnIntegerFound(int value, IVekLexer::NUM_FORMAT format, int position, int line, int column) = 0;
        /// A number with a decimal point, with the precision of a float.
        virtual void OnFloatFound(double value, int position, int line, int column) = 0;
        /// A string in double quotes, without them.
        virtual void OnStringFound(wchar_t const * text, int position, int line, int column) = 0;
        /// A run of characters that no operator begins.
        virtual void OnInvalidSyntax(wchar_t const * text, int position, int line, int column) = 0;
        /// A malformed number ("Invalid number"): comes before the number itself.
        virtual void OnError(wchar_t const * text, int position, int line, int column) = 0;

    protected:
        ~Callback() = default;
    };

    /// Takes a reference to the callback and gives back that to the old one; null for none.
    virtual void SetCallback(IVekLexer::Callback * callback) = 0;
    /// The callback, no reference added.
    VEK_OVERLOADS2(virtual IVekLexer::Callback * GetCallback() = 0,
                   virtual IVekLexer::Callback * GetCallback() const = 0)
    /// Forgets every keyword, operator and comment; the callback stays.
    virtual void RemoveAll() = 0;
    /// Adds a comment from a start to an end delimiter, of at most 16 characters each; the end "\n" makes it a line
    /// comment. The start's first character counts with its case, all others without. 1, or 0 when memory is exhausted
    /// or a pointer is null; a delimiter that is too long is refused, and its length returned.
    virtual int AddComment(wchar_t const * start, wchar_t const * end) = 0;
    /// Adds a keyword; false when memory is exhausted or the text is null. The first one that equals a word is found,
    /// but for a word that begins with a capital one added without regard to case goes before the others.
    virtual bool AddKeyword(wchar_t const * text, int id, bool caseSensitive) = 0;
    /// Adds an operator; false when memory is exhausted or the text is null. The longest beginning of a run that begins
    /// an operator, too, is found, even if the operator goes on: of operators that share their beginning add the
    /// shorter ones first.
    virtual bool AddOperator(wchar_t const * text, int id) = 0;
    /// Scans that many characters, which may hold zeros; nothing for a null text or a negative length. Blanks are the
    /// space, the line feed, the tab and the bell, not the carriage return. A minus sign begins a number, always;
    /// "0x" is no prefix. Words, numbers and runs are cut at 1,024 characters, strings at 2,048, and the rest is
    /// scanned anew. Returns the length when a comment ends the text, otherwise 0.
    virtual int Parse(wchar_t const * text, int length) = 0;

protected:
    ~IVekLexer() = default;
};

/// Collects what a lexer finds in a text into a list of tokens. Used by one thread at a time.
class IVekTokenizer : public IVekObject
{
public:
    /// The kinds of tokens, which may be combined to a filter.
    enum TOKEN_KIND : unsigned int
    {
        TOKEN_KEYWORD = 1,
        TOKEN_OPERATOR = 2,
        TOKEN_IDENTIFIER = 4,
        TOKEN_INTEGER = 8,
        TOKEN_FLOAT = 16,
        TOKEN_STRING = 32,
        TOKEN_INVALID_SYNTAX = 64,
        TOKEN_ERROR = 128,
        TOKEN_ALL = 255
    };

    /// A token. It belongs to the list that it stands in and is valid until the tokenizer lets go of that list; a
    /// reference to any of its tokens keeps the whole list. The count is that of the list.
    class IToken : public IVekObject
    {
    public:
        /// What it is.
        virtual TOKEN_KIND GetKind() const = 0;
        /// The text as the lexer reports it, terminated: of a string without the quotes, of an operator as registered.
        /// Of a number its characters, of an error the message.
        virtual wchar_t const * GetText() const = 0;
        /// The characters of that text, which may hold zeros.
        virtual int GetTextLength() const = 0;
        /// The identifier of a keyword or an operator; 0 for other kinds.
        virtual int GetID() const = 0;
        /// The value of an integer; 0 for other kinds.
        virtual int GetInteger() const = 0;
        /// How an integer is written; decimal for other kinds.
        virtual IVekLexer::NUM_FORMAT GetNumFormat() const = 0;
        /// The value of a float or an integer; 0 for other kinds.
        virtual double GetFloat() const = 0;
        /// The index of the token's first character.
        virtual int GetPosition() const = 0;
        /// The number of characters that it takes in the text, the quotes of a string included.
        virtual int GetLength() const = 0;
        /// The line, counted from 0.
        virtual int GetLine() const = 0;
        /// The characters before it in its line.
        virtual int GetColumn() const = 0;

    protected:
        ~IToken() = default;
    };

    /// Replaces the list by the tokens of a text: of that many characters, or with -1 up to its terminator. Or of the
    /// rest of a stream, opened in binary mode: UTF-16 with a byte order mark, otherwise UTF-8, in which bytes that are
    /// none become U+FFFD; positions count UTF-16 units behind the mark. A stream of a host's own whose size is 0 or
    /// 0xFFFFFFFF is read until it refuses a byte. The text may be that of a token of the old list, which goes when the
    /// new one is there. The lexer's callback is put back afterwards. A null text or a length below -1 is an empty
    /// text. False with a message, and an empty list, when memory is exhausted, the stream can't be read, or the lexer
    /// or the stream is null.
    VEK_OVERLOADS2(virtual bool Tokenize(IVekLexer * lexer, wchar_t const * text, int length) = 0,
                   virtual bool Tokenize(IVekLexer * lexer, IVekIOStream * stream) = 0)
    /// Empties the list; the filter stays.
    virtual void RemoveAll() = 0;
    /// Sets which kinds of tokens are there, now and after each Tokenize; all at the start. Indices count these tokens
    /// only. False with a message, and the earlier filter, when memory is exhausted.
    virtual bool SetFilter(unsigned int kinds) = 0;
    /// The kinds that are there.
    virtual unsigned int GetFilter() const = 0;
    /// The tokens that are there: those that pass the filter.
    virtual int GetNumTokens() const = 0;
    /// The token at an index, no reference added; null outside the list.
    VEK_OVERLOADS2(virtual IToken * GetToken(int index) = 0, virtual IToken const * GetToken(int index) const = 0)
    /// The index of the first token that covers a position in the text, or -1. An error covers what its number does
    /// and the character that spoils it.
    virtual int FindTokenAt(int position) const = 0;
    /// The index of the first token that begins at or behind a position, or -1.
    virtual int FindTokenFrom(int position) const = 0;

protected:
    ~IVekTokenizer() = default;
};

/// The library's lexer; IVekKernel::CreateLexer makes one.
class VEK_API CVekLexer : public CVekRefCounted<IVekLexer>
{
public:
    CVekLexer();
    CVekLexer(CVekLexer const &) = delete;
    CVekLexer & operator=(CVekLexer const &) = delete;
    ~CVekLexer() override;

    void SetCallback(IVekLexer::Callback * callback) override;
    IVekLexer::Callback * GetCallback() override;
    IVekLexer::Callback * GetCallback() const override;
    void RemoveAll() override;
    int AddComment(wchar_t const * start, wchar_t const * end) override;
    bool AddKeyword(wchar_t const * text, int id, bool caseSensitive) override;
    bool AddOperator(wchar_t const * text, int id) override;
    int Parse(wchar_t const * text, int length) override;

    /// @cond internal
    class Keyword;
    class Operator;
    class Comment;
    struct Tables;
    /// @endcond

private:
    friend class vek::LexerRun;

    Tables * NeedTables();

    IVekLexer::Callback * m_callback;
    Tables * m_tables;
};

/// The library's tokenizer; IVekKernel::CreateTokenizer makes one.
class VEK_API CVekTokenizer : public CVekRefCounted<IVekTokenizer>
{
public:
    CVekTokenizer();
    CVekTokenizer(CVekTokenizer const &) = delete;
    CVekTokenizer & operator=(CVekTokenizer const &) = delete;
    ~CVekTokenizer() override;

    bool Tokenize(IVekLexer * lexer, wchar_t const * text, int length) override;
    bool Tokenize(IVekLexer * lexer, IVekIOStream * stream) override;
    void RemoveAll() override;
    bool SetFilter(unsigned int kinds) override;
    unsigned int GetFilter() const override;
    int GetNumTokens() const override;
    IToken * GetToken(int index) override;
    IToken const * GetToken(int index) const override;
    int FindTokenAt(int position) const override;
    int FindTokenFrom(int position) const override;

private:
    bool Collect(IVekLexer & lexer, wchar_t const * text, int length);
    static bool Select(vek::TokenList const * tokens, unsigned int kinds, int *& indices, int & count);
    int TokenIndex(int index) const;
    int LowerBound(int position) const;

    vek::TokenList * m_tokens;
    unsigned int m_filter;
    // The indices of the tokens that pass the filter; null when all do.
    int * m_selected;
    int m_numSelected;
};

VEK_HEADER_END

#endif
