#include "lexer/WordScan.h"

#include <string.h>

namespace vek
{

__m128i LoadPart(wchar_t const * text, size_t count) noexcept
{
    wchar_t units[8] = {};
    memcpy(units, text, count * sizeof(wchar_t));
    return _mm_loadu_si128(reinterpret_cast<__m128i const *>(units));
}

} // namespace vek
