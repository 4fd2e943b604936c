#pragma once

#include "VekXML.h"

#include "base/Buffer.h"
#include "xml/XMLMarkup.h"
#include "xml/XMLNameCheck.h"
#include "xml/XMLOutput.h"

namespace vek
{

/// Writes a document so that any parser reads all of it back: its children whose names begin with "#" as what they
/// stand for, and what it keeps of its file. Walks the tree on a stack of its own: once to see whether everything can
/// be written, once to write it.
class XMLWholeWriter
{
public:
    /// An indentation of -1 adds no white space.
    XMLWholeWriter(IVekXMLDocument & document, VEK_XML_ENCODING encoding, int indentation) noexcept;

    /// False, with a message, when the document can't be written.
    bool Check() noexcept;
    /// False, with a message, when the stream doesn't take it.
    bool Write(IVekIOStream & stream) noexcept;
    /// Why one of them gave false, and what could not be written; a stream is at fault when nothing else is.
    VEK_XML_WRITE_ERROR TakeError(CVekString<wchar_t> & what) noexcept;

private:
    struct OpenElement
    {
        IVekXMLElement const * element;
        int child;
        int childCount;
        bool isIndented;
    };

    bool Document() noexcept;
    bool Elements(IVekXMLElement const & root) noexcept;
    bool BeginElement(IVekXMLElement const & element, bool isIndented) noexcept;
    bool Child(IVekXMLElement const & child, bool isIndented) noexcept;
    bool Attributes(IVekXMLElement const & element) noexcept;
    bool AreAttributesDistinct(IVekXMLElement const & element) noexcept;
    bool Instruction(IVekXMLElement const & node, wchar_t const * text, size_t length) noexcept;
    bool Reference(wchar_t const * name, size_t length) noexcept;
    bool Section(wchar_t const * text, size_t length) noexcept;
    bool Value(wchar_t const * text, size_t length) noexcept;
    bool Characters(wchar_t const * text, size_t length, XMLPlace place) noexcept;
    bool Name(wchar_t const * text, size_t length) noexcept;
    bool Declaration(CVekString<wchar_t> const & prolog) noexcept;
    void NewLine(size_t level) noexcept;
    bool Fail(VEK_XML_WRITE_ERROR code, wchar_t const * what) noexcept;

    /// With references, characters that the source's code page lacks become such.
    void Put(wchar_t const * text, size_t length, bool withReferences = false) noexcept;
    void PutEncoded(wchar_t const * text, size_t length, bool withReferences) noexcept;
    void PutNumber(unsigned int character, bool withReferences) noexcept;
    template <size_t N>
    void Put(wchar_t const (&text)[N]) noexcept
    {
        Put(text, N - 1);
    }
    void PutPair(wchar_t high, wchar_t low, bool withReferences) noexcept;

    IVekXMLDocument & m_document;
    CVekString<wchar_t> const & m_prolog;
    CVekString<wchar_t> const & m_epilog;
    VEK_XML_ENCODING m_encoding;
    unsigned int m_codePage = 0; // of the source, to be written in; 0 for the encoding
    int m_indentation;
    bool m_isNew = true; // a document that came from no file
    bool m_carriageReturns = false;
    bool m_lacksCharacter = false;  // where no reference can stand, the code page does
    XMLOutput * m_output = nullptr; // null while checking
    Buffer<OpenElement> m_open;
    Buffer<wchar_t> m_references; // all that are written
    Buffer<CVekString<wchar_t> const *> m_names;
    XMLNameCheck m_nameCheck;
    VEK_XML_WRITE_ERROR m_error = VEK_XML_WRITE_ERROR_STREAM;
    CVekString<wchar_t> m_what;
};

} // namespace vek
