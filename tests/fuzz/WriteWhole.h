// Writes a document with everything kept, for targets.
#pragma once

#include "VekXML.h"

#include "fuzz/Target.h"
#include "support/TestStream.h"

namespace fuzz
{

// False when the document can't be written, for a good reason only. Kept: of UTF-16 the tokenizer takes any two halves
// of pairs for a character; they are refused by the writer.
inline bool WriteWhole(TestStream & stream, IVekXMLDocument * document, CVekXMLParser const & parser)
{
    CVekXMLWriter writer;
    writer.SetKeepAll(true);
    bool const isWritten = writer.WriteXML(&stream, document);
    bool const isWide = parser.GetSourceCodePage() == 1200 || parser.GetSourceCodePage() == 1201;
    Check(isWritten || (isWide && writer.GetError().code == VEK_XML_WRITE_ERROR_CHARACTER),
          "a document is written whole");
    return isWritten;
}

} // namespace fuzz
