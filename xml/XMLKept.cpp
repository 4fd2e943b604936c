#include "VekXML.h"

#include "base/AsOwn.h"
#include "text/Names.h"
#include "text/StringAccess.h"
#include "xml/XMLDocument.h"
#include "xml/XMLElementSupport.h"
#include "xml/XMLSource.h"

namespace
{

CVekString<wchar_t> const & Get(IVekXMLDocument const & document, CVekString<wchar_t> vek::XMLKept::*part)
{
    auto const * const own = vek::AsOwn<CVekXMLDocument const>(document);
    vek::XMLKept const * const kept = own ? own->GetKept() : nullptr;
    return kept ? kept->*part : vek::EmptyText();
}

bool Set(IVekXMLDocument & document, CVekString<wchar_t> vek::XMLKept::*part, wchar_t const * text)
{
    auto * const own = vek::AsOwn<CVekXMLDocument>(document);
    vek::XMLKept * const kept = own ? own->MakeKept() : nullptr;
    CVekString<wchar_t> stored;
    if (!kept || !vek::StoreText(vek::GivenText(text), stored))
        return false;
    if (wchar_t * const characters = vek::StringAccess<wchar_t>::Text(stored))
        vek::StringAccess<wchar_t>::SetLength(characters,
                                              vek::JoinLineEnds(characters, static_cast<size_t>(stored.GetLength())));
    (kept->*part).Swap(stored);
    return true;
}

} // namespace

CVekString<wchar_t> const & VekGetXMLProlog(IVekXMLDocument const & document)
{
    return Get(document, &vek::XMLKept::prolog);
}

CVekString<wchar_t> const & VekGetXMLEpilog(IVekXMLDocument const & document)
{
    return Get(document, &vek::XMLKept::epilog);
}

bool VekSetXMLProlog(IVekXMLDocument & document, wchar_t const * text)
{
    return Set(document, &vek::XMLKept::prolog, text);
}

bool VekSetXMLEpilog(IVekXMLDocument & document, wchar_t const * text)
{
    return Set(document, &vek::XMLKept::epilog, text);
}
