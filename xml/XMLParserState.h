#pragma once

#include "VekXML.h"

#include "VekRef.h"

#include "base/Buffer.h"
#include "xml/XMLEntityNames.h"
#include "xml/XMLEscape.h"
#include "xml/XMLMaker.h"
#include "xml/XMLNameCache.h"
#include "xml/XMLNodeNames.h"
#include "xml/XMLPositions.h"
#include "xml/XMLSource.h"

#include <expat.h>

/// What a parser was asked for beyond the plain model.
struct CVekXMLParser::Options
{
    VEK_XML_KEEP keep = VEK_XML_KEEP_NOTHING;
    bool positions = false;
    bool encodings = false;

    bool Any() const noexcept { return keep != VEK_XML_KEEP_NOTHING || positions || encodings; }
};

namespace vek
{

/// The part of a parse that only those have who ask for more than the plain model.
struct XMLParserExtras
{
    XMLPositions positions;
    XMLEntityNames entities;
    bool hasDocumentType = false;
    Buffer<XMLRange> values;   // of one tag
    Buffer<int> stored;        // of an element's attributes that were stored: their places in the tag
    Buffer<wchar_t> text;      // that was met since the last node
    Buffer<wchar_t> reference; // to an entity, as far as it came
    Buffer<wchar_t> tag;       // whose values are looked at
    bool takesTag = false;     // the markup that comes is that tag
    bool isBlank = true;       // the text is white space alone
    bool hasSection = false;   // the CDATA buffer holds a section that comes before the text
    bool isOneSection = false; // the text is one CDATA section, and nothing else
    bool readsSource = false;  // text is taken from there, the tokenizer hands none out
    bool hasEntities = false;  // some are declared, or may be where the tokenizer doesn't read
    int textBegin = 0;         // of what follows the last tag or other markup
    int rootBegin = -1;
    int rootEnd = -1;
};

} // namespace vek

/// What the parser keeps between the tokenizer's callbacks.
struct CVekXMLParser::State
{
    explicit State(Options const & asked);
    State(State const &) = delete;
    State & operator=(State const &) = delete;
    ~State();

    /// Forgets the last parse, not what was asked for.
    void Forget();
    /// Prepares for what was asked for; false when memory is exhausted.
    bool InstallExtras();

    /// Reads a document's bytes in one piece into the document; false, with messages, when they are malformed.
    bool ParseBytes(void const * bytes, int size);
    /// Begins with the document's root element, which is held until LeaveElements; false, with a message, for null.
    bool PushRoot(CVekXMLElement * element);
    bool PushElement(CVekXMLElement * element);
    void LeaveElements();
    /// Keeps the error, unless one is kept already; always false.
    bool Fail(VEK_XML_ERROR code, wchar_t const * text, unsigned int systemCode = 0);
    /// Ends the parse at the next chance, as an error: something could not be stored.
    void Abort();

    void OnStartElement(wchar_t const * name, wchar_t const ** attributes);
    void OnEndElement();
    void OnStartCDATA();
    void OnCDATA(wchar_t const * text, int length);
    void OnEndCDATA();
    void OnElementDecl(wchar_t const * name, XML_Content const * model);
    void OnAttlistDecl(wchar_t const * element, wchar_t const * attribute, wchar_t const * type, int required);

    // With extras.
    void OnStartElementExtra(wchar_t const * name, wchar_t const ** attributes);
    void OnEndElementExtra();
    void OnText(wchar_t const * text, int length);
    void OnStartSection();
    void OnEndSection();
    void OnComment(wchar_t const * text);
    void OnInstruction(wchar_t const * target, wchar_t const * text);
    void OnReferencePiece(wchar_t const * text, int length);
    void OnDefaultValue();
    bool Keeps(VEK_XML_KEEP what) const noexcept { return (options.keep & what) != 0; }
    bool IsInside() const noexcept { return !firstElement && !stack.Empty(); }
    /// Whether the tokenizer hands out text wherever it stands.
    bool TakesAllText() const noexcept
    {
        return Keeps(VEK_XML_KEEP_TEXT | VEK_XML_KEEP_WHITE_SPACE | VEK_XML_KEEP_CDATA) && !extras->readsSource;
    }

    Options options;
    vek::XMLParserExtras * extras = nullptr;
    vek::XMLSource source;
    XML_Parser expat = nullptr;
    IVekXMLDocument * document = nullptr;
    bool inCDATA = false;
    int sectionBegin = 0; // in the source; 0 when the tokenizer hands the section out
    vek::Buffer<wchar_t> cdata;
    vek::Buffer<CVekXMLElement *> stack; // no references; the top is the last
    bool firstElement = false;
    bool complete = false;
    VekXMLError error;

private:
    // What the first child of an element makes room for: most that hold white space have elements in between.
    static constexpr int FEW_CHILDREN = 2;
    static constexpr int BETWEEN_BLANKS = 4;

    void KeepPlace(int none);
    /// Of the tokenizer's place, both from 1; a byte order mark is no column.
    unsigned int Line() const noexcept;
    unsigned int Column() const noexcept;
    CVekXMLElement * BeginElement(wchar_t const * name);
    bool AddChild(CVekXMLElement * element, int expected);
    bool AddSection(CVekXMLElement & element);
    bool ReadSection();
    bool AddAttributes(CVekXMLElement * element, wchar_t const ** attributes);
    CVekXMLAttribute * MakeAttribute(vek::XMLNameCache::Name & name, wchar_t const * value);
    bool KnowExistingAttributes(CVekXMLElement const * element);

    bool EndDocument();
    bool AreValuesWhole();
    bool CheckLost(vek::XMLNamePiece const & entity);
    bool StoreProlog();
    bool Flush();
    bool FlushAtEnd();
    bool FlushSection();
    bool FlushText();
    bool KeepsText() const noexcept;
    void BeginRoot();
    bool TakeText();
    bool EndText();
    bool AddShortText(int begin, int end);
    bool TakeTextUntil(int end);
    bool TakeLastText();
    void ForgetText() noexcept;
    CVekXMLElement * AddNode(vek::XMLNodeName const & name, wchar_t const * text, size_t length,
                             int expected = FEW_CHILDREN);
    bool RecordPosition(CVekXMLElement const * element, int attributesBefore);
    bool RecordValues(vek::XMLRange tag, int attributesBefore);

    bool m_hasMark = false;
    vek::XMLMaker m_maker;
    vek::XMLNameCache m_names;
    vek::EscapedText m_escaped;
    CVekRef<CVekXMLElement> m_root;
    CVekXMLElement * m_hostRoot = nullptr; // the root when its class is one that a host derived: it is asked, always
    CVekRef<CVekXMLElement> m_hostChild;   // its child on the stack, which it need not have stored
};

namespace vek
{

/// Installs the callbacks that build the document; the user data is the parser's state.
void InstallXMLCallbacks(XML_Parser expat, void * userData) noexcept;
/// Installs those that do so with extras in place of them.
void InstallExtraXMLCallbacks(XML_Parser expat, CVekXMLParser::State * state) noexcept;

} // namespace vek
