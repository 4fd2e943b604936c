#include "VekIO.h"
#include "VekLib.h"
#include "VekRef.h"

#include "base/AsOwn.h"
#include "base/Buffer.h"
#include "base/LiveObjects.h"
#include "xml/XMLDTDWriter.h"
#include "xml/XMLErrorCode.h"
#include "xml/XMLOutput.h"
#include "xml/XMLWholeWriter.h"

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

/// Writes one document, one line for each tag. Walks the tree through the element interface, on a stack of its own.
class PlainWriter
{
public:
    PlainWriter(IVekIOStream & stream, vek::XMLEncoding encoding, vek::XMLOutput::NewLines newLines, int indentation)
        : m_stream(stream), m_encoding(encoding), m_indentation(indentation), m_output(stream, encoding, newLines)
    {
    }

    bool WriteDocument(IVekXMLDocument & document, CVekString<wchar_t> const & encodingName);
    /// Of a failure: whether it was not the stream's.
    bool IsOutOfMemory() const noexcept { return m_isOutOfMemory; }

private:
    /// An element whose children are being written; its level is its place in the stack.
    struct OpenElement
    {
        IVekXMLElement const * element;
        int child;
        int childCount;
    };

    void WriteByteOrderMark();
    bool WriteHeader(CVekString<wchar_t> const & encodingName);
    bool WriteElement(IVekXMLElement const * root);
    bool WriteElements(IVekXMLElement const * root);
    bool BeginElement(IVekXMLElement const * element);
    void EndElement(IVekXMLElement const * element, size_t level);

    IVekIOStream & m_stream;
    vek::XMLEncoding m_encoding;
    int m_indentation;
    vek::XMLOutput m_output;
    vek::Buffer<OpenElement> m_open;
    bool m_isOutOfMemory = false;
};

bool PlainWriter::WriteDocument(IVekXMLDocument & document, CVekString<wchar_t> const & encodingName)
{
    if (!WriteHeader(encodingName))
        return false;
    if (document.GetDocumentType().GetLength() > 0 && document.GetNumDTDRules() > 0 &&
        !vek::WriteDocumentType(m_output, document, m_indentation))
    {
        m_isOutOfMemory = true;
        return false;
    }
    return WriteElement(document.GetRootElement());
}

void PlainWriter::WriteByteOrderMark()
{
    if (m_encoding == vek::XMLEncoding::UTF8)
        m_output.Bytes("\xEF\xBB\xBF", 3);
    else if (m_encoding == vek::XMLEncoding::UTF16)
        m_output.Bytes(m_stream.GetStreamByteOrder() == VEK_BYTEORDER_BIG ? "\xFE\xFF" : "\xFF\xFE", 2);
}

bool PlainWriter::WriteHeader(CVekString<wchar_t> const & encodingName)
{
    WriteByteOrderMark();
    m_output.Text(L"<?xml version=\"1.0\" encoding=\"");
    m_output.Text(encodingName);
    m_output.Text(L"\" standalone=\"yes\"?>\n");
    // Written at once: a stream that takes nothing is told by the header.
    if (m_output.Flush())
        return true;
    VekLogOutput(0, L"CVekXMLWriter::WriteHeader --> Error writing header");
    return false;
}

bool PlainWriter::WriteElement(IVekXMLElement const * root)
{
    bool written = WriteElements(root);
    if (written && !(m_output.Finish() && Settle(m_stream)))
    {
        VekLogOutput(0, L"CVekXMLWriter::WriteElement --> Failed to write Element close");
        written = false;
    }
    for (; !written && !m_open.Empty(); m_open.PopBack())
        VekLogOutput(0, L"CVekXMLWriter::WriteElement --> Failed to write child Element %d", m_open.Back().child);
    return written;
}

bool PlainWriter::WriteElements(IVekXMLElement const * root)
{
    if (!BeginElement(root))
        return false;
    while (!m_open.Empty())
    {
        OpenElement & current = m_open.Back();
        if (++current.child < current.childCount)
        {
            IVekXMLElement const * const child = current.element->GetChild(current.child);
            if (child && !BeginElement(child))
                return false;
            continue;
        }
        IVekXMLElement const * const element = current.element;
        m_open.PopBack();
        EndElement(element, m_open.Size());
        if (m_output.HasFailed())
        {
            VekLogOutput(0, L"CVekXMLWriter::WriteElement --> Failed to write Element close");
            return false;
        }
    }
    return true;
}

bool PlainWriter::BeginElement(IVekXMLElement const * element)
{
    int const childCount = element->GetNumChildren();
    bool const isEmpty = childCount == 0 && !element->HasCDATASection();
    m_output.Spaces(static_cast<uint64_t>(m_indentation) * m_open.Size());
    m_output.Text(L"<");
    m_output.Text(element->GetName());
    WriteAttributes(m_output, *element);
    if (isEmpty)
        m_output.Text(L"/>\n");
    else
        m_output.Text(L">\n");
    WriteCDATA(m_output, *element);
    m_isOutOfMemory = !isEmpty && !m_output.HasFailed() && !m_open.Append({element, -1, childCount});
    if (!m_output.HasFailed() && !m_isOutOfMemory)
        return true;
    VekLogOutput(0, L"CVekXMLWriter::WriteElement --> Failed to write Element header");
    return false;
}

void PlainWriter::EndElement(IVekXMLElement const * element, size_t level)
{
    m_output.Spaces(static_cast<uint64_t>(m_indentation) * level);
    m_output.Text(L"</");
    m_output.Text(element->GetName());
    m_output.Text(L">\n");
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
    if (spaces < 0)
    {
        VekLogOutput(0, L"CVekXMLWriter::SetIndentation --> Identation can not be negative %d", spaces);
        return;
    }
    m_indentation = spaces;
    m_isIndented = true;
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
        m_encodingType = static_cast<int>(*encoding);
    else
        VekLogOutput(0, L"CVekXMLWriter::SetEncodingType --> Encoding not supported %s", name);
}

bool CVekXMLWriter::WriteXMLFile(wchar_t const * path, IVekXMLDocument * document)
{
    Fail(VEK_XML_WRITE_ERROR_NONE);
    if (!document)
    {
        VekLogOutput(0, L"CVekXMLWriter::WriteXMLFile --> Document is NULL");
        return Fail(VEK_XML_WRITE_ERROR_NO_DOCUMENT);
    }
    if (!document->GetRootElement())
    {
        VekLogOutput(0, L"CVekXMLWriter::WriteXMLFile --> Document has no Element");
        return Fail(VEK_XML_WRITE_ERROR_NO_DOCUMENT);
    }
    auto const stream = CVekRef<IVekFileIOStream>::Adopt(getVekLibKernel()->CreateFileIOStream());
    if (!stream)
    {
        VekLogOutput(0, L"CVekXMLWriter::WriteXMLFile --> Failed to create File IO Stream");
        return Fail(VEK_XML_WRITE_ERROR_MEMORY);
    }
    bool const written =
        m_keepAll ? WriteFileWhole(path, *stream.Get(), *document) : WriteFilePlain(path, *stream.Get(), *document);
    if (!written)
        VekLogOutput(0, L"CVekXMLWriter::WriteXMLFile --> Failed to write XML");
    if (m_error == VEK_XML_WRITE_ERROR_STREAM)
        Fail(VEK_XML_WRITE_ERROR_FILE, vek::SystemCodeOf(*stream));
    stream->Close();
    return written;
}

bool CVekXMLWriter::WriteFilePlain(wchar_t const * path, IVekFileIOStream & stream, IVekXMLDocument & document)
{
    // A UTF-16 file is little-endian and binary, so that it can be read again. The others have the line ends of a text
    // file; they are written here, which is faster than leaving them to the runtime.
    vek::XMLEncoding const * const named = FindEncoding(document.GetEncoding());
    bool const isUTF16 = (named ? *named : static_cast<vek::XMLEncoding>(m_encodingType)) == vek::XMLEncoding::UTF16;
    stream.SetStreamByteOrder(isUTF16 ? VEK_BYTEORDER_LITTLE : stream.GetStreamByteOrder());
    stream.SetSystemByteOrder(isUTF16 ? VEK_BYTEORDER_LITTLE : stream.GetSystemByteOrder());
    return stream.Open(path, VEK_IO_WRITE | VEK_IO_BINARY, 0) ? WritePlain(stream, document, !isUTF16)
                                                              : Fail(VEK_XML_WRITE_ERROR_STREAM);
}

bool CVekXMLWriter::WriteFileWhole(wchar_t const * path, IVekFileIOStream & stream, IVekXMLDocument & document)
{
    vek::XMLWholeWriter writer(document, static_cast<VEK_XML_ENCODING>(m_keepAllEncoding),
                               m_isIndented ? m_indentation : -1);
    return (writer.Check() && stream.Open(path, VEK_IO_WRITE | VEK_IO_BINARY, 0) && writer.Write(stream) &&
            Settle(stream)) ||
           Fail(writer.TakeError(m_encodingName));
}

bool CVekXMLWriter::WriteXML(IVekIOStream * stream, IVekXMLDocument * document)
{
    Fail(VEK_XML_WRITE_ERROR_NONE);
    if (!document)
    {
        VekLogOutput(0, L"CVekXMLWriter::WriteXML --> Document is NULL");
        return Fail(VEK_XML_WRITE_ERROR_NO_DOCUMENT);
    }
    if (!document->GetRootElement())
    {
        VekLogOutput(0, L"CVekXMLWriter::WriteXML --> Document has no Element");
        return Fail(VEK_XML_WRITE_ERROR_NO_DOCUMENT);
    }
    if (!stream)
    {
        VekLogOutput(0, L"CVekXMLWriter::WriteHeader --> Error writing header");
        return Fail(VEK_XML_WRITE_ERROR_NO_DOCUMENT);
    }
    // A host's stream may let go of all three, and change the document's root, but nothing below it.
    auto const self = CVekRef<CVekXMLWriter>::Share(this);
    auto const shared = CVekRef<IVekXMLDocument>::Share(document);
    auto const target = CVekRef<IVekIOStream>::Share(stream);
    auto const root = CVekRef<IVekXMLElement>::Share(document->GetRootElement());
    if (!m_keepAll)
        return WritePlain(*stream, *document, false);
    vek::XMLWholeWriter writer(*document, static_cast<VEK_XML_ENCODING>(m_keepAllEncoding),
                               m_isIndented ? m_indentation : -1);
    return (writer.Check() && writer.Write(*stream) && Settle(*stream)) || Fail(writer.TakeError(m_encodingName));
}

bool CVekXMLWriter::WritePlain(IVekIOStream & stream, IVekXMLDocument & document, bool carriageReturns)
{
    SetEncodingType(document.GetEncoding());
    PlainWriter writer(stream, static_cast<vek::XMLEncoding>(m_encodingType),
                       carriageReturns ? vek::XMLOutput::NewLines::CARRIAGE_RETURN_FIRST
                                       : vek::XMLOutput::NewLines::AS_THEY_ARE,
                       m_indentation);
    return writer.WriteDocument(document, m_encodingName) ||
           Fail(writer.IsOutOfMemory() ? VEK_XML_WRITE_ERROR_MEMORY : VEK_XML_WRITE_ERROR_STREAM);
}

void CVekXMLWriter::SetKeepAll(bool keep)
{
    m_keepAll = keep;
}

void CVekXMLWriter::SetKeepAllEncoding(VEK_XML_ENCODING encoding)
{
    m_keepAllEncoding = static_cast<unsigned char>(encoding);
}

VekXMLWriteError CVekXMLWriter::GetError() const
{
    VekXMLWriteError error;
    error.code = static_cast<VEK_XML_WRITE_ERROR>(m_error);
    error.systemCode = m_systemCode;
    error.text = vek::WriteErrorText(error.code);
    if (m_error >= VEK_XML_WRITE_ERROR_NAME)
        error.what = m_encodingName;
    return error;
}

// Keeps the error; always false.
bool CVekXMLWriter::Fail(VEK_XML_WRITE_ERROR code, unsigned int systemCode)
{
    m_error = static_cast<unsigned char>(code);
    m_systemCode = systemCode;
    return false;
}
