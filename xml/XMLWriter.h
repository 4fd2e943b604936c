#pragma once

#include "VekXML.h"

#include "base/Buffer.h"
#include "xml/XMLOutput.h"

/// Writes documents, one line for each tag. Walks the tree through the element interface, on a stack of its own.
class CVekXMLWriter final : public CVekRefCounted<IVekXMLWriter>
{
public:
    CVekXMLWriter();
    CVekXMLWriter(CVekXMLWriter const &) = delete;
    CVekXMLWriter & operator=(CVekXMLWriter const &) = delete;
    ~CVekXMLWriter() override;

    void SetIndentation(int spaces) override;
    int GetIndentation() const override;
    bool WriteXMLFile(wchar_t const * path, IVekXMLDocument * document) override;
    bool WriteXML(IVekIOStream * stream, IVekXMLDocument * document) override;

private:
    /// An element whose children are being written; its level is its place in the stack.
    struct OpenElement
    {
        IVekXMLElement const * element;
        int child;
        int childCount;
    };

    void SetEncodingType(wchar_t const * name);
    bool WriteDocument(IVekIOStream & stream, IVekXMLDocument & document, vek::XMLOutput::NewLines newLines);
    void WriteByteOrderMark(vek::XMLOutput & output, IVekIOStream & stream) const;
    bool WriteHeader(vek::XMLOutput & output, IVekIOStream & stream) const;
    bool WriteElement(vek::XMLOutput & output, IVekIOStream & stream, IVekXMLElement const * root) const;
    bool WriteElements(vek::XMLOutput & output, vek::Buffer<OpenElement> & open, IVekXMLElement const * root) const;
    bool BeginElement(vek::XMLOutput & output, vek::Buffer<OpenElement> & open, IVekXMLElement const * element) const;
    void EndElement(vek::XMLOutput & output, IVekXMLElement const * element, size_t level) const;

    int m_indentation = 3;
    vek::XMLEncoding m_encodingType = vek::XMLEncoding::UTF8;
    CVekString<wchar_t> m_encodingName;
};
