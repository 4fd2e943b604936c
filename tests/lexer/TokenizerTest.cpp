#include "LexerKit.h"

#include "support/Files.h"
#include "support/GuardHeap.h"
#include "support/LogCapture.h"
#include "support/RefCountContract.h"
#include "support/Slots.h"
#include "support/TestStream.h"

#include <gtest/gtest.h>

namespace
{

using Token = IVekTokenizer::IToken;

class Tokenizer : public testing::Test
{
protected:
    Tokenizer()
    {
        Register(*lexer, {L"k:if", L"o:=", L"o:==", L"l://"});
        lexer->SetCallback(&recorder);
    }
    ~Tokenizer() override { lexer->SetCallback(nullptr); }

    bool Tokenize(std::wstring const & text)
    {
        return tokenizer->Tokenize(lexer.Get(), text.data(), static_cast<int>(text.size()));
    }
    // "kind:text@position+length" of each token, the line and column behind.
    std::wstring Tokens() const
    {
        std::wstring all;
        for (int i = 0; i < tokenizer->GetNumTokens(); ++i)
        {
            Token const & token = *tokenizer->GetToken(i);
            all += std::to_wstring(token.GetKind()) + L":";
            all.append(token.GetText(), static_cast<std::size_t>(token.GetTextLength()));
            all += L"@" + std::to_wstring(token.GetPosition()) + L"+" + std::to_wstring(token.GetLength()) + L" " +
                   std::to_wstring(token.GetLine()) + L":" + std::to_wstring(token.GetColumn()) + L";";
        }
        return all;
    }

    Recorder recorder;
    CVekRef<IVekLexer> const lexer{getVekLibKernel()->CreateLexer()};
    CVekRef<IVekTokenizer> const tokenizer{getVekLibKernel()->CreateTokenizer()};
};

// Reports whatever a test wants, as a lexer of a host's own may.
class OddLexer final : public CVekRefCounted<IVekLexer>
{
public:
    void SetCallback(IVekLexer::Callback * callback) override { m_callback = callback; }
    IVekLexer::Callback * GetCallback() override { return m_callback; }
    IVekLexer::Callback * GetCallback() const override { return m_callback; }
    void RemoveAll() override {}
    int AddComment(wchar_t const *, wchar_t const *) override { return 0; }
    bool AddKeyword(wchar_t const *, int, bool) override { return false; }
    bool AddOperator(wchar_t const *, int) override { return false; }
    int Parse(wchar_t const *, int) override
    {
        if (onParse)
            onParse();
        for (int const position : {-5, INT_MIN, INT_MAX, 3, 4, 2})
        {
            m_callback->OnKeywordFound(L"longer than the text", 1, position, 0, 0);
            m_callback->OnOperatorFound(L"+=", 2, position, 0, 0);
            m_callback->OnIntegerFound(1, NUM_HEXADECIMAL, position, 0, 0);
            m_callback->OnFloatFound(0.1, position, 0, 0);
            m_callback->OnStringFound(L"other", position, 0, 0);
            m_callback->OnInvalidSyntax(L"other", position, 0, 0);
            m_callback->OnError(L"other", position, 0, 0);
        }
        return 0;
    }

    std::function<void()> onParse; // before it reports

private:
    IVekLexer::Callback * m_callback = nullptr;
};

struct HostStream final : TestStream
{
    std::function<void()> onRead;
    unsigned int size = 0; // as it is told

    unsigned int GetSize() const override { return size; }
    bool Read(void * data, unsigned int count, bool advance) override
    {
        if (onRead)
            onRead();
        return TestStream::Read(data, count, advance);
    }
};

} // namespace

TEST_F(Tokenizer, CollectsTokens)
{
    ASSERT_TRUE(Tokenize(L"if a == \"s\nt\" // c\n 0x 017 -2.5 @@"));
    EXPECT_EQ(Tokens(),
              L"1:if@0+2 0:0;4:a@3+1 0:3;2:==@5+2 0:5;32:s\nt@8+5 0:8;128:Invalid number@20+2 2:1;8:0@20+1 2:1;"
              L"8:017@23+3 2:4;16:-2.5@27+4 2:8;64:@@@32+2 2:13;");
    Token const & keyword = *tokenizer->GetToken(0);
    Token const & octal = *tokenizer->GetToken(6);
    Token const & real = *tokenizer->GetToken(7);
    EXPECT_EQ(keyword.GetID(), 1);
    EXPECT_EQ(tokenizer->GetToken(2)->GetID(), 3);
    EXPECT_EQ(octal.GetInteger(), 15);
    EXPECT_EQ(octal.GetNumFormat(), IVekLexer::NUM_OCTAL);
    EXPECT_EQ(octal.GetFloat(), 15.0);
    EXPECT_EQ(real.GetFloat(), -2.5);
    EXPECT_EQ(real.GetInteger() + real.GetID() + keyword.GetInteger(), 0);
    EXPECT_EQ(lexer->GetCallback(), &recorder);
    EXPECT_EQ(recorder.GetRefCount(), 2u);
    EXPECT_EQ(recorder.Take(), L"");
    EXPECT_EQ(tokenizer->GetToken(9), nullptr);
    EXPECT_EQ(tokenizer->GetToken(-1), nullptr);

    std::wstring const zero(1, L'\0');
    ASSERT_TRUE(Tokenize(L"\"a" + zero + L"b\" @" + zero + L" \"open"));
    EXPECT_EQ(Tokens(), L"32:a" + zero + L"b@0+5 0:0;64:@" + zero + L"@6+2 0:6;32:open@9+5 0:9;");
    EXPECT_TRUE(tokenizer->Tokenize(lexer.Get(), L"a b", -1));
    EXPECT_EQ(tokenizer->GetNumTokens(), 2);
    lexer->RemoveAll();
    Register(*lexer, {L"o:=>="});
    ASSERT_TRUE(Tokenize(L"=>a"));
    EXPECT_EQ(Tokens(), L"2:=>=@0+2 0:0;4:a@2+1 0:2;") << "kept: found by its beginning";
}

TEST_F(Tokenizer, FiltersAndFinds)
{
    ASSERT_TRUE(Tokenize(L"if a == 0x b"));
    struct Row
    {
        unsigned int filter;
        wchar_t const * tokens;
        std::array<int, 5> at;   // of the positions 0, 2, 6, 9, 11
        std::array<int, 5> from; // of the positions 0, 1, 6, 9, 12
    };
    Row const rows[] = {
        {IVekTokenizer::TOKEN_ALL,
         L"1:if@0+2 0:0;4:a@3+1 0:3;2:==@5+2 0:5;128:Invalid number@8+2 0:8;8:0@8+1 0:8;"
         L"4:b@11+1 0:11;",
         {0, -1, 2, 3, 5},
         {0, 1, 3, 5, -1}},
        {IVekTokenizer::TOKEN_IDENTIFIER, L"4:a@3+1 0:3;4:b@11+1 0:11;", {-1, -1, -1, -1, 1}, {0, 0, 1, 1, -1}},
        {IVekTokenizer::TOKEN_KEYWORD | IVekTokenizer::TOKEN_INTEGER,
         L"1:if@0+2 0:0;8:0@8+1 0:8;",
         {0, -1, -1, -1, -1},
         {0, 1, 1, -1, -1}},
        {0, L"", {-1, -1, -1, -1, -1}, {-1, -1, -1, -1, -1}},
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.filter);
        EXPECT_TRUE(tokenizer->SetFilter(row.filter));
        EXPECT_EQ(tokenizer->GetFilter(), row.filter);
        EXPECT_EQ(Tokens(), row.tokens);
        std::size_t i = 0;
        for (int const position : {0, 2, 6, 9, 11})
            EXPECT_EQ(tokenizer->FindTokenAt(position), row.at[i++]) << position;
        i = 0;
        for (int const position : {0, 1, 6, 9, 12})
            EXPECT_EQ(tokenizer->FindTokenFrom(position), row.from[i++]) << position;
        EXPECT_EQ(tokenizer->FindTokenAt(INT_MIN) + tokenizer->FindTokenAt(INT_MAX), -2);
        ASSERT_TRUE(Tokenize(L"if a == 0x b"));
        EXPECT_EQ(Tokens(), row.tokens) << "the filter stays";
    }
}

TEST_F(Tokenizer, KeepsTokensThatAreReferredTo)
{
    ASSERT_TRUE(Tokenize(L"first text"));
    Token * const token = tokenizer->GetToken(1);
    EXPECT_EQ(token->AddRef(), 2u);
    ASSERT_TRUE(Tokenize(L"another"));
    EXPECT_EQ(token->GetRefCount(), 1u);
    EXPECT_STREQ(token->GetText(), L"text");
    tokenizer->RemoveAll();
    EXPECT_EQ(tokenizer->GetNumTokens(), 0);
    EXPECT_EQ(token->GetPosition(), 6);
    EXPECT_EQ(token->Release(), 0u);

    // The text of a token of the list that is replaced.
    std::wstring words;
    for (int i = 0; i < 270; ++i)
        words += L"w" + std::to_wstring(i) + L" ";
    ASSERT_TRUE(Tokenize(L"\"" + words + L"\""));
    ASSERT_TRUE(tokenizer->Tokenize(lexer.Get(), tokenizer->GetToken(0)->GetText(), -1));
    ASSERT_EQ(tokenizer->GetNumTokens(), 270);
    EXPECT_STREQ(tokenizer->GetToken(269)->GetText(), L"w269");
}

TEST_F(Tokenizer, MayBeEnteredFromWithin)
{
    OddLexer odd;
    tokenizer->SetFilter(IVekTokenizer::TOKEN_KEYWORD);
    for (bool const isStream : {false, true})
    {
        HostStream stream;
        stream.bytes = "ab";
        auto const enter = [&] { ASSERT_TRUE(Tokenize(L"if within if")); };
        (isStream ? stream.onRead : odd.onParse) = enter;
        EXPECT_TRUE(isStream ? tokenizer->Tokenize(&odd, &stream) : tokenizer->Tokenize(&odd, L"ab", 2));
        EXPECT_EQ(tokenizer->GetNumTokens(), 6) << "the list of the call that ended last";
        EXPECT_EQ(odd.GetCallback(), nullptr);
        odd.onParse = nullptr;
    }
    // The text's own list goes within, or the tokenizer itself.
    odd.onParse = [&] { tokenizer->RemoveAll(); };
    tokenizer->SetFilter(IVekTokenizer::TOKEN_ALL);
    ASSERT_TRUE(Tokenize(L"\"a b\"") && tokenizer->Tokenize(&odd, tokenizer->GetToken(0)->GetText(), -1));
    EXPECT_STREQ(tokenizer->GetToken(37)->GetText(), L"b") << "read from the text";
    IVekTokenizer * const dying = getVekLibKernel()->CreateTokenizer();
    odd.onParse = [&] { dying->Release(); };
    EXPECT_TRUE(dying->Tokenize(&odd, L"a", 1));
}

TEST_F(Tokenizer, ReadsStreams)
{
    struct Row
    {
        char const * name;
        std::string bytes;
        wchar_t const * tokens;
    };
    Row const rows[] = {
        {"empty", "", L""},
        {"one byte", "a", L"4:a@0+1 0:0;"},
        {"UTF-8", "a \xC3\xA9\xF0\x9F\x98\x80 b", L"4:a@0+1 0:0;64:\x00E9\xD83D\xDE00@2+3 0:2;4:b@6+1 0:6;"},
        {"UTF-8 with a mark",
         "\xEF\xBB\xBF"
         "a",
         L"4:a@0+1 0:0;"},
        {"no UTF-8", "\xC3 \xC0\x80 \xED\xA0\x80 \xF5",
         L"64:\xFFFD@0+1 0:0;64:\xFFFD\xFFFD@2+2 0:2;64:\xFFFD\xFFFD\xFFFD@5+3 0:5;64:\xFFFD@9+1 0:9;"},
        {"UTF-16, little",
         std::string("\xFF\xFE"
                     "a\0\xE9\0",
                     6),
         L"4:a@0+1 0:0;64:\x00E9@1+1 0:1;"},
        {"UTF-16, big, half a unit", std::string("\xFE\xFF\0a\0", 5), L"4:a@0+1 0:0;64:\xFFFD@1+1 0:1;"},
        {"many pieces", std::string(200'000, ' ') + "z", L"4:z@200000+1 0:200000;"},
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.name);
        unsigned int const size = static_cast<unsigned int>(row.bytes.size());
        CVekRef<IVekMemoryIOStream> const memory(getVekLibKernel()->CreateMemoryIOStream());
        if (size > 0)
        {
            memory->Open(nullptr, VEK_IO_READ | VEK_IO_BINARY, size);
            std::copy(row.bytes.begin(), row.bytes.end(), memory->GetBuffer());
            EXPECT_TRUE(tokenizer->Tokenize(lexer.Get(), memory.Get()));
            EXPECT_EQ(Tokens(), row.tokens);
        }
        CVekRef<IVekFileIOStream> const file(getVekLibKernel()->CreateFileIOStream());
        std::wstring const path = WriteFileBytes(L"tokens.txt", row.bytes);
        ASSERT_TRUE(file->Open(path.c_str(), VEK_IO_READ | VEK_IO_BINARY, 0));
        EXPECT_TRUE(tokenizer->Tokenize(lexer.Get(), file.Get()));
        EXPECT_EQ(Tokens(), row.tokens);
        for (unsigned int const told : {size, 0U, UINT_MAX})
        {
            HostStream host;
            host.bytes = row.bytes;
            host.size = told;
            EXPECT_TRUE(tokenizer->Tokenize(lexer.Get(), &host));
            EXPECT_EQ(Tokens(), row.tokens) << "told size " << told;
        }
    }
    TestStream failing;
    failing.bytes = "a b c";
    failing.failFrom = 1;
    LogCapture log;
    EXPECT_FALSE(tokenizer->Tokenize(lexer.Get(), &failing));
    EXPECT_FALSE(tokenizer->Tokenize(lexer.Get(), nullptr));
    EXPECT_FALSE(tokenizer->Tokenize(nullptr, &failing));
    EXPECT_FALSE(tokenizer->Tokenize(nullptr, L"a", 1));
    EXPECT_EQ(log.Take(),
              L"CVekTokenizer::Tokenize --> Failed to read stream\nCVekTokenizer::Tokenize --> Stream is NULL\n"
              L"CVekTokenizer::Tokenize --> Lexer is NULL\nCVekTokenizer::Tokenize --> Lexer is NULL");
    EXPECT_EQ(tokenizer->GetNumTokens(), 0);
    EXPECT_TRUE(tokenizer->Tokenize(lexer.Get(), nullptr, 5));
    EXPECT_TRUE(tokenizer->Tokenize(lexer.Get(), L"a", -2));
    EXPECT_EQ(tokenizer->GetNumTokens(), 0);
}

TEST_F(Tokenizer, BearsAnOddLexerAndMillionsOfTokens)
{
    OddLexer odd;
    std::vector<wchar_t> const exact = {L'a', L'"', L'+', L'1'};
    for (wchar_t const * const source : {static_cast<wchar_t const *>(nullptr), exact.data()})
    {
        ASSERT_TRUE(tokenizer->Tokenize(&odd, source, 4));
        EXPECT_EQ(tokenizer->GetNumTokens(), 42);
        for (int i = 0; i < 42; ++i)
        {
            Token const & token = *tokenizer->GetToken(i);
            EXPECT_EQ(token.GetText()[token.GetTextLength()], 0);
            EXPECT_LE(token.GetLength(), 4);
            tokenizer->FindTokenAt(token.GetPosition());
        }
    }
    EXPECT_EQ(tokenizer->GetToken(3)->GetFloat(), 0.1);
    EXPECT_EQ(odd.GetCallback(), nullptr);

    int const count = VekGuard::Active ? 10'000 : 1'000'000;
    std::wstring text;
    for (int i = 0; i < count; ++i)
        text += i % 3 ? L"= " : L"word ";
    ASSERT_TRUE(Tokenize(text));
    EXPECT_EQ(tokenizer->GetNumTokens(), count);
    Token const & last = *tokenizer->GetToken(count - 1);
    EXPECT_EQ(tokenizer->FindTokenAt(last.GetPosition()), count - 1);
}

TEST_F(Tokenizer, HasItsTable)
{
    EXPECT_TRUE(CallSlot<bool>(tokenizer.Get(), 3, lexer.Get(), L"if 7", 4));
    EXPECT_EQ(CallSlot<int>(tokenizer.Get(), 11, 3), 1);
    EXPECT_EQ(CallSlot<double>(CallSlot<Token *>(tokenizer.Get(), 9, 1), 9), 7.0);
    ExpectRefCountContract("tokenizer", getVekLibKernel()->CreateTokenizer());
}
