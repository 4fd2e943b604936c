#pragma once

#include "VekXML.h"

#include "base/Buffer.h"
#include "xml/XMLNameCache.h"

#include <expat.h>

/// What the parser keeps between the tokenizer's callbacks.
struct CVekXMLParser::State
{
    State();

    /// Reads a document's bytes in one piece into the document; false, with messages, when they are malformed.
    bool ParseBytes(void const * bytes, int size);
    bool PushElement(CVekXMLElement * element);
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

private:
    CVekXMLElement * BeginElement(wchar_t const * name);
    bool AddAttributes(CVekXMLElement * element, wchar_t const ** attributes);
    CVekXMLAttribute * MakeAttribute(vek::XMLNameCache::Name const & name, wchar_t const * value);
    bool KnowExistingAttributes(CVekXMLElement const * element);

    vek::XMLNameCache m_names;
    vek::Buffer<wchar_t> m_escaped;
};

namespace vek
{

/// Installs the callbacks that build the document; the user data is the parser's state.
void InstallXMLCallbacks(XML_Parser expat, void * userData) noexcept;

} // namespace vek
