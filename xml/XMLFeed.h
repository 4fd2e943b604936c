#pragma once

#include <expat.h>

namespace vek
{

/// Hands a document to the tokenizer as if it were in one piece and more might follow, so that one that merely ends
/// early is no error.
///
/// Behind each piece but the last the tokenizer counts its lines and columns, in a pass of its own that takes as long
/// as a sixth of the whole parse. So the largest piece is given as the last one, where that makes no difference but for
/// the errors that tell of an early end, and they are taken back: once the outermost element has begun, and when the
/// text ends behind a tag, so that no character is held back.
class XMLFeed
{
public:
    XMLFeed(XML_Parser tokenizer, void const * bytes, int size) noexcept
        : m_tokenizer(tokenizer), m_bytes(static_cast<unsigned char const *>(bytes)), m_size(size)
    {
    }

    /// Gives it all; false on an error, which the tokenizer tells. The flag is false once the outermost element begins.
    bool Run(bool const & isBeforeElement) noexcept;

private:
    bool EndsBehindTag() const noexcept;
    bool IsEarlyEnd() const noexcept;
    int NextPiece() const noexcept;
    bool IsUnit(int offset, char character) const noexcept;
    int UnitBytes() const noexcept;

    XML_Parser m_tokenizer;
    unsigned char const * m_bytes;
    int m_size;
    int m_given = 0;
};

} // namespace vek
