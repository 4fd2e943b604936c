#include "FileErrors.h"

#include "Console.h"
#include "FileHandle.h"

namespace tool
{

std::wstring LastErrorText()
{
    return ErrorText(GetLastError());
}

std::wstring ErrorText(unsigned long code)
{
    wchar_t text[256];
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0, text,
                                  256, nullptr);
    while (length > 0 && (text[length - 1] <= L' ' || text[length - 1] == L'.'))
        --length;
    if (length == 0)
        return Format(L"error %u", static_cast<unsigned int>(code));
    if (text[0] >= L'A' && text[0] <= L'Z')
        text[0] = static_cast<wchar_t>(text[0] + 32);
    return Printable(std::wstring_view(text, length));
}

std::wstring WhyUnreadable(std::wstring const & path, wchar_t const * otherwise)
{
    DWORD const attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return L"can't be read: " + LastErrorText();
    if (attributes & FILE_ATTRIBUTE_DIRECTORY)
        return L"is a directory";
    FileHandle const file(path, GENERIC_READ, FileHandle::SHARE_ALL, OPEN_EXISTING);
    return file.IsOpen() ? otherwise : L"can't be read: " + LastErrorText();
}

std::wstring WhyUnwritable(std::wstring const & path)
{
    FileHandle const file(path, GENERIC_WRITE, 0, OPEN_ALWAYS);
    return file.IsOpen() ? L"can't be written whole; is the disk full?" : L"can't be written: " + LastErrorText();
}

} // namespace tool
