#pragma once

#include "VekLexer.h"
#include "lex/Language.h"

#include <string>

namespace tool
{

/// A page that shows a text with its tokens coloured. What stands between the tokens and is not blank is a comment.
std::string MakeHtml(std::wstring const & title, std::wstring const & text, Language const & language,
                     IVekTokenizer const & tokens);

} // namespace tool
