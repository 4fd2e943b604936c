#include "Benches.h"

#include "SwitchLexer.h"
#include "VekLib.h"

#include <cstdio>
#include <random>

namespace bench
{

namespace
{

// The aims.
constexpr double LEXER_OF_SWITCH = 0.5;
constexpr double MANY_OF_FEW = 0.8; // ten times as many keywords

constexpr std::size_t TEXT_UNITS = 5'000'000; // 10 MB

class Counter final : public CVekRefCounted<IVekLexer::Callback>
{
public:
    void OnKeywordFound(wchar_t const *, int, int, int line, int) override { Count(counts.keywords, line); }
    void OnOperatorFound(wchar_t const *, int, int, int line, int) override { Count(counts.operators, line); }
    void OnIdentifierFound(wchar_t const *, int, int line, int) override { Count(counts.identifiers, line); }
    void OnIntegerFound(int, IVekLexer::NUM_FORMAT, int, int line, int) override { Count(counts.integers, line); }
    void OnFloatFound(double, int, int line, int) override { Count(counts.floats, line); }
    void OnStringFound(wchar_t const *, int, int line, int) override { Count(counts.strings, line); }
    void OnInvalidSyntax(wchar_t const *, int, int, int) override { ++faults; }
    void OnError(wchar_t const *, int, int, int) override { ++faults; }

    TokenCounts counts;
    int faults = 0;

private:
    void Count(int & kind, int line)
    {
        ++kind;
        counts.lines += line;
    }
};

std::vector<std::wstring> Split(std::wstring_view text)
{
    std::vector<std::wstring> words(1);
    for (wchar_t const unit : text)
    {
        if (unit == L' ')
            words.emplace_back();
        else
            words.back() += unit;
    }
    return words;
}

/// The C language's keywords and as many more as are asked for.
std::vector<std::wstring> Keywords(std::size_t count)
{
    std::vector<std::wstring> words = Split(
        L"auto break case char const continue default do double else enum extern float for goto if inline int long "
        L"register restrict return short signed sizeof static struct switch typedef union unsigned void volatile while "
        L"bool true false class delete explicit export friend mutable namespace new operator private protected public "
        L"template this throw try catch typename using virtual asm final");
    for (std::size_t i = words.size(); i < count; ++i)
        words.push_back(std::wstring(1, static_cast<wchar_t>(L'a' + i % 26)) + L"_builtin" + std::to_wstring(i));
    words.resize(count);
    return words;
}

std::vector<std::wstring> Operators()
{
    return Split(L"= + * / % < > ! & | ^ ~ ? : ; , . ( ) [ ] { } # == += *= /= %= <= >= != && || ++ << >> &= |= ^= :: "
                 L"## <<= >>= ...");
}

/// Text that looks like a C program, without minus signs, characters and hexadecimal numbers, which the lexer takes for
/// something else.
std::wstring MakeText()
{
    std::vector<std::wstring> const keywords = Keywords(60);
    wchar_t const * const names[] = {L"index",  L"count", L"buffer_size", L"p",          L"node",    L"GetValue",
                                     L"vertex", L"i",     L"m_position",  L"normalised", L"texture", L"result"};
    std::mt19937 random(1);
    auto const pick = [&random](unsigned int count) { return static_cast<std::size_t>(random() % count); };
    auto const name = [&] { return names[pick(std::size(names))] + (pick(3) ? L"" : std::to_wstring(pick(1000))); };
    std::wstring text;
    text.reserve(TEXT_UNITS + 1000);
    while (text.size() < TEXT_UNITS)
    {
        std::wstring const indent(4 * (1 + pick(4)), L' ');
        switch (pick(10))
        {
        case 0:
            text += indent + L"// what the following lines do, and why they do it this way: " + name() + L"\n";
            break;
        case 1:
            text += indent + L"/* A block of comment,\n" + indent + L" * with a second line. */\n\n";
            break;
        case 2:
            text += indent + L"if (" + name() + L" <= " + std::to_wstring(pick(5000)) + L" && !" + name() + L"[" +
                    name() + L"])\n" + indent + L"{\n";
            break;
        case 3:
            text += indent + keywords[pick(60)] + L" " + keywords[pick(60)] + L" " + name() + L" = " +
                    std::to_wstring(pick(100)) + L"." + std::to_wstring(pick(1000)) + L";\n" + indent + L"}\n";
            break;
        case 4:
            text += indent + L"printf(\"%d of %s is the text\\n\", " + name() + L", " + name() + L");\n";
            break;
        default:
            text += indent + name() + L"." + name() + L" += " + name() + L"(" + name() + L", " + name() + L" * " +
                    std::to_wstring(pick(300)) + L" + " + name() + L") / 2.5;\n";
        }
    }
    return text;
}

CVekRef<IVekLexer> MakeLexer(std::vector<std::wstring> const & keywords)
{
    CVekRef<IVekLexer> lexer(getVekLibKernel()->CreateLexer());
    int id = 0;
    for (std::wstring const & keyword : keywords)
        lexer->AddKeyword(keyword.c_str(), id++, true);
    for (std::wstring const & text : Operators())
        lexer->AddOperator(text.c_str(), id++);
    lexer->AddComment(L"//", L"\n");
    lexer->AddComment(L"/*", L"*/");
    return lexer;
}

struct Rates
{
    Best byHand, lexer, silent, tokenizer;
    TokenCounts counts;
    bool agrees = true;
};

Rates Measure(std::wstring const & text, std::size_t keywordCount, int rounds)
{
    std::vector<std::wstring> const keywords = Keywords(keywordCount);
    SwitchLexer const byHand(keywords);
    CVekRef<IVekLexer> const lexer = MakeLexer(keywords);
    CVekRef<IVekTokenizer> const tokenizer(getVekLibKernel()->CreateTokenizer());
    int const length = static_cast<int>(text.size());
    Rates rates;
    for (int round = 0; round < rounds; ++round)
    {
        Counter counter;
        Stopwatch watch;
        rates.counts = byHand.Run(text);
        rates.byHand.Add(watch.Lap());
        lexer->SetCallback(&counter);
        watch.Lap();
        lexer->Parse(text.data(), length);
        rates.lexer.Add(watch.Lap());
        lexer->SetCallback(nullptr);
        watch.Lap();
        lexer->Parse(text.data(), length);
        rates.silent.Add(watch.Lap());
        tokenizer->RemoveAll();
        watch.Lap();
        bool const done = tokenizer->Tokenize(lexer.Get(), text.data(), length);
        rates.tokenizer.Add(watch.Lap());
        rates.agrees = rates.agrees && done && counter.counts == rates.counts && counter.faults == 0 &&
                       tokenizer->GetNumTokens() == rates.counts.Total();
    }
    return rates;
}

} // namespace

bool MeasureLexing(bool quick, Aims & aims)
{
    std::wstring const text = MakeText();
    std::size_t const bytes = text.size() * sizeof(wchar_t);
    Table table({"lexing, keywords", "by hand MB/s", "lexer MB/s", "of by hand", "aim", "no callback", "tokenizer MB/s",
                 "of by hand", "Mtokens/s lexer", "tokenizer"});
    bool agrees = true;
    double few = 0;
    for (std::size_t const keywords : {60U, 600U})
    {
        Rates const rates = Measure(text, keywords, quick ? 5 : 15);
        agrees = agrees && rates.agrees;
        double const byHand = rates.byHand.MegabytesPerSecond(bytes);
        double const lexer = rates.lexer.MegabytesPerSecond(bytes);
        double const tokenizer = rates.tokenizer.MegabytesPerSecond(bytes);
        double const megatokens = rates.counts.Total() / 1e6;
        bool const met = lexer >= LEXER_OF_SWITCH * byHand && lexer >= MANY_OF_FEW * few;
        few = few > 0 ? few : lexer;
        table.Add({std::to_string(keywords), Number(byHand, 0), Number(lexer, 0), Number(lexer / byHand, 2),
                   aims.Check(met), Number(rates.silent.MegabytesPerSecond(bytes), 0), Number(tokenizer, 0),
                   Number(tokenizer / byHand, 2), Number(megatokens / rates.lexer.Seconds(), 1),
                   Number(megatokens / rates.tokenizer.Seconds(), 1)});
    }
    std::printf("Lexing: %.0f MB of UTF-16 like C, 45 operators; aims: %.1f of the lexer by hand, and %.1f of the speed"
                " with 60 keywords.\n\n",
                static_cast<double>(bytes) / 1e6, LEXER_OF_SWITCH, MANY_OF_FEW);
    table.Print();
    std::printf("\n");
    if (!agrees)
        std::printf("The lexers do not find the same tokens.\n");
    return agrees;
}

} // namespace bench
