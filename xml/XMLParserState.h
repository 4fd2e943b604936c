#pragma once

#include "VekXML.h"

#include "VekRef.h"

#include "base/Buffer.h"
#include "xml/XMLEscape.h"
#include "xml/XMLNameCache.h"

#include <expat.h>

/// What the parser keeps between the tokenizer's callbacks.
struct CVekXMLParser::State
{
    State();

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

    XML_Parser expat = nullptr;
    IVekXMLDocument * document = nullptr;
    bool inCDATA = false;
    vek::Buffer<unsigned char> cdata;
    vek::Buffer<CVekXMLElement *> stack; // no references; the top is the last
    bool firstElement = false;
    bool complete = false;
    VekXMLError error;

private:
    void KeepPlace(bool hasMark);
    CVekXMLElement * BeginElement(wchar_t const * name);
    bool AddChild(CVekXMLElement * element);
    bool AddAttributes(CVekXMLElement * element, wchar_t const ** attributes);
    CVekXMLAttribute * MakeAttribute(vek::XMLNameCache::Name const & name, wchar_t const * value);
    bool KnowExistingAttributes(CVekXMLElement const * element);

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

} // namespace vek
