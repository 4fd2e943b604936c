#pragma once

#include "VekXML.h"

/// Creates every XML object; the kernel owns the one manager.
class CVekXMLManager final : public CVekRefCounted<IVekXMLManager>
{
public:
    /// A new element of that name, with the message of CreateXMLElement when memory is exhausted.
    static CVekXMLElement * NewElement(wchar_t const * name, int nameLength) noexcept;

    /// Passes an element on, with that message for null.
    static CVekXMLElement * Made(CVekXMLElement * element) noexcept;

    IVekXMLElement * CreateXMLElement() override;
    IVekXMLDocument * CreateXMLDocument() override;
    IVekXMLParser * CreateXMLParser() override;
    IVekXMLWriter * CreateXMLWriter() override;
};
