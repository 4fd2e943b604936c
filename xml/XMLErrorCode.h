#pragma once

#include "VekIO.h"
#include "VekXML.h"

#include <expat.h>

namespace vek
{

/// The library's own number for one of the tokenizer's.
VEK_XML_ERROR ToErrorCode(XML_Error code) noexcept;

/// What a writer's error is in words.
wchar_t const * WriteErrorText(VEK_XML_WRITE_ERROR code) noexcept;

/// The system's number for what failed, from a stream of the library; else 0.
unsigned int SystemCodeOf(IVekFileIOStream & stream) noexcept;

} // namespace vek
