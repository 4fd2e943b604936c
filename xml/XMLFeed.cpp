#include "xml/XMLFeed.h"

#include <string.h>

#include <algorithm>

namespace vek
{

namespace
{

// Pieces of what stands in front of the outermost element double.
constexpr int FIRST_PIECE = 64;

} // namespace

bool XMLFeed::Run(bool const & isBeforeElement) noexcept
{
    bool const mayEnd = EndsBehindTag();
    while (m_given < m_size)
    {
        bool const isLast = mayEnd && !isBeforeElement;
        int const count = isBeforeElement ? NextPiece() : m_size - m_given;
        auto const * const piece = reinterpret_cast<char const *>(m_bytes + m_given);
        if (XML_Parse(m_tokenizer, piece, count, isLast) == XML_STATUS_ERROR)
            return isLast && IsEarlyEnd();
        m_given += count;
    }
    return true;
}

// Behind a tag: of what is left of a token, and all that follows, the tokenizer makes a copy, and begins it anew.
int XMLFeed::NextPiece() const noexcept
{
    int const step = UnitBytes();
    int count = std::min(std::max(FIRST_PIECE, m_given), m_size - m_given);
    if (step == 1)
    {
        void const * const end =
            memchr(m_bytes + m_given + count - 1, '>', static_cast<size_t>(m_size - m_given - count + 1));
        return end ? static_cast<int>(static_cast<unsigned char const *>(end) - m_bytes) + 1 - m_given
                   : m_size - m_given;
    }
    while (count < m_size - m_given && !IsUnit(m_given + count - step, '>'))
        count += step;
    return std::min(count, m_size - m_given);
}

// Texts of 16-bit units begin with a byte order mark or a character below 256.
int XMLFeed::UnitBytes() const noexcept
{
    return m_size > 1 && (m_bytes[0] == 0 || m_bytes[1] == 0 || m_bytes[0] >= 0xFE) ? 2 : 1;
}

bool XMLFeed::IsUnit(int offset, char character) const noexcept
{
    auto const wanted = static_cast<unsigned char>(character);
    if (offset < 0 || offset + UnitBytes() > m_size)
        return false;
    if (UnitBytes() == 1)
        return m_bytes[offset] == wanted;
    bool const isLittle = m_bytes[0] == 0xFF || m_bytes[1] == 0;
    return m_bytes[offset + !isLittle] == wanted && m_bytes[offset + isLittle] == 0;
}

bool XMLFeed::EndsBehindTag() const noexcept
{
    int const step = UnitBytes();
    int last = m_size - step;
    while (IsUnit(last, ' ') || IsUnit(last, '\t') || IsUnit(last, '\n'))
        last -= step;
    return IsUnit(last, '>');
}

bool XMLFeed::IsEarlyEnd() const noexcept
{
    switch (XML_GetErrorCode(m_tokenizer))
    {
    case XML_ERROR_NO_ELEMENTS:
    case XML_ERROR_UNCLOSED_TOKEN:
    case XML_ERROR_UNCLOSED_CDATA_SECTION:
    case XML_ERROR_PARTIAL_CHAR:
        // An entity's text that ends early is at fault wherever it is referred to.
        return !IsUnit(static_cast<int>(XML_GetCurrentByteIndex(m_tokenizer)), '&');
    default:
        return false;
    }
}

} // namespace vek
