#pragma once

#include <string>
#include <vector>

namespace tool
{

struct CheckRequest
{
    std::vector<std::wstring> folders;
    std::vector<std::wstring> names; // patterns; none for those of XML files
    int jobs = 1;                    // worker threads
    bool onlyBad = false;
    bool stats = false;
};

/// `vek xml check`: reads every XML file of the folders and tells which are bad.
int RunXmlCheck(CheckRequest const & request);

} // namespace tool
