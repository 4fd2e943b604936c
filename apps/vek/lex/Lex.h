#pragma once

#include <string>

namespace tool
{

struct LexRequest
{
    std::wstring file;
    std::wstring language; // a name or a file; empty for the one of the file's name
    std::wstring html;     // where to write a page; empty for none
    bool count = false;
};

/// vek lex. Returns an exit code.
int RunLex(LexRequest const & request);

} // namespace tool
