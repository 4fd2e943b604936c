#include "VekRef.h"

#include "base/AsOwn.h"
#include "text/StringAccess.h"
#include "xml/XMLDocument.h"
#include "xml/XMLManager.h"
#include "xml/XMLMarkup.h"
#include "xml/XMLParserState.h"
#include "xml/XMLRawText.h"

#include <limits.h>
#include <wchar.h>

#include <algorithm>
#include <new>

namespace
{

using State = CVekXMLParser::State;

// Of what is read without a buffer, in bytes.
constexpr int SHORT_TEXT = 128;

State & StateOf(void * userData)
{
    return *static_cast<State *>(userData);
}

void XMLCALL OnStartElementCB(void * userData, XML_Char const * name, XML_Char const ** attributes)
{
    StateOf(userData).OnStartElementExtra(name, attributes);
}

void XMLCALL OnEndElementCB(void * userData, XML_Char const *)
{
    StateOf(userData).OnEndElementExtra();
}

void XMLCALL OnCharacterDataCB(void * userData, XML_Char const * text, int length)
{
    State & state = StateOf(userData);
    // The tokenizer hands out each newline by itself.
    if (length != 1 || *text != L'\n' || state.inCDATA)
        return state.OnText(text, length);
    state.extras->isOneSection = false;
    if (!state.extras->text.Append(L'\n'))
        state.Abort();
}

void XMLCALL OnStartCdataSectionCB(void * userData)
{
    StateOf(userData).OnStartSection();
}

void XMLCALL OnEndCdataSectionCB(void * userData)
{
    StateOf(userData).OnEndSection();
}

void XMLCALL OnCommentCB(void * userData, XML_Char const * text)
{
    StateOf(userData).OnComment(text);
}

void XMLCALL OnInstructionCB(void * userData, XML_Char const * target, XML_Char const * text)
{
    StateOf(userData).OnInstruction(target, text);
}

// Of what stands in an element, references to entities that aren't read are all that no other callback takes.
void XMLCALL OnDefaultCB(void * userData, XML_Char const * text, int length)
{
    StateOf(userData).OnReferencePiece(text, length);
}

void XMLCALL OnStartDoctypeDeclCB(void * userData, XML_Char const * name, XML_Char const * file, XML_Char const *, int)
{
    StateOf(userData).extras->hasDocumentType = true;
    StateOf(userData).extras->hasEntities = file != nullptr;
    StateOf(userData).document->SetDocumentType(name);
}

void XMLCALL OnEntityDeclCB(void * userData, XML_Char const * name, int isParameter, XML_Char const * value, int length,
                            XML_Char const *, XML_Char const *, XML_Char const *, XML_Char const *)
{
    StateOf(userData).extras->hasEntities = true;
    vek::XMLEntityNames & entities = StateOf(userData).extras->entities;
    auto const size = static_cast<size_t>(length);
    if (value && !(isParameter ? entities.AddParameter(value, size) : entities.Add(name, value, size)))
        StateOf(userData).Abort();
}

void XMLCALL OnAttlistDeclCB(void * userData, XML_Char const * element, XML_Char const * attribute,
                             XML_Char const * type, XML_Char const * value, int required)
{
    StateOf(userData).OnAttlistDecl(element, attribute, type, required);
    if (value)
        StateOf(userData).OnDefaultValue();
}

int XMLCALL OnUnknownEncodingCB(void * userData, XML_Char const * name, XML_Encoding * encoding)
{
    return StateOf(userData).source.UsePlatform(name, *encoding) ? XML_STATUS_OK : XML_STATUS_ERROR;
}

bool IsBlank(wchar_t const * text, int length)
{
    return std::all_of(text, text + length, [](wchar_t unit) { return vek::IsBlank(unit); });
}

VEK_XML_ENCODING EncodingOf(vek::XMLSource const & source)
{
    switch (source.CodePage())
    {
    case 65001:
        return source.MarkLength() ? VEK_XML_ENCODING_UTF8_MARK : VEK_XML_ENCODING_UTF8;
    case 1200:
        return VEK_XML_ENCODING_UTF16;
    case 1201:
        return VEK_XML_ENCODING_UTF16_BIG;
    default:
        return VEK_XML_ENCODING_UTF8;
    }
}

} // namespace

void vek::InstallExtraXMLCallbacks(XML_Parser expat, CVekXMLParser::State * state) noexcept
{
    XML_SetElementHandler(expat, OnStartElementCB, OnEndElementCB);
    XML_SetUnknownEncodingHandler(expat, OnUnknownEncodingCB, state);
    if (state->options.keep == VEK_XML_KEEP_NOTHING)
        return;
    XML_SetStartDoctypeDeclHandler(expat, OnStartDoctypeDeclCB);
    XML_SetEntityDeclHandler(expat, OnEntityDeclCB);
    XML_SetAttlistDeclHandler(expat, OnAttlistDeclCB);
    XML_SetCommentHandler(expat, OnCommentCB);
    XML_SetProcessingInstructionHandler(expat, OnInstructionCB);
    XML_SetDefaultHandlerExpand(expat, OnDefaultCB);
    if (!state->TakesAllText())
        return;
    XML_SetCharacterDataHandler(expat, OnCharacterDataCB);
    XML_SetCdataSectionHandler(expat, OnStartCdataSectionCB, OnEndCdataSectionCB);
}

bool CVekXMLParser::State::InstallExtras()
{
    extras = new (std::nothrow) vek::XMLParserExtras;
    return extras != nullptr;
}

// --- the document ----------------------------------------------------------------------------------------------------

bool CVekXMLParser::State::EndDocument()
{
    // With nothing more to come, what is cut behind the outermost element shows.
    if (complete && options.keep != VEK_XML_KEEP_NOTHING)
    {
        XML_ParsingStatus status;
        XML_GetParsingStatus(expat, &status);
        complete = status.parsing == XML_FINISHED ||
                   (XML_GetErrorCode(expat) == XML_ERROR_NONE && XML_Parse(expat, "", 0, XML_TRUE) != XML_STATUS_ERROR);
        if (!complete)
            Fail(VEK_XML_ERROR_ENDS_EARLY, L"ends within what follows its outermost element");
    }
    if ((!IsInside() || (TakeLastText() && Flush())) && (!Keeps(VEK_XML_KEEP_PROLOG) || StoreProlog()))
        return true;
    VekLogOutput(0, L"CVekXMLParser::Parse --> Failed to keep the prolog");
    return false;
}

bool CVekXMLParser::State::StoreProlog()
{
    auto * const own = vek::AsOwn<CVekXMLDocument>(*document);
    vek::XMLKept * const kept = own ? own->MakeKept() : nullptr;
    if (!kept)
        return own ? Fail(VEK_XML_ERROR_MEMORY, L"out of memory")
                   : Fail(VEK_XML_ERROR_NO_DOCUMENT, L"the document's class can't hold a prolog");
    int const begin = extras->rootBegin >= 0 ? extras->rootBegin : source.Size();
    int const end = extras->rootEnd >= 0 ? extras->rootEnd : source.Size();
    kept->encoding = EncodingOf(source);
    kept->codePage = kept->encoding == VEK_XML_ENCODING_UTF8 ? source.CodePage() : 0;
    kept->carriageReturns = source.HasCarriageReturns();
    return source.Decode(source.MarkLength(), begin, kept->prolog) && source.Decode(end, source.Size(), kept->epilog);
}

// --- elements --------------------------------------------------------------------------------------------------------

void CVekXMLParser::State::OnStartElementExtra(wchar_t const * name, wchar_t const ** attributes)
{
    if (stack.Empty())
        return;
    if (firstElement)
        BeginRoot();
    if (!EndText())
        return Abort();
    if (extras->hasEntities && Keeps(VEK_XML_KEEP_PROLOG) && !AreValuesWhole())
        return Abort();
    int const before = firstElement ? stack.Back()->GetNumAttributes() : 0;
    size_t const depth = firstElement ? 0 : stack.Size();
    extras->stored.Clear();
    OnStartElement(name, attributes);
    if (options.positions && stack.Size() > depth && !RecordPosition(stack.Back(), before))
        Abort();
}

void CVekXMLParser::State::BeginRoot()
{
    extras->rootBegin = extras->textBegin = static_cast<int>(XML_GetCurrentByteIndex(expat));
    // Those of parameters may declare some, or be declared where the tokenizer doesn't read.
    bool const mayRefer = source.Has('%', {0, static_cast<unsigned int>(extras->rootBegin)});
    extras->hasEntities = extras->hasDocumentType && (extras->hasEntities || mayRefer);
    if (!TakesAllText() || extras->hasEntities || !source.IsUtf8())
        return;
    // All text stands between the tags of the source: it is read there, a piece at a time, once the tokenizer has gone
    // over it. To have it handed out, converted, takes longer.
    extras->readsSource = true;
    XML_SetCharacterDataHandler(expat, nullptr);
    XML_SetDefaultHandlerExpand(expat, nullptr);
}

// The tokenizer drops references in values to entities that are declared where it doesn't read.
bool CVekXMLParser::State::AreValuesWhole()
{
    auto const offset = static_cast<int>(XML_GetCurrentByteIndex(expat));
    int const length = XML_GetCurrentByteCount(expat);
    if (source.IsTagAt(offset))
    {
        CVekString<wchar_t> tag;
        return !source.MayHoldReference({static_cast<unsigned int>(offset), static_cast<unsigned int>(length)}) ||
               (source.Decode(offset, offset + length, tag) &&
                CheckLost(extras->entities.FindLost(tag, static_cast<size_t>(tag.GetLength()))));
    }
    // One that stands in an entity's text. Of the source's own tags the tokenizer would lose the place.
    extras->tag.Clear();
    extras->takesTag = true;
    XML_DefaultCurrent(expat);
    extras->takesTag = false;
    return CheckLost(extras->entities.FindLost(extras->tag.Data(), extras->tag.Size()));
}

// Likewise in default values.
void CVekXMLParser::State::OnDefaultValue()
{
    if (!Keeps(VEK_XML_KEEP_PROLOG))
        return;
    vek::XMLRange const value = source.LiteralAt(static_cast<int>(XML_GetCurrentByteIndex(expat)));
    auto const begin = static_cast<int>(value.offset);
    CVekString<wchar_t> text;
    if (begin && !source.Decode(begin, begin + static_cast<int>(value.length), text))
        return Abort();
    // One that stands in the text of a parameter entity can't be looked at by itself.
    if (!CheckLost(begin ? extras->entities.FindLost(text, static_cast<size_t>(text.GetLength()))
                         : extras->entities.FindLostInParameters()))
        Abort();
}

bool CVekXMLParser::State::CheckLost(vek::XMLNamePiece const & entity)
{
    if (!entity.text)
        return true;
    VekLogOutput(0, L"CVekXMLParser::Parse --> Value refers to an entity that is not read: %s",
                 static_cast<wchar_t const *>(CVekString<wchar_t>(entity.text, static_cast<int>(entity.length))));
    return Fail(VEK_XML_ERROR_UNKNOWN_ENTITY, L"a value refers to an entity that is not read");
}

void CVekXMLParser::State::OnEndElementExtra()
{
    if (stack.Empty())
        return;
    bool const mayBeOneSection = extras->hasSection || extras->isOneSection;
    if (mayBeOneSection ? !TakeText() || !FlushAtEnd() : !EndText())
        return Abort();
    if (options.positions)
        extras->positions.End(static_cast<unsigned int>(extras->textBegin));
    OnEndElement();
    if (stack.Empty())
        extras->rootEnd = extras->textBegin;
}

bool CVekXMLParser::State::RecordPosition(CVekXMLElement const * element, int attributesBefore)
{
    auto const offset = static_cast<int>(XML_GetCurrentByteIndex(expat));
    VekXMLPosition const position = {static_cast<unsigned int>(offset),
                                     static_cast<unsigned int>(XML_GetCurrentByteCount(expat)), 0, Line(), Column()};
    if (!source.IsTagAt(offset))
        return extras->positions.Begin(nullptr, position);
    return extras->positions.Begin(element, position) &&
           (extras->stored.Empty() || RecordValues({position.offset, position.length}, attributesBefore));
}

bool CVekXMLParser::State::RecordValues(vek::XMLRange tag, int attributesBefore)
{
    extras->values.Clear();
    if (!source.FindValues(tag, extras->values))
        return false;
    for (size_t i = 0; i < extras->stored.Size(); ++i)
    {
        // Declared defaults stand behind all others.
        auto const place = static_cast<size_t>(extras->stored[i]);
        vek::XMLRange const value = place < extras->values.Size() ? extras->values[place] : vek::XMLRange{0, 0};
        if (!extras->positions.AddValue(attributesBefore, value))
            return false;
    }
    return true;
}

// --- what stands between the elements --------------------------------------------------------------------------------

void CVekXMLParser::State::OnText(wchar_t const * text, int length)
{
    if (stack.Empty())
        return;
    if (inCDATA)
        return OnCDATA(text, length);
    extras->isOneSection = false;
    extras->isBlank = extras->isBlank && IsBlank(text, length);
    wchar_t * const place = extras->text.Extend(static_cast<size_t>(length));
    if (!place)
        return Abort();
    vek::CopyShort(place, text, static_cast<size_t>(length) * sizeof *text);
}

// To be called at each tag, comment and the like, before anything else.
bool CVekXMLParser::State::TakeText()
{
    auto const end = static_cast<int>(XML_GetCurrentByteIndex(expat));
    bool const isTaken = !extras->readsSource || TakeTextUntil(end);
    extras->textBegin = end + XML_GetCurrentByteCount(expat);
    return isTaken;
}

// The same at one that ends the text in front of it. Nearly always that is one short piece, and all there is.
bool CVekXMLParser::State::EndText()
{
    vek::XMLParserExtras & more = *extras;
    bool const isSimple = more.readsSource && more.text.Empty() && !more.hasSection && !more.isOneSection;
    int const begin = more.textBegin;
    auto const end = static_cast<int>(XML_GetCurrentByteIndex(expat));
    if (!isSimple || end - begin > SHORT_TEXT)
        return TakeText() && Flush();
    more.textBegin = end + XML_GetCurrentByteCount(expat);
    return begin >= end || AddShortText(begin, end);
}

bool CVekXMLParser::State::AddShortText(int begin, int end)
{
    wchar_t text[SHORT_TEXT + vek::RAW_TEXT_ROOM];
    size_t const length = source.ReadText(begin, end, true, text);
    bool const isBlank = IsBlank(text, static_cast<int>(length));
    return !Keeps(isBlank ? VEK_XML_KEEP_WHITE_SPACE : VEK_XML_KEEP_TEXT) ||
           AddNode(vek::TEXT_NODE, text, length, isBlank ? BETWEEN_BLANKS : 1);
}

bool CVekXMLParser::State::TakeTextUntil(int end)
{
    if (end <= extras->textBegin)
        return true;
    vek::Buffer<wchar_t> & text = extras->text;
    size_t const before = text.Size();
    if (!source.ReadText(extras->textBegin, end, true, text))
        return false;
    extras->isOneSection = false;
    extras->isBlank = extras->isBlank && IsBlank(text.Data() + before, static_cast<int>(text.Size() - before));
    return true;
}

// What the document ends in, although its outermost element is not closed.
bool CVekXMLParser::State::TakeLastText()
{
    auto const end = static_cast<int>(XML_GetCurrentByteIndex(expat));
    return !extras->readsSource || inCDATA || TakeTextUntil(end < 0 ? source.Size() : end);
}

void CVekXMLParser::State::OnStartSection()
{
    if (!TakeText() || (Keeps(VEK_XML_KEEP_CDATA) && !stack.Empty() && !Flush()))
        return Abort();
    OnStartCDATA();
}

void CVekXMLParser::State::OnEndSection()
{
    extras->textBegin = static_cast<int>(XML_GetCurrentByteIndex(expat)) + XML_GetCurrentByteCount(expat);
    if (!Keeps(VEK_XML_KEEP_CDATA) && !Keeps(VEK_XML_KEEP_TEXT))
        return OnEndCDATA();
    if (!ReadSection())
        return;
    if (Keeps(VEK_XML_KEEP_CDATA))
    {
        extras->hasSection = true;
        return;
    }
    extras->isOneSection = extras->text.Empty();
    extras->isBlank = false;
    if (!extras->text.Append(cdata.Data(), cdata.Size()))
        Abort();
}

void CVekXMLParser::State::OnComment(wchar_t const * text)
{
    if (!IsInside())
        return;
    if (!TakeText() || (Keeps(VEK_XML_KEEP_COMMENTS) && (!Flush() || !AddNode(vek::COMMENT_NODE, text, wcslen(text)))))
        Abort();
}

void CVekXMLParser::State::OnInstruction(wchar_t const * target, wchar_t const * text)
{
    if (!IsInside())
        return;
    if (!TakeText())
        return Abort();
    if (!Keeps(VEK_XML_KEEP_INSTRUCTIONS))
        return;
    size_t const length = wcslen(target);
    CVekXMLElement * const node = Flush() ? AddNode(vek::INSTRUCTION_NODE, text, wcslen(text)) : nullptr;
    auto * const attribute = node && length < INT_MAX / sizeof(wchar_t)
                                 ? CVekXMLAttribute::Make(L"target", 6, target, static_cast<int>(length))
                                 : nullptr;
    if (!attribute)
        return Abort();
    if (node->m_attributes.Append(attribute))
        return;
    attribute->Release();
    Abort();
}

void CVekXMLParser::State::OnReferencePiece(wchar_t const * text, int length)
{
    vek::Buffer<wchar_t> & reference = extras->reference;
    if (extras->takesTag)
    {
        if (!extras->tag.Append(text, static_cast<size_t>(length)))
            Abort();
        return;
    }
    if (!IsInside() || !Keeps(VEK_XML_KEEP_TEXT) || length == 0 || (reference.Empty() && text[0] != L'&'))
        return;
    bool const isWhole = text[length - 1] == L';';
    if (!reference.Append(text, static_cast<size_t>(length)) ||
        (isWhole && (!Flush() || !AddNode(vek::REFERENCE_NODE, reference.Data() + 1,
                                          reference.Size() - 2)))) // without & and ;
        return Abort();
    if (isWhole)
        reference.Clear();
}

bool CVekXMLParser::State::Flush()
{
    return (!extras->hasSection || FlushSection()) && ((extras->text.Empty() && !extras->isOneSection) || FlushText());
}

bool CVekXMLParser::State::FlushSection()
{
    extras->hasSection = false;
    return AddNode(vek::SECTION_NODE, cdata.Data(), cdata.Size()) != nullptr;
}

bool CVekXMLParser::State::FlushText()
{
    bool const isDone = !KeepsText() || AddNode(vek::TEXT_NODE, extras->text.Data(), extras->text.Size());
    ForgetText();
    return isDone;
}

bool CVekXMLParser::State::KeepsText() const noexcept
{
    return !extras->text.Empty() && Keeps(extras->isBlank ? VEK_XML_KEEP_WHITE_SPACE : VEK_XML_KEEP_TEXT);
}

void CVekXMLParser::State::ForgetText() noexcept
{
    extras->text.Clear();
    extras->isBlank = true;
    extras->isOneSection = false;
}

// The element on top of the stack ends. A section that is all it holds becomes its own.
bool CVekXMLParser::State::FlushAtEnd()
{
    CVekXMLElement & element = *stack.Back();
    if ((!extras->hasSection && !extras->isOneSection) || element.HasCDATASection() || element.GetNumChildren() > 0)
        return Flush();
    if (extras->hasSection && KeepsText())
        return Flush();
    extras->hasSection = false;
    ForgetText();
    return AddSection(element);
}

CVekXMLElement * CVekXMLParser::State::AddNode(vek::XMLNodeName const & name, wchar_t const * text, size_t length,
                                               int expected)
{
    auto * const node = m_maker.MakeNode(name.text, text, length * sizeof(wchar_t));
    if (!node)
        VekLogOutput(0, L"CVekXMLParser::Parse --> Failed to keep %s", name.text);
    return node && AddChild(node, expected) ? node : nullptr;
}
