// A callback that writes down what it is told, and lexers set up in one line.
#pragma once

#include "VekLib.h"

#include <cmath>
#include <functional>
#include <string>
#include <vector>

// Events as text: "kind text|id @position:line:column;". Floats have the bits of "%a".
class Recorder final : public CVekRefCounted<IVekLexer::Callback>
{
public:
    void OnKeywordFound(wchar_t const * text, int id, int position, int line, int column) override
    {
        Add(L"key " + Shown(text) + L"|" + std::to_wstring(id), position, line, column);
    }
    void OnOperatorFound(wchar_t const * text, int id, int position, int line, int column) override
    {
        Add(L"op " + Shown(text) + L"|" + std::to_wstring(id), position, line, column);
    }
    void OnIdentifierFound(wchar_t const * text, int position, int line, int column) override
    {
        Add(L"id " + Shown(text), position, line, column);
    }
    void OnIntegerFound(int value, IVekLexer::NUM_FORMAT format, int position, int line, int column) override
    {
        Add(L"int " + std::to_wstring(value) + L"|" + std::to_wstring(format), position, line, column);
    }
    void OnFloatFound(double value, int position, int line, int column) override
    {
        wchar_t text[64];
        // How infinity is printed is the runtime's.
        _snwprintf(text, 64, std::isinf(value) ? L"float infinite" : L"float %.9g", value);
        Add(text, position, line, column);
    }
    void OnStringFound(wchar_t const * text, int position, int line, int column) override
    {
        Add(L"str " + Shown(text), position, line, column);
    }
    void OnInvalidSyntax(wchar_t const * text, int position, int line, int column) override
    {
        Add(L"bad " + Shown(text), position, line, column);
    }
    void OnError(wchar_t const * text, int position, int line, int column) override
    {
        Add(L"error " + Shown(text), position, line, column);
    }

    std::wstring Take() { return std::exchange(events, {}); }

    std::wstring events;
    std::function<void()> onEvent; // after each

private:
    // Long texts as their beginning and length, line feeds and carriage returns visible.
    static std::wstring Shown(std::wstring text)
    {
        for (wchar_t & unit : text)
            unit = unit == L'\n' ? L'$' : unit == L'\r' ? L'%' : unit;
        return text.size() > 40 ? text.substr(0, 2) + L"*" + std::to_wstring(text.size()) : text;
    }
    void Add(std::wstring const & event, int position, int line, int column)
    {
        events += event + L" @" + std::to_wstring(position) + L":" + std::to_wstring(line) + L":" +
                  std::to_wstring(column) + L";";
        if (onEvent)
            onEvent();
    }
};

// Sets a lexer up by words: "k:text" adds a keyword, "i:text" one without case, "o:text" an operator, each with its
// place in the list (from 1) as identifier; "l:text" adds a line comment, "c:start end" a block comment.
inline void Register(IVekLexer & lexer, std::vector<std::wstring> const & words)
{
    int id = 0;
    for (std::wstring const & word : words)
    {
        std::wstring const text = word.substr(2);
        std::size_t const blank = text.find(L' ');
        ++id;
        switch (word[0])
        {
        case L'k':
        case L'i':
            lexer.AddKeyword(text.c_str(), id, word[0] == L'k');
            break;
        case L'o':
            lexer.AddOperator(text.c_str(), id);
            break;
        case L'l':
            lexer.AddComment(text.c_str(), L"\n");
            break;
        default:
            lexer.AddComment(text.substr(0, blank).c_str(), text.substr(blank + 1).c_str());
        }
    }
}
