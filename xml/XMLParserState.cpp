#include "xml/XMLParserState.h"

#include "xml/XMLElementSupport.h"
#include "xml/XMLErrorCode.h"
#include "xml/XMLFeed.h"
#include "xml/XMLManager.h"

#include <limits.h>
#include <wchar.h>

#include <new>

namespace
{

// The CDATA buffer's first size and its smallest growth.
constexpr size_t CDATA_RESERVED = 512;

void XMLCALL OnCharacterDataCB(void * userData, XML_Char const * text, int length);

CVekXMLParser::State * StateOf(void * userData, wchar_t const * callback)
{
    if (!userData)
        VekLogOutput(0, L"CVekXMLParser::%s --> Invalid user data is passed on XML Parser calback", callback);
    return static_cast<CVekXMLParser::State *>(userData);
}

void XMLCALL OnStartElementCB(void * userData, XML_Char const * name, XML_Char const ** attributes)
{
    if (auto * const state = StateOf(userData, L"OnStartElementCB"))
        state->OnStartElement(name, attributes);
}

void XMLCALL OnEndElementCB(void * userData, XML_Char const *)
{
    if (auto * const state = StateOf(userData, L"OnEndElementCB"))
        state->OnEndElement();
}

void XMLCALL OnStartCdataSectionCB(void * userData)
{
    auto * const state = StateOf(userData, L"OnStartCdataSectionCB");
    if (!state)
        return;
    state->OnStartCDATA();
    // Text outside CDATA sections is dropped: the tokenizer need not even convert it.
    if (state->inCDATA && !state->sectionBegin)
        XML_SetCharacterDataHandler(state->expat, OnCharacterDataCB);
}

void XMLCALL OnCharacterDataCB(void * userData, XML_Char const * text, int length)
{
    // Kept: this callback and the next report under the name of the one above.
    if (auto * const state = StateOf(userData, L"OnStartCdataSectionCB"))
        state->OnCDATA(text, length);
}

void XMLCALL OnEndCdataSectionCB(void * userData)
{
    auto * const state = StateOf(userData, L"OnStartCdataSectionCB");
    if (!state)
        return;
    XML_SetCharacterDataHandler(state->expat, nullptr);
    state->OnEndCDATA();
}

void XMLCALL OnDeclarationCB(void * userData, XML_Char const *, XML_Char const * encoding, int)
{
    if (auto * const state = StateOf(userData, L"OnDeclarationCB"))
        state->source.Declare(encoding);
}

void XMLCALL OnStartDoctypeDeclCB(void * userData, XML_Char const * name, XML_Char const *, XML_Char const *, int)
{
    if (auto * const state = StateOf(userData, L"OnStartDoctypeDeclCB"))
        state->document->SetDocumentType(name);
}

void XMLCALL OnEndDoctypeDeclCB(void * userData)
{
    StateOf(userData, L"OnEndDoctypeDeclCB");
}

void XMLCALL OnElementDeclCB(void * userData, XML_Char const * name, XML_Content * model)
{
    auto * const state = StateOf(userData, L"OnElementDeclCB");
    if (!state)
        return;
    state->OnElementDecl(name, model);
    XML_FreeContentModel(state->expat, model);
}

void XMLCALL OnAttlistDeclCB(void * userData, XML_Char const * element, XML_Char const * attribute,
                             XML_Char const * type, XML_Char const *, int required)
{
    if (auto * const state = StateOf(userData, L"OnAttlistDeclCB"))
        state->OnAttlistDecl(element, attribute, type, required);
}

void XMLCALL OnEntityDeclCB(void * userData, XML_Char const *, int, XML_Char const *, int, XML_Char const *,
                            XML_Char const *, XML_Char const *, XML_Char const *)
{
    StateOf(userData, L"OnEntityDeclCB");
}

void XMLCALL OnUnparsedEntityDeclCB(void * userData, XML_Char const *, XML_Char const *, XML_Char const *,
                                    XML_Char const *, XML_Char const *)
{
    StateOf(userData, L"OnUnparsedEntityDeclCB");
}

void XMLCALL OnNotationDeclCB(void * userData, XML_Char const *, XML_Char const *, XML_Char const *, XML_Char const *)
{
    StateOf(userData, L"OnNotationDeclCB");
}

} // namespace

void vek::InstallXMLCallbacks(XML_Parser expat, void * userData) noexcept
{
    XML_SetUserData(expat, userData);
    XML_SetElementHandler(expat, OnStartElementCB, OnEndElementCB);
    XML_SetCdataSectionHandler(expat, OnStartCdataSectionCB, OnEndCdataSectionCB);
    XML_SetXmlDeclHandler(expat, OnDeclarationCB);
    XML_SetDoctypeDeclHandler(expat, OnStartDoctypeDeclCB, OnEndDoctypeDeclCB);
    XML_SetElementDeclHandler(expat, OnElementDeclCB);
    XML_SetAttlistDeclHandler(expat, OnAttlistDeclCB);
    XML_SetEntityDeclHandler(expat, OnEntityDeclCB);
    XML_SetUnparsedEntityDeclHandler(expat, OnUnparsedEntityDeclCB);
    XML_SetNotationDeclHandler(expat, OnNotationDeclCB);
    XML_SetParamEntityParsing(expat, XML_PARAM_ENTITY_PARSING_ALWAYS);
    // The document comes in one piece: there is no later piece to wait for.
    XML_SetReparseDeferralEnabled(expat, XML_FALSE);
}

CVekXMLParser::State::State(Options const & asked) : options(asked)
{
    firstElement = true;
    cdata.Reserve(CDATA_RESERVED); // a failure is met again, and reported, where text is added
}

CVekXMLParser::State::~State()
{
    delete extras;
}

void CVekXMLParser::State::Forget()
{
    complete = false;
    error = {};
    delete extras;
    extras = nullptr;
}

bool CVekXMLParser::State::ParseBytes(void const * bytes, int size)
{
    inCDATA = false;
    source.Begin(bytes, size);
    auto const * const text = static_cast<unsigned char const *>(bytes);
    m_hasMark = size > 1 && ((text[0] == 0xEF && text[1] == 0xBB) || text[0] >= 0xFE);
    // Kept: a file that merely ends early is read without an error. Hosts read files that are still being written.
    if (vek::XMLFeed(expat, bytes, size).Run(firstElement))
    {
        if (extras && !EndDocument())
            return Fail(VEK_XML_ERROR_MEMORY, L"out of memory");
        if (!complete)
        {
            error.isIncomplete = true;
            Fail(firstElement ? VEK_XML_ERROR_EMPTY : VEK_XML_ERROR_ENDS_EARLY,
                 firstElement ? L"no element found" : L"ends before its outermost element is closed");
            KeepPlace(size);
        }
        return true;
    }
    XML_Error const code = XML_GetErrorCode(expat);
    VekLogOutput(0, L"CVekXMLParser::Parse --> Parse error occured");
    VekLogOutput(0, L"   Error code %d %s\n", static_cast<int>(code), XML_ErrorString(code));
    VekLogOutput(0, L"      at line %d, col %d\n", static_cast<int>(XML_GetCurrentLineNumber(expat)),
                 static_cast<int>(XML_GetCurrentColumnNumber(expat)));
    Fail(vek::ToErrorCode(code), code == XML_ERROR_ABORTED ? L"out of memory" : XML_ErrorString(code));
    KeepPlace(0);
    return false;
}

bool CVekXMLParser::State::Fail(VEK_XML_ERROR code, wchar_t const * text, unsigned int systemCode)
{
    if (error.code == VEK_XML_ERROR_NONE)
    {
        error.code = code;
        error.text = text;
        error.systemCode = systemCode;
    }
    return false;
}

// The tokenizer names no byte where nothing is left of the text: none is the number for that.
void CVekXMLParser::State::KeepPlace(int none)
{
    XML_Index const offset = XML_GetCurrentByteIndex(expat);
    error.line = Line();
    error.column = Column();
    error.offset = static_cast<unsigned int>(offset < 0 ? none : offset);
}

unsigned int CVekXMLParser::State::Line() const noexcept
{
    return static_cast<unsigned int>(XML_GetCurrentLineNumber(expat));
}

unsigned int CVekXMLParser::State::Column() const noexcept
{
    auto const column = static_cast<unsigned int>(XML_GetCurrentColumnNumber(expat));
    // The tokenizer takes a byte order mark for the first column.
    return m_hasMark && column > 0 && Line() == 1 ? column : column + 1;
}

bool CVekXMLParser::State::PushRoot(CVekXMLElement * element)
{
    m_root = CVekRef<CVekXMLElement>::Share(element);
    m_hostRoot = element && !vek::IsPlain(*element) ? element : nullptr;
    return PushElement(element);
}

void CVekXMLParser::State::LeaveElements()
{
    m_maker.End();
    stack.Free();
    m_hostChild.Reset();
    m_root.Reset();
}

bool CVekXMLParser::State::PushElement(CVekXMLElement * element)
{
    if (!element)
    {
        VekLogOutput(0, L"CVekXMLParser::PushElement --> pElement is NULL");
        return false;
    }
    return stack.Append(element);
}

void CVekXMLParser::State::Abort()
{
    XML_StopParser(expat, XML_FALSE);
}

void CVekXMLParser::State::OnStartElement(wchar_t const * name, wchar_t const ** attributes)
{
    if (stack.Empty())
        return;
    CVekXMLElement * const element = BeginElement(name);
    if (!element || !AddAttributes(element, attributes))
        Abort();
}

CVekXMLElement * CVekXMLParser::State::BeginElement(wchar_t const * name)
{
    if (firstElement)
    {
        // The file's outermost element becomes the document's root itself, not a child of it.
        firstElement = false;
        m_names.BeginElement();
        stack.Back()->SetName(name);
        return KnowExistingAttributes(stack.Back()) ? stack.Back() : nullptr;
    }
    m_names.BeginElement();
    CVekXMLElement * const element = CVekXMLManager::Made(m_maker.MakeElement(name));
    if (!element)
    {
        VekLogOutput(0, L"CVekXMLParser::OnStartElement --> Failed to create new Element");
        return nullptr;
    }
    return AddChild(element, FEW_CHILDREN) && PushElement(element) ? element : nullptr;
}

// Hands the new element to the one on top of the stack.
bool CVekXMLParser::State::AddChild(CVekXMLElement * element, int expected)
{
    CVekXMLElement & parent = *stack.Back();
    bool isAdded = false;
    if (&parent == m_hostRoot)
    {
        m_hostChild.Reset(element);
        isAdded = parent.AddChild(element, -1) != -1;
    }
    else
    {
        isAdded = m_maker.AppendChild(parent, element, expected);
        if (!isAdded)
            delete element;
    }
    if (!isAdded)
        VekLogOutput(0, L"CVekXMLParser::OnStartElement --> Adding child failed");
    return isAdded;
}

bool CVekXMLParser::State::AddAttributes(CVekXMLElement * element, wchar_t const ** attributes)
{
    if (element == m_hostRoot)
    {
        for (; *attributes; attributes += 2)
            element->AddAttribute(attributes[0], VEK_VARIANT(attributes[1]), -1);
        return true;
    }
    int const before = element->m_attributes.GetCount();
    bool const keepsAll = options.keep != VEK_XML_KEEP_NOTHING && before == 0;
    int count = 0;
    while (attributes[2 * count])
        ++count;
    if (count && !m_maker.ReserveAttributes(*element, count))
    {
        VekLogOutput(0, L"CVekXMLElement::AddAttribute --> Failed to add attribute");
        return false;
    }
    for (int i = 0; i < count; ++i)
    {
        vek::XMLNameCache::Name * const name = m_names.Find(attributes[2 * i]);
        // Names that differ only in case are one name to an element: the first keeps its value.
        if (name && !m_names.MarkUsed(name->foldedId) && !keepsAll)
            continue;
        CVekXMLAttribute * const attribute = name ? MakeAttribute(*name, attributes[2 * i + 1]) : nullptr;
        if (!attribute)
        {
            VekLogOutput(0, L"CVekXMLElement::AddAttribute --> Failed to allocate new attribute");
            return false;
        }
        element->m_attributes.Append(attribute); // room was made above
        if (options.positions && !extras->stored.Append(i))
            return false;
    }
    return true;
}

CVekXMLAttribute * CVekXMLParser::State::MakeAttribute(vek::XMLNameCache::Name & name, wchar_t const * value)
{
    bool const isMade = options.keep != VEK_XML_KEEP_NOTHING ? m_escaped.MakeExact(value) : m_escaped.Make(value);
    return isMade ? m_maker.MakeAttribute(name, m_escaped.Text(), m_escaped.Length()) : nullptr;
}

bool CVekXMLParser::State::KnowExistingAttributes(CVekXMLElement const * element)
{
    for (int i = 0; i < element->m_attributes.GetCount(); ++i)
    {
        CVekString<wchar_t> const & name = element->m_attributes[i]->GetName();
        uint32_t foldedId = 0;
        if (!m_names.Add(name, static_cast<size_t>(name.GetLength()), foldedId))
            return false;
        m_names.MarkUsed(foldedId);
    }
    return true;
}

void CVekXMLParser::State::OnEndElement()
{
    if (stack.Empty())
        return;
    stack.PopBack();
    complete = stack.Empty();
}

// Stores what the CDATA buffer holds.
bool CVekXMLParser::State::AddSection(CVekXMLElement & element)
{
    if (cdata.Size() > INT_MAX / sizeof(wchar_t))
        return false;
    auto const size = static_cast<int>(cdata.Size() * sizeof(wchar_t));
    auto const * const bytes = reinterpret_cast<unsigned char const *>(cdata.Data());
    return &element == m_hostRoot ? element.AddCDATASection(bytes, size) : m_maker.AddSection(element, bytes, size);
}

void CVekXMLParser::State::OnStartCDATA()
{
    if (stack.Empty())
        return;
    inCDATA = true;
    cdata.Clear();
    auto const offset = static_cast<int>(XML_GetCurrentByteIndex(expat));
    // One that comes out of an entity's text stands nowhere in the source.
    bool const isThere = !TakesAllText() && source.IsUtf8() && source.IsTagAt(offset);
    sectionBegin = isThere ? offset + XML_GetCurrentByteCount(expat) : 0;
}

void CVekXMLParser::State::OnCDATA(wchar_t const * text, int length)
{
    if (inCDATA && !cdata.Append(text, static_cast<size_t>(length)))
    {
        VekLogOutput(0, L"CVekXMLElement::AddCDATASection --> Failed to allocate memory for CDATA");
        Abort();
    }
}

// The section ends: what the tokenizer has not handed out is read where it stands, in one go.
bool CVekXMLParser::State::ReadSection()
{
    inCDATA = false;
    auto const end = static_cast<int>(XML_GetCurrentByteIndex(expat));
    if (!sectionBegin || source.ReadText(sectionBegin, end, false, cdata))
        return true;
    VekLogOutput(0, L"CVekXMLElement::AddCDATASection --> Failed to allocate memory for CDATA");
    Abort();
    return false;
}

void CVekXMLParser::State::OnEndCDATA()
{
    if (!inCDATA || !ReadSection())
        return;
    CVekXMLElement & element = *stack.Back();
    bool const isFirst = !element.HasCDATASection();
    // A second section in one element is refused there, with a message; only a first one that is lost ends the parse.
    if (cdata.Size() > INT_MAX / sizeof(wchar_t) || (!AddSection(element) && isFirst))
        Abort();
    cdata.Clear();
}
