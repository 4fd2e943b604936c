#pragma once

#include "xml/XmlChange.h"

#include <string>
#include <vector>

namespace tool
{

struct EditRequest
{
    std::wstring path;
    std::wstring target;
    std::vector<XmlEdit> edits;
    std::wstring list; // a file of more edits, read after the file itself
    bool creates = false;
    bool isDryRun = false;
};

/// `vek xml set`, `remove` and `rename`: changes the bytes that the edits are about, and no other one.
int RunXmlEdits(EditRequest const & request);

} // namespace tool
