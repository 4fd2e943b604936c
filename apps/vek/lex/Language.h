#pragma once

#include "VekXML.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tool
{

/// What a lexer is to be told of a language, as its XML file has it.
struct Language
{
    struct Words
    {
        std::wstring kind; // what they are called, such as "type"
        bool caseSensitive;
        std::vector<std::wstring> words;
    };
    struct Comment
    {
        std::wstring start;
        std::wstring end;
    };

    std::wstring name;
    std::vector<std::wstring> files; // endings of names, without the dot
    std::vector<Words> keywords;
    std::vector<std::wstring> operators; // the shorter ones first, as a lexer wants them
    std::vector<Comment> comments;
    wchar_t escape = 0;    // what takes the meaning of a quote behind it; 0 for none
    wchar_t quote = 0;     // what else opens and closes a text; 0 for nothing
    bool isSigned = false; // a minus sign in front of a number belongs to it, unless a value stands before
};

/// The language of that name, or the one in the XML file of that name. Null after telling the user why not.
std::unique_ptr<Language> FindLanguage(std::wstring const & name);

/// The language of files with such a name; C when no other claims it.
std::unique_ptr<Language> LanguageOfFile(std::wstring const & path);

} // namespace tool
