#pragma once

#include <string>

namespace tool
{

/// What the system says of one of its errors, such as "access is denied".
std::wstring ErrorText(unsigned long code);

/// What the system says of the calling thread's last error, such as "access is denied".
std::wstring LastErrorText();

/// Why a file could not be read, as far as the file system knows, or the other reason.
std::wstring WhyUnreadable(std::wstring const & path, wchar_t const * otherwise);

/// Why a new file could not be written, as far as another try at opening it tells.
std::wstring WhyUnwritable(std::wstring const & path);

} // namespace tool
