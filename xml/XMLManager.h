#pragma once

#include "VekXML.h"

/// Creates every XML object; the kernel owns the one manager.
class CVekXMLManager final : public CVekRefCounted<IVekXMLManager>
{
public:
    IVekXMLElement * CreateXMLElement() override;
    IVekXMLDocument * CreateXMLDocument() override;
    IVekXMLParser * CreateXMLParser() override;
    IVekXMLWriter * CreateXMLWriter() override;
};
