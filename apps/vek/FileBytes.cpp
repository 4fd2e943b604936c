#include "FileBytes.h"

#include "Console.h"
#include "FileErrors.h"
#include "FileHandle.h"
#include "NewFile.h"

#include <algorithm>

namespace tool
{

namespace
{

constexpr DWORD PIECE = 0x100000;
constexpr std::size_t MOST_BYTES = 0x7FFFFFFF;

enum class Reading
{
    Done,
    Failed,
    TooLarge
};

Reading TryRead(std::wstring const & path, std::string & bytes)
{
    FileHandle const file(path, GENERIC_READ, FileHandle::SHARE_ALL, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN);
    if (!file.IsOpen())
        return Reading::Failed;
    LARGE_INTEGER size{};
    GetFileSizeEx(file.Get(), &size);
    Reading reading = static_cast<ULONGLONG>(size.QuadPart) >= MOST_BYTES ? Reading::TooLarge : Reading::Done;
    std::size_t used = 0;
    bytes.resize(reading == Reading::Done ? static_cast<std::size_t>(size.QuadPart) + 1 : 1);
    while (reading == Reading::Done)
    {
        if (used == bytes.size())
            bytes.resize(used + PIECE);
        DWORD count = 0;
        DWORD const wanted = static_cast<DWORD>(std::min<std::size_t>(bytes.size() - used, MOST_BYTES));
        if (!ReadFile(file.Get(), bytes.data() + used, wanted, &count, nullptr))
            reading = Reading::Failed;
        if (count == 0)
            break;
        used += count;
        if (used >= MOST_BYTES)
            reading = Reading::TooLarge;
    }
    bytes.resize(used);
    return reading;
}

bool WriteBytes(std::wstring const & path, std::string_view bytes)
{
    FileHandle const file(path, GENERIC_WRITE, 0, OPEN_ALWAYS);
    bool done = file.IsOpen() && SetEndOfFile(file.Get()) != 0;
    while (done && !bytes.empty())
    {
        DWORD written = 0;
        DWORD const wanted = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), PIECE));
        done = WriteFile(file.Get(), bytes.data(), wanted, &written, nullptr) && written == wanted;
        bytes.remove_prefix(written);
    }
    return done && FlushFileBuffers(file.Get());
}

} // namespace

bool ReadBytes(std::wstring const & path, std::string & bytes)
{
    Reading const reading = TryRead(path, bytes);
    if (reading != Reading::Done)
        Fail(path, reading == Reading::TooLarge ? L"is too large for memory" : WhyUnreadable(path, L"can't be read"));
    return reading == Reading::Done;
}

bool ReplaceBytes(std::wstring const & path, std::string_view bytes, std::string const * old)
{
    if (!IsWritable(path))
        return false;
    NewFile file(path);
    std::string read;
    if (!WriteBytes(file.Path(), bytes) || TryRead(file.Path(), read) != Reading::Done || read != bytes)
    {
        Fail(path, WhyUnwritable(file.Path()));
        return false;
    }
    if (old && (TryRead(path, read) != Reading::Done || read != *old))
    {
        Fail(path, L"not replaced: it has changed since it was read");
        return false;
    }
    return file.Place();
}

} // namespace tool
