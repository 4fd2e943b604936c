#include "FileBytes.h"

#include "Console.h"
#include "FileErrors.h"
#include "NewFile.h"
#include "Platform.h"

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
    HANDLE const file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return Reading::Failed;
    LARGE_INTEGER size{};
    GetFileSizeEx(file, &size);
    Reading reading = static_cast<ULONGLONG>(size.QuadPart) >= MOST_BYTES ? Reading::TooLarge : Reading::Done;
    std::size_t used = 0;
    bytes.resize(reading == Reading::Done ? static_cast<std::size_t>(size.QuadPart) + 1 : 1);
    while (reading == Reading::Done)
    {
        if (used == bytes.size())
            bytes.resize(used + PIECE);
        DWORD count = 0;
        DWORD const wanted = static_cast<DWORD>(std::min<std::size_t>(bytes.size() - used, MOST_BYTES));
        if (!ReadFile(file, bytes.data() + used, wanted, &count, nullptr))
            reading = Reading::Failed;
        if (count == 0)
            break;
        used += count;
        if (used >= MOST_BYTES)
            reading = Reading::TooLarge;
    }
    bytes.resize(used);
    CloseHandle(file);
    return reading;
}

bool WriteBytes(std::wstring const & path, std::string_view bytes)
{
    HANDLE const file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    bool done = SetEndOfFile(file) != 0;
    while (done && !bytes.empty())
    {
        DWORD written = 0;
        DWORD const wanted = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), PIECE));
        done = WriteFile(file, bytes.data(), wanted, &written, nullptr) && written == wanted;
        bytes.remove_prefix(written);
    }
    done = done && FlushFileBuffers(file);
    CloseHandle(file);
    return done;
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
