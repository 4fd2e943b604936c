#include "StandardFiles.h"

#include "Console.h"
#include "FileErrors.h"
#include "FileHandle.h"

#include <vector>

namespace tool
{

namespace
{

constexpr wchar_t const * STANDARD = L"-";
constexpr DWORD PIECE_SIZE = 0x10000;

/// A file that is gone at the end of its scope.
class TemporaryFile
{
public:
    explicit TemporaryFile(wchar_t const * name)
    {
        wchar_t folder[MAX_PATH + 1], path[MAX_PATH];
        if (GetTempPathW(MAX_PATH + 1, folder) == 0 || GetTempFileNameW(folder, L"vek", 0, path) == 0)
        {
            Fail(name, L"no temporary file can be made: " + LastErrorText());
            return;
        }
        m_path = path;
        ShowAs(m_path, name);
    }
    ~TemporaryFile()
    {
        if (!m_path.empty())
            DeleteFileW(m_path.c_str());
    }
    TemporaryFile(TemporaryFile const &) = delete;
    TemporaryFile & operator=(TemporaryFile const &) = delete;

    /// Empty after a failure that the user was told of.
    std::wstring const & Path() const { return m_path; }

private:
    std::wstring m_path;
};

/// Hands out all that can be read; false when reading or the use fails.
template <class Use>
bool ReadAll(HANDLE handle, Use use)
{
    std::vector<char> buffer(PIECE_SIZE);
    DWORD size = 0;
    while (ReadFile(handle, buffer.data(), PIECE_SIZE, &size, nullptr))
    {
        if (size == 0)
            return true;
        if (!use(buffer.data(), size))
            return false;
    }
    return GetLastError() == ERROR_BROKEN_PIPE; // its writer has ended
}

bool TakeInput(std::wstring const & path)
{
    FileHandle const file(path, GENERIC_WRITE, FILE_SHARE_READ, CREATE_ALWAYS);
    auto const store = [&file](char const * bytes, DWORD size)
    {
        DWORD written = 0;
        return WriteFile(file.Get(), bytes, size, &written, nullptr) && written == size;
    };
    return file.IsOpen() && ReadAll(GetStdHandle(STD_INPUT_HANDLE), store);
}

bool SendOutput(std::wstring const & path)
{
    FileHandle const file(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
    auto const send = [](char const * bytes, DWORD size)
    {
        Console::Out().WriteBytes(std::string_view(bytes, size));
        return true;
    };
    return file.IsOpen() && ReadAll(file.Get(), send);
}

} // namespace

int WithInput(std::wstring const & given, std::function<int(std::wstring const & path)> const & work)
{
    if (given != STANDARD)
        return work(given);
    TemporaryFile const file(L"<standard input>");
    if (file.Path().empty())
        return EXIT_FAILED;
    return TakeInput(file.Path()) ? work(file.Path()) : Fail(file.Path(), L"can't be read: " + LastErrorText());
}

int WithOutput(std::wstring const & given, std::function<int(std::wstring const & path)> const & work)
{
    if (given != STANDARD)
        return work(given);
    TemporaryFile const file(L"<standard output>");
    if (file.Path().empty())
        return EXIT_FAILED;
    int const code = work(file.Path());
    if (code == EXIT_DONE && !SendOutput(file.Path()))
        return Fail(file.Path(), L"can't be written: " + LastErrorText());
    return code;
}

int WithFiles(std::wstring const & from, std::wstring const & to,
              std::function<int(std::wstring const & from, std::wstring const & to)> const & work)
{
    return WithInput(from, [&](std::wstring const & in)
                     { return WithOutput(to, [&](std::wstring const & out) { return work(in, out); }); });
}

} // namespace tool
