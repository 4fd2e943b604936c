#pragma once

#include "VekLib.h"

#include <memory>
#include <string>
#include <vector>

namespace tool
{

struct ReleaseObject
{
    void operator()(IVekObject * object) const { object->Release(); }
};

/// Holds one reference to an object of the library.
template <class T>
using Held = std::unique_ptr<T, ReleaseObject>;

/// Reads an XML file; on failure tells the user why, after the library's own messages, and gives null.
Held<IVekXMLDocument> LoadXml(std::wstring const & path);

/// As LoadXml, but null without a word for a file that can't be read whole.
Held<IVekXMLDocument> TryLoadXml(std::wstring const & path);

/// Why a document that was read without an error is still not a whole one (CVekXMLParser::IsComplete).
wchar_t const * WhyIncomplete(IVekXMLDocument const & document);

/// Why a file could not be read, as far as the file system knows, or the other reason.
std::wstring WhyUnreadable(std::wstring const & path, wchar_t const * otherwise);

/// What the system says of the calling thread's last error, such as "access is denied".
std::wstring LastErrorText();

/// An element's text form in messages: printable, and cut when it is long.
std::wstring PrintableName(CVekString<wchar_t> const & name);

inline std::wstring_view View(CVekString<wchar_t> const & text)
{
    return std::wstring_view(text, static_cast<std::size_t>(text.GetLength()));
}

/// Visits a node, an element or an entry of a content model, and all below it in document order: enter(node, level)
/// comes before the children, which are left out when it returns false. Works through trees of any depth.
template <class Node, class Enter>
void WalkTree(Node * root, Enter enter)
{
    struct Place
    {
        Node * node;
        int nextChild;
    };
    std::vector<Place> path;
    Node * next = root;
    while (next || !path.empty())
    {
        if (next)
        {
            bool const goesDown = enter(next, path.size());
            path.push_back({next, goesDown ? 0 : next->GetNumChildren()});
        }
        Place & top = path.back();
        next = nullptr;
        while (!next && top.nextChild < top.node->GetNumChildren())
            next = top.node->GetChild(top.nextChild++);
        if (!next)
            path.pop_back();
    }
}

} // namespace tool
