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
        return tokenizer->Tokenize(lexer.get(), text.data(), static_cast<int>(text.size()));
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
    Held<IVekLexer> const lexer{getVekLibKernel()->CreateLexer()};
    Held<IVekTokenizer> const tokenizer{getVekLibKernel()->CreateTokenizer()};
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

private:
    IVekLexer::Callback * m_callback = nullptr;
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
    EXPECT_TRUE(tokenizer->Tokenize(lexer.get(), L"a b", -1));
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
        Held<IVekMemoryIOStream> const memory(getVekLibKernel()->CreateMemoryIOStream());
        if (size > 0)
        {
            memory->Open(nullptr, VEK_IO_READ | VEK_IO_BINARY, size);
            std::copy(row.bytes.begin(), row.bytes.end(), memory->GetBuffer());
            EXPECT_TRUE(tokenizer->Tokenize(lexer.get(), memory.get()));
            EXPECT_EQ(Tokens(), row.tokens);
        }
        Held<IVekFileIOStream> const file(getVekLibKernel()->CreateFileIOStream());
        std::wstring const path = WriteFileBytes(L"tokens.txt", row.bytes);
        ASSERT_TRUE(file->Open(path.c_str(), VEK_IO_READ | VEK_IO_BINARY, 0));
        EXPECT_TRUE(tokenizer->Tokenize(lexer.get(), file.get()));
        EXPECT_EQ(Tokens(), row.tokens);
    }
    TestStream failing;
    failing.bytes = "a b c";
    failing.failFrom = 1;
    LogCapture log;
    EXPECT_FALSE(tokenizer->Tokenize(lexer.get(), &failing));
    EXPECT_FALSE(tokenizer->Tokenize(lexer.get(), nullptr));
    EXPECT_FALSE(tokenizer->Tokenize(nullptr, &failing));
    EXPECT_FALSE(tokenizer->Tokenize(nullptr, L"a", 1));
    EXPECT_EQ(log.Take(),
              L"CVekTokenizer::Tokenize --> Failed to read stream\nCVekTokenizer::Tokenize --> Stream is NULL\n"
              L"CVekTokenizer::Tokenize --> Lexer is NULL\nCVekTokenizer::Tokenize --> Lexer is NULL");
    EXPECT_EQ(tokenizer->GetNumTokens(), 0);
    EXPECT_TRUE(tokenizer->Tokenize(lexer.get(), nullptr, 5));
    EXPECT_TRUE(tokenizer->Tokenize(lexer.get(), L"a", -2));
    EXPECT_EQ(tokenizer->GetNumTokens(), 0);
}

TEST_F(Tokenizer, BearsAnOddLexerAndMillionsOfTokens)
{
    OddLexer odd;
    ASSERT_TRUE(tokenizer->Tokenize(&odd, L"a\"+1", 4));
    EXPECT_EQ(tokenizer->GetNumTokens(), 42);
    for (int i = 0; i < 42; ++i)
    {
        Token const & token = *tokenizer->GetToken(i);
        EXPECT_EQ(token.GetText()[token.GetTextLength()], 0);
        EXPECT_LE(token.GetLength(), 4);
        tokenizer->FindTokenAt(token.GetPosition());
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

TEST_F(Tokenizer, FailsWithoutMemoryAndIsEmptyThen)
{
    if (!VekGuard::Active)
        GTEST_SKIP();
    std::wstring const text = L"if a == b " + std::wstring(1000, L'w');
    TestStream stream;
    stream.bytes = "if a";
    CVekSetDebugOutputLevel const silence(-1); // a catcher would want memory, too
    tokenizer->SetFilter(IVekTokenizer::TOKEN_KEYWORD);
    for (std::size_t n = 1;; ++n)
    {
        stream.SetPosition(0, false);
        VekGuard::FailFrom(n);
        bool const done = Tokenize(text) && tokenizer->Tokenize(lexer.get(), &stream) &&
                          tokenizer->SetFilter(IVekTokenizer::TOKEN_OPERATOR);
        bool const failed = VekGuard::FailReset();
        EXPECT_EQ(done, !failed) << n;
        EXPECT_EQ(lexer->GetCallback(), &recorder) << n;
        EXPECT_EQ(recorder.GetRefCount(), 2u) << n;
        EXPECT_LE(tokenizer->GetNumTokens(), 1) << n;
        if (!failed)
            break;
        ASSERT_LT(n, 100u);
    }
}

TEST_F(Tokenizer, HasItsTable)
{
    IVekTokenizer * const object = tokenizer.get();
    TestStream stream;
    stream.bytes = "if";
    EXPECT_TRUE(CallSlot<bool>(object, 3, lexer.get(), L"if 7 1.5", 8));
    EXPECT_TRUE(CallSlot<bool>(object, 6, 9u));
    EXPECT_EQ(CallSlot<unsigned int>(object, 7), 9u);
    EXPECT_EQ(CallSlot<int>(object, 8), 2);
    auto * const token = CallSlot<Token *>(object, 9, 1);
    EXPECT_EQ(CallSlot<Token const *>(object, 10, 1), token);
    EXPECT_EQ(CallSlot<int>(object, 11, 3), 1);
    EXPECT_EQ(CallSlot<int>(object, 12, 1), 1);
    EXPECT_EQ(CallSlot<unsigned int>(token, 3), 8u);
    EXPECT_STREQ(CallSlot<wchar_t const *>(token, 4), L"7");
    int const expected[] = {1, 0, 7, 1};
    for (int slot = 5; slot < 9; ++slot)
        EXPECT_EQ(CallSlot<int>(token, slot), expected[slot - 5]);
    EXPECT_EQ(CallSlot<double>(token, 9), 7.0);
    int const places[] = {3, 1, 0, 3};
    for (int slot = 10; slot < 14; ++slot)
        EXPECT_EQ(CallSlot<int>(token, slot), places[slot - 10]);
    CallSlot(object, 5);
    EXPECT_EQ(CallSlot<int>(object, 8), 0);
    EXPECT_TRUE(CallSlot<bool>(object, 4, lexer.get(), static_cast<IVekIOStream *>(&stream)));
    EXPECT_EQ(CallSlot<int>(object, 8), 1);
    ExpectRefCountContract("tokenizer", getVekLibKernel()->CreateTokenizer());
}
