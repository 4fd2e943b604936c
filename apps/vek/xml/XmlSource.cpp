#include "xml/XmlSource.h"

#include "FileBytes.h"
#include "XmlFile.h"

namespace tool
{

namespace
{

CVekRef<IVekXMLDocument> ReadAll(CVekXMLParser & parser, std::string const & bytes, bool keepsPositions)
{
    return ReadXml(parser, VEK_XML_KEEP_ALL,
                   [&](IVekXMLDocument & document)
                   {
                       if (parser.SetKeepPositions(keepsPositions))
                           parser.ParseXMLMemory(bytes.data(), static_cast<unsigned int>(bytes.size()), &document);
                   });
}

} // namespace

std::unique_ptr<XmlSource> XmlSource::Load(std::wstring const & path)
{
    std::string bytes;
    return ReadBytes(path, bytes) ? Read(path, std::move(bytes)) : nullptr;
}

std::unique_ptr<XmlSource> XmlSource::Read(std::wstring const & path, std::string bytes)
{
    std::unique_ptr<XmlSource> source(new XmlSource(path, std::move(bytes)));
    source->m_document = ReadAll(source->m_parser, source->m_bytes, true);
    if (source->m_document)
        return source;
    FailAt(path, source->m_parser.GetError());
    return nullptr;
}

CVekRef<IVekXMLDocument> ParseXml(std::string const & bytes, unsigned int * codePage)
{
    CVekSetDebugOutputLevel const silence(-1);
    CVekXMLParser parser;
    CVekRef<IVekXMLDocument> document = ReadAll(parser, bytes, false);
    if (codePage)
        *codePage = parser.GetSourceCodePage();
    return document;
}

} // namespace tool
