#include "../LexTexts.h"
#include "Peers.h"
#include "TableLexer.h"

#include <memory>

namespace bench
{

namespace
{

constexpr std::size_t KEYWORDS = 60;
constexpr double AIM = 0.85; // of the lexer by hand

} // namespace

void AddLexing(Duels & duels)
{
    auto const text = std::make_shared<std::wstring const>(LexText());
    int const length = static_cast<int>(text->size());
    std::vector<std::wstring> const keywords = LexKeywords(KEYWORDS);
    auto const tables = std::make_shared<TableLexer const>(keywords, LexOperators());
    auto const switches = std::make_shared<SwitchLexer const>(keywords);
    CVekRef<IVekLexer> const lexer = MakeLexer(keywords);
    CVekRef<IVekTokenizer> const tokenizer(getVekLibKernel()->CreateTokenizer());

    auto const counts = std::make_shared<TokenCounts>();
    auto const own = Repeat(1,
                            [=]
                            {
                                TokenCounter counter;
                                lexer->SetCallback(&counter);
                                lexer->Parse(text->data(), length);
                                lexer->SetCallback(nullptr);
                                *counts = counter.counts;
                            });
    auto const tokenize = Repeat(1,
                                 [=]
                                 {
                                     tokenizer->RemoveAll();
                                     tokenizer->Tokenize(lexer.Get(), text->data(), length);
                                 });
    own(), tokenize();
    duels.Expect(*counts == tables->Run(*text) && *counts == switches->Run(*text), "tokens");
    duels.Expect(tokenizer->GetNumTokens() == counts->Total(), "lists of tokens");
    tokenizer->RemoveAll();
    duels.Add("lexer, 10 MB like C", "tables by hand", AIM, own, Repeat(1, [=] { *counts = tables->Run(*text); }));
    duels.Add("lexer, 10 MB like C", "switch by hand", 0, own, Repeat(1, [=] { *counts = switches->Run(*text); }));
    duels.Add("tokenizer, 10 MB like C", "VekLib's bare lexer", 0, tokenize, own);
}

} // namespace bench
