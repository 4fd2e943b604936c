#pragma once

#include "xml/XmlNode.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace tool
{

/// A child of an element as differences are told of it: text in one piece, whatever it consists of.
struct XmlItem
{
    XmlNode kind;
    IVekXMLElement const * node; // null for text
    std::wstring text;           // what it holds, but for an element
    std::wstring name;           // an element's in a path, with its number if there are several
    std::uint64_t fingerprint;   // with all that is in it

    /// Whether both can be one thing that has changed.
    bool IsLike(XmlItem const & other) const;
};

using XmlItems = std::vector<XmlItem>;

/// Tells elements that are the same, but for the order of their attributes, by a number.
class XmlFingerprints
{
public:
    explicit XmlFingerprints(IVekXMLElement const & root);

    std::uint64_t Of(IVekXMLElement const & element) const { return m_known.at(&element); }
    XmlItems ItemsOf(IVekXMLElement const & element) const;

private:
    void Add(IVekXMLElement const & element);

    std::unordered_map<IVekXMLElement const *, std::uint64_t> m_known;
};

} // namespace tool
