#include "xml/XMLManager.h"

#include "xml/XMLDocument.h"

#include <new>

namespace
{

template <class T>
T * Created(T * object, wchar_t const * failure)
{
    if (!object)
        VekLogOutput(0, L"%s", failure);
    return object;
}

} // namespace

CVekXMLElement * CVekXMLManager::NewElement(wchar_t const * name, int nameLength) noexcept
{
    return Made(CVekXMLElement::Make(name, nameLength));
}

CVekXMLElement * CVekXMLManager::Made(CVekXMLElement * element) noexcept
{
    return Created(element, L"CVekXMLManager::CreateXMLElement --> Failed to create Element object");
}

IVekXMLElement * CVekXMLManager::CreateXMLElement()
{
    return NewElement(L"", 0);
}

IVekXMLDocument * CVekXMLManager::CreateXMLDocument()
{
    return Created(new (std::nothrow) CVekXMLDocument,
                   L"CVekXMLManager::CreateXMLDocument --> Failed to create Document object");
}

IVekXMLParser * CVekXMLManager::CreateXMLParser()
{
    return Created(new (std::nothrow) CVekXMLParser,
                   L"CVekXMLManager::CreateXMLParser --> Failed to create parser object");
}

IVekXMLWriter * CVekXMLManager::CreateXMLWriter()
{
    return Created(new (std::nothrow) CVekXMLWriter,
                   L"CVekXMLManager::CreateXMLWriter --> Failed to create Writer object");
}
