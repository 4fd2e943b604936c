#include "LexerKit.h"

#include "support/GuardHeap.h"
#include "support/RefCountContract.h"
#include "support/Slots.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

namespace
{

class Lexer : public testing::Test
{
protected:
    Lexer() { lexer->SetCallback(&recorder); }

    std::wstring Parse(std::wstring const & text)
    {
        result = lexer->Parse(text.data(), static_cast<int>(text.size()));
        return recorder.Take();
    }

    Recorder recorder;
    CVekRef<IVekLexer> const lexer{getVekLibKernel()->CreateLexer()};
    int result = 0;
};

std::wstring Many(std::size_t count, wchar_t unit)
{
    return std::wstring(count, unit);
}

} // namespace

TEST_F(Lexer, FindsTokens)
{
    struct Row
    {
        char const * name;
        std::vector<std::wstring> words;
        std::wstring text;
        wchar_t const * events;
        int result = 0;
    };
    std::wstring const zero(1, L'\0');
    Row const rows[] = {
        {"nothing", {}, L"", L""},
        {"blanks", {}, L" \n\t\a ", L""},
        {"statement", {L"o:=", L"l://"}, L"x = 10.5 // c", L"id x @0:0:0;op =|1 @2:0:2;float 10.5 @4:0:4;", 13},
        {"lines and columns",
         {L"o:;"},
         L"a;\n\n  b\t;\n \"s\nt\" c",
         L"id a @0:0:0;op ;|1 @1:0:1;id b @6:2:2;"
         L"op ;|1 @8:2:4;str s$t @11:3:1;id c @17:4:3;"},
        {"keyword without case",
         {L"i:If"},
         L"IF if If iff",
         L"key IF|1 @0:0:0;key if|1 @3:0:3;key If|1 @6:0:6;id iff @9:0:9;"},
        {"keyword with case", {L"k:If"}, L"IF if If", L"id IF @0:0:0;id if @3:0:3;key If|1 @6:0:6;"},
        {"first keyword wins", {L"k:a", L"i:A", L"k:a"}, L"a", L"key a|1 @0:0:0;"},
        {"kept: without case goes first for capitals",
         {L"k:Ab", L"i:ab"},
         L"Ab ab",
         L"key Ab|2 @0:0:0;key ab|2 @3:0:3;"},
        {"underscored keyword", {L"i:_x9"}, L"_X9 _x", L"key _X9|1 @0:0:0;id _x @4:0:4;"},
        {"kept: longer operator found by its beginning", {L"o:==", L"o:="}, L"= ==", L"op ==|1 @0:0:0;op ==|1 @2:0:2;"},
        {"shorter operator first",
         {L"o:=", L"o:=="},
         L"= == ===",
         L"op =|1 @0:0:0;op ==|2 @2:0:2;op ==|2 @5:0:5;op =|1 @7:0:7;"},
        {"operator with a letter", {L"o:=a"}, L"=a", L"op =a|1 @0:0:0;id a @1:0:1;"},
        {"run before a line feed",
         {L"o:)", L"o:;"},
         L"x);\ny",
         L"id x @0:0:0;op )|1 @1:0:1;op ;|2 @2:0:2;id y @4:1:0;"},
        {"operator that shares its first byte",
         {L"o:\x012B", L"o:+"},
         L"+ \x012B",
         L"op +|2 @0:0:0;op \x012B|1 @2:0:2;"},
        {"kept: quote and minus inside a run",
         {L"o:+"},
         L"+\"a\" +-1",
         L"op +|1 @0:0:0;str a @1:0:1;op +|1 @5:0:5;int -1|1 @6:0:6;"},
        {"invalid run is whole", {}, L"+\"-@ x", L"bad +\"-@ @0:0:0;id x @5:0:5;"},
        {"kept: carriage return is no blank", {}, L"a\r\nb", L"id a @0:0:0;bad % @1:0:1;id b @3:1:0;"},
        {"carriage return as operator", {L"o:\r", L"o:;"}, L";\r\n", L"op ;|2 @0:0:0;op %|1 @1:0:1;"},
        {"kept: comment start inside an invalid run",
         {L"c:/* */"},
         L"=/* c */",
         L"bad =/* @0:0:0;id c @4:0:4;bad */ @6:0:6;"},
        {"comment behind an operator", {L"o:=", L"c:/* */"}, L"=/* c */ d", L"op =|1 @0:0:0;id d @9:0:9;"},
        {"kept: minus begins a number",
         {L"o:-", L"o:>"},
         L"a-b",
         L"id a @0:0:0;error Invalid number @1:0:1;int 0|1 @1:0:1;"},
        {"kept: minus and more",
         {L"o:->", L"o:>"},
         L"p->x 1-2",
         L"id p @0:0:0;int 0|1 @1:0:1;op >|2 @2:0:2;id x @3:0:3;int 1|1 @5:0:5;int -2|1 @6:0:6;"},
        {"kept: no hexadecimal",
         {},
         L"0x1F",
         L"error Invalid number @0:0:0;int 0|2 @0:0:0;error Invalid number @2:0:2;int 1|1 @2:0:2;"},
        {"octal",
         {},
         L"017 17 09 010 0",
         L"int 15|2 @0:0:0;int 17|1 @4:0:4;int 0|2 @7:0:7;int 8|2 @10:0:10;int 0|2 @14:0:14;"},
        {"minus hides the octal 0", {}, L"-017", L"int -17|1 @0:0:0;"},
        {"points", {}, L"1.2.3", L"float 1.20000005 @0:0:0;bad . @3:0:3;int 3|1 @4:0:4;"},
        {"point without digits", {}, L"-. 5. -.5", L"float 0 @0:0:0;float 5 @3:0:3;float -0.5 @6:0:6;"},
        {"suffix", {}, L"1.5f_", L"error Invalid number @0:0:0;float 1.5 @0:0:0;id _ @4:0:4;"},
        {"kept: large integers keep 32 bits",
         {},
         L"4294967297 -2147483649 0777777777777",
         L"int 1|1 @0:0:0;int 2147483647|1 @11:0:11;int -1|2 @23:0:23;"},
        {"open string", {}, L"\"ab", L"str ab @0:0:0;"},
        {"kept: no escapes", {}, L"\"a\\\"b", L"str a\\ @0:0:0;id b @4:0:4;"},
        {"line comment with its line feed", {L"l://"}, L"// c\n", L"", 5},
        {"kept: blank behind the last comment", {L"l://"}, L"// c\n ", L"", 0},
        {"only a comment", {L"l://"}, L"//", L"", 2},
        {"open block comment", {L"c:/* */"}, L"a /* b\nc *", L"id a @0:0:0;", 10},
        {"block comment is no overlap", {L"c:/* */"}, L"/*/ a **/b", L"id b @9:0:9;"},
        {"lines in comments", {L"c:/* */", L"l://"}, L"/*\n\n*/ a // \nb", L"id a @7:2:3;id b @13:3:0;"},
        {"case in comments",
         {L"c:Rem END"},
         L"rem a REM b end EnD c enD",
         L"id rem @0:0:0;id a @4:0:4;id c @20:0:20;id enD @22:0:22;"},
        {"shared beginnings: the first wins", {L"l:/", L"c:/* */"}, L"/* a */\nb", L"id b @8:1:0;"},
        {"comment in a word", {L"l:rem"}, L"xrem remark\ny", L"id xrem @0:0:0;id y @12:1:0;"},
        {"start that does not fit", {L"c:<!-- -->"}, L"<!-", L"bad <!- @0:0:0;"},
        {"empty end delimiter", {L"c:# "}, L"a # b", L"id a @0:0:0;", 5},
        {"empty end delimiter at a zero", {L"c:# "}, L"# b" + zero + L"c", L"id c @4:0:4;"},
        {"empty start delimiter", {L"c: ]"}, L"a" + zero + L" b] c", L"id a @0:0:0;id c @6:0:6;"},
        {"empty keyword and operator", {L"k:", L"o:"}, L"a +", L"id a @0:0:0;bad + @2:0:2;"},
        {"kept: an operator before a zero takes the run", {L"o:+"}, L"+" + zero + L"++", L"op +|1 @0:0:0;"},
        {"kept: the empty operator takes a zero", {L"o:"}, zero + L"+ a", L"op |1 @0:0:0;id a @3:0:3;"},
        {"text is cut at a zero", {}, L"@" + zero + L"@ \"a" + zero + L"b\"", L"bad @ @0:0:0;str a @4:0:4;"},
        {"lone surrogates", {}, L"a\xD800 \xDC00z", L"id a @0:0:0;bad \xD800 @1:0:1;bad \xDC00 @3:0:3;id z @4:0:4;"},
        {"no ASCII letter", {}, L"\x00E9t\x0161", L"bad \x00E9 @0:0:0;id t @1:0:1;bad \x0161 @2:0:2;"},
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.name);
        lexer->RemoveAll();
        Register(*lexer, row.words);
        EXPECT_EQ(Parse(row.text), row.events);
        EXPECT_EQ(result, row.result);
    }
}

TEST_F(Lexer, CutsAtItsLimits)
{
    struct Row
    {
        char const * name;
        std::wstring text;
        wchar_t const * events;
    };
    std::wstring const nines = Many(1023, L'9');
    Row const rows[] = {
        {"word of 1,023", Many(1023, L'w') + L" ", L"id ww*1023 @0:0:0;"},
        {"word of 1,024", Many(1024, L'w') + L" ", L"id ww*1024 @0:0:0;"},
        {"word of 1,025", Many(1025, L'w'), L"id ww*1024 @0:0:0;id w @1024:0:1024;"},
        {"run of 1,024", Many(1024, L'@'), L"bad @@*1024 @0:0:0;"},
        {"run of 1,025", Many(1025, L'@') + L"a", L"bad @@*1024 @0:0:0;bad @ @1024:0:1024;id a @1025:0:1025;"},
        {"octal number of 1,024", Many(1024, L'0') + L"1", L"int 0|2 @0:0:0;int 1|1 @1024:0:1024;"},
        {"number of 1,024 and a letter", nines + L"9e", L"int -1|1 @0:0:0;id e @1024:0:1024;"},
        {"number of 1,023 and a letter", nines + L"e", L"error Invalid number @0:0:0;int -1|1 @0:0:0;"},
        {"huge float", nines + L".", L"float infinite @0:0:0;"},
        {"kept: string of 2,047", L"\"" + Many(2047, L's') + L"\"a", L"str ss*2047 @0:0:0;id a @2049:0:2049;"},
        {"kept: string of 2,048, whose quote opens another", L"\"" + Many(2048, L's') + L"\"a",
         L"str ss*2048 @0:0:0;str a @2049:0:2049;"},
        {"string of 3,000", L"\"" + Many(3000, L's') + L"\"",
         L"str ss*2048 @0:0:0;id ss*952 @2049:0:2049;str  @3001:0:3001;"},
    };
    for (Row const & row : rows)
    {
        SCOPED_TRACE(row.name);
        std::wstring events = Parse(row.text);
        // 10^1023 - 1 is 2^32 - 1 in its low 32 bits; so the rows say.
        EXPECT_EQ(events, row.events);
    }
    std::wstring const longest = Many(1030, L'@');
    EXPECT_TRUE(lexer->AddOperator(longest.c_str(), 7));
    EXPECT_EQ(Parse(Many(1024, L'@')), L"op @@*1030|7 @0:0:0;");
    EXPECT_EQ(Parse(Many(3, L'@') + L" " + Many(2048, L'@')),
              L"op @@*1030|7 @0:0:0;op @@*1030|7 @4:0:4;op @@*1030|7 @1028:0:1028;");
    EXPECT_TRUE(lexer->AddKeyword(Many(1025, L'w').c_str(), 1, true));
    EXPECT_EQ(Parse(Many(1025, L'w')), L"id ww*1024 @0:0:0;id w @1024:0:1024;");
}

TEST_F(Lexer, AddsAndRemoves)
{
    std::wstring const sixteen = Many(16, L'#');
    EXPECT_EQ(lexer->AddComment(sixteen.c_str(), sixteen.c_str()), 1);
    EXPECT_EQ(lexer->AddComment((sixteen + L"#").c_str(), L"a"), 17) << "kept: a refusal is not 0";
    EXPECT_EQ(lexer->AddComment(L"a", (sixteen + L"##").c_str()), 18) << "kept: a refusal is not 0";
    EXPECT_EQ(lexer->AddComment(nullptr, L"a") + lexer->AddComment(L"a", nullptr), 0);
    EXPECT_FALSE(lexer->AddKeyword(nullptr, 0, false) || lexer->AddOperator(nullptr, 0));
    Register(*lexer, {L"k:key", L"o:+"});
    EXPECT_EQ(Parse(L"a" + sixteen + L"b" + sixteen + L"key+"), L"id a @0:0:0;key key|1 @34:0:34;op +|2 @37:0:37;");
    lexer->RemoveAll();
    EXPECT_EQ(lexer->GetCallback(), &recorder);
    EXPECT_EQ(Parse(L"key+##"), L"id key @0:0:0;bad +## @3:0:3;");
    lexer->RemoveAll();
    for (int i = 0x2001; i < 0x2801; ++i) // eight of each low byte, of one to three units
        EXPECT_TRUE(lexer->AddOperator(std::wstring(1u + i % 3, static_cast<wchar_t>(i)).c_str(), i) &&
                    lexer->AddComment(std::wstring(2, static_cast<wchar_t>(i + 0x1000)).c_str(), L"\n"));
    EXPECT_EQ(Parse(L"\x2001\x2101\x2800\x2900 \x3101\x3101 +\n\x3101\x3201"),
              L"op \x2001|8193 @0:0:0;op \x2101\x2101|8449 @1:0:1;op \x2800\x2800|10240 @2:0:2;bad \x2900 @3:0:3;"
              L"bad \x3101\x3201 @10:1:0;");
    lexer->RemoveAll();
    for (int i = 0; i < 3000; ++i)
        EXPECT_TRUE(lexer->AddKeyword((L"word" + std::to_wstring(i)).c_str(), i, i % 2 == 0));
    EXPECT_EQ(
        Parse(L"word2999 WORD7 WORD8 word12 word3000"),
        L"key word2999|2999 @0:0:0;key WORD7|7 @9:0:9;id WORD8 @15:0:15;key word12|12 @21:0:21;id word3000 @28:0:28;");
}

TEST_F(Lexer, ReadsNumbersAsTheRuntimeDoes)
{
    std::mt19937 random(5);
    wchar_t text[64], events[64];
    for (int i = 0; i < 20000; ++i)
    {
        unsigned int const value = random() >> random() % 32;
        int length = _snwprintf(text, 64, i % 2 ? L"%u" : L"-%u", value);
        if (i % 3 && length > 1)
            text[random() % static_cast<unsigned int>(length - 1) + 1] = L'.';
        float real = 0;
        int integer = 0;
        bool const isReal = wcschr(text, L'.') != nullptr;
        bool const isOctal = text[0] == L'0';
        isReal ? _snwscanf(text, 64, L"%f", &real) : _snwscanf(text, 64, isOctal ? L"%o" : L"%d", &integer);
        if (isReal)
            _snwprintf(events, 64, L"float %.9g @0:0:0;", static_cast<double>(real));
        else
            _snwprintf(events, 64, L"int %d|%d @0:0:0;", integer, isOctal ? 2 : 1);
        ASSERT_EQ(Parse(text), events) << std::wstring(text).c_str();
    }
}

TEST_F(Lexer, BearsWhatItsCallbackDoes)
{
    Register(*lexer, {L"k:a", L"o:+", L"l://"});
    Recorder other;
    recorder.onEvent = [&] { lexer->SetCallback(&other); };
    other.onEvent = [&] { lexer->SetCallback(nullptr); };
    EXPECT_EQ(Parse(L"a a a"), L"key a|1 @0:0:0;");
    EXPECT_EQ(other.Take(), L"key a|1 @2:0:2;");
    EXPECT_EQ(recorder.GetRefCount() + other.GetRefCount(), 2u);

    other.onEvent = nullptr;
    lexer->SetCallback(&recorder);
    std::wstring text;
    recorder.onEvent = [&]
    {
        lexer->RemoveAll();
        for (int i = 0; i < 100; ++i)
            Register(*lexer, {L"o:*", L"k:b"});
    };
    EXPECT_EQ(Parse(L"+ a b +*// "), L"op +|2 @0:0:0;id a @2:0:2;key b|2 @4:0:4;bad +*// @6:0:6;");

    Recorder * const dying = new Recorder;
    dying->onEvent = [&] { lexer->SetCallback(&other); };
    lexer->SetCallback(dying);
    dying->Release();
    Parse(L"1e 2");
    EXPECT_EQ(other.Take(), L"int 1|1 @0:0:0;int 2|1 @3:0:3;");

    lexer->SetCallback(nullptr);

    IVekLexer * const released = getVekLibKernel()->CreateLexer();
    released->SetCallback(&other);
    int releases = 0;
    other.onEvent = [&]
    {
        if (releases++ == 0)
            released->Release();
    };
    EXPECT_EQ(released->Parse(L"a 1 +", 5), 0);
    EXPECT_EQ(other.Take(), L"id a @0:0:0;int 1|1 @2:0:2;bad + @4:0:4;");
}

TEST_F(Lexer, BearsHostileInput)
{
    EXPECT_EQ(lexer->Parse(nullptr, 5) + lexer->Parse(L"a", -1) + lexer->Parse(L"a", INT_MIN), 0);
    EXPECT_EQ(recorder.Take(), L"");
    // At the end of a block of its own, so that a read behind the text is met in the guarded build.
    Register(*lexer, {L"o:+", L"o:++", L"i:key", L"l://", L"c:/* */", L"c:+* *+*"});
    std::mt19937 random(7);
    wchar_t const units[] = L"a_9.-\"+*/ \n\tkey\r\0\xD800\xFFFF";
    lexer->SetCallback(nullptr);
    for (int i = 0; i < 3000; ++i)
    {
        std::size_t const length = random() % 70;
        auto const text = std::make_unique<wchar_t[]>(length);
        for (std::size_t at = 0; at < length; ++at)
            text[at] = units[random() % (std::size(units) - 1)];
        lexer->Parse(text.get(), static_cast<int>(length));
    }
    if (VekGuard::Active)
        return;                                  // the guarded build shows no more with a text this large
    std::vector<wchar_t> huge(50'000'000, L'+'); // 100 MB
    EXPECT_EQ(lexer->Parse(huge.data(), static_cast<int>(huge.size())), 0);
    std::fill(huge.begin() + 2, huge.end(), L'\n');
    huge[0] = L'/', huge[1] = L'*';
    EXPECT_EQ(lexer->Parse(huge.data(), static_cast<int>(huge.size())), 50'000'000);
}

TEST_F(Lexer, HasItsTable)
{
    EXPECT_TRUE(CallSlot<bool>(lexer.Get(), 9, L"+", 6));
    EXPECT_EQ(CallSlot<int>(lexer.Get(), 10, L"+", 1), 0);
    CallSlot(&recorder, 6, 9, IVekLexer::NUM_HEXADECIMAL, 2, 3, 4);
    EXPECT_EQ(recorder.Take(), L"op +|6 @0:0:0;int 9|3 @2:3:4;");
    lexer->SetCallback(nullptr);
    EXPECT_EQ(recorder.GetRefCount(), 1u);
    ExpectRefCountContract("lexer", getVekLibKernel()->CreateLexer());
}
