#pragma once

#include "VekText.h"

#include "text/NameHash.h"

#include <expat.h>
#include <stddef.h>

namespace vek
{

/// Tells what a parser takes for a name.
class XMLNameCheck
{
public:
    XMLNameCheck() noexcept = default;
    XMLNameCheck(XMLNameCheck const &) = delete;
    XMLNameCheck & operator=(XMLNameCheck const &) = delete;
    ~XMLNameCheck();

    bool IsName(wchar_t const * text, size_t length) noexcept;

private:
    static constexpr size_t KNOWN = 64;

    bool AskParser(wchar_t const * text, size_t length) noexcept;

    XML_Parser m_expat = nullptr;
    NameHash m_hash;
    CVekString<wchar_t> m_known[KNOWN]; // names beyond ASCII that were good
};

/// Whether a parser takes the text in front of an outermost element and the one behind it, and knows the references to
/// entities that stand within.
bool AreProlog(CVekString<wchar_t> const & prolog, wchar_t const * references, size_t referencesLength,
               CVekString<wchar_t> const & epilog) noexcept;

} // namespace vek
