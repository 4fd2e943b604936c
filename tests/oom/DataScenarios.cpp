#include "oom/DataScenarios.h"

#include <cstdlib>

namespace
{

bool UseMemoryStream()
{
    Released<IVekMemoryIOStream> const stream(getVekLibKernel()->CreateMemoryIOStream());
    if (!stream || !stream->Open(nullptr, VEK_IO_READ | VEK_IO_WRITE, 1000))
        return false;
    int found = 0;
    bool const printed = stream->Printf(L"%d %s", 17, L"text") && stream->Scanf(L"%d", &found);
    return printed && found == 17;
}

bool UseFileStream()
{
    wchar_t const * const folder = _wgetenv(L"VEK_TEST_TMP");
    wchar_t path[300] = L"oom.bin";
    if (folder)
        VekStrPrintfW(path, 300, L"%s/oom.bin", folder);
    Released<IVekFileIOStream> const stream(getVekLibKernel()->CreateFileIOStream());
    if (!stream || !stream->Open(path, VEK_IO_WRITE | VEK_IO_BINARY, 0))
        return false;
    bool const printed = stream->Printf("%d %s", 17, "text") && stream->WriteDouble(1.5, true);
    stream->Close();
    int found = 0;
    return stream->Open(path, VEK_IO_READ | VEK_IO_BINARY, 0) && stream->Scanf("%d", &found) && found == 17 && printed;
}

bool Lex()
{
    Released<IVekLexer> const lexer(getVekLibKernel()->CreateLexer());
    Released<IVekTokenizer> const tokenizer(getVekLibKernel()->CreateTokenizer());
    if (!lexer || !tokenizer)
        return false;
    bool succeeded = lexer->AddComment(L"//", L"\n") == 1;
    for (wchar_t const * const word : {L"if", L"else", L"while", L"for"})
        succeeded &= lexer->AddKeyword(word, 1, word[0] == L'i');
    for (wchar_t const * const sign : {L"=", L"==", L"(", L")", L";"})
        succeeded &= lexer->AddOperator(sign, 2);
    wchar_t const * const text = L"while (x == 10) y = 2.5; // and so on\n if \"a text\"";
    int const many = 40;
    CVekString<wchar_t> longText;
    for (int i = 0; i < many; ++i)
        longText.Append(text);
    bool const tokenized = tokenizer->Tokenize(lexer.Get(), longText, -1);
    // All or nothing, and the lexer has its own callback again.
    bool const sound = tokenized ? tokenizer->GetNumTokens() > 0 : tokenizer->GetNumTokens() == 0;
    bool const filtered = tokenizer->SetFilter(IVekTokenizer::TOKEN_KEYWORD);
    succeeded &= tokenized && filtered && tokenizer->GetNumTokens() == 2 * many;
    return succeeded && sound && !lexer->GetCallback();
}

} // namespace

std::vector<Scenario> const dataScenarios = {
    {"UseMemoryStream", UseMemoryStream, {L"CVekMemoryIOStream"}},
    {"UseFileStream", UseFileStream, {L"CVekFileIOStream"}},
    {"Lex", Lex, {L"CVekLexer", L"CVekTokenizer"}},
};
