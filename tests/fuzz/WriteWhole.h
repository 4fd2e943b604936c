// Writes a document with everything kept, for targets.
#pragma once

#include "VekXML.h"

#include "fuzz/Target.h"
#include "support/TestStream.h"

namespace fuzz
{

// Whether bytes of UTF-16 hold a half of a surrogate pair without the other.
inline bool HasHalf(Bytes source, bool isBig)
{
    bool isOpen = false;
    for (std::size_t i = 0; i + 1 < source.size(); i += 2)
    {
        unsigned const kind = source[i + !isBig] & 0xFCu;
        if (isOpen != (kind == 0xDC))
            return true;
        isOpen = kind == 0xD8;
    }
    return false;
}

// False when the document can't be written, for a good reason only. Kept: of UTF-16 the tokenizer takes the first half
// of a pair and any unit behind it for a character, be it one that ends something; the writer refuses what comes of it.
inline bool WriteWhole(TestStream & stream, IVekXMLDocument * document, CVekXMLParser const & parser, Bytes source)
{
    CVekXMLWriter writer;
    writer.SetKeepAll(true);
    bool const isWritten = writer.WriteXML(&stream, document);
    unsigned int const codePage = parser.GetSourceCodePage();
    Check(isWritten || (codePage == 1200 && HasHalf(source, false)) || (codePage == 1201 && HasHalf(source, true)),
          "a document is written whole");
    return isWritten;
}

} // namespace fuzz
