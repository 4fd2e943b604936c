#include "Benches.h"

#include "LexTexts.h"
#include "SwitchLexer.h"

#include <cstdio>

namespace bench
{

namespace
{

// The aims.
constexpr double LEXER_OF_SWITCH = 0.5;
constexpr double MANY_OF_FEW = 0.8; // ten times as many keywords

struct Rates
{
    Best byHand, lexer, silent, tokenizer;
    TokenCounts counts;
    bool agrees = true;
};

Rates Measure(std::wstring const & text, std::size_t keywordCount, int rounds)
{
    std::vector<std::wstring> const keywords = LexKeywords(keywordCount);
    SwitchLexer const byHand(keywords);
    CVekRef<IVekLexer> const lexer = MakeLexer(keywords);
    CVekRef<IVekTokenizer> const tokenizer(getVekLibKernel()->CreateTokenizer());
    int const length = static_cast<int>(text.size());
    Rates rates;
    for (int round = 0; round < rounds; ++round)
    {
        TokenCounter counter;
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
    std::wstring const text = LexText();
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
