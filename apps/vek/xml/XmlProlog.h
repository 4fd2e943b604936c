#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tool
{

/// What a prolog or an epilog consists of.
struct XmlPrologPart
{
    enum class Kind
    {
        Blank,
        Declaration, // XML's own
        DocumentType,
        Comment,
        Instruction
    };

    Kind kind;
    std::wstring_view text; // all of it, its marks included
};

/// Takes it apart. The text must last as long as the parts; a parser has accepted it.
std::vector<XmlPrologPart> SplitProlog(std::wstring_view prolog);

/// The prolog without such a part, nor the line break behind it.
std::wstring PrologWithout(std::wstring_view prolog, XmlPrologPart::Kind kind);

} // namespace tool
