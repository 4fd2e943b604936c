#include "xml/XMLMaker.h"

#include "base/ArrayAttachment.h"
#include "text/Scan.h"
#include "text/StringAccess.h"
#include "xml/XMLManager.h"

#include <limits.h>

#include <new>
#include <utility>

namespace vek
{
namespace
{

using Access = StringAccess<wchar_t>;

} // namespace

// The entry of the text, which is shared already when it is known.
XMLMaker::Remembered & XMLMaker::Remember(wchar_t const * text, size_t length) noexcept
{
    size_t const spread =
        length ? length * 5 + text[0] + text[length / 2] * size_t{3} + text[length - 1] * size_t{7} : 0;
    Remembered & entry = m_texts[spread % REMEMBERED];
    if (entry.length != length || !IsKnown(entry.shared) ||
        !IsSameShort(entry.shared.text, text, length * sizeof(wchar_t)))
        entry = {{nullptr, 0}, length};
    return entry;
}

// A string of the text that others share, made at the place unless it is known.
CVekString<wchar_t> XMLMaker::Share(XMLSharedText & shared, char * place, wchar_t const * text,
                                    size_t length) const noexcept
{
    if (IsKnown(shared))
        return Access::Share(shared.text);
    CVekString<wchar_t> made = Access::EmbedShared(place, text, length);
    shared = {Access::Text(made), m_row.Stretch()};
    return made;
}

CVekXMLElement * XMLMaker::MakeElement(wchar_t const * name) noexcept
{
    return Make(name, TextLength(name), nullptr, nullptr, 0);
}

CVekXMLElement * XMLMaker::MakeNode(wchar_t const * name, void const * section, size_t size) noexcept
{
    if (name != m_node.literal)
        m_node = {name, TextLength(name), {nullptr, 0}};
    bool const isInRow = size <= PoolRow::LARGEST - sizeof(CVekXMLElement);
    if (!isInRow || !m_row.Fit(sizeof(CVekXMLElement) + size) || !IsKnown(m_node.shared))
        return Make(name, m_node.length, &m_node.shared, section, size);
    // Most nodes: the name is there, and the section goes behind the element.
    auto * const block = static_cast<char *>(m_row.Allocate(sizeof(CVekXMLElement) + size));
    if (!block)
        return nullptr;
    Access::Text(m_name) = m_node.shared.text;
    auto * const element = new (block) CVekXMLElement(std::move(m_name));
    Embed(*element, block + sizeof(CVekXMLElement), section, size);
    return element;
}

CVekXMLElement * XMLMaker::Make(wchar_t const * name, size_t length, XMLSharedText * known, void const * section,
                                size_t size) noexcept
{
    if (length > INT_MAX || size > INT_MAX)
        return nullptr;
    size_t const nameBytes = Access::EmbeddedBytes(length);
    bool const isInRow = sizeof(CVekXMLElement) + nameBytes <= PoolRow::LARGEST;
    bool const isEmbedded = isInRow && section && size <= PoolRow::LARGEST - sizeof(CVekXMLElement) - nameBytes;
    CVekXMLElement * element = nullptr;
    if (!isInRow)
        element = CVekXMLElement::Make(name, static_cast<int>(length));
    else if (m_row.Fit(sizeof(CVekXMLElement) + nameBytes + (isEmbedded ? size : 0)))
    {
        XMLSharedText & shared = known ? *known : Remember(name, length).shared;
        size_t const bytes = sizeof(CVekXMLElement) + (IsKnown(shared) ? 0 : nameBytes);
        if (auto * const block = static_cast<char *>(m_row.Allocate(bytes + (isEmbedded ? size : 0))))
        {
            element = new (block) CVekXMLElement(Share(shared, block + sizeof(CVekXMLElement), name, length));
            if (isEmbedded)
                Embed(*element, block + bytes, section, size);
        }
    }
    if (!element || !section || isEmbedded ||
        AddSection(*element, static_cast<unsigned char const *>(section), static_cast<int>(size)))
        return element;
    element->Release();
    return nullptr;
}

void XMLMaker::Embed(CVekXMLElement & element, char * place, void const * section, size_t size) noexcept
{
    CopyShort(place, section, size);
    element.m_cdata = reinterpret_cast<unsigned char *>(place);
    element.m_cdataSize = static_cast<int>(size);
    element.m_hasCDATA = true;
    element.m_isCDATAEmbedded = true;
}

bool XMLMaker::AddSection(CVekXMLElement & element, unsigned char const * bytes, int size) noexcept
{
    auto const count = static_cast<size_t>(size);
    if (element.m_hasCDATA || size <= 0 || count > PoolRow::LARGEST || !m_row.Fit(count))
        return element.AddCDATASection(bytes, size);
    void * const block = m_row.Allocate(count);
    if (!block)
        return element.AddCDATASection(bytes, size);
    CopyShort(block, bytes, count);
    element.m_cdata = static_cast<unsigned char *>(block);
    element.m_cdataSize = size;
    element.m_hasCDATA = true;
    return true;
}

// Gives an array its first storage.
template <class T>
bool XMLMaker::MakeRoom(CVekPointerArray<T> & array, int count) noexcept
{
    size_t const bytes = ArrayAttachment::BlockBytes(count);
    void * const block = m_row.Fit(bytes) ? m_row.Allocate(bytes) : nullptr;
    if (block)
        ArrayAttachment::Adopt(array, block, count);
    return block != nullptr;
}

bool XMLMaker::MakeRoomForChild(CVekPointerArray<CVekXMLElement> & children, int expected) noexcept
{
    int const capacity = children.GetCapacity();
    return capacity == 0 ? MakeRoom(children, expected) : children.Reserve(ArrayAttachment::NextCapacity(capacity));
}

bool XMLMaker::ReserveAttributes(CVekXMLElement & element, int count) noexcept
{
    CVekPointerArray<CVekXMLAttribute> & attributes = element.m_attributes;
    return attributes.GetCapacity() > 0 || count > ArrayAttachment::SMALL
               ? attributes.Reserve(attributes.GetCount() + count)
               : MakeRoom(attributes, count);
}

CVekXMLAttribute * XMLMaker::MakeAttribute(XMLNameCache::Name & name, wchar_t const * value, int length) noexcept
{
    size_t const nameBytes = Access::EmbeddedBytes(name.length);
    size_t const valueBytes = Access::EmbeddedBytes(static_cast<size_t>(length));
    if (nameBytes > PoolRow::LARGEST || valueBytes > PoolRow::LARGEST - sizeof(CVekXMLAttribute) - nameBytes)
        return CVekXMLAttribute::Make(name.text, static_cast<int>(name.length), value, length);
    if (!m_row.Fit(sizeof(CVekXMLAttribute) + valueBytes + nameBytes))
        return nullptr;
    auto const units = static_cast<size_t>(length);
    XMLSharedText own = {nullptr, 0};
    XMLSharedText & shared = units <= SHORT_VALUE ? Remember(value, units).shared : own;
    size_t const bytes = sizeof(CVekXMLAttribute) + (IsKnown(shared) ? 0 : valueBytes);
    auto * const block = static_cast<char *>(m_row.Allocate(bytes + (IsKnown(name.shared) ? 0 : nameBytes)));
    if (!block)
        return nullptr;
    char * const texts = block + sizeof(CVekXMLAttribute);
    return new (block) CVekXMLAttribute(Share(name.shared, block + bytes, name.text, name.length),
                                        units <= SHORT_VALUE ? Share(shared, texts, value, units)
                                                             : Access::Embed(texts, value, units));
}

} // namespace vek
