#pragma once

#include "xml/XmlSave.h"

#include <string>

namespace tool
{

/// What the editing commands have in common.
struct EditOptions
{
    SaveOptions save;
    bool dropText = false; // a file may be replaced even if text is lost with it
};

struct SetRequest
{
    std::wstring path;
    std::wstring elementPath;
    std::wstring attribute;
    std::wstring value;
    std::wstring target; // empty: the file itself
    bool create = false;
};

/// `vek xml get`: prints the value as it is; only a console gets control characters escaped.
int RunXmlGet(std::wstring const & path, std::wstring const & elementPath, std::wstring const & attribute);

/// `vek xml set`: changes or adds an attribute.
int RunXmlSet(SetRequest const & request, EditOptions const & options);

/// `vek xml format`: writes a file anew.
int RunXmlFormat(std::wstring const & path, std::wstring const & target, EditOptions const & options);

} // namespace tool
