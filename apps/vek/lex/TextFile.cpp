#include "lex/TextFile.h"

#include "VekIO.h"

#include "Console.h"
#include "FileErrors.h"
#include "Platform.h"
#include "Utf8.h"

#include <cstdio>

namespace tool
{

namespace
{

constexpr unsigned int LARGEST = 0x60000000;

std::wstring Decode(std::string_view bytes)
{
    auto const byte = [&bytes](std::size_t i)
    { return static_cast<unsigned int>(static_cast<unsigned char>(bytes[i])); };
    if (bytes.size() >= 2 && byte(0) + byte(1) == 0xFF + 0xFE)
    {
        std::size_t const low = byte(0) == 0xFF ? 0 : 1;
        std::wstring text;
        text.reserve(bytes.size() / 2);
        for (std::size_t i = 2; i + 1 < bytes.size(); i += 2)
            text.push_back(static_cast<wchar_t>(byte(i + low) | byte(i + 1 - low) << 8));
        return text;
    }
    return FromUtf8(bytes.substr(bytes.substr(0, 3) == "\xEF\xBB\xBF" ? 3 : 0));
}

} // namespace

bool ReadTextFile(std::wstring const & path, std::wstring & text)
{
    DWORD const attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return Fail(path, L"can't be read: " + LastErrorText()) == EXIT_DONE;
    if (attributes & FILE_ATTRIBUTE_DIRECTORY)
        return Fail(path, L"is a directory") == EXIT_DONE;
    CVekFileIOStream stream;
    if (!stream.Open(path.c_str(), VEK_IO_READ | VEK_IO_BINARY, 0))
        return Fail(path, L"can't be read") == EXIT_DONE;
    if (stream.GetSize() > LARGEST)
        return Fail(path, L"is too large") == EXIT_DONE;
    std::string bytes(stream.GetSize(), '\0');
    if (!bytes.empty() && !stream.Read(bytes.data(), static_cast<unsigned int>(bytes.size()), true))
        return Fail(path, L"can't be read to its end") == EXIT_DONE;
    text = Decode(bytes);
    return true;
}

bool WriteWholeFile(std::wstring const & path, std::string const & bytes)
{
    std::FILE * const file = VekFileOpenW(path.c_str(), L"wb");
    if (!file)
        return Fail(path, L"can't be written") == EXIT_DONE;
    bool done = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    done = std::fclose(file) == 0 && done;
    return done || Fail(path, L"can't be written to its end") == EXIT_DONE;
}

} // namespace tool
