#include "xml/XMLWriter.h"

#include "VekIO.h"
#include "VekLib.h"
#include "VekRef.h"

#include "base/AsOwn.h"
#include "base/LiveObjects.h"
#include "xml/XMLDTDWriter.h"

namespace
{

struct EncodingName
{
    wchar_t const * name;
    vek::XMLEncoding encoding;
};

constexpr EncodingName ENCODINGS[] = {
    {L"US-ASCII", vek::XMLEncoding::ASCII},
    {L"UTF-8", vek::XMLEncoding::UTF8},
    {L"UTF-16", vek::XMLEncoding::UTF16},
    {L"ISO-8859-1", vek::XMLEncoding::LATIN1},
};

vek::XMLEncoding const * FindEncoding(wchar_t const * name)
{
    for (EncodingName const & known : ENCODINGS)
    {
        if (VekStrCompareW(name, known.name, false) == 0)
            return &known.encoding;
    }
    return nullptr;
}

// Hands what a file stream of the library keeps to the system, so that its loss is told.
bool Settle(IVekIOStream & stream)
{
    auto * const file = vek::AsOwn<CVekFileIOStream>(stream);
    return !file || file->Flush();
}

void WriteAttributes(vek::XMLOutput & output, IVekXMLElement const & element)
{
    int const count = element.GetNumAttributes();
    for (int i = 0; i < count; ++i)
    {
        output.Text(L" ");
        output.Text(element.GetAttributeName(i));
        output.Text(L"=\"");
        output.Text(element.GetAttributeValue(i));
        output.Text(L"\"");
    }
}

void WriteCDATA(vek::XMLOutput & output, IVekXMLElement const & element)
{
    if (!element.HasCDATASection() || element.GetCDATASectionSize() <= 0)
        return;
    output.Text(L"<![CDATA[");
    output.Text(reinterpret_cast<wchar_t const *>(element.GetCDATASection()),
                static_cast<size_t>(element.GetCDATASectionSize()) / sizeof(wchar_t));
    output.Text(L"]]>\n");
}

} // namespace

CVekXMLWriter::CVekXMLWriter() : m_encodingName(L"UTF-8")
{
    vek::CountBirth(vek::LiveClass::XMLWriter);
}

CVekXMLWriter::~CVekXMLWriter()
{
    vek::CountEnd(vek::LiveClass::XMLWriter);
}

void CVekXMLWriter::SetIndentation(int spaces)
{
    if (spaces >= 0)
        m_indentation = spaces;
    else
        VekLogOutput(0, L"CVekXMLWriter::SetIndentation --> Identation can not be negative %d", spaces);
}

int CVekXMLWriter::GetIndentation() const
{
    return m_indentation;
}

void CVekXMLWriter::SetEncodingType(wchar_t const * name)
{
    // Kept: an unknown name goes into the declaration although the text is encoded as before.
    m_encodingName.Assign(name);
    if (vek::XMLEncoding const * const encoding = FindEncoding(name))
        m_encodingType = *encoding;
    else
        VekLogOutput(0, L"CVekXMLWriter::SetEncodingType --> Encoding not supported %s", name);
}

bool CVekXMLWriter::WriteXMLFile(wchar_t const * path, IVekXMLDocument * document)
{
    if (!document)
    {
        VekLogOutput(0, L"CVekXMLWriter::WriteXMLFile --> Document is NULL");
        return false;
    }
    if (!document->GetRootElement())
    {
        VekLogOutput(0, L"CVekXMLWriter::WriteXMLFile --> Document has no Element");
        return false;
    }
    auto const stream = CVekRef<IVekFileIOStream>::Adopt(getVekLibKernel()->CreateFileIOStream());
    if (!stream)
    {
        VekLogOutput(0, L"CVekXMLWriter::WriteXMLFile --> Failed to create File IO Stream");
        return false;
    }
    // A UTF-16 file is little-endian and binary, so that it can be read again. The others have the line ends of a text
    // file; they are written here, which is faster than leaving them to the runtime.
    vek::XMLEncoding const * const named = FindEncoding(document->GetEncoding());
    bool const isUTF16 = (named ? *named : m_encodingType) == vek::XMLEncoding::UTF16;
    stream->SetStreamByteOrder(isUTF16 ? VEK_BYTEORDER_LITTLE : stream->GetStreamByteOrder());
    stream->SetSystemByteOrder(isUTF16 ? VEK_BYTEORDER_LITTLE : stream->GetSystemByteOrder());
    bool const written = stream->Open(path, VEK_IO_WRITE | VEK_IO_BINARY, 0) &&
                         WriteDocument(*stream.Get(), *document,
                                       isUTF16 ? vek::XMLOutput::NewLines::AS_THEY_ARE
                                               : vek::XMLOutput::NewLines::CARRIAGE_RETURN_FIRST);
    if (!written)
        VekLogOutput(0, L"CVekXMLWriter::WriteXMLFile --> Failed to write XML");
    stream->Close();
    return written;
}

bool CVekXMLWriter::WriteXML(IVekIOStream * stream, IVekXMLDocument * document)
{
    if (!document)
    {
        VekLogOutput(0, L"CVekXMLWriter::WriteXML --> Document is NULL");
        return false;
    }
    if (!document->GetRootElement())
    {
        VekLogOutput(0, L"CVekXMLWriter::WriteXML --> Document has no Element");
        return false;
    }
    if (!stream)
    {
        VekLogOutput(0, L"CVekXMLWriter::WriteHeader --> Error writing header");
        return false;
    }
    return WriteDocument(*stream, *document, vek::XMLOutput::NewLines::AS_THEY_ARE);
}

bool CVekXMLWriter::WriteDocument(IVekIOStream & stream, IVekXMLDocument & document, vek::XMLOutput::NewLines newLines)
{
    SetEncodingType(document.GetEncoding());
    vek::XMLOutput output(stream, m_encodingType, newLines);
    if (!WriteHeader(output, stream))
        return false;
    if (document.GetDocumentType().GetLength() > 0 && document.GetNumDTDRules() > 0 &&
        !vek::WriteDocumentType(output, document, m_indentation))
        return false;
    return WriteElement(output, stream, document.GetRootElement());
}

void CVekXMLWriter::WriteByteOrderMark(vek::XMLOutput & output, IVekIOStream & stream) const
{
    if (m_encodingType == vek::XMLEncoding::UTF8)
        output.Bytes("\xEF\xBB\xBF", 3);
    else if (m_encodingType == vek::XMLEncoding::UTF16)
        output.Bytes(stream.GetStreamByteOrder() == VEK_BYTEORDER_BIG ? "\xFE\xFF" : "\xFF\xFE", 2);
}

bool CVekXMLWriter::WriteHeader(vek::XMLOutput & output, IVekIOStream & stream) const
{
    WriteByteOrderMark(output, stream);
    output.Text(L"<?xml version=\"1.0\" encoding=\"");
    output.Text(m_encodingName);
    output.Text(L"\" standalone=\"yes\"?>\n");
    // Written at once: a stream that takes nothing is told by the header.
    if (output.Flush())
        return true;
    VekLogOutput(0, L"CVekXMLWriter::WriteHeader --> Error writing header");
    return false;
}

bool CVekXMLWriter::WriteElement(vek::XMLOutput & output, IVekIOStream & stream, IVekXMLElement const * root) const
{
    vek::Buffer<OpenElement> open;
    bool written = WriteElements(output, open, root);
    if (written && !(output.Finish() && Settle(stream)))
    {
        VekLogOutput(0, L"CVekXMLWriter::WriteElement --> Failed to write Element close");
        written = false;
    }
    for (; !written && !open.Empty(); open.PopBack())
        VekLogOutput(0, L"CVekXMLWriter::WriteElement --> Failed to write child Element %d", open.Back().child);
    return written;
}

bool CVekXMLWriter::WriteElements(vek::XMLOutput & output, vek::Buffer<OpenElement> & open,
                                  IVekXMLElement const * root) const
{
    if (!BeginElement(output, open, root))
        return false;
    while (!open.Empty())
    {
        OpenElement & current = open.Back();
        if (++current.child < current.childCount)
        {
            IVekXMLElement const * const child = current.element->GetChild(current.child);
            if (child && !BeginElement(output, open, child))
                return false;
            continue;
        }
        IVekXMLElement const * const element = current.element;
        open.PopBack();
        EndElement(output, element, open.Size());
        if (output.HasFailed())
        {
            VekLogOutput(0, L"CVekXMLWriter::WriteElement --> Failed to write Element close");
            return false;
        }
    }
    return true;
}

bool CVekXMLWriter::BeginElement(vek::XMLOutput & output, vek::Buffer<OpenElement> & open,
                                 IVekXMLElement const * element) const
{
    int const childCount = element->GetNumChildren();
    bool const isEmpty = childCount == 0 && !element->HasCDATASection();
    output.Spaces(static_cast<uint64_t>(m_indentation) * open.Size());
    output.Text(L"<");
    output.Text(element->GetName());
    WriteAttributes(output, *element);
    if (isEmpty)
        output.Text(L"/>\n");
    else
        output.Text(L">\n");
    WriteCDATA(output, *element);
    if (!output.HasFailed() && (isEmpty || open.Append({element, -1, childCount})))
        return true;
    VekLogOutput(0, L"CVekXMLWriter::WriteElement --> Failed to write Element header");
    return false;
}

void CVekXMLWriter::EndElement(vek::XMLOutput & output, IVekXMLElement const * element, size_t level) const
{
    output.Spaces(static_cast<uint64_t>(m_indentation) * level);
    output.Text(L"</");
    output.Text(element->GetName());
    output.Text(L">\n");
}
