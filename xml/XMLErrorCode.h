#pragma once

#include "VekXML.h"

#include <expat.h>

namespace vek
{

/// The library's own number for one of the tokenizer's.
VEK_XML_ERROR ToErrorCode(XML_Error code) noexcept;

} // namespace vek
