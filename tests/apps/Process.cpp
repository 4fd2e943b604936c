#include "Process.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace
{

constexpr DWORD LONGEST_RUN = 50000;

std::wstring OwnFolder()
{
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring const whole = path;
    return whole.substr(0, whole.find_last_of(L"\\/") + 1);
}

std::wstring TestFolder()
{
    wchar_t path[MAX_PATH] = L"";
    if (!GetEnvironmentVariableW(L"VEK_TEST_TMP", path, MAX_PATH))
        GetTempPathW(MAX_PATH, path);
    return path;
}

// As the runtime of the started program takes it apart again.
std::wstring Quoted(std::wstring const & argument)
{
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (wchar_t const unit : argument)
    {
        if (unit == L'"')
            text.append(backslashes + 1, L'\\');
        backslashes = unit == L'\\' ? backslashes + 1 : 0;
        text += unit;
    }
    return text.append(backslashes, L'\\') + L"\"";
}

HANDLE Inheritable(std::wstring const & path, DWORD access, DWORD disposition)
{
    SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, TRUE};
    return CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &attributes, disposition, 0, nullptr);
}

int WaitFor(PROCESS_INFORMATION const & process)
{
    DWORD code = static_cast<DWORD>(-1);
    if (WaitForSingleObject(process.hProcess, LONGEST_RUN) == WAIT_OBJECT_0)
        GetExitCodeProcess(process.hProcess, &code);
    else
        TerminateProcess(process.hProcess, code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return static_cast<int>(code);
}

std::wstring WorkFolder()
{
    std::wstring folder = TestFolder() + L"\\files";
    CreateDirectoryW(folder.c_str(), nullptr);
    return folder;
}

} // namespace

Outcome RunBeside(std::wstring const & program, std::vector<std::wstring> const & arguments, std::string const & input)
{
    std::wstring const path = OwnFolder() + program;
    std::wstring line = Quoted(path);
    for (std::wstring const & argument : arguments)
        line += L" " + Quoted(argument);
    // Files, not pipes: nobody has to read while the program writes.
    std::wstring const outPath = TestFolder() + L"\\stdout.txt", errPath = TestFolder() + L"\\stderr.txt";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    std::wstring const inPath = TestFolder() + L"\\stdin.txt";
    StoreBytes(inPath, input);
    startup.hStdInput = Inheritable(inPath, GENERIC_READ, OPEN_EXISTING);
    startup.hStdOutput = Inheritable(outPath, GENERIC_WRITE, CREATE_ALWAYS);
    startup.hStdError = Inheritable(errPath, GENERIC_WRITE, CREATE_ALWAYS);
    PROCESS_INFORMATION process{};
    Outcome outcome;
    bool started = false;
    // Under load a start can fail for a moment.
    for (int attempt = 0; attempt < 3 && !started; ++attempt)
    {
        Sleep(attempt * 500U);
        started = CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, TRUE, DETACHED_PROCESS, nullptr,
                                 WorkFolder().c_str(), &startup, &process) != 0;
    }
    DWORD const error = GetLastError();
    CloseHandle(startup.hStdInput);
    CloseHandle(startup.hStdOutput);
    CloseHandle(startup.hStdError);
    if (started)
        outcome.code = WaitFor(process);
    outcome.out = FileBytes(outPath);
    outcome.err = started ? FileBytes(errPath) : "can't be started: error " + std::to_string(error);
    return outcome;
}

Outcome Vek(std::vector<std::wstring> const & arguments, std::string const & input)
{
    return RunBeside(L"vek.exe", arguments, input);
}

std::wstring MakeFolder()
{
    std::wstring const folder = WorkFolder();
    for (auto const & file : std::filesystem::directory_iterator(folder))
    {
        SetFileAttributesW(file.path().c_str(), FILE_ATTRIBUTE_NORMAL);
        DeleteFileW(file.path().c_str());
    }
    return folder + L"\\";
}

int CountFiles(std::wstring const & folder)
{
    auto const files = std::filesystem::directory_iterator(folder);
    return static_cast<int>(std::distance(begin(files), end(files)));
}

std::wstring ExampleFile(std::string const & name)
{
    std::string const path = VEK_TEST_DATA "/../../examples/data/" + name;
    return std::wstring(path.begin(), path.end());
}

std::wstring SceneFile()
{
    return ExampleFile("scene.xml");
}
