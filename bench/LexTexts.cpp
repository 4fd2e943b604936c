#include "LexTexts.h"

#include <random>

namespace bench
{

namespace
{

constexpr std::size_t TEXT_UNITS = 5'000'000;

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

} // namespace

std::vector<std::wstring> LexKeywords(std::size_t count)
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

std::vector<std::wstring> LexOperators()
{
    return Split(L"= + * / % < > ! & | ^ ~ ? : ; , . ( ) [ ] { } # == += *= /= %= <= >= != && || ++ << >> &= |= ^= :: "
                 L"## <<= >>= ...");
}

std::wstring LexText()
{
    std::vector<std::wstring> const keywords = LexKeywords(60);
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
    for (std::wstring const & text : LexOperators())
        lexer->AddOperator(text.c_str(), id++);
    lexer->AddComment(L"//", L"\n");
    lexer->AddComment(L"/*", L"*/");
    return lexer;
}

} // namespace bench
