#pragma once

#include "xml/XmlSave.h"

#include <string>

namespace tool
{

struct FormatOptions
{
    int indentation = USUAL_INDENTATION;
    bool noDocumentType = false;
    bool stripText = false;
    bool stripComments = false;
};

/// `vek xml format`: writes a file anew, indented.
int RunXmlFormat(std::wstring const & path, std::wstring const & target, FormatOptions const & options);

} // namespace tool
