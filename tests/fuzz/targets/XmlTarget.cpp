// Parse, write, parse again: the second tree is the first one, but for what the writer is known to lose.

#include "VekLib.h"

#include "fuzz/WriteWhole.h"
#include "support/XMLKit.h"

#include <algorithm>

namespace fuzz
{

namespace
{

// A parser turns tabs and returns of a value into blanks, and so loses those that came from character references. Kept:
// a section without characters is not written.
std::wstring Blanked(std::wstring text)
{
    std::replace_if(
        text.begin(), text.end(), [](wchar_t unit) { return unit == L'\t' || unit == L'\r'; }, L' ');
    for (std::size_t at = 0; (at = text.find(L"''", at)) != text.npos;)
        text.erase(at, 2);
    return text;
}

bool IsWritable(std::wstring const & text)
{
    // Characters beyond U+FFFF are written in two halves.
    return std::none_of(text.begin(), text.end(), [](wchar_t unit) { return unit >= 0xD800 && unit < 0xE000; });
}

} // namespace

void RunXml(Bytes input)
{
    CVekRef<CVekXMLParser> const parser(new CVekXMLParser);
    auto const document = NewDocument();
    bool const parsed = parser->ParseXMLMemory(reinterpret_cast<char const *>(input.data()),
                                               static_cast<unsigned int>(input.size()), document.Get());
    if (!document->GetRootElement())
        return;
    document->FindElementFromPath(L"a/b", false);
    std::wstring const first = TreeText(*document);
    if (!parsed || !parser->IsComplete() || !IsWritable(first))
        return;
    // With its document type it must be writable, too; but not everything that is written of one can be read.
    CVekRef<IVekXMLWriter> const writer(XMLManager().CreateXMLWriter());
    TestStream whole;
    Check(writer->WriteXML(&whole, document.Get()), "a document with its type is written");
    document->RemoveAllDTDRules();
    document->RemoveAllDTDAttributeLists();
    document->SetDocumentType(L"");
    TestStream stream;
    Check(writer->WriteXML(&stream, document.Get()), "a document is written");
    auto const again = NewDocument();
    bool const readAgain =
        parser->ParseXMLMemory(stream.bytes.data(), static_cast<unsigned int>(stream.bytes.size()), again.Get());
    Check(readAgain && parser->IsComplete(), "what is written can be read");
    Check(Blanked(TreeText(*again)) == Blanked(first), "the second tree is the first");
}

// With everything kept: the very same document.
void RunLossless(Bytes input)
{
    CVekXMLParser parser;
    parser.SetKeepAll(VEK_XML_KEEP_ALL);
    parser.SetKeepPositions(true);
    auto const document = NewDocument();
    bool const parsed = parser.ParseXMLMemory(input.data(), static_cast<unsigned int>(input.size()), document.Get());
    VekXMLPosition position;
    if (parser.GetPosition(document->GetRootElement(), position))
        Check(position.end <= input.size() && position.length <= input.size() - position.offset,
              "a tag is in the source");
    if (!parsed || !parser.IsComplete())
        return;
    TestStream stream;
    if (!WriteWhole(stream, document.Get(), parser, input))
        return;
    auto const again = NewDocument();
    Check(parser.ParseXMLMemory(stream.bytes.data(), static_cast<unsigned int>(stream.bytes.size()), again.Get()) &&
              parser.IsComplete(),
          "what is written whole can be read");
    Check(TreeText(*again) == TreeText(*document) && DTDText(*again) == DTDText(*document), "nothing is lost");
    // Once more: the declaration's encoding may have changed before.
    TestStream second;
    Check(WriteWhole(second, again.Get(), parser, {}) && second.bytes == stream.bytes, "the same bytes again");
}

} // namespace fuzz
