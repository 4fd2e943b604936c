#pragma once

#include "xml/XmlSource.h"

namespace tool
{

/// Bytes of a file.
struct XmlRange
{
    std::size_t begin = 0;
    std::size_t end = 0;
};

/// The bytes of an element's tags.
class XmlTags
{
public:
    XmlTags(XmlSource const & source, VekXMLPosition const & position);

    XmlRange Element() const { return {m_begin, m_elementEnd}; }
    XmlRange Name() const;
    /// In the end tag; empty without one.
    XmlRange EndName() const;
    /// Whether it is one tag, "<a/>", and where its slash stands.
    bool IsEmpty() const { return m_slash != 0; }
    std::size_t Slash() const { return m_slash; }
    std::size_t BehindStart() const { return m_tagEnd; }
    /// Where the end tag begins.
    std::size_t EndTag() const;
    /// Where another attribute has its place.
    std::size_t BehindAttributes() const;
    /// An attribute with the white space in front of it and its quotes, found by its value.
    XmlRange Attribute(XmlRange value) const;
    XmlRange AttributeName(XmlRange value) const;
    /// The white space that a place has in front of it.
    std::size_t BlanksBefore(std::size_t place) const;
    /// The line that the element has for itself, from the line break in front of its indentation on; the element alone
    /// where it has none.
    XmlRange Line() const;

private:
    bool IsBlankAt(std::size_t place) const;
    unsigned int At(std::size_t place) const { return m_encoding.UnitAt(m_bytes, place); }

    std::string const & m_bytes;
    XmlEncoding m_encoding;
    std::size_t m_width;
    std::size_t m_begin, m_tagEnd, m_elementEnd;
    std::size_t m_slash;
};

} // namespace tool
