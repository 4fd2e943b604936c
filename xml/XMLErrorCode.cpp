#include "xml/XMLErrorCode.h"

#include "base/AsOwn.h"

namespace vek
{
namespace
{

constexpr wchar_t const * WRITE_ERRORS[] = {
    L"",
    L"no document with a root element, or no stream",
    L"out of memory",
    L"the file can't be written",
    L"the stream didn't take everything",
    L"name can not be written",
    L"character can not be written",
    L"two attributes of one name can not be written",
    L"comment with \"--\" can not be written",
    L"processing instruction can not be written",
    L"children or attributes can not be written below",
    L"prolog, epilog or a reference to an entity can not be written",
};

} // namespace

VEK_XML_ERROR ToErrorCode(XML_Error code) noexcept
{
    switch (code)
    {
    case XML_ERROR_NONE:
        return VEK_XML_ERROR_NONE;
    case XML_ERROR_NO_MEMORY:
    case XML_ERROR_ABORTED: // something could not be stored
        return VEK_XML_ERROR_MEMORY;
    case XML_ERROR_NO_ELEMENTS:
        return VEK_XML_ERROR_EMPTY;
    case XML_ERROR_INVALID_TOKEN:
    case XML_ERROR_PARTIAL_CHAR:
        return VEK_XML_ERROR_TOKEN;
    case XML_ERROR_TAG_MISMATCH:
        return VEK_XML_ERROR_TAG_MISMATCH;
    case XML_ERROR_DUPLICATE_ATTRIBUTE:
        return VEK_XML_ERROR_ATTRIBUTE_TWICE;
    case XML_ERROR_JUNK_AFTER_DOC_ELEMENT:
        return VEK_XML_ERROR_BEHIND_ROOT;
    case XML_ERROR_UNDEFINED_ENTITY:
        return VEK_XML_ERROR_UNKNOWN_ENTITY;
    case XML_ERROR_RECURSIVE_ENTITY_REF:
    case XML_ERROR_ASYNC_ENTITY:
    case XML_ERROR_BINARY_ENTITY_REF:
    case XML_ERROR_ATTRIBUTE_EXTERNAL_ENTITY_REF:
    case XML_ERROR_EXTERNAL_ENTITY_HANDLING:
    case XML_ERROR_ENTITY_DECLARED_IN_PE:
        return VEK_XML_ERROR_ENTITY;
    case XML_ERROR_BAD_CHAR_REF:
        return VEK_XML_ERROR_CHARACTER_NUMBER;
    case XML_ERROR_UNKNOWN_ENCODING:
    case XML_ERROR_INCORRECT_ENCODING:
        return VEK_XML_ERROR_ENCODING;
    case XML_ERROR_AMPLIFICATION_LIMIT_BREACH:
        return VEK_XML_ERROR_LIMIT;
    default:
        return VEK_XML_ERROR_SYNTAX;
    }
}

wchar_t const * WriteErrorText(VEK_XML_WRITE_ERROR code) noexcept
{
    return WRITE_ERRORS[code];
}

unsigned int SystemCodeOf(IVekFileIOStream & stream) noexcept
{
    CVekFileIOStream const * const own = AsOwn<CVekFileIOStream>(stream);
    return own ? own->GetError().systemCode : 0;
}

} // namespace vek
