#pragma once

#include "VekXML.h"

/// Creates every XML object; the kernel owns the one manager.
class CVekXMLManager final : public CVekRefCounted<IVekXMLManager>
{
public:
    /// A new element of that name, with the message of CreateXMLElement when memory is exhausted.
    static CVekXMLElement * NewElement(wchar_t const * name, int nameLength) noexcept;

    IVekXMLElement * CreateXMLElement() override;
    IVekXMLDocument * CreateXMLDocument() override;
    IVekXMLParser * CreateXMLParser() override;
    IVekXMLWriter * CreateXMLWriter() override;
};
