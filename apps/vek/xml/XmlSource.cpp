#include "xml/XmlSource.h"

#include "VekLib.h"

#include "Console.h"
#include "FileBytes.h"
#include "XmlFile.h"

namespace tool
{

std::unique_ptr<XmlSource> XmlSource::Load(std::wstring const & path)
{
    std::unique_ptr<XmlSource> source(new XmlSource(path));
    source->m_document.Reset(getVekLibKernel()->GetXMLManager()->CreateXMLDocument());
    if (!ReadBytes(path, source->m_bytes))
        return nullptr;
    CVekXMLParser & parser = source->m_parser;
    if (source->m_document && parser.SetKeepAll(VEK_XML_KEEP_ALL) && parser.SetKeepPositions(true))
        parser.ParseXMLMemory(source->m_bytes.data(), static_cast<unsigned int>(source->m_bytes.size()),
                              source->m_document.Get());
    VekXMLError const error = parser.GetError();
    if (error.code == VEK_XML_ERROR_NONE)
        return source;
    FailAt(path, error.line, error.column, Describe(error));
    return nullptr;
}

CVekRef<IVekXMLDocument> ParseXml(std::string const & bytes)
{
    CVekSetDebugOutputLevel const silence(-1);
    CVekRef<IVekXMLDocument> document(getVekLibKernel()->GetXMLManager()->CreateXMLDocument());
    CVekXMLParser parser;
    if (!document || !parser.SetKeepAll(VEK_XML_KEEP_ALL) ||
        !parser.ParseXMLMemory(bytes.data(), static_cast<unsigned int>(bytes.size()), document.Get()) ||
        !parser.IsComplete())
        document.Reset();
    return document;
}

} // namespace tool
