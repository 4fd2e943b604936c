#include "xml/XmlTags.h"

namespace tool
{

XmlTags::XmlTags(XmlSource const & source, VekXMLPosition const & position)
    : m_bytes(source.Bytes()), m_encoding(source.Encoding()), m_width(m_encoding.Width()), m_begin(position.offset),
      m_tagEnd(m_begin + position.length), m_elementEnd(position.end), m_slash(m_tagEnd - 2 * m_width)
{
    if (At(m_slash) != '/')
        m_slash = 0;
}

bool XmlTags::IsBlankAt(std::size_t place) const
{
    unsigned int const unit = At(place);
    return unit == ' ' || unit == '\t' || unit == '\r' || unit == '\n';
}

XmlRange XmlTags::Name() const
{
    std::size_t const begin = m_begin + m_width;
    std::size_t end = begin;
    while (!IsBlankAt(end) && At(end) != '>' && At(end) != '/')
        end += m_width;
    return {begin, end};
}

std::size_t XmlTags::EndTag() const
{
    std::size_t at = m_elementEnd - m_width;
    while (At(at) != '<')
        at -= m_width;
    return at;
}

XmlRange XmlTags::EndName() const
{
    if (IsEmpty())
        return {};
    std::size_t const begin = EndTag() + 2 * m_width;
    XmlRange const name = Name();
    return {begin, begin + (name.end - name.begin)};
}

std::size_t XmlTags::BlanksBefore(std::size_t place) const
{
    while (place > m_width && IsBlankAt(place - m_width))
        place -= m_width;
    return place;
}

std::size_t XmlTags::BehindAttributes() const
{
    return BlanksBefore(IsEmpty() ? m_slash : m_tagEnd - m_width);
}

XmlRange XmlTags::AttributeName(XmlRange value) const
{
    std::size_t const equals = BlanksBefore(value.begin - m_width) - m_width;
    std::size_t const end = BlanksBefore(equals);
    std::size_t begin = end;
    while (!IsBlankAt(begin - m_width))
        begin -= m_width;
    return {begin, end};
}

XmlRange XmlTags::Attribute(XmlRange value) const
{
    return {BlanksBefore(AttributeName(value).begin), value.end + m_width};
}

XmlRange XmlTags::Line() const
{
    std::size_t begin = m_begin, end = m_elementEnd;
    while (begin > m_width && (At(begin - m_width) == ' ' || At(begin - m_width) == '\t'))
        begin -= m_width;
    while (At(end) == ' ' || At(end) == '\t')
        end += m_width;
    bool const isAlone = begin > m_width && At(begin - m_width) == '\n' && (At(end) == '\n' || At(end) == '\r');
    if (!isAlone)
        return {m_begin, m_elementEnd};
    begin -= m_width;
    if (begin > m_width && At(begin - m_width) == '\r')
        begin -= m_width;
    return {begin, m_elementEnd};
}

} // namespace tool
