#pragma once

#include "VekRef.h"
#include "VekXML.h"

#include "xml/XmlEncoding.h"

#include <memory>
#include <string>
#include <utility>

namespace tool
{

/// A file as it was when it was read: its bytes, the document of all that is in them, and where everything stands.
class XmlSource
{
public:
    /// Null after telling the user why there is none.
    static std::unique_ptr<XmlSource> Load(std::wstring const & path);
    /// That of a file's bytes.
    static std::unique_ptr<XmlSource> Read(std::wstring const & path, std::string bytes);
    XmlSource(XmlSource const &) = delete;
    XmlSource & operator=(XmlSource const &) = delete;

    std::wstring const & Path() const { return m_path; }
    std::string const & Bytes() const { return m_bytes; }
    IVekXMLDocument & Document() const { return *m_document; }
    /// For its memory, once neither it nor its elements are wanted any more.
    void ReleaseDocument() { m_document.Reset(); }
    IVekXMLElement & Root() const { return *m_document->GetRootElement(); }
    CVekXMLParser const & Places() const { return m_parser; }
    XmlEncoding Encoding() const { return XmlEncoding(m_parser.GetSourceCodePage()); }

private:
    XmlSource(std::wstring const & path, std::string bytes) : m_path(path), m_bytes(std::move(bytes)) {}

    std::wstring m_path;
    std::string m_bytes;
    CVekXMLParser m_parser;
    CVekRef<IVekXMLDocument> m_document;
};

/// The document of bytes in memory, with all that is in them, and the code page of their encoding; null without a word
/// when they are no whole document.
CVekRef<IVekXMLDocument> ParseXml(std::string const & bytes, unsigned int * codePage = nullptr);

} // namespace tool
