#include "xml/XMLWholeWriter.h"

#include "base/AsOwn.h"
#include "xml/XMLCodePages.h"
#include "xml/XMLDocument.h"
#include "xml/XMLErrorCode.h"
#include "xml/XMLMarkup.h"
#include "xml/XMLNodeNames.h"

#include <limits.h>
#include <stdint.h>
#include <string.h>
#include <wchar.h>

#include <algorithm>
#include <iterator>

namespace vek
{
namespace
{

// Characters of a name that could not be written.
constexpr size_t LONGEST_SHOWN = 200;

struct Piece
{
    wchar_t const * text;
    size_t length;
};

enum class NodeKind
{
    ELEMENT,
    TEXT,
    COMMENT,
    INSTRUCTION,
    SECTION,
    REFERENCE
};

struct NamedKind
{
    XMLNodeName name;
    NodeKind kind;
};

constexpr NamedKind NODES[] = {
    {TEXT_NODE, NodeKind::TEXT},       {COMMENT_NODE, NodeKind::COMMENT},     {INSTRUCTION_NODE, NodeKind::INSTRUCTION},
    {SECTION_NODE, NodeKind::SECTION}, {REFERENCE_NODE, NodeKind::REFERENCE},
};

NodeKind KindOf(IVekXMLElement const & element) noexcept
{
    wchar_t const * const name = element.GetName();
    for (NamedKind const & node : NODES)
    {
        if (*name == L'#' && wcscmp(name, node.name.text) == 0)
            return node.kind;
    }
    return NodeKind::ELEMENT;
}

bool IsText(NodeKind kind) noexcept
{
    return kind == NodeKind::TEXT || kind == NodeKind::SECTION || kind == NodeKind::REFERENCE;
}

bool HoldsText(IVekXMLElement const & element, int childCount) noexcept
{
    if (element.HasCDATASection())
        return true;
    for (int i = 0; i < childCount; ++i)
    {
        IVekXMLElement const * const child = element.GetChild(i);
        if (child && IsText(KindOf(*child)))
            return true;
    }
    int const space = element.FindAttributeIndex(L"xml:space");
    return space != -1 && wcscmp(element.GetAttributeValue(space), L"preserve") == 0;
}

Piece SectionOf(IVekXMLElement const & element) noexcept
{
    int const size = element.GetCDATASectionSize();
    return {reinterpret_cast<wchar_t const *>(element.GetCDATASection()),
            size > 0 ? static_cast<size_t>(size) / sizeof(wchar_t) : 0};
}

// Where the value of the declaration's encoding stands in a prolog; none begins at 0.
Piece FindEncoding(wchar_t const * prolog) noexcept
{
    wchar_t const * const end =
        wcsncmp(prolog, L"<?xml", 5) == 0 && IsBlank(prolog[5]) ? wcsstr(prolog, L"?>") : nullptr;
    wchar_t const * at = end ? wcsstr(prolog, L"encoding") : nullptr;
    if (!at || at > end)
        return {prolog, 0};
    at = wcspbrk(at, L"'\"");
    wchar_t const * const close = at && at < end ? wcschr(at + 1, *at) : nullptr;
    return close && close < end ? Piece{at + 1, static_cast<size_t>(close - at - 1)} : Piece{prolog, 0};
}

bool IsSame(Piece const & piece, wchar_t const * name) noexcept
{
    return piece.length == wcslen(name) && _wcsnicmp(piece.text, name, piece.length) == 0;
}

} // namespace

XMLWholeWriter::XMLWholeWriter(IVekXMLDocument & document, VEK_XML_ENCODING encoding, int indentation) noexcept
    : m_document(document), m_prolog(VekGetXMLProlog(document)), m_epilog(VekGetXMLEpilog(document)),
      m_encoding(encoding), m_indentation(indentation)
{
    auto * const own = AsOwn<CVekXMLDocument>(document);
    if (XMLKept const * const kept = own ? own->GetKept() : nullptr)
    {
        m_isNew = kept->encoding == VEK_XML_ENCODING_AS_SOURCE && kept->prolog.IsEmpty();
        m_carriageReturns = kept->carriageReturns;
        if (m_encoding == VEK_XML_ENCODING_AS_SOURCE)
        {
            m_encoding = kept->encoding;
            Piece const declared = FindEncoding(m_prolog);
            wchar_t name[64] = L""; // longer ones are of no code page
            if (declared.length < std::size(name))
                std::copy_n(declared.text, declared.length, name);
            m_codePage = CodePageOf(name) == kept->codePage ? kept->codePage : 0;
        }
    }
    if (m_encoding < VEK_XML_ENCODING_UTF8 || m_encoding > VEK_XML_ENCODING_UTF16_BIG)
        m_encoding = VEK_XML_ENCODING_UTF8;
}

bool XMLWholeWriter::Check() noexcept
{
    m_output = nullptr;
    m_references.Clear();
    if (!Document())
        return false;
    if (m_lacksCharacter)
        m_codePage = 0;
    return AreProlog(m_prolog, m_references.Data(), m_references.Size(), m_epilog) ||
           Fail(VEK_XML_WRITE_ERROR_PROLOG, L"");
}

bool XMLWholeWriter::Write(IVekIOStream & stream) noexcept
{
    bool const isWide = m_encoding == VEK_XML_ENCODING_UTF16 || m_encoding == VEK_XML_ENCODING_UTF16_BIG;
    XMLOutput output(stream, isWide ? XMLEncoding::UTF16 : XMLEncoding::UTF8,
                     m_carriageReturns ? XMLOutput::NewLines::CARRIAGE_RETURN_FIRST : XMLOutput::NewLines::AS_THEY_ARE);
    output.SetBigEndian(m_encoding == VEK_XML_ENCODING_UTF16_BIG);
    if (m_encoding == VEK_XML_ENCODING_UTF8_MARK)
        output.Bytes("\xEF\xBB\xBF", 3);
    else if (isWide)
        output.Text(L"\xFEFF", 1);
    m_output = &output;
    bool const isWritten = Document() && output.Finish();
    m_output = nullptr;
    if (output.HasFailed())
        VekLogOutput(0, L"CVekXMLWriter::WriteXML --> Failed to write to the stream");
    return isWritten;
}

VEK_XML_WRITE_ERROR XMLWholeWriter::TakeError(CVekString<wchar_t> & what) noexcept
{
    what.Swap(m_what);
    return m_error;
}

bool XMLWholeWriter::Fail(VEK_XML_WRITE_ERROR code, wchar_t const * what) noexcept
{
    if (m_output && m_output->HasFailed())
        return false;
    m_error = code;
    m_what = CVekString<wchar_t>(what, static_cast<int>(wcsnlen(what, LONGEST_SHOWN)));
    wchar_t const * const format = *what ? L"CVekXMLWriter::WriteXML --> %s: %s" : L"CVekXMLWriter::WriteXML --> %s";
    VekLogOutput(0, format, WriteErrorText(code), static_cast<wchar_t const *>(m_what));
    return false;
}

bool XMLWholeWriter::Document() noexcept
{
    IVekXMLElement const * const root = m_document.GetRootElement();
    if (!root || !Declaration(m_prolog) || !Elements(*root))
        return false;
    if (m_isNew && m_epilog.IsEmpty())
        Put(L"\n");
    return m_epilog.IsEmpty() || Characters(m_epilog, static_cast<size_t>(m_epilog.GetLength()), XMLPlace::LITERAL);
}

// The prolog, with the encoding that is written in its declaration.
bool XMLWholeWriter::Declaration(CVekString<wchar_t> const & prolog) noexcept
{
    bool const isWide = m_encoding == VEK_XML_ENCODING_UTF16 || m_encoding == VEK_XML_ENCODING_UTF16_BIG;
    wchar_t const * const name = isWide ? L"UTF-16" : L"UTF-8";
    if (m_isNew)
    {
        Put(L"<?xml version=\"1.0\" encoding=\"");
        Put(name, wcslen(name));
        Put(L"\"?>\n");
    }
    wchar_t const * rest = prolog;
    Piece const declared = FindEncoding(rest);
    if (declared.length > 0 && !m_codePage && !IsSame(declared, name))
    {
        if (!Characters(rest, static_cast<size_t>(declared.text - rest), XMLPlace::LITERAL))
            return false;
        Put(name, wcslen(name));
        rest = declared.text + declared.length;
    }
    size_t const length = static_cast<size_t>(prolog.GetLength()) - static_cast<size_t>(rest - prolog);
    return Characters(rest, length, XMLPlace::LITERAL);
}

bool XMLWholeWriter::Elements(IVekXMLElement const & root) noexcept
{
    m_open.Clear();
    if (!BeginElement(root, m_indentation >= 0))
        return false;
    while (!m_open.Empty())
    {
        OpenElement & current = m_open.Back();
        if (++current.child < current.childCount)
        {
            IVekXMLElement const * const child = current.element->GetChild(current.child);
            if (child && !Child(*child, current.isIndented))
                return false;
            continue;
        }
        IVekXMLElement const & element = *current.element;
        bool const isIndented = current.isIndented;
        m_open.PopBack();
        if (isIndented)
            NewLine(m_open.Size());
        Put(L"</");
        Put(element.GetName(), static_cast<size_t>(element.GetName().GetLength()));
        Put(L">");
        if (m_output && m_output->HasFailed())
            return false;
    }
    return true;
}

bool XMLWholeWriter::Child(IVekXMLElement const & child, bool isIndented) noexcept
{
    if (isIndented)
        NewLine(m_open.Size());
    NodeKind const kind = KindOf(child);
    if (kind == NodeKind::ELEMENT)
        return BeginElement(child, isIndented);
    if (child.GetNumChildren() > 0 || child.GetNumAttributes() != (kind == NodeKind::INSTRUCTION ? 1 : 0))
        return Fail(kind == NodeKind::INSTRUCTION ? VEK_XML_WRITE_ERROR_INSTRUCTION : VEK_XML_WRITE_ERROR_NODE,
                    child.GetName());
    auto const [text, length] = SectionOf(child);
    switch (kind)
    {
    case NodeKind::TEXT:
        return Characters(text, length, XMLPlace::TEXT);
    case NodeKind::SECTION:
        return Section(text, length);
    case NodeKind::REFERENCE:
        return Reference(text, length);
    case NodeKind::INSTRUCTION:
        return Instruction(child, text, length);
    default:
        break;
    }
    for (size_t i = 0; i < length; ++i)
    {
        if (text[i] == L'-' && (i + 1 == length || text[i + 1] == L'-'))
            return Fail(VEK_XML_WRITE_ERROR_COMMENT, L"");
    }
    Put(L"<!--");
    if (!Characters(text, length, XMLPlace::LITERAL))
        return false;
    Put(L"-->");
    return true;
}

bool XMLWholeWriter::BeginElement(IVekXMLElement const & element, bool isIndented) noexcept
{
    CVekString<wchar_t> const & name = element.GetName();
    if (!Name(name, static_cast<size_t>(name.GetLength())))
        return false;
    Put(L"<");
    Put(name, static_cast<size_t>(name.GetLength()));
    if (!Attributes(element))
        return false;
    int const childCount = element.GetNumChildren();
    bool const hasSection = element.HasCDATASection();
    if (childCount == 0 && !hasSection)
    {
        Put(L"/>");
        return true;
    }
    Put(L">");
    if (hasSection)
    {
        auto const [text, length] = SectionOf(element);
        if (!Section(text, length))
            return false;
    }
    return m_open.Append({&element, -1, childCount, isIndented && !HoldsText(element, childCount)}) ||
           Fail(VEK_XML_WRITE_ERROR_MEMORY, L"");
}

bool XMLWholeWriter::Attributes(IVekXMLElement const & element) noexcept
{
    int const count = element.GetNumAttributes();
    for (int i = 0; i < count; ++i)
    {
        CVekString<wchar_t> const & name = element.GetAttributeName(i);
        CVekString<wchar_t> const & value = element.GetAttributeValue(i);
        if (!Name(name, static_cast<size_t>(name.GetLength())))
            return false;
        Put(L" ");
        Put(name, static_cast<size_t>(name.GetLength()));
        Put(L"=\"");
        if (!Value(value, static_cast<size_t>(value.GetLength())))
            return false;
        Put(L"\"");
    }
    return count < 2 || m_output || AreAttributesDistinct(element);
}

bool XMLWholeWriter::AreAttributesDistinct(IVekXMLElement const & element) noexcept
{
    m_names.Clear();
    for (int i = 0; i < element.GetNumAttributes(); ++i)
    {
        if (!m_names.Append(&element.GetAttributeName(i)))
            return Fail(VEK_XML_WRITE_ERROR_MEMORY, L"");
    }
    auto const isLess = [](CVekString<wchar_t> const * left, CVekString<wchar_t> const * right)
    { return wcscmp(*left, *right) < 0; };
    CVekString<wchar_t> const ** const end = m_names.Data() + m_names.Size();
    std::sort(m_names.Data(), end, isLess);
    auto * const twin =
        std::adjacent_find(m_names.Data(), end, [](auto * left, auto * right) { return wcscmp(*left, *right) == 0; });
    return twin == end || Fail(VEK_XML_WRITE_ERROR_ATTRIBUTE_TWICE, **twin);
}

bool XMLWholeWriter::Instruction(IVekXMLElement const & node, wchar_t const * text, size_t length) noexcept
{
    int const index = node.FindAttributeIndex(L"target");
    if (index == -1)
        return Fail(VEK_XML_WRITE_ERROR_INSTRUCTION, L"");
    CVekString<wchar_t> const & target = node.GetAttributeValue(index);
    auto const targetLength = static_cast<size_t>(target.GetLength());
    if (!Name(target, targetLength))
        return false;
    bool isHarmless = !IsSame({target, targetLength}, L"xml") && (length == 0 || !IsBlank(*text));
    for (size_t i = 0; i + 1 < length; ++i)
        isHarmless = isHarmless && (text[i] != L'?' || text[i + 1] != L'>');
    if (!isHarmless)
        return Fail(VEK_XML_WRITE_ERROR_INSTRUCTION, target);
    Put(L"<?");
    Put(target, targetLength);
    if (length > 0)
        Put(L" ");
    if (!Characters(text, length, XMLPlace::LITERAL))
        return false;
    Put(L"?>");
    return true;
}

bool XMLWholeWriter::Reference(wchar_t const * name, size_t length) noexcept
{
    if (!Name(name, length))
        return false;
    if (!m_output && !(m_references.Append(L'&') && m_references.Append(name, length) && m_references.Append(L';')))
        return Fail(VEK_XML_WRITE_ERROR_MEMORY, L"");
    Put(L"&");
    Put(name, length);
    Put(L";");
    return true;
}

// What can't stand in a section ends it, and begins another.
bool XMLWholeWriter::Section(wchar_t const * text, size_t length) noexcept
{
    Put(L"<![CDATA[");
    size_t begin = 0;
    for (size_t i = 0; i < length; ++i)
    {
        bool const isEnd = BeginsWith(text + i, length - i, L"]]>");
        if (!isEnd && text[i] != L'\r')
            continue;
        if (isEnd)
            i += 2;
        if (!Characters(text + begin, i - begin, XMLPlace::LITERAL))
            return false;
        begin = isEnd ? i : i + 1;
        if (isEnd)
            Put(L"]]><![CDATA[");
        else
            Put(L"]]>&#13;<![CDATA[");
    }
    if (!Characters(text + begin, length - begin, XMLPlace::LITERAL))
        return false;
    Put(L"]]>");
    return true;
}

// The stored form of a value: references that every parser knows stand for what they are, anything else for itself, and
// the marker of a newline for one.
bool XMLWholeWriter::Value(wchar_t const * text, size_t length) noexcept
{
    if (PlainLength(text, length) == length)
    {
        Put(text, length, true);
        return true;
    }
    size_t begin = 0;
    for (size_t i = 0; i < length;)
    {
        if (text[i] != L'&' && text[i] != L'<')
        {
            ++i;
            continue;
        }
        size_t const marker = BeginsWith(text + i, length - i, L"<EOL>")         ? 5
                              : BeginsWith(text + i, length - i, L"&lt;EOL&gt;") ? 11
                                                                                 : 0;
        size_t const reference = marker || text[i] == L'<' ? 0 : ReferenceLength(text + i, length - i);
        if (!marker && !reference)
        {
            ++i;
            continue;
        }
        if (!Characters(text + begin, i - begin, XMLPlace::VALUE))
            return false;
        if (marker)
            Put(L"&#10;");
        else
            Put(text + i, reference);
        begin = i += marker + reference;
    }
    return Characters(text + begin, length - begin, XMLPlace::VALUE);
}

bool XMLWholeWriter::Characters(wchar_t const * text, size_t length, XMLPlace place) noexcept
{
    bool const splitsLines = m_carriageReturns && m_encoding > VEK_XML_ENCODING_UTF8_MARK;
    bool const withReferences = place != XMLPlace::LITERAL;
    size_t begin = 0;
    for (size_t i = PlainLength(text, length); i < length; i += 1 + PlainLength(text + i + 1, length - i - 1))
    {
        wchar_t const unit = text[i];
        if (!NeedsLook(unit, place))
            continue;
        if (unit == L'\n' && place != XMLPlace::VALUE && !splitsLines)
            continue;
        if (unit == L'>' && i > 0 && text[i - 1] != L']')
            continue;
        Put(text + begin, i - begin, withReferences);
        begin = i + 1;
        if (unit == L'&')
            Put(L"&amp;");
        else if (unit == L'<')
            Put(L"&lt;");
        else if (unit == L'>')
            Put(L"&gt;");
        else if (unit == L'"')
            Put(L"&quot;");
        else if (unit == L'\n' && place != XMLPlace::VALUE)
            Put(L"\r\n");
        else if (unit == L'\n')
            Put(L"&#10;");
        else if (unit == L'\t')
            Put(L"&#9;");
        else if (unit == L'\r' && place != XMLPlace::LITERAL)
            Put(L"&#13;");
        else if ((unit & 0xFC00) == 0xD800 && begin < length && (text[begin] & 0xFC00) == 0xDC00)
        {
            PutPair(unit, text[begin], withReferences);
            i = begin++;
        }
        else
        {
            CVekString<wchar_t> number;
            number.AppendFormat(L"U+%04X", static_cast<unsigned int>(unit));
            return Fail(VEK_XML_WRITE_ERROR_CHARACTER, number);
        }
    }
    Put(text + begin, length - begin, withReferences);
    return true;
}

bool XMLWholeWriter::Name(wchar_t const * text, size_t length) noexcept
{
    if (m_output || m_nameCheck.IsName(text, length))
        return true;
    CVekString<wchar_t> const name(text, static_cast<int>(std::min(length, LONGEST_SHOWN)));
    return Fail(VEK_XML_WRITE_ERROR_NAME, name);
}

void XMLWholeWriter::NewLine(size_t level) noexcept
{
    Characters(L"\n", 1, XMLPlace::TEXT);
    if (m_output)
        m_output->Spaces(static_cast<uint64_t>(m_indentation) * level);
}

void XMLWholeWriter::Put(wchar_t const * text, size_t length, bool withReferences) noexcept
{
    if (m_codePage)
        PutEncoded(text, length, withReferences);
    else if (m_output && length > 0)
        m_output->Text(text, length);
}

void XMLWholeWriter::PutEncoded(wchar_t const * text, size_t length, bool withReferences) noexcept
{
    if (!m_output && withReferences)
        return;
    for (size_t i = 0, end = 0; i < length; i = end)
    {
        while (end < length && text[end] < 0x80)
            ++end;
        if (m_output && end > i)
            m_output->Text(text + i, end - i);
        if (end == length)
            return;
        unsigned char bytes[3];
        int const count = EncodeCharacter(m_codePage, text[end], bytes);
        if (count == 0)
            PutNumber(text[end], withReferences);
        else if (m_output)
            m_output->Bytes(bytes, static_cast<size_t>(count));
        ++end;
    }
}

void XMLWholeWriter::PutNumber(unsigned int character, bool withReferences) noexcept
{
    m_lacksCharacter = m_lacksCharacter || !withReferences;
    if (!m_output)
        return;
    wchar_t digits[10];
    size_t begin = sizeof digits / sizeof *digits;
    for (; character > 0; character /= 10)
        digits[--begin] = static_cast<wchar_t>(L'0' + character % 10);
    m_output->Text(L"&#");
    m_output->Text(digits + begin, sizeof digits / sizeof *digits - begin);
    m_output->Text(L";");
}

void XMLWholeWriter::PutPair(wchar_t high, wchar_t low, bool withReferences) noexcept
{
    unsigned int const code = 0x10000 + ((high & 0x3FFU) << 10) + (low & 0x3FFU);
    if (m_codePage)
        return PutNumber(code, withReferences);
    if (!m_output)
        return;
    if (m_encoding > VEK_XML_ENCODING_UTF8_MARK)
    {
        wchar_t const pair[] = {high, low};
        return m_output->Text(pair, 2);
    }
    char const bytes[] = {static_cast<char>(0xF0 | code >> 18), static_cast<char>(0x80 | (code >> 12 & 0x3F)),
                          static_cast<char>(0x80 | (code >> 6 & 0x3F)), static_cast<char>(0x80 | (code & 0x3F))};
    m_output->Bytes(bytes, sizeof bytes);
}

} // namespace vek
